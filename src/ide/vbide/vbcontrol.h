#pragma once
// VBControl: one control of a form's designer (menus included), over its object in the form
// description.
//
// ProgId is the class the file names: "VB.TextBox" for VB's own controls (as the catalog
// spells it, whatever the file's letter case), the type as written for other libraries'
// ("MSComctlLib.ListView"). ClassName is the class without its library ("TextBox").
// ControlType is vbext_ControlType: 3 for a control that holds others (Frame, PictureBox, or
// any control with controls inside it in the file), 1 for VB's windowless controls (Image,
// Label, Line, Shape, Menu, Timer), 2 otherwise.
//
// Name and Index are changed here, with VB6's control-array rules (form/control_array.h);
// every other property goes through the control's properties (form/object_properties.h).

#include <cstdint>
#include <memory>
#include <string>

#include "automation/object.h"
#include "ide/form/object_properties.h"
#include "ide/vbide/properties.h"

namespace ide::vbide {

class LiveControl;
class VBControls;
class VBForm;
class VBE;

class VBControl : public automation::Object {
 public:
  explicit VBControl(std::shared_ptr<VBForm> form);

  const automation::ClassInfo& Class() const override;

  std::string ClassName();
  std::string ProgId();
  automation::ObjectRef Properties();
  std::shared_ptr<LiveControl> ControlObject();
  int32_t ControlType();
  // The control that holds this one; Nothing for a control placed on the form itself.
  std::shared_ptr<VBControl> Container();
  std::shared_ptr<vbide::VBControls> ContainedVBControls();
  std::shared_ptr<vbide::VBControls> Collection();
  bool InSelection() const { return false; }  // nothing is ever selected in a headless IDE
  std::shared_ptr<VBE> Vbe() const;

  // For the properties and the live control.
  form::DescriptionNode& Node();
  // The control's properties over its current node.
  form::ObjectProperties Model();
  // How the control's Properties collection and its font object reach it: Name and Index go
  // through SetName and SetIndex.
  PropertySource Source();
  std::string Name();
  int32_t Index();
  // A new name or index, keeping control arrays consistent.
  void SetName(const automation::Variant& name);
  void SetIndex(const automation::Variant& index);
  // After a change made through the control's properties.
  void NoteChanged();

  void TearDown();

 private:
  std::shared_ptr<VBForm> form_;
  // Made on first use, kept while held (HeldOrMade).
  std::weak_ptr<LiveControl> live_;
  std::weak_ptr<vbide::Properties> properties_;
  std::weak_ptr<vbide::VBControls> contained_;
};

}  // namespace ide::vbide
