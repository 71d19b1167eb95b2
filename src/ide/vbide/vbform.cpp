#include "ide/vbide/vbform.h"

#include <string>
#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/model/project.h"
#include "ide/vbide/make.h"
#include "ide/vbide/vbcomponent.h"
#include "ide/vbide/vbcontrol.h"
#include "ide/vbide/vbcontrols.h"
#include "ide/vbide/vbe.h"

namespace ide::vbide {

VBForm::VBForm(std::shared_ptr<VBComponent> parent, std::shared_ptr<ide::Project> model,
               ide::Component& component)
    : parent_(std::move(parent)), model_(std::move(model)), component_(&component) {}

const automation::ClassInfo& VBForm::Class() const {
  // The members of VBIDE's VBForm that a designer without a screen can answer.
  static const automation::ClassInfo info =
      automation::ClassBuilder<VBForm>("VBForm")
          .Get("VBControls", &VBForm::VBControls)
          .Get("ContainedVBControls", &VBForm::ContainedVBControls)
          .Get("VBE", &VBForm::Vbe)
          .Build();
  return info;
}

std::shared_ptr<vbide::VBControls> VBForm::VBControls() {
  if (!parent_) automation::Raise(automation::err::kServerUnavailable);
  return HeldOrMade(all_, [&] {
    auto self = std::static_pointer_cast<VBForm>(shared_from_this());
    return MakeBeside<vbide::VBControls>(*this, self, nullptr, true);
  });
}

std::shared_ptr<vbide::VBControls> VBForm::ContainedVBControls() {
  if (!parent_) automation::Raise(automation::err::kServerUnavailable);
  return HeldOrMade(contained_, [&] {
    auto self = std::static_pointer_cast<VBForm>(shared_from_this());
    return MakeBeside<vbide::VBControls>(*this, self, nullptr, false);
  });
}

std::shared_ptr<VBE> VBForm::Vbe() const {
  return parent_ ? parent_->Vbe() : nullptr;
}

form::Description& VBForm::Description() {
  return Refresh();
}

form::Description& VBForm::Refresh() {
  if (!parent_) automation::Raise(automation::err::kServerUnavailable);
  form::Description* description = component_->File().Description();  // raises its load error
  if (!description) {
    automation::Raise(automation::err::kInvalidCall, component_->Name() + " has no form designer");
  }
  Rebind(*description);
  return *description;
}

void VBForm::Rebind(form::Description& description) {
  if (reads_ == component_->Reads()) return;
  reads_ = component_->Reads();
  nodes_ = description.Controls();
  children_.clear();
  for (form::DescriptionNode* node : nodes_)
    children_[node->Parent()].push_back(node);
  byNameCurrent_ = false;
  // The controls handed out before are found again by name and index.
  byNode_.clear();
  for (std::size_t i = 0; i < known_.size(); ++i) {
    Known& known = known_[i];
    known.node = nullptr;
    for (form::DescriptionNode* node : Named(known.name)) {
      if (node->Index() == known.index && !byNode_.count(node)) {
        known.node = node;
        byNode_[node] = i;
        break;
      }
    }
  }
}

const std::vector<form::DescriptionNode*>& VBForm::Nodes(const form::DescriptionNode* container) {
  Refresh();
  if (!container) return nodes_;
  static const std::vector<form::DescriptionNode*> kNone;
  auto it = children_.find(container);
  return it == children_.end() ? kNone : it->second;
}

const std::vector<form::DescriptionNode*>& VBForm::Named(std::string_view name) {
  if (!byNameCurrent_) {
    byName_.clear();
    for (form::DescriptionNode* node : nodes_)
      byName_[automation::VbNameKey(node->Name())].push_back(node);
    byNameCurrent_ = true;
  }
  static const std::vector<form::DescriptionNode*> kNone;
  auto it = byName_.find(automation::VbNameKey(name));
  return it == byName_.end() ? kNone : it->second;
}

std::shared_ptr<VBControl> VBForm::ControlOf(form::DescriptionNode& node) {
  auto it = byNode_.find(&node);
  if (it == byNode_.end()) {
    Known known;
    known.node = &node;
    known.name = node.Name();
    known.index = node.Index();
    it = byNode_.emplace(&node, known_.size()).first;
    known_.push_back(std::move(known));
  }
  // The control's object while someone holds it; a new one (found again by its node) once
  // nobody does.
  Known& known = known_[it->second];
  if (std::shared_ptr<VBControl> held = known.control.lock()) return held;
  auto self = std::static_pointer_cast<VBForm>(shared_from_this());
  std::shared_ptr<VBControl> control = MakeBeside<VBControl>(*this, self);
  byControl_.erase(known.object);
  known.control = control;
  known.object = control.get();
  byControl_[known.object] = it->second;
  return control;
}

form::DescriptionNode& VBForm::NodeOf(const VBControl& control) {
  Refresh();
  return Lookup(control);
}

form::ObjectProperties VBForm::PropertiesOf(const VBControl& control) {
  if (!parent_) automation::Raise(automation::err::kServerUnavailable);
  const form::FormContext context = component_->Form();  // reads a file changed on disk again
  Rebind(*context.description);
  return form::ObjectProperties(context, Lookup(control));
}

form::DescriptionNode& VBForm::Lookup(const VBControl& control) {
  auto it = byControl_.find(&control);
  if (it == byControl_.end() || !known_[it->second].node) {
    automation::Raise(automation::err::kObjectNotSet, "the control is no longer on " +
                                                          component_->Name() +
                                                          " (its file was read again without it)");
  }
  return *known_[it->second].node;
}

void VBForm::NoteRenamed(const VBControl& control) {
  auto it = byControl_.find(&control);
  if (it == byControl_.end() || !known_[it->second].node) return;
  Known& known = known_[it->second];
  known.name = known.node->Name();
  known.index = known.node->Index();
  byNameCurrent_ = false;
}

void VBForm::NoteChanged() {
  if (parent_) parent_->NoteChanged();
}

void VBForm::TearDown() {
  for (Known& known : known_) {
    if (auto control = known.control.lock()) control->TearDown();
  }
  if (auto all = all_.lock()) all->TearDown();
  if (auto contained = contained_.lock()) contained->TearDown();
  known_.clear();
  byNode_.clear();
  byControl_.clear();
  nodes_.clear();
  children_.clear();
  byName_.clear();
  all_.reset();
  contained_.reset();
  parent_.reset();
}

}  // namespace ide::vbide
