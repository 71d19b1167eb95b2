#pragma once
// VBComponent.Designer: the designer's own object, made by the component's kind. A DHTML page
// has the page designer's object (dhtml_page_designer.h); modules and classes have none
// (Nothing), and neither have the kinds whose designer objects this IDE does not make.

#include <memory>

#include "automation/object.h"

namespace ide {
class Component;
class Project;
}  // namespace ide

namespace ide::vbide {

class VBComponent;

// Made once per component: the VBComponent keeps it until it is torn down.
std::shared_ptr<automation::Object> MakeActiveXDesigner(VBComponent& owner,
                                                        const std::shared_ptr<ide::Project>& model,
                                                        ide::Component& component);

}  // namespace ide::vbide
