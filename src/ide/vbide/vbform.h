#pragma once
// VBForm: the designer of a form-like component (form, MDI form, user control, property page,
// user document) as VBComponent.Designer answers it, over the component's form description.
//
// The form gives one VBControl object per control of its description, menus and controls
// nested in containers included, the same object each time it is asked. When the component's
// file is read again (it changed on disk while the IDE held no change of its own), the form
// finds each control it handed out again by its name and index in the new description; a
// control that is no longer there raises 91 from then on.

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "automation/object.h"
#include "ide/form/object_properties.h"

namespace ide {
class Component;
class Project;
}  // namespace ide

namespace ide::vbide {

class VBComponent;
class VBControl;
class VBControls;
class VBE;

class VBForm : public automation::Object {
 public:
  VBForm(std::shared_ptr<VBComponent> parent, std::shared_ptr<ide::Project> model,
         ide::Component& component);

  const automation::ClassInfo& Class() const override;

  // Every control of the form, in the order of its file (a container's controls after it).
  std::shared_ptr<vbide::VBControls> VBControls();
  // The controls placed on the form itself, not inside another control.
  std::shared_ptr<vbide::VBControls> ContainedVBControls();
  std::shared_ptr<VBE> Vbe() const;

  // For the form's collections and controls.
  form::Description& Description();
  // The controls in file order; those whose parent is `container` (null: every control, the
  // form's root: the form's own).
  const std::vector<form::DescriptionNode*>& Nodes(const form::DescriptionNode* container);
  // The controls named so (case-insensitive), in file order.
  const std::vector<form::DescriptionNode*>& Named(std::string_view name);
  // The control of a node of the current description (just got from Nodes or Description).
  std::shared_ptr<VBControl> ControlOf(form::DescriptionNode& node);
  // The node of a control handed out before, in the current description (91 when the file was
  // read again without it).
  form::DescriptionNode& NodeOf(const VBControl& control);
  // Its properties (one look at the file for both the context and the node).
  form::ObjectProperties PropertiesOf(const VBControl& control);
  // Called after a control's name or index changed, so that it is found again by them.
  void NoteRenamed(const VBControl& control);
  // Marks the component changed, as the other IDE objects do.
  void NoteChanged();

  void TearDown();

 private:
  struct Known {
    std::weak_ptr<VBControl> control;       // while someone holds it
    const VBControl* object = nullptr;      // the last one made, as byControl_ knows it
    form::DescriptionNode* node = nullptr;  // null: gone since the file was read again
    std::string name;                       // to find it again
    int32_t index = -1;
  };
  // The current description, the controls found again in it when the file was read again.
  form::Description& Refresh();
  void Rebind(form::Description& description);
  form::DescriptionNode& Lookup(const VBControl& control);

  std::shared_ptr<VBComponent> parent_;
  std::shared_ptr<ide::Project> model_;  // keeps component_ alive
  ide::Component* component_;
  uint64_t reads_ = 0;  // the component's file reads the nodes below belong to
  std::vector<form::DescriptionNode*> nodes_;
  // Indexes over nodes_, so that finding a control does not walk every control: the children
  // of each container, and the controls of each name (VbNameKey; made on first use and again
  // after a rename).
  std::unordered_map<const form::DescriptionNode*, std::vector<form::DescriptionNode*>> children_;
  std::unordered_map<std::string, std::vector<form::DescriptionNode*>> byName_;
  bool byNameCurrent_ = false;
  std::vector<Known> known_;
  std::map<const form::DescriptionNode*, std::size_t> byNode_;
  std::map<const VBControl*, std::size_t> byControl_;
  // Made on first use, kept while held (HeldOrMade).
  std::weak_ptr<vbide::VBControls> all_;
  std::weak_ptr<vbide::VBControls> contained_;
};

}  // namespace ide::vbide
