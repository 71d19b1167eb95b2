#pragma once
// What sets the nine component collections apart: their names, the project-file key and bitmap
// used while no IDE has the project open, and the dispatcher's operations used once one has.

#include <cstdint>
#include <span>
#include <string_view>

namespace collections {

struct CollectionKind {
  std::string_view className;       // "Forms"
  std::string_view projectFileKey;  // "Form"
  int32_t bitmapId;                 // 4
  std::string_view enumeration;     // "EnumForms"
  std::string_view factory;         // "GetForm"
};

// The nine kinds in the order the project creates them.
std::span<const CollectionKind> CollectionKinds();

}  // namespace collections
