#pragma once
// Procedures: the code of a component's IDE code module cut into one Procedure per procedure,
// plus "<declarations>" for the declarations section, in module order, each under its Name (a
// property procedure's name followed by ".Get", ".Let" or ".Set"). It is built once from the
// module when a component object first hands it out, and follows only the renames made through
// its own items' Text.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace components {

class Procedures : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override;

  // Builds the list from the module (an empty list when there is none).
  void Initialize(automation::ObjectRef& module);
  // Tears every item down and releases the list.
  void TearDown();
  // Gives the item stored under OldName the key NewName.
  void UpdateKey(const std::string& oldName, const std::string& newName);
  int32_t Count();
  // A 0-based position or a Name.
  automation::ObjectRef Item(const automation::Variant& index);
  // Clients walk the collection with Count and Item: there is no enumerator.
  automation::ObjectRef NewEnum();

 private:
  automation::ObjectRef list_;  // a KeyedList of Procedure, null until Initialize
};

}  // namespace components
