#pragma once
// VBComponent: one component of a project (module, class, form, MDI form, user control, property
// page, user document, designer), over the model's ide::Component.
//
// A component whose file cannot be read answers Name, Type (modules and classes), FileNames,
// FileCount, IsDirty and HasOpenDesigner from the project file; the members that need the file
// (CodeModule, Type of the form kinds, DesignerID, Name's write, SaveAs, DesignerWindow,
// Activate) raise its load error.

#include <cstdint>
#include <memory>
#include <string>

#include "automation/object.h"

namespace ide {
class Component;
class Project;
}  // namespace ide

namespace ide::vbide {

class CodeModule;
class Properties;
class VBComponents;
class VBForm;
class VBE;
class Window;

class VBComponent : public automation::Object {
 public:
  VBComponent(std::shared_ptr<VBComponents> collection, std::shared_ptr<ide::Project> model,
              ide::Component& component);

  const automation::ClassInfo& Class() const override;

  // Unsaved changes. Writing True marks the component changed; writing False marks it saved
  // until the next change made through the IDE's objects (the changes themselves stay and are
  // written by the next save).
  bool IsDirty() const;
  void SetIsDirty(bool dirty);
  // FileNames(1): the full path of the component's file. The model keeps no other file (binary
  // companions are not part of it), so FileCount is 1 and any other index raises 9.
  std::string FileNames(int16_t index) const;
  // Saves the component's file under that name (its own name to save in place). A rename also
  // reaches the project file: its entry line is written with the component. A save that fails
  // raises its error with the component's changes dropped: it then holds what its files hold.
  bool SaveAs(const std::string& newFileName);
  int16_t FileCount() const { return 1; }
  std::string Name() const;
  // VB's naming rules; 380 for an invalid name or one another component has.
  void SetName(const std::string& name);
  // The designer: for forms, MDI forms, user controls, property pages and user documents a
  // VBForm over the form description (the same object for as long as anyone holds it), for
  // ActiveX designers (.dsr) their own object (designer_object.h), the same object each time;
  // Nothing for modules and classes, which
  // have none. Raises the file's load error.
  automation::ObjectRef Designer();
  std::shared_ptr<vbide::CodeModule> CodeModule();
  // vbext_ComponentType: 1, 2, 5, 6, 7, 8, 9 or 11.
  int32_t Type() const;
  std::shared_ptr<VBE> Vbe() const;
  std::shared_ptr<VBComponents> Collection() const { return collection_; }
  bool HasOpenDesigner() const { return designerWindow_ != nullptr; }
  // The designer's window, opening the designer (not showing it) when it is closed. Modules
  // and classes have no designer: 5 "Invalid procedure call or argument".
  std::shared_ptr<Window> DesignerWindow();
  // Opens and shows the designer of a component that has one; for a module or class (whose
  // code window this IDE does not show) it only makes sure the file can be read.
  void Activate();
  std::string DesignerID() const;
  // The Properties window's properties of the form, user control, property page, user document
  // or designer (ide/vbide/properties.h); empty for modules and classes. Writing Name renames
  // the component.
  std::shared_ptr<vbide::Properties> Properties();

  ide::Component& Model() const { return *component_; }
  // Called by the component's CodeModule when its code changed.
  void NoteChanged() { savedMark_ = false; }
  void TearDown();

 private:
  bool HasDesigner() const;
  std::string DesignerCaption() const;

  std::shared_ptr<VBComponents> collection_;
  std::shared_ptr<ide::Project> model_;  // keeps component_ alive
  ide::Component* component_;
  std::shared_ptr<vbide::CodeModule> code_;
  std::weak_ptr<VBForm> designer_;         // kept while held (HeldOrMade): its controls hold it
  automation::ObjectRef activeXDesigner_;  // of a .dsr
  std::shared_ptr<Window> designerWindow_;
  std::shared_ptr<vbide::Properties> properties_;
  bool markedDirty_ = false;  // IsDirty was set to True
  bool savedMark_ = false;    // IsDirty was set to False and nothing changed since
};

}  // namespace ide::vbide
