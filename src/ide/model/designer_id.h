#pragma once
// VBComponent.DesignerID: the programmatic identifier of the designer behind a component.

#include <string>

#include "ide/model/component_file.h"

namespace ide {

// For an ActiveX designer (.dsr) the identifier of its designer class, found from the CLSID of
// its `Begin {CLSID} Name` line; for forms, user controls, property pages and user documents
// VB's own designer class ("VB.Form" ...: VB6's documentation speaks only of ActiveX
// designers, so these follow the class names of VB's form-type files, unsure); empty for modules
// and classes.
std::string DesignerIdOf(const ComponentFile& file);
// The same from the component's type alone: empty for an ActiveX designer, whose identifier only
// its file tells.
std::string DesignerIdOf(ComponentType type);

}  // namespace ide
