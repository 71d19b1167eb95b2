#pragma once
// VBProjects: the projects open in the IDE, in the order they were opened.

#include <cstdint>
#include <memory>
#include <vector>

#include "automation/object.h"
#include "automation/variant.h"

namespace ide {
class Project;
}

namespace ide::vbide {

class VBE;
class VBProject;

class VBProjects : public automation::Object {
 public:
  explicit VBProjects(std::shared_ptr<VBE> vbe);

  const automation::ClassInfo& Class() const override;

  // Item(1-based number or project name); raises 9 when there is none.
  std::shared_ptr<VBProject> Item(const automation::Variant& index);
  std::shared_ptr<VBE> Vbe() const { return vbe_; }
  int32_t Count() const { return static_cast<int32_t>(items_.size()); }

  // The IDE's side: a project opened from its files joins the collection; a removed one leaves.
  std::shared_ptr<VBProject> Add(std::shared_ptr<ide::Project> model);
  void Remove(const std::shared_ptr<VBProject>& project);
  const std::vector<std::shared_ptr<VBProject>>& Items() const { return items_; }

  void TearDown();

 private:
  std::shared_ptr<VBE> vbe_;
  std::vector<std::shared_ptr<VBProject>> items_;
};

}  // namespace ide::vbide
