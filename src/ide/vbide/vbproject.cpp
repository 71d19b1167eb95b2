#include "ide/vbide/vbproject.h"

#include <utility>

#include "ide/model/project.h"
#include "ide/vbide/make.h"
#include "ide/vbide/vbcomponent.h"
#include "ide/vbide/vbcomponents.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbprojects.h"

namespace ide::vbide {

VBProject::VBProject(std::shared_ptr<VBE> vbe, std::shared_ptr<VBProjects> collection,
                     std::shared_ptr<ide::Project> model)
    : vbe_(std::move(vbe)), collection_(std::move(collection)), model_(std::move(model)) {}

const automation::ClassInfo& VBProject::Class() const {
  // The members in the order of VBIDE's VBProject interface.
  static const automation::ClassInfo info = automation::ClassBuilder<VBProject>("VBProject")
                                                .Get("Name", &VBProject::Name)
                                                .Get("FileName", &VBProject::FileName)
                                                .Get("IsDirty", &VBProject::IsDirty)
                                                .Get("VBE", &VBProject::Vbe)
                                                .Get("Collection", &VBProject::Collection)
                                                .Get("VBComponents", &VBProject::VBComponents)
                                                .Build();
  return info;
}

std::string VBProject::Name() const {
  return model_->Name();
}

std::string VBProject::FileName() const {
  return model_->FileName();
}

bool VBProject::IsDirty() const {
  if (model_->IsDirty()) return true;
  if (!components_) return false;
  for (const auto& component : components_->Items()) {
    if (component->IsDirty()) return true;
  }
  return false;
}

void VBProject::CreateComponents() {
  if (components_) return;
  auto self = std::static_pointer_cast<VBProject>(shared_from_this());
  components_ = MakeBeside<vbide::VBComponents>(*this, self);
  components_->CreateItems();
}

void VBProject::TearDown() {
  if (components_) components_->TearDown();
  // The project leaves the IDE: the files of its pages go (their changes taken in).
  if (model_) model_->ClosePages();
  components_.reset();
  collection_.reset();
  vbe_.reset();
}

}  // namespace ide::vbide
