#include "host/keyed_list.h"

#include <cmath>

#include "automation/casefold.h"
#include "automation/error.h"

namespace host {

using automation::Variant;

const automation::ClassInfo& KeyedList::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<KeyedList>("KeyedList")
          .Method("Add", &KeyedList::Add, {"Item", "Key"})
          .Get("Count", &KeyedList::Count)
          .Method("Find", &KeyedList::Find, {"KeyOrPosition"})
          .Method("ItemAt", &KeyedList::ItemAt, {"Locator"})
          .Method("Key", &KeyedList::Key, {"Locator"})
          .Method("Rekey", &KeyedList::Rekey, {"Locator", "NewKey"})
          .Build();
  return info;
}

void KeyedList::Add(const Variant& item, const std::string& key) {
  auto [it, added] = byKey_.try_emplace(automation::FoldCaseUnicode(key), entries_.size());
  if (!added) automation::Raise(automation::err::kDuplicateKey, key);
  try {
    entries_.push_back(Entry{item, key});
  } catch (...) {
    byKey_.erase(it);
    throw;
  }
}

int32_t KeyedList::Find(const Variant& keyOrPosition) const {
  if (keyOrPosition.IsString()) {
    auto it = byKey_.find(automation::FoldCaseUnicode(keyOrPosition.ToString()));
    return it == byKey_.end() ? 0 : static_cast<int32_t>(it->second + 1);
  }
  if (!keyOrPosition.IsNumeric()) automation::Raise(automation::err::kTypeMismatch);
  // A position far outside the Long range is simply not there, rather than an overflow.
  const double asDouble = keyOrPosition.ToDouble();
  if (!(std::fabs(asDouble) < 2147483647.0)) return 0;
  const int32_t position = keyOrPosition.ToLong();
  if (position < 0 || position >= Count()) return 0;
  return position + 1;
}

size_t KeyedList::IndexOf(int32_t locator) const {
  if (locator < 1 || locator > Count()) {
    automation::Raise(automation::err::kSubscript, "no item at locator " + std::to_string(locator) +
                                                       " (the list holds " +
                                                       std::to_string(Count()) + ")");
  }
  return static_cast<size_t>(locator - 1);
}

Variant KeyedList::ItemAt(int32_t locator) const {
  return entries_[IndexOf(locator)].item;
}

std::string KeyedList::Key(int32_t locator) const {
  return entries_[IndexOf(locator)].key;
}

void KeyedList::Rekey(int32_t locator, const std::string& newKey) {
  const size_t index = IndexOf(locator);
  std::string folded = automation::FoldCaseUnicode(newKey);
  auto it = byKey_.find(folded);
  if (it != byKey_.end()) {
    if (it->second != index) automation::Raise(automation::err::kDuplicateKey, newKey);
    entries_[index].key = newKey;  // the same key in another letter case
    return;
  }
  const std::string oldFolded = automation::FoldCaseUnicode(entries_[index].key);
  byKey_.emplace(std::move(folded), index);
  byKey_.erase(oldFolded);
  entries_[index].key = newKey;
}

}  // namespace host
