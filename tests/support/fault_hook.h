#pragma once
// A write fault hook for the life of a scope: the platform's file writes call it at each step
// (platform::SetWriteFaultHook), and it is removed again however the scope ends.

#include <functional>
#include <utility>

#include "platform/files.h"

namespace qxtest {

struct FaultHook {
  explicit FaultHook(std::function<int(platform::WriteStep)> hook) {
    platform::SetWriteFaultHook(std::move(hook));
  }
  ~FaultHook() { platform::SetWriteFaultHook({}); }
  FaultHook(const FaultHook&) = delete;
  FaultHook& operator=(const FaultHook&) = delete;
};

}  // namespace qxtest
