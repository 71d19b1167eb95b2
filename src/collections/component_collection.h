#pragma once
// A component collection (Forms, Modules, ...): the host's ICollection over the components of
// one kind. It keeps nothing but its project; every answer comes from the project file or,
// once an IDE has the project open, from the project's dispatcher.

#include <cstdint>
#include <memory>
#include <string>

#include "automation/object.h"
#include "contracts/component_kinds.h"
#include "project/project.h"

namespace collections {

class ComponentCollection : public automation::Object {
 public:
  explicit ComponentCollection(const contracts::ComponentKind& kind);
  const automation::ClassInfo& Class() const override;

  void Initialize(std::shared_ptr<project::Project> parent);
  void TearDown();

  std::string ICollection_EnumObjects();
  automation::ObjectRef ICollection_GetObject(const std::string& objectName);
  std::string ICollection_EnumCommands() { return {}; }
  void ICollection_ExecuteCommand(int32_t) {}
  std::string ICollection_EnumObjectCommands(const std::string& objectName);
  void ICollection_ExecuteObjectCommand(const std::string& objectName, int32_t index);

 private:
  const contracts::ComponentKind& kind_;
  std::shared_ptr<project::Project> parent_;
};

// Lets projects make the nine collections, and makes those of the kinds that are creatable from
// outside (DHTMLPages, UserConnections) creatable by programmatic identifier.
void RegisterCollectionClasses();

}  // namespace collections
