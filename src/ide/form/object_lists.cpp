// ObjectProperties: the lists (List, ItemData) of list and combo boxes, read from and stored in
// the companion, and the item edits VB6's list methods make.

#include "ide/form/object_properties.h"

#include <utility>

#include "automation/error.h"
#include "ide/form/object_properties_detail.h"
#include "ide/form/property_value.h"
#include "platform/codepage.h"

namespace ide::form {

namespace err = automation::err;
using automation::Variant;
using detail::NoSuchProperty;
using detail::Same;

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

}  // namespace ide::form
