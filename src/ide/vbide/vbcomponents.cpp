#include "ide/vbide/vbcomponents.h"

#include <string>
#include <utility>

#include "automation/error.h"
#include "ide/model/project.h"
#include "ide/vbide/make.h"
#include "ide/vbide/vbcomponent.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbproject.h"

namespace ide::vbide {

VBComponents::VBComponents(std::shared_ptr<VBProject> project) : project_(std::move(project)) {}

const automation::ClassInfo& VBComponents::Class() const {
  // The members in the order of VBIDE's VBComponents interface.
  static const automation::ClassInfo info = automation::ClassBuilder<VBComponents>("VBComponents")
                                                .Method("Item", &VBComponents::Item, {"index"})
                                                .Get("Parent", &VBComponents::Parent)
                                                .Get("Count", &VBComponents::Count)
                                                .Get("VBE", &VBComponents::Vbe)
                                                .Build();
  return info;
}

std::shared_ptr<VBComponent> VBComponents::Item(const automation::Variant& index) {
  std::shared_ptr<VBComponent> found;
  if (index.IsString()) {
    // The model compares names as VB does and raises 9 for a name it does not know.
    ide::Component& wanted = project_->Model().Item(index.ToString());
    for (const auto& component : items_) {
      if (&component->Model() == &wanted) found = component;
    }
    if (!found) {
      automation::Raise(automation::err::kSubscript,
                        "no component named \"" + index.ToString() + "\"");
    }
  } else {
    const int32_t number = index.ToLong();
    if (number < 1 || number > Count()) {
      automation::Raise(automation::err::kSubscript,
                        "no component number " + std::to_string(number));
    }
    found = items_[number - 1];
  }
  // A DHTML page written through its designer's file while the component was let go is taken
  // into its .dsx as it is fetched again.
  found->Model().TakePageChanges();
  return found;
}

std::shared_ptr<VBE> VBComponents::Vbe() const {
  return project_ ? project_->Vbe() : nullptr;
}

void VBComponents::CreateItems() {
  if (!items_.empty()) return;
  auto self = std::static_pointer_cast<VBComponents>(shared_from_this());
  // The component objects keep the model alive for as long as anyone holds them.
  const std::shared_ptr<ide::Project>& model = project_->SharedModel();
  items_.reserve(model->Count());
  for (std::size_t i = 0; i < model->Count(); ++i) {
    items_.push_back(MakeBeside<VBComponent>(*this, self, model, model->At(i)));
  }
}

void VBComponents::TearDown() {
  auto items = std::move(items_);
  items_.clear();
  for (const auto& component : items)
    component->TearDown();
  project_.reset();
}

}  // namespace ide::vbide
