#pragma once
// KeySet: a set of string keys in insertion order, as VB code keeps one in a Collection.
// Keys compare without regard to letter case; positions are 1-based, 0 meaning "not there".

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "automation/object.h"

namespace host {

class KeySet : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.KeySet";

  const automation::ClassInfo& Class() const override;

  // Adds a key at the end; a key already present raises 457 naming it.
  void Add(const std::string& key);
  int32_t Count() const { return static_cast<int32_t>(folded_.size()); }
  // The 1-based position of the key, 0 when absent.
  int32_t Find(const std::string& key) const;
  // Removes the key at a 1-based position; the keys after it move up by one. A position that
  // names no key raises 9.
  void RemoveAt(int32_t position);

 private:
  std::vector<std::string> folded_;                // the keys, folded, in order
  std::unordered_map<std::string, size_t> byKey_;  // folded key -> index
};

}  // namespace host
