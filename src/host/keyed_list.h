#pragma once
// KeyedList: items (any Variant, usually objects) under string keys, in insertion order.
//
// An item is reached through a locator: Find gives the locator of a key or of a 0-based
// position, and ItemAt, Key and Rekey take it. The locator of position p is p + 1, so 0 always
// means "not there". Keys are strings compared exactly, letter case included (the driver keys
// its projects by the host's parameter text as given), and each key is unique. Look-up by key
// is a hash look-up.

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "automation/object.h"

namespace host {

class KeyedList : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.KeyedList";

  const automation::ClassInfo& Class() const override;

  // Adds an item at the end; a key that is already present raises 457 naming the key.
  void Add(const automation::Variant& item, const std::string& key);
  int32_t Count() const { return static_cast<int32_t>(entries_.size()); }
  // A string finds by key, a number is a 0-based position; 0 when there is no such item. Any
  // other kind of value raises 13.
  int32_t Find(const automation::Variant& keyOrPosition) const;
  // The item or key at a locator; a locator that names no item raises 9.
  automation::Variant ItemAt(int32_t locator) const;
  std::string Key(int32_t locator) const;
  // Gives the item at the locator a new key; a key held by another item raises 457.
  void Rekey(int32_t locator, const std::string& newKey);

 private:
  struct Entry {
    automation::Variant item;
    std::string key;
  };

  size_t IndexOf(int32_t locator) const;

  std::vector<Entry> entries_;
  std::unordered_map<std::string, size_t> byKey_;  // key -> index into entries_
};

}  // namespace host
