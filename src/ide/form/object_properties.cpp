#include "ide/form/object_properties.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/form/property_value.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace ide::form {
namespace {

namespace err = automation::err;
using automation::Variant;

bool Same(std::string_view a, std::string_view b) {
  return automation::SameVbName(a, b);
}

[[noreturn]] void NoSuchProperty(std::string_view name) {
  automation::Raise(err::kNoSuchMember, "the object has no property \"" + std::string(name) + "\"");
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

const ClassInfo* ClassOf(const DescriptionNode& node) {
  if (node.IsGroup()) return nullptr;
  return FindClass(node.Type());
}

// The extender around a control of another library (an object below the root whose class the
// catalog does not know); null for every other object.
const ClassInfo* ExtenderOf(const DescriptionNode& node) {
  if (node.IsGroup() || node.Parent() == nullptr || ClassOf(node) != nullptr) return nullptr;
  return &ExtenderClass();
}

bool SameFont(const FontValues& a, const FontValues& b) {
  return a.name == b.name && a.size == b.size && a.charset == b.charset && a.weight == b.weight &&
         a.underline == b.underline && a.italic == b.italic && a.strikethrough == b.strikethrough;
}

FontValues DefaultFont() {
  FontValues font;
  font.name = std::string(kDefaultFont.name);
  font.size = kDefaultFont.size;
  font.charset = kDefaultFont.charset;
  font.weight = kDefaultFont.weight;
  return font;
}

FontValues FormFont(const DescriptionNode& node) {
  const DescriptionNode* root = &node;
  while (root->Parent() != nullptr)
    root = root->Parent();
  if (auto own = OwnFont(*root)) return *own;
  return DefaultFont();
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

// CompanionStore ----------------------------------------------------------------------------

CompanionStore::CompanionStore(std::string bareName, std::string path,
                               const Description& description)
    : bareName_(std::move(bareName)), path_(std::move(path)) {
  for (const CompanionUse& use : description.CompanionReferences()) {
    if (Same(use.reference.fileName, bareName_)) references_.push_back(use.reference.offset);
  }
}

CompanionStore::~CompanionStore() = default;

const CompanionFile& CompanionStore::File() {
  if (!file_) {
    std::string bytes;
    exists_ = platform::FileExists(path_);
    if (exists_) bytes = platform::ReadFile(path_);
    file_ = std::make_unique<CompanionFile>(bareName_, std::move(bytes), references_);
  }
  return *file_;
}

CompanionRecord CompanionStore::Read(const PropertyEntry& entry, CompanionRecordKind kind) {
  if (auto found = pending_.find(&entry); found != pending_.end()) return found->second;
  const std::optional<CompanionReference>& reference = entry.Reference();
  if (!reference) automation::Raise(err::kInvalidCall, "the property is not in the companion");
  if (!Same(reference->fileName, bareName_)) {
    // A reference into another component's companion (two forms sharing one): read there.
    std::filesystem::path other = std::filesystem::path(path_).parent_path() / reference->fileName;
    std::string otherPath = platform::ToNative(other.string()).string();
    CompanionFile shared(reference->fileName, platform::ReadFile(otherPath), {reference->offset});
    return shared.Read(reference->offset, kind);
  }
  const CompanionFile& file = File();
  if (!exists_) {
    automation::Raise(err::kFileNotFound, path_ + " (the companion of the form) is missing");
  }
  return file.Read(reference->offset, kind);
}

void CompanionStore::Put(const PropertyEntry& entry, CompanionRecord record) {
  pending_.insert_or_assign(&entry, std::move(record));
}

void CompanionStore::Forget(const PropertyEntry& entry) {
  pending_.erase(&entry);
}

CompanionStore::Plan CompanionStore::Layout(const Description& description) {
  Plan plan;
  for (const CompanionUse& use : description.CompanionReferences()) {
    if (Same(use.reference.fileName, bareName_)) plan.uses.push_back(use);
  }
  bool touched = false;
  for (const CompanionUse& use : plan.uses)
    touched |= pending_.count(use.property) > 0;
  if (!touched && plan.uses.size() == references_.size()) {
    // Nothing new: every reference still points where it did; the file is not even read.
    bool same = true;
    for (std::size_t i = 0; i < plan.uses.size(); ++i) {
      same &= plan.uses[i].reference.offset == references_[i];
    }
    if (same) {
      for (const CompanionUse& use : plan.uses)
        plan.offsets.push_back(use.reference.offset);
      return plan;
    }
  }
  const CompanionFile& file = File();
  CompanionWriter writer(file);
  for (const CompanionUse& use : plan.uses) {
    if (auto found = pending_.find(use.property); found != pending_.end()) {
      writer.Add(found->second, std::nullopt);
    } else {
      if (!exists_) {
        automation::Raise(err::kFileNotFound, path_ + " (the companion of the form) is missing");
      }
      writer.Keep(use.reference.offset, RecordKindOf(*use.property));
    }
  }
  CompanionLayout layout = writer.Finish();
  plan.write = layout.changed && !layout.bytes.empty();
  plan.bytes = std::move(layout.bytes);
  plan.offsets = std::move(layout.offsets);
  return plan;
}

std::string CompanionStore::DiskBytes() {
  return File().Bytes();
}

bool CompanionStore::ExistsOnDisk() {
  File();
  return exists_;
}

void CompanionStore::Saved(const Plan& plan) {
  references_ = plan.offsets;
  if (plan.write) {
    file_ = std::make_unique<CompanionFile>(bareName_, plan.bytes, references_);
    exists_ = true;
  } else if (file_) {
    file_ = std::make_unique<CompanionFile>(bareName_, file_->Bytes(), references_);
  }
  pending_.clear();
}

void CompanionStore::MoveTo(std::string bareName, std::string path, std::string bytes,
                            std::vector<uint32_t> offsets) {
  bareName_ = std::move(bareName);
  path_ = std::move(path);
  references_ = std::move(offsets);
  exists_ = !bytes.empty();
  file_ = std::make_unique<CompanionFile>(bareName_, std::move(bytes), references_);
  pending_.clear();
}

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

std::optional<FontValues> OwnFont(const DescriptionNode& node) {
  const DescriptionNode* group = node.FindGroup("Font");
  if (group == nullptr) return std::nullopt;
  FontValues font = DefaultFont();
  for (const PropertyEntry* entry : group->Properties()) {
    const std::string_view name = entry->Name();
    std::optional<double> number = ParseNumber(entry->Value());
    if (Same(name, "Name")) {
      if (auto text = UnquoteString(entry->Value())) font.name = *text;
    } else if (!number) {
      continue;
    } else if (Same(name, "Size")) {
      font.size = *number;
    } else if (Same(name, "Charset")) {
      font.charset = static_cast<int32_t>(*number);
    } else if (Same(name, "Weight")) {
      font.weight = static_cast<int32_t>(*number);
    } else if (Same(name, "Underline")) {
      font.underline = *number != 0;
    } else if (Same(name, "Italic")) {
      font.italic = *number != 0;
    } else if (Same(name, "Strikethrough")) {
      font.strikethrough = *number != 0;
    }
  }
  return font;
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

// Lists ---------------------------------------------------------------------------------------

std::vector<std::string> ObjectProperties::ReadList(const PropertyInfo& info) const {
  const PropertyEntry* entry = node_->FindProperty(info.name);
  if (entry == nullptr || !entry->Reference() || context_.companion == nullptr) return {};
  CompanionRecord record = context_.companion->Read(*entry, CompanionRecordKind::kList);
  std::vector<std::string> items;
  items.reserve(record.Items().size());
  for (const std::string& item : record.Items())
    items.push_back(context_.codePage->Decode(item));
  return items;
}

void ObjectProperties::StoreList(const PropertyInfo& info, const std::vector<std::string>& items) {
  if (items.empty()) {
    RemoveLine(info.name);
    return;
  }
  if (context_.companion == nullptr) {
    automation::Raise(err::kInvalidPropertyValue, "the component has no companion file");
  }
  std::vector<std::string> encoded;
  encoded.reserve(items.size());
  for (const std::string& item : items)
    encoded.push_back(context_.codePage->Encode(item));
  CompanionRecord record = CompanionRecord::List(encoded);
  PropertyEntry* entry = node_->FindProperty(info.name);
  if (entry != nullptr && entry->Reference() &&
      Same(entry->Reference()->fileName, context_.companion->FileName())) {
    context_.companion->Put(*entry, std::move(record));
    return;
  }
  ForgetRecord(info.name);
  CompanionReference reference{false, context_.companion->FileName(), 0};
  PropertyEntry& added = node_->SetProperty(info.name, FormatCompanionReference(reference));
  context_.companion->Put(added, std::move(record));
}

namespace {
const PropertyInfo& ListInfo(const ClassInfo* cls, std::string_view list) {
  const PropertyInfo* info = cls != nullptr ? cls->FindMember(list) : nullptr;
  if (info == nullptr || info->NumIndices() == 0) NoSuchProperty(list);
  return *info;
}
}  // namespace

int32_t ObjectProperties::ListCount(std::string_view list) const {
  return static_cast<int32_t>(ReadList(ListInfo(class_, list)).size());
}

Variant ObjectProperties::ListItem(std::string_view list, int32_t index) const {
  const PropertyInfo& info = ListInfo(class_, list);
  std::vector<std::string> items = ReadList(info);
  const bool inside = index >= 0 && static_cast<std::size_t>(index) < items.size();
  if (info.type == ValueType::kItemData) {
    if (!inside) return Variant::Long(0);
    return Variant::Long(Variant(items[static_cast<std::size_t>(index)]).ToLong());
  }
  return Variant(inside ? items[static_cast<std::size_t>(index)] : std::string());
}

void ObjectProperties::SetListItem(std::string_view list, int32_t index, const Variant& value) {
  const PropertyInfo& info = ListInfo(class_, list);
  const Variant item = CoerceItem(info, value);
  std::vector<std::string> items = ReadList(info);
  if (info.type == ValueType::kItemData) {
    // ItemData has an entry for every item of List.
    const std::size_t count = ReadList(ListInfo(class_, "List")).size();
    if (items.size() < count) items.resize(count, "0");
  }
  if (index < 0 || static_cast<std::size_t>(index) >= items.size()) {
    automation::Raise(381, "no item " + std::to_string(index) + " in " + std::string(info.name));
  }
  items[static_cast<std::size_t>(index)] = item.ToString();
  StoreList(info, items);
}

ObjectProperties::Items ObjectProperties::ReadItems() const {
  Items items{ReadList(ListInfo(class_, "List")), std::nullopt};
  const PropertyInfo* itemData = class_->FindMember("ItemData");
  if (itemData != nullptr && node_->FindProperty("ItemData") != nullptr) {
    items.data = ReadList(*itemData);
    items.data->resize(items.list.size(), "0");
  }
  return items;
}

void ObjectProperties::StoreItems(const Items& items) {
  StoreList(ListInfo(class_, "List"), items.list);
  if (items.data) StoreList(*class_->FindMember("ItemData"), *items.data);
}

void ObjectProperties::AddItem(const Variant& item, int32_t index) {
  const PropertyInfo& list = ListInfo(class_, "List");
  Items items = ReadItems();
  if (index < -1 || index > static_cast<int32_t>(items.list.size())) {
    automation::Raise(err::kInvalidCall, "AddItem index " + std::to_string(index));
  }
  const std::ptrdiff_t at = index < 0 ? static_cast<std::ptrdiff_t>(items.list.size()) : index;
  items.list.insert(items.list.begin() + at, CoerceItem(list, item).ToString());
  if (items.data) items.data->insert(items.data->begin() + at, "0");
  StoreItems(items);
}

void ObjectProperties::RemoveItem(int32_t index) {
  Items items = ReadItems();
  if (index < 0 || index >= static_cast<int32_t>(items.list.size())) {
    automation::Raise(err::kInvalidCall, "RemoveItem index " + std::to_string(index) + " of " +
                                             std::to_string(items.list.size()) + " items");
  }
  items.list.erase(items.list.begin() + index);
  if (items.data) items.data->erase(items.data->begin() + index);
  StoreItems(items);
}

void ObjectProperties::ClearList() {
  ListInfo(class_, "List");
  RemoveLine("List");
  RemoveLine("ItemData");
}

// Fonts ---------------------------------------------------------------------------------------

FontValues ObjectProperties::Font() const {
  if (auto own = OwnFont(*node_)) return *own;
  return FormFont(*node_);
}

bool ObjectProperties::HasOwnFont() const {
  return node_->FindGroup("Font") != nullptr;
}

void ObjectProperties::SetFont(const FontValues& font) {
  if (class_ != nullptr && !class_->HasFont()) NoSuchProperty("Font");
  if (node_->Parent() == nullptr) {
    // The form's own font: the controls that showed it keep the font they had.
    const FontValues old = Font();
    if (SameFont(old, font) && HasOwnFont()) return;
    if (context_.description != nullptr) {
      for (DescriptionNode* control : context_.description->Controls()) {
        const ClassInfo* cls = ClassOf(*control);
        if (cls == nullptr || !cls->HasFont() || OwnFont(*control)) continue;
        if (!SameFont(old, font)) control->SetFont(old);
      }
    }
    node_->SetFont(font);
    return;
  }
  if (SameFont(font, FormFont(*node_))) {
    node_->RemoveGroup("Font");
  } else {
    node_->SetFont(font);
  }
}

void ObjectProperties::SetFontAttribute(FontAttribute attribute, const Variant& value) {
  FontValues font = Font();
  switch (attribute) {
    case FontAttribute::kName: {
      std::string name = value.ToString();
      if (name.empty()) automation::Raise(err::kInvalidPropertyValue, "a font needs a name");
      font.name = std::move(name);
      break;
    }
    case FontAttribute::kSize: {
      const double size = value.ToCurrency().scaled / 10000.0;
      if (size <= 0 || size > 2160) automation::Raise(err::kInvalidPropertyValue, "font size");
      // VB6 keeps sizes as Single.
      font.size = static_cast<float>(size);
      break;
    }
    case FontAttribute::kBold:
      font.weight = value.ToBool() ? kBoldWeight : kNormalWeight;
      break;
    case FontAttribute::kItalic:
      font.italic = value.ToBool();
      break;
    case FontAttribute::kUnderline:
      font.underline = value.ToBool();
      break;
    case FontAttribute::kStrike:
      font.strikethrough = value.ToBool();
      break;
    case FontAttribute::kNone:
      return;
  }
  SetFont(font);
}

Variant ObjectProperties::FontAttributeValue(FontAttribute attribute) const {
  const FontValues font = Font();
  switch (attribute) {
    case FontAttribute::kName:
      return Variant(font.name);
    case FontAttribute::kSize:
      return Variant::Single(static_cast<float>(font.size));
    case FontAttribute::kBold:
      return Variant(IsBold(static_cast<int16_t>(font.weight)));
    case FontAttribute::kItalic:
      return Variant(font.italic);
    case FontAttribute::kUnderline:
      return Variant(font.underline);
    case FontAttribute::kStrike:
      return Variant(font.strikethrough);
    case FontAttribute::kNone:
      break;
  }
  return Variant();
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
