#pragma once
// VBControls: controls of a form's designer, as VBForm.VBControls (every control) and
// VBControl.ContainedVBControls / VBForm.ContainedVBControls (the controls placed directly on
// a container) give them, in the order of the form file.
//
// Item(CollectionIndex[, ControlIndex]) takes a position from 1 to Count (as VBIDE's other
// collections do) or a control's name in any letter case; with ControlIndex, the member of that
// control array. Without ControlIndex an array member may also be named with its index in
// parentheses ("Option1(2)"), as the driver keys its controls; an array's bare name raises 9,
// since it names several controls, as does an unknown name or position.

#include <cstdint>
#include <memory>
#include <vector>

#include "automation/object.h"

namespace ide::form {
class DescriptionNode;
}

namespace ide::vbide {

class VBControl;
class VBForm;
class VBE;

class VBControls : public automation::Object {
 public:
  // container: the control whose children these are; null with `all` for every control of
  // the form, null without it for the controls placed on the form itself.
  VBControls(std::shared_ptr<VBForm> form, std::shared_ptr<VBControl> container, bool all);

  const automation::ClassInfo& Class() const override;

  std::shared_ptr<VBControl> Item(const automation::Variant& index,
                                  const automation::Variant& controlIndex);
  int32_t Count();
  std::shared_ptr<VBForm> Parent() const { return form_; }
  std::shared_ptr<VBE> Vbe() const;

  void TearDown();

 private:
  // The node whose children these are; null for every control of the form.
  const form::DescriptionNode* Container();

  std::shared_ptr<VBForm> form_;
  std::shared_ptr<VBControl> container_;
  bool all_;
};

}  // namespace ide::vbide
