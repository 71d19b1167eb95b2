#include "ide/vbide/vbcontrol.h"

#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/form/control_array.h"
#include "ide/form/property_catalog.h"
#include "ide/vbide/live_control.h"
#include "ide/vbide/make.h"
#include "ide/vbide/vbcontrols.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbform.h"

namespace ide::vbide {
namespace {

// vbext_ControlType.
constexpr int32_t kLight = 1;
constexpr int32_t kStandard = 2;
constexpr int32_t kContainer = 3;

}  // namespace

VBControl::VBControl(std::shared_ptr<VBForm> form) : form_(std::move(form)) {}

const automation::ClassInfo& VBControl::Class() const {
  // The members in the order of VBIDE's VBControl interface, those a headless designer has.
  static const automation::ClassInfo info =
      automation::ClassBuilder<VBControl>("VBControl")
          .Get("ClassName", &VBControl::ClassName)
          .Get("ContainedVBControls", &VBControl::ContainedVBControls)
          .Get("Container", &VBControl::Container)
          .Get("InSelection", &VBControl::InSelection)
          .Get("ControlType", &VBControl::ControlType)
          .Get("ControlObject", &VBControl::ControlObject)
          .Get("Properties", &VBControl::Properties)
          .Get("ProgId", &VBControl::ProgId)
          .Get("Collection", &VBControl::Collection)
          .Get("VBE", &VBControl::Vbe)
          .Build();
  return info;
}

form::DescriptionNode& VBControl::Node() {
  if (!form_) automation::Raise(automation::err::kServerUnavailable);
  return form_->NodeOf(*this);
}

form::ObjectProperties VBControl::Model() {
  if (!form_) automation::Raise(automation::err::kServerUnavailable);
  return form_->PropertiesOf(*this);
}

PropertySource VBControl::Source() {
  std::weak_ptr<VBControl> weak = std::static_pointer_cast<VBControl>(shared_from_this());
  auto self = [weak] {
    std::shared_ptr<VBControl> control = weak.lock();
    if (!control) automation::Raise(automation::err::kServerUnavailable);
    return control;
  };
  PropertySource source;
  source.locate = [self] { return self()->Model(); };
  source.changed = [self] { self()->NoteChanged(); };
  source.intercept = [self](std::string_view name, const automation::Variant& value) {
    if (automation::SameVbName(name, "Name")) {
      self()->SetName(value);
      return true;
    }
    if (automation::SameVbName(name, "Index")) {
      self()->SetIndex(value);
      return true;
    }
    return false;
  };
  return source;
}

std::string VBControl::ProgId() {
  const form::DescriptionNode& node = Node();
  if (const form::ClassInfo* known = form::FindClass(node.Type()))
    return std::string(known->progId);
  return node.Type();
}

std::string VBControl::ClassName() {
  const form::DescriptionNode& node = Node();
  if (const form::ClassInfo* known = form::FindClass(node.Type())) {
    return std::string(known->className);
  }
  const std::size_t dot = node.Type().rfind('.');
  return dot == std::string::npos ? node.Type() : node.Type().substr(dot + 1);
}

int32_t VBControl::ControlType() {
  const form::DescriptionNode& node = Node();
  if (!node.Children().empty()) return kContainer;
  const form::ClassInfo* known = form::FindClass(node.Type());
  if (!known) return kStandard;
  for (std::string_view light : {"Image", "Label", "Line", "Shape", "Menu", "Timer"}) {
    if (known->className == light) return kLight;
  }
  if (known->className == "Frame" || known->className == "PictureBox") return kContainer;
  return kStandard;
}

automation::ObjectRef VBControl::Properties() {
  Node();  // a control no longer on its form raises here
  return HeldOrMade(properties_, [&] {
    return MakeBeside<vbide::Properties>(*this, Source(), shared_from_this());
  });
}

std::shared_ptr<LiveControl> VBControl::ControlObject() {
  const form::ClassInfo* known = form::FindClass(Node().Type());
  return HeldOrMade(live_, [&] {
    auto self = std::static_pointer_cast<VBControl>(shared_from_this());
    return MakeBeside<LiveControl>(*this, self, known);
  });
}

std::shared_ptr<VBControl> VBControl::Container() {
  form::DescriptionNode* parent = Node().Parent();
  if (!parent || !parent->Parent()) return nullptr;  // the form itself
  return form_->ControlOf(*parent);
}

std::shared_ptr<vbide::VBControls> VBControl::ContainedVBControls() {
  Node();
  return HeldOrMade(contained_, [&] {
    auto self = std::static_pointer_cast<VBControl>(shared_from_this());
    return MakeBeside<vbide::VBControls>(*this, form_, self, false);
  });
}

std::shared_ptr<vbide::VBControls> VBControl::Collection() {
  if (!form_) automation::Raise(automation::err::kServerUnavailable);
  return form_->VBControls();
}

std::shared_ptr<VBE> VBControl::Vbe() const {
  return form_ ? form_->Vbe() : nullptr;
}

std::string VBControl::Name() {
  return Node().Name();
}

int32_t VBControl::Index() {
  return Node().Index();
}

void VBControl::SetName(const automation::Variant& name) {
  form::DescriptionNode& node = Node();
  form::RenameControl(form_->Description(), node, name.ToString());
  form_->NoteRenamed(*this);
  NoteChanged();
}

void VBControl::SetIndex(const automation::Variant& index) {
  form::DescriptionNode& node = Node();
  form::SetControlIndex(form_->Description(), node, index.ToLong());
  form_->NoteRenamed(*this);
  NoteChanged();
}

void VBControl::NoteChanged() {
  if (form_) form_->NoteChanged();
}

void VBControl::TearDown() {
  if (auto live = live_.lock()) live->TearDown();
  if (auto contained = contained_.lock()) contained->TearDown();
  live_.reset();
  contained_.reset();
  properties_.reset();
  form_.reset();
}

}  // namespace ide::vbide
