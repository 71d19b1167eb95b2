#include "components/declared_types.h"

namespace components {

using automation::Variant;
using automation::VarType;

VarType CarrierType(DeclaredType type) {
  switch (type) {
    case DeclaredType::kBoolean:
      return VarType::Boolean;
    case DeclaredType::kInteger:
      return VarType::Integer;
    case DeclaredType::kLong:
    case DeclaredType::kColour:
      return VarType::Long;
    case DeclaredType::kSingle:
      return VarType::Single;
    case DeclaredType::kString:
      return VarType::String;
    case DeclaredType::kObject:
      break;
  }
  return VarType::Object;
}

Variant ToDeclared(const Variant& value, DeclaredType type) {
  switch (type) {
    case DeclaredType::kBoolean:
      return Variant(value.ToBool());
    case DeclaredType::kInteger:
      return Variant::Integer(value.ToInteger());
    case DeclaredType::kLong:
    case DeclaredType::kColour:
      return Variant::Long(value.ToLong());
    case DeclaredType::kSingle:
      return Variant::Single(value.ToSingle());
    case DeclaredType::kString:
      return Variant(value.ToString());
    case DeclaredType::kObject:
      break;
  }
  return Variant(value.ToObject());
}

std::string_view DeclaredTypeName(DeclaredType type, std::string_view enumeration) {
  if (!enumeration.empty()) return enumeration;
  return type == DeclaredType::kColour ? kColourTypeName : std::string_view();
}

}  // namespace components
