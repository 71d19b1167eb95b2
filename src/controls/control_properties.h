#pragma once
// The properties that every Control offers, as one table: each with its declared type, whether
// it can be written, and the control types on which a read reaches the live control (a read on
// any other type is refused with "Undefined property."). A few rows are read in a way of their
// own: Name from the IDE's Name and Index, List item by item, Object as the live control
// itself, and FillColor, which reads 0 on the types that have none instead of refusing.

#include <span>
#include <string_view>

#include "components/declared_types.h"
#include "controls/control_types.h"

namespace controls {

enum class Reading : uint8_t {
  kLive,           // the live control's property of the same name
  kName,           // GetControlName; a write renames and re-keys
  kList,           // ListCount and List(i) joined by CR LF; a write is Clear and AddItem
  kSelf,           // the live control object itself
  kZeroElsewhere,  // as kLive, but 0 on the other types
};

struct ControlProperty {
  std::string_view name;
  components::DeclaredType type;
  std::string_view enumeration;  // for a property declared with an enumeration
  TypeSet readOn;
  Reading reading = Reading::kLive;
  bool readOnly = false;
};

// The table, in the order of the Control interface.
std::span<const ControlProperty> ControlProperties();

// The row of that name (any letter case), or null.
const ControlProperty* FindControlProperty(std::string_view name);

}  // namespace controls
