#pragma once
// Control: one control of a component's designer, as the host's scanner sees it. Its
// properties are the rows of the control property table: a read reaches the live control by
// name (converted to the declared type) only on the control types the row names, and is refused
// with "Undefined property." on the others; a write goes to the live control by name, unchecked.
// Name is the control name formed from the IDE's Name and Index; writing it renames the control
// in the IDE and re-keys it in its collection.

#include <memory>
#include <string>

#include "automation/object.h"
#include "controls/control_properties.h"
#include "controls/control_types.h"

namespace controls {

class Control : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override;

  // Keeps the collection and the IDE control, reads its live control and its type.
  void Initialize(automation::ObjectRef& parentCollection, automation::ObjectRef& vbControl);
  // Releases the IDE control, the live control and the collection.
  void TearDown();

  automation::Variant Read(const ControlProperty& property);
  void Write(const ControlProperty& property, const automation::Variant& value);

  ControlType Type() const { return type_; }

 private:
  std::string ReadList() const;
  void WriteList(const std::string& items) const;
  void Rename(const std::string& newName);

  automation::ObjectRef vbControl_;
  automation::ObjectRef live_;
  ControlType type_ = kCustomControl;
  // The collection that holds this control. Not owned: the collection owns its controls and
  // tears them down before it goes.
  std::weak_ptr<automation::Object> parentCollection_;
};

}  // namespace controls
