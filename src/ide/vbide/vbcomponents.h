#pragma once
// VBComponents: the components of a project, in the project file's order.

#include <cstdint>
#include <memory>
#include <vector>

#include "automation/object.h"
#include "automation/variant.h"

namespace ide::vbide {

class VBE;
class VBProject;
class VBComponent;

class VBComponents : public automation::Object {
 public:
  explicit VBComponents(std::shared_ptr<VBProject> project);

  const automation::ClassInfo& Class() const override;

  // Item(1-based number or component name, compared as VB compares names); raises 9
  // "Subscript out of range" when there is none.
  std::shared_ptr<VBComponent> Item(const automation::Variant& index);
  std::shared_ptr<VBProject> Parent() const { return project_; }
  int32_t Count() const { return static_cast<int32_t>(items_.size()); }
  std::shared_ptr<VBE> Vbe() const;

  // Makes one component object per component of the project (once).
  void CreateItems();
  const std::vector<std::shared_ptr<VBComponent>>& Items() const { return items_; }
  void TearDown();

 private:
  std::shared_ptr<VBProject> project_;
  std::vector<std::shared_ptr<VBComponent>> items_;
};

}  // namespace ide::vbide
