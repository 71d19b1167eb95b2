#pragma once
// The automation error that a call raises, for tests that check numbers and messages.

#include <cstdint>

#include "automation/error.h"

namespace qxtest {

// The error a call raises; number 0 and empty texts when it raises none.
template <class F>
automation::Error Caught(F&& call) {
  try {
    call();
  } catch (const automation::Error& e) {
    return e;
  }
  return {};
}

// The number of the error a call raises, 0 when it raises none.
template <class F>
int32_t ErrorOf(F&& call) {
  return Caught(call).Number();
}

}  // namespace qxtest
