#include "host/key_set.h"

#include "automation/casefold.h"
#include "automation/error.h"

namespace host {

const automation::ClassInfo& KeySet::Class() const {
  static const automation::ClassInfo info = automation::ClassBuilder<KeySet>("KeySet")
                                                .Method("Add", &KeySet::Add, {"Key"})
                                                .Get("Count", &KeySet::Count)
                                                .Method("Find", &KeySet::Find, {"Key"})
                                                .Method("RemoveAt", &KeySet::RemoveAt, {"Position"})
                                                .Build();
  return info;
}

void KeySet::Add(const std::string& key) {
  std::string folded = automation::FoldCaseUnicode(key);
  if (byKey_.count(folded)) automation::Raise(automation::err::kDuplicateKey, key);
  folded_.reserve(folded_.size() + 1);
  byKey_.emplace(folded, folded_.size());
  folded_.push_back(std::move(folded));
}

int32_t KeySet::Find(const std::string& key) const {
  auto it = byKey_.find(automation::FoldCaseUnicode(key));
  return it == byKey_.end() ? 0 : static_cast<int32_t>(it->second + 1);
}

void KeySet::RemoveAt(int32_t position) {
  if (position < 1 || position > Count()) {
    automation::Raise(automation::err::kSubscript,
                      "no key at position " + std::to_string(position) + " (the set holds " +
                          std::to_string(Count()) + ")");
  }
  const size_t index = static_cast<size_t>(position - 1);
  byKey_.erase(folded_[index]);
  for (size_t i = index + 1; i < folded_.size(); ++i)
    byKey_[folded_[i]] = i - 1;
  folded_.erase(folded_.begin() + static_cast<std::ptrdiff_t>(index));
}

}  // namespace host
