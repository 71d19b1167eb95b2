#include "ide/form/property_value.h"

#include <cstdint>
#include <string>

#include "automation/error.h"
#include "automation/vb_name.h"

namespace ide::form {
namespace {

using automation::Variant;
using automation::VarType;

[[noreturn]] void Refuse() {
  automation::Raise(automation::err::kInvalidPropertyValue);
}

// The last system colour index OLE translates (COLOR_MENUBAR).
constexpr uint32_t kLastSystemColour = 30;

bool IsOleColour(int32_t value) {
  const auto bits = static_cast<uint32_t>(value);
  switch (bits >> 24) {
    case 0x00:  // RGB
    case 0x01:  // palette index
    case 0x02:  // palette-relative RGB
      return true;
    case 0x80:  // system colour
      return (bits & 0x00FFFFFF) <= kLastSystemColour;
    default:
      return false;
  }
}

// A colour as the form file writes it ("&H8000000F&") is a hexadecimal literal with VB's Long
// suffix, which VB's string conversion does not take: drop the suffix.
Variant ColourText(const Variant& value) {
  if (!value.IsString()) return value;
  std::string text = value.ToString();
  const std::size_t start = text.find_first_not_of(" \t");
  const std::size_t end = text.find_last_not_of(" \t");
  if (start != std::string::npos && end > start && text[end] == '&' && text[start] == '&' &&
      (text[start + 1] == 'H' || text[start + 1] == 'h')) {
    text.erase(end, 1);
  }
  return Variant(std::move(text));
}

void CheckRange(const PropertyInfo& property, double value) {
  if (property.HasRange() && (value < property.minimum || value > property.maximum)) Refuse();
}

double NumberOf(const DefaultValue& value) {
  return value.kind == DefaultValue::Kind::kNumber ? value.number : 0;
}

// A default of the property's type.
Variant Typed(const PropertyInfo& property, const DefaultValue& value,
              std::string_view objectName) {
  switch (value.kind) {
    case DefaultValue::Kind::kNone:
      return Variant();
    case DefaultValue::Kind::kObjectName:
      return Variant(objectName);
    case DefaultValue::Kind::kText:
      return Variant(value.text);
    case DefaultValue::Kind::kNumber:
      break;
  }
  const double number = NumberOf(value);
  switch (property.type) {
    case ValueType::kBoolean:
      return Variant(number != 0);
    case ValueType::kInteger:
      return Variant::Integer(static_cast<int16_t>(number));
    case ValueType::kLong:
    case ValueType::kColour:
    case ValueType::kEnumeration:
      return Variant::Long(static_cast<int32_t>(number));
    case ValueType::kSingle:
      return Variant::Single(static_cast<float>(number));
    default:
      return Variant(number);
  }
}

}  // namespace

Variant CoerceValue(const PropertyInfo& property, const Variant& value) {
  if (property.readOnly) automation::Raise(automation::err::kReadOnlyProperty);
  switch (property.type) {
    case ValueType::kBoolean:
      return Variant(value.ToBool());
    case ValueType::kInteger: {
      const int16_t number = value.ToInteger();
      CheckRange(property, number);
      return Variant::Integer(number);
    }
    case ValueType::kLong: {
      const int32_t number = value.ToLong();
      CheckRange(property, number);
      return Variant::Long(number);
    }
    case ValueType::kSingle:
      return Variant::Single(value.ToSingle());
    case ValueType::kColour: {
      const int32_t colour = ColourText(value).ToLong();
      if (!IsOleColour(colour)) Refuse();
      return Variant::Long(colour);
    }
    case ValueType::kEnumeration: {
      const int32_t number = value.ToLong();
      if (property.enumeration && !property.enumeration->Find(number)) Refuse();
      return Variant::Long(number);
    }
    case ValueType::kString:
    case ValueType::kShortcut: {
      std::string text = value.ToString();
      if (property.name == "Name" && !automation::IsVbName(text)) Refuse();
      return Variant(std::move(text));
    }
    case ValueType::kFont:
    case ValueType::kPicture:
    case ValueType::kObject:
    case ValueType::kBlob:
      return Variant(value.ToObject());
    case ValueType::kList:
    case ValueType::kItemData:
      Refuse();
  }
  Refuse();
}

Variant CoerceItem(const PropertyInfo& list, const Variant& value) {
  if (list.type == ValueType::kItemData) return Variant::Long(value.ToLong());
  if (list.type == ValueType::kList) return Variant(value.ToString());
  Refuse();
}

Variant DefaultOf(const PropertyInfo& property, std::string_view objectName) {
  if (property.IsObject() || property.NumIndices() > 0) return Variant();
  return Typed(property, property.omission, objectName);
}

Variant CreationValueOf(const PropertyInfo& property, std::string_view objectName) {
  if (property.creation.kind == DefaultValue::Kind::kNone) {
    return DefaultOf(property, objectName);
  }
  return Typed(property, property.creation, objectName);
}

bool IsOmitted(const PropertyInfo& property, const Variant& value) {
  if (property.saving != Saving::kUnlessDefault) return false;
  if (property.omission.kind == DefaultValue::Kind::kNone) return false;
  if (property.IsObject() || property.NumIndices() > 0) return false;
  // The default is compared in the property's type, so an Integer 1 matches a Long 1.
  try {
    const Variant typed = value.ConvertTo(DefaultOf(property).Type());
    return typed == DefaultOf(property);
  } catch (const automation::Error&) {
    return false;
  }
}

ValueForm FormOf(const PropertyInfo& property) {
  if (property.saving == Saving::kNever) return ValueForm::kNone;
  switch (property.type) {
    case ValueType::kBoolean:
      return ValueForm::kBoolean;
    case ValueType::kInteger:
    case ValueType::kLong:
      return ValueForm::kInteger;
    case ValueType::kSingle:
      return ValueForm::kSingle;
    case ValueType::kString:
      return ValueForm::kString;
    case ValueType::kColour:
      return ValueForm::kColour;
    case ValueType::kEnumeration:
      return ValueForm::kEnumeration;
    case ValueType::kFont:
      return ValueForm::kFontBlock;
    case ValueType::kObject:
      return ValueForm::kObjectBlock;
    case ValueType::kShortcut:
      return ValueForm::kShortcut;
    case ValueType::kPicture:
    case ValueType::kList:
    case ValueType::kItemData:
    case ValueType::kBlob:
      return ValueForm::kCompanion;
  }
  return ValueForm::kNone;
}

StringStorage PlaceString(const PropertyInfo& property, std::string_view value, bool multiLine) {
  switch (property.strings) {
    case StringPlace::kInline:
      return StringStorage::kInline;
    case StringPlace::kBoxText:
      if (multiLine && !value.empty()) return StringStorage::kCompanion;
      [[fallthrough]];
    case StringPlace::kLongText:
      if (value.size() > kLongestInlineString ||
          value.find_first_of("\r\n") != std::string_view::npos) {
        return StringStorage::kLongCompanion;
      }
      return StringStorage::kInline;
  }
  return StringStorage::kInline;
}

}  // namespace ide::form
