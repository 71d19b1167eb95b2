#pragma once
// A collection of stand-in objects as the driver's collections answer: Count, and Item by a
// zero-based index (error 9 outside the list).

#include <cstdint>
#include <memory>
#include <vector>

#include "automation/error.h"
#include "automation/object.h"

namespace qxtest {

template <class T>
class StandInList : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info = automation::ClassBuilder<StandInList>("Collection")
                                                  .Get("Count", &StandInList::Count)
                                                  .Method("Item", &StandInList::Item, {"Index"})
                                                  .Build();
    return info;
  }
  int32_t Count() const { return static_cast<int32_t>(items.size()); }
  automation::ObjectRef Item(const automation::Variant& index) {
    const int32_t i = index.ToLong();
    if (i < 0 || i >= Count()) automation::Raise(automation::err::kSubscript);
    return items[static_cast<size_t>(i)];
  }

  std::vector<std::shared_ptr<T>> items;
};

}  // namespace qxtest
