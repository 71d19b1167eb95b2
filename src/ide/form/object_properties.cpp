#include "ide/form/object_properties.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/form/object_properties_detail.h"
#include "ide/form/property_value.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace ide::form {

namespace detail {

bool Same(std::string_view a, std::string_view b) {
  return automation::SameVbName(a, b);
}

// A stored number: decimal, or `&H...&` hexadecimal (colours); nullopt when it is neither.
std::optional<double> ParseNumber(std::string_view text) {
  if (text.size() > 2 && (text[0] == '&') && (text[1] == 'H' || text[1] == 'h')) {
    std::string_view digits = text.substr(2);
    if (!digits.empty() && digits.back() == '&') digits.remove_suffix(1);
    uint32_t value = 0;
    auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (ec != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return static_cast<double>(static_cast<int32_t>(value));
  }
  double value = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

const ClassInfo* ClassOf(const DescriptionNode& node) {
  if (node.IsGroup()) return nullptr;
  return FindClass(node.Type());
}

void NoSuchProperty(std::string_view name) {
  automation::Raise(automation::err::kNoSuchMember,
                    "the object has no property \"" + std::string(name) + "\"");
}

}  // namespace detail

namespace {

using detail::ClassOf;
using detail::NoSuchProperty;
using detail::ParseNumber;
using detail::Same;

namespace err = automation::err;
using automation::Variant;

// A stored value of a catalog type.
Variant ParseTyped(const PropertyInfo& info, std::string_view text) {
  if (info.type == ValueType::kString || info.type == ValueType::kShortcut) {
    if (auto unquoted = UnquoteString(text)) return Variant(*unquoted);
    return Variant(text);
  }
  std::optional<double> number = ParseNumber(text);
  if (!number) {
    // A Boolean written as a word by another tool, or a value we cannot read: as written.
    if (info.type == ValueType::kBoolean) {
      if (Same(text, "True")) return Variant(true);
      if (Same(text, "False")) return Variant(false);
    }
    return Variant(text);
  }
  switch (info.type) {
    case ValueType::kBoolean:
      return Variant(*number != 0);
    case ValueType::kInteger:
      return Variant::Integer(static_cast<int16_t>(*number));
    case ValueType::kLong:
    case ValueType::kColour:
    case ValueType::kEnumeration:
      return Variant::Long(static_cast<int32_t>(*number));
    case ValueType::kSingle:
      return Variant::Single(static_cast<float>(*number));
    default:
      return Variant(*number);
  }
}

// A line VB6 wrote for a Boolean: -1 or 0 with its 'True or 'False comment. Another library's
// control is known only by its lines, and this comment is how its file tells the type.
bool IsBooleanLine(const PropertyEntry& entry) {
  if (!entry.HasComment() || !(Same(entry.Comment(), "True") || Same(entry.Comment(), "False"))) {
    return false;
  }
  const std::optional<double> number = ParseNumber(entry.Value());
  return number && (*number == -1 || *number == 0);
}

// A number written to a stored line of another library's control, its comment kept in mind.
void StoreStoredNumber(DescriptionNode& node, const Description* description,
                       const PropertyEntry& entry, double number) {
  const std::string name(entry.Name());
  if (number != std::floor(number)) {
    node.SetProperty(name, FormatSingle(static_cast<float>(number)));
    return;
  }
  const auto whole = static_cast<int64_t>(number);
  if (entry.HasComment()) {
    // An enumeration's line: VB6 writes the member's description after the value, and only the
    // control's type library knows the descriptions, which this IDE does not read. The line stays
    // as written while its value does; a new value takes the description that another control of
    // the class writes with it in this form, if one does, and otherwise goes without one (VB6
    // reads the value alone: the comment is for people).
    if (ParseNumber(entry.Value()) == number) return;
    if (description != nullptr && whole >= INT32_MIN && whole <= INT32_MAX) {
      for (const DescriptionNode* other : description->Controls()) {
        if (!Same(other->Type(), node.Type())) continue;
        const PropertyEntry* line = other->FindProperty(name);
        if (line == nullptr || !line->HasComment() || ParseNumber(line->Value()) != number)
          continue;
        node.SetProperty(name, FormatEnumeration(static_cast<int32_t>(whole), line->Comment()));
        return;
      }
    }
  }
  node.SetProperty(name, FormatNumber(whole));
}

// The extender around a control of another library (an object below the root whose class the
// catalog does not know); null for every other object.
const ClassInfo* ExtenderOf(const DescriptionNode& node) {
  if (node.IsGroup() || node.Parent() == nullptr || ClassOf(node) != nullptr) return nullptr;
  return &ExtenderClass();
}

// The form-like classes keep their outer size as the client area's.
std::string_view ClientCounterpart(const ClassInfo* cls, std::string_view name) {
  if (cls == nullptr) return {};
  for (std::string_view side : {"Height", "Left", "Top", "Width"}) {
    if (Same(name, side)) {
      std::string client = "Client" + std::string(side);
      const PropertyInfo* info = cls->Find(client);
      return info != nullptr ? info->name : std::string_view();
    }
  }
  return {};
}

}  // namespace

CompanionRecordKind RecordKindOf(const PropertyEntry& entry) {
  const bool isString = entry.Reference() && entry.Reference()->isString;
  const DescriptionNode* owner = entry.Owner();
  const ClassInfo* cls = owner != nullptr ? ClassOf(*owner) : nullptr;
  if (cls == nullptr && owner != nullptr) cls = ExtenderOf(*owner);
  const PropertyInfo* info = cls != nullptr ? cls->FindMember(entry.Name()) : nullptr;
  if (info == nullptr) {
    return isString ? CompanionRecordKind::kLongString : CompanionRecordKind::kOpaque;
  }
  switch (info->type) {
    case ValueType::kList:
    case ValueType::kItemData:
      return CompanionRecordKind::kList;
    case ValueType::kPicture:
      return CompanionRecordKind::kPicture;
    case ValueType::kString:
      return isString ? CompanionRecordKind::kLongString : CompanionRecordKind::kText;
    case ValueType::kBlob:
      if (Same(info->name, "PropertyPages")) return CompanionRecordKind::kPropertyPages;
      return CompanionRecordKind::kOpaque;
    default:
      return isString ? CompanionRecordKind::kLongString : CompanionRecordKind::kOpaque;
  }
}

// ObjectProperties ---------------------------------------------------------------------------

ObjectProperties::ObjectProperties(FormContext context, DescriptionNode& node)
    : context_(context), node_(&node), class_(ClassOf(node)) {
  if (class_ == nullptr && node.Parent() == nullptr) class_ = context.rootClass;
  if (class_ == nullptr) extender_ = ExtenderOf(node);
}

const PropertyInfo* ObjectProperties::ExtenderInfo(std::string_view name) const {
  return extender_ != nullptr ? extender_->Find(name) : nullptr;
}

int32_t ObjectProperties::Count() const {
  if (class_ != nullptr) return class_->Count();
  int32_t count = 1;  // the name, which its Begin line holds
  for (const auto& item : node_->Items()) {
    if (item.property || (item.node && item.node->IsGroup())) ++count;
  }
  if (extender_ != nullptr) {
    for (const PropertyInfo& info : extender_->properties)
      count += node_->FindProperty(info.name) == nullptr ? 1 : 0;
  }
  return count;
}

std::string ObjectProperties::NameAt(int32_t position) const {
  if (position >= 0) {
    if (class_ != nullptr) {
      if (const PropertyInfo* info = class_->At(position)) return std::string(info->name);
    } else {
      if (position == 0) return "Name";
      int32_t index = 1;
      for (const auto& item : node_->Items()) {
        const bool counts = item.property || (item.node && item.node->IsGroup());
        if (!counts) continue;
        if (index++ == position)
          return item.property ? std::string(item.property->Name()) : item.node->Name();
      }
      // Then the extender's properties that the file leaves at their defaults.
      for (const PropertyInfo& info :
           extender_ != nullptr ? extender_->properties : std::span<const PropertyInfo>()) {
        if (node_->FindProperty(info.name) != nullptr) continue;
        if (index++ == position) return std::string(info.name);
      }
    }
  }
  automation::Raise(err::kSubscript);
}

const PropertyInfo* ObjectProperties::Find(std::string_view name) const {
  return class_ != nullptr ? class_->Find(name) : ExtenderInfo(name);
}

bool ObjectProperties::Has(std::string_view name) const {
  if (class_ != nullptr) return class_->Find(name) != nullptr;
  // Every control has a name and an index (-1 outside arrays), whatever its file stores.
  return Same(name, "Name") || Same(name, "Index") || node_->FindProperty(name) != nullptr ||
         node_->FindGroup(name) != nullptr || ExtenderInfo(name) != nullptr;
}

std::string ObjectProperties::Spelling(std::string_view name) const {
  if (Same(name, "Name")) return "Name";
  if (class_ != nullptr) {
    if (const PropertyInfo* info = class_->FindMember(name)) return std::string(info->name);
  } else if (const PropertyEntry* entry = node_->FindProperty(name)) {
    return std::string(entry->Name());
  } else if (const DescriptionNode* group = node_->FindGroup(name)) {
    return group->Name();
  } else if (const PropertyInfo* info = ExtenderInfo(name)) {
    return std::string(info->name);
  }
  if (Same(name, "Index")) return "Index";
  return std::string(name);
}

const PropertyInfo& ObjectProperties::Require(std::string_view name) const {
  const PropertyInfo* info = class_ != nullptr ? class_->FindMember(name) : ExtenderInfo(name);
  if (info == nullptr) NoSuchProperty(name);
  return *info;
}

bool ObjectProperties::MultiLine() const {
  const PropertyEntry* entry = node_->FindProperty("MultiLine");
  if (entry == nullptr) return false;
  std::optional<double> number = ParseNumber(entry->Value());
  return number && *number != 0;
}

Variant ObjectProperties::ReadStored(const PropertyEntry& entry) const {
  if (entry.Reference()) {
    if (context_.companion == nullptr) return Variant(std::string(entry.Value()));
    CompanionRecord record = context_.companion->Read(entry, RecordKindOf(entry));
    if (record.Kind() == CompanionRecordKind::kText ||
        record.Kind() == CompanionRecordKind::kLongString) {
      return Variant(context_.codePage->Decode(record.Content()));
    }
    return Variant(std::string(record.Content()));
  }
  if (auto text = UnquoteString(entry.Value())) return Variant(*text);
  if (IsBooleanLine(entry)) return Variant(*ParseNumber(entry.Value()) != 0);
  if (auto number = ParseNumber(entry.Value())) {
    double whole = 0;
    if (std::modf(*number, &whole) == 0 && whole >= INT32_MIN && whole <= INT32_MAX) {
      return Variant::Long(static_cast<int32_t>(whole));
    }
    return Variant(*number);
  }
  return Variant(std::string(entry.Value()));
}

Variant ObjectProperties::Read(const PropertyInfo& info) const {
  if (Same(info.name, "Name")) return Variant(node_->Name());
  if (Same(info.name, "Index") && info.type == ValueType::kInteger) {
    return Variant::Integer(static_cast<int16_t>(node_->Index()));
  }
  if (info.fontAttribute != FontAttribute::kNone) return FontAttributeValue(info.fontAttribute);
  switch (info.type) {
    case ValueType::kFont:
    case ValueType::kPicture:
    case ValueType::kObject:
    case ValueType::kBlob:
      return Variant(automation::ObjectRef());
    case ValueType::kList:
    case ValueType::kItemData:
      automation::Raise(err::kInvalidPropertyValue,
                        std::string(info.name) + " is a list: read its items by index");
    default:
      break;
  }
  std::string_view stored = info.name;
  if (info.saving == Saving::kNever) {
    std::string_view client = ClientCounterpart(class_, info.name);
    if (!client.empty()) return Read(*class_->Find(client));
  }
  const PropertyEntry* entry = node_->FindProperty(stored);
  if (entry == nullptr) return DefaultOf(info, node_->Name());
  if (entry->Reference()) {
    if (context_.companion == nullptr) return Variant(std::string(entry->Value()));
    CompanionRecord record = context_.companion->Read(*entry, RecordKindOf(*entry));
    return Variant(context_.codePage->Decode(record.Content()));
  }
  return ParseTyped(info, entry->Value());
}

Variant ObjectProperties::Get(std::string_view name) const {
  if (class_ == nullptr) {
    if (Same(name, "Name")) return Variant(node_->Name());
    if (Same(name, "Index")) return Variant::Integer(static_cast<int16_t>(node_->Index()));
    if (const PropertyInfo* info = ExtenderInfo(name)) return Read(*info);
    if (const PropertyEntry* entry = node_->FindProperty(name)) return ReadStored(*entry);
    if (node_->FindGroup(name) != nullptr) return Variant(automation::ObjectRef());
    NoSuchProperty(name);
  }
  return Read(Require(name));
}

std::optional<std::size_t> ObjectProperties::CompanionDataSize(std::string_view name) const {
  const PropertyEntry* entry = node_->FindProperty(name);
  if (entry == nullptr || !entry->Reference() || context_.companion == nullptr) {
    return std::nullopt;
  }
  const PropertyInfo* info = class_ != nullptr ? class_->FindMember(name) : ExtenderInfo(name);
  if (info != nullptr ? !info->IsObject() : entry->Reference()->isString) return std::nullopt;
  return context_.companion->Read(*entry, RecordKindOf(*entry)).Content().size();
}

void ObjectProperties::RemoveLine(std::string_view name) {
  if (PropertyEntry* entry = node_->FindProperty(name)) {
    if (context_.companion != nullptr) context_.companion->Forget(*entry);
    node_->RemoveProperty(name);
  }
}

void ObjectProperties::ForgetRecord(std::string_view name) {
  PropertyEntry* entry = node_->FindProperty(name);
  if (entry != nullptr && context_.companion != nullptr) context_.companion->Forget(*entry);
}

void ObjectProperties::StoreString(const PropertyInfo& info, const std::string& text) {
  const std::string encoded = context_.codePage->Encode(text);
  const StringStorage storage = PlaceString(info, encoded, MultiLine());
  if (storage == StringStorage::kInline) {
    // Rewritten where it stands: a designer's settings keep their order.
    ForgetRecord(info.name);
    node_->SetProperty(info.name, FormatString(text));
    return;
  }
  if (context_.companion == nullptr) {
    automation::Raise(err::kInvalidPropertyValue,
                      "the component has no companion file to keep " + std::string(info.name));
  }
  const bool isString = storage == StringStorage::kLongCompanion;
  CompanionRecord record =
      isString ? CompanionRecord::LongString(encoded) : CompanionRecord::Text(encoded);
  PropertyEntry* entry = node_->FindProperty(info.name);
  if (entry != nullptr && entry->Reference() && entry->Reference()->isString == isString &&
      Same(entry->Reference()->fileName, context_.companion->FileName())) {
    // Already a reference of this form: the line stays until the save renumbers it.
    if (context_.companion->Read(*entry, RecordKindOf(*entry)) == record) return;
    context_.companion->Put(*entry, std::move(record));
    return;
  }
  ForgetRecord(info.name);
  CompanionReference reference{isString, context_.companion->FileName(), 0};
  PropertyEntry& added = node_->SetProperty(info.name, FormatCompanionReference(reference));
  context_.companion->Put(added, std::move(record));
}

void ObjectProperties::Store(const PropertyInfo& info, const Variant& value) {
  if (info.saving == Saving::kNever) {
    std::string_view client = ClientCounterpart(class_, info.name);
    if (!client.empty()) {
      Store(*class_->Find(client), value);
      return;
    }
    // Worked out from other settings and never written: nothing to store.
    return;
  }
  if (IsOmitted(info, value)) {
    RemoveLine(info.name);
    return;
  }
  switch (info.type) {
    case ValueType::kBoolean:
      node_->SetProperty(info.name, FormatBoolean(value.ToBool()));
      return;
    case ValueType::kInteger:
    case ValueType::kLong:
      node_->SetProperty(info.name, FormatNumber(value.ToLong()));
      return;
    case ValueType::kSingle:
      node_->SetProperty(info.name, FormatSingle(value.ToSingle()));
      return;
    case ValueType::kColour:
      node_->SetProperty(info.name, FormatColour(static_cast<uint32_t>(value.ToLong())));
      return;
    case ValueType::kEnumeration: {
      const int32_t number = value.ToLong();
      std::string_view description =
          info.enumeration != nullptr ? info.enumeration->Describe(number) : std::string_view();
      node_->SetProperty(info.name, FormatEnumeration(number, description));
      return;
    }
    case ValueType::kShortcut:
      node_->SetProperty(info.name, value.ToString());
      return;
    case ValueType::kString:
      StoreString(info, value.ToString());
      return;
    default:
      automation::Raise(err::kInvalidPropertyValue,
                        std::string(info.name) + " cannot be set to a value here");
  }
}

void ObjectProperties::Set(std::string_view name, const Variant& value) {
  if (class_ == nullptr && ExtenderInfo(name) == nullptr) {
    // A control of another library: its stored line takes a value of the kind it holds. (The
    // extender's properties are typed: they go the way of VB's own below.)
    if (Same(name, "Name") || Same(name, "Index")) {
      automation::Raise(err::kReadOnlyProperty,
                        std::string(name) + " is set through the control's own object");
    }
    PropertyEntry* entry = node_->FindProperty(name);
    if (entry == nullptr || entry->Reference()) NoSuchProperty(name);
    if (UnquoteString(entry->Value())) {
      node_->SetProperty(entry->Name(), FormatString(value.ToString()));
    } else if (IsBooleanLine(*entry)) {
      node_->SetProperty(entry->Name(), FormatBoolean(value.ToBool()));
    } else if (value.IsNumeric() || value.Type() == automation::VarType::Boolean) {
      StoreStoredNumber(*node_, context_.description, *entry, value.ToDouble());
    } else {
      automation::Raise(err::kTypeMismatch);
    }
    return;
  }
  const PropertyInfo& info = Require(name);
  if (Same(info.name, "Name") || (Same(info.name, "Index") && info.type == ValueType::kInteger)) {
    automation::Raise(err::kReadOnlyProperty,
                      std::string(info.name) + " is set through the control's own object");
  }
  if (info.fontAttribute != FontAttribute::kNone) {
    SetFontAttribute(info.fontAttribute, value);
    return;
  }
  if (info.type == ValueType::kFont) {
    automation::Raise(err::kInvalidPropertyValue, "set the font through its object");
  }
  const Variant coerced = CoerceValue(info, value);
  if (info.IsObject()) {
    // Pictures and other objects: only Nothing can be given here (no picture).
    if (coerced.ToObject() != nullptr) {
      automation::Raise(err::kInvalidPropertyValue, std::string(info.name) + " takes no object");
    }
    RemoveLine(info.name);
    return;
  }
  const bool movesText =
      class_ != nullptr && Same(info.name, "MultiLine") && class_->Find("Text") != nullptr;
  const Variant text = movesText ? Read(*class_->Find("Text")) : Variant();
  Store(info, coerced);
  // The box's Text is kept where its new MultiLine setting puts it.
  if (movesText) Store(*class_->Find("Text"), text);
}

// Name and Index ------------------------------------------------------------------------------

void ObjectProperties::WriteName(std::string_view name) {
  static const PropertyInfo kName = [] {
    PropertyInfo info;
    info.name = "Name";
    return info;
  }();
  CoerceValue(kName, Variant(name));  // VB's naming rule: 380 otherwise
  node_->Rename(name);
}

void ObjectProperties::WriteIndex(int32_t index) {
  if (index < -1 || index > 32767) {
    automation::Raise(err::kInvalidPropertyValue, "Index " + std::to_string(index));
  }
  node_->SetIndex(index);
}

}  // namespace ide::form
