#include "ide/vbide/vbprojects.h"

#include <algorithm>
#include <string>
#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/model/project.h"
#include "ide/vbide/make.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbproject.h"

namespace ide::vbide {

VBProjects::VBProjects(std::shared_ptr<VBE> vbe) : vbe_(std::move(vbe)) {}

const automation::ClassInfo& VBProjects::Class() const {
  // The members in the order of VBIDE's VBProjects interface.
  static const automation::ClassInfo info = automation::ClassBuilder<VBProjects>("VBProjects")
                                                .Method("Item", &VBProjects::Item, {"index"})
                                                .Get("VBE", &VBProjects::Vbe)
                                                .Get("Parent", &VBProjects::Vbe)
                                                .Get("Count", &VBProjects::Count)
                                                .Build();
  return info;
}

std::shared_ptr<VBProject> VBProjects::Item(const automation::Variant& index) {
  if (index.IsString()) {
    const std::string name = index.ToString();
    for (const auto& project : items_) {
      if (automation::SameVbName(project->Name(), name)) return project;
    }
    automation::Raise(automation::err::kSubscript, "no project named \"" + name + "\"");
  }
  const int32_t number = index.ToLong();
  if (number < 1 || number > Count()) {
    automation::Raise(automation::err::kSubscript, "no project number " + std::to_string(number));
  }
  return items_[number - 1];
}

std::shared_ptr<VBProject> VBProjects::Add(std::shared_ptr<ide::Project> model) {
  auto self = std::static_pointer_cast<VBProjects>(shared_from_this());
  auto project = MakeBeside<VBProject>(*this, vbe_, self, std::move(model));
  project->CreateComponents();
  items_.push_back(project);
  return project;
}

void VBProjects::Remove(const std::shared_ptr<VBProject>& project) {
  std::erase(items_, project);
}

void VBProjects::TearDown() {
  auto items = std::move(items_);
  items_.clear();
  for (const auto& project : items)
    project->TearDown();
  vbe_.reset();
}

}  // namespace ide::vbide
