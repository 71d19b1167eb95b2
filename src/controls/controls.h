#pragma once
// Controls: the controls of a component's designer, one Control each, in the IDE's order and
// keyed by control name (Text1, Text1(3)). It is built once, when the component first hands it
// out, and follows only the renames made through its own controls' Name.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace controls {

class Controls : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override;

  // Builds the list from the component's designer (empty without a designer).
  void Initialize(automation::ObjectRef& vbComponent);
  // Tears every control down and releases the list.
  void TearDown();
  automation::Variant Count();
  // A 0-based position or a control name.
  automation::ObjectRef Item(const automation::Variant& index);
  // Clients walk the collection with Count and Item: there is no enumerator.
  automation::ObjectRef NewEnum();
  // Gives the control stored under OldName the key NewName.
  void UpdateKey(const std::string& oldName, const std::string& newName);

 private:
  automation::ObjectRef list_;  // a KeyedList of Control, null until Initialize
};

}  // namespace controls
