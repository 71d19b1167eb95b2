#pragma once
// The automation error that a call raises, for tests that check numbers and messages.

#include <gtest/gtest.h>

#include "automation/error.h"

namespace hosttest {

template <class F>
automation::Error Caught(F&& call) {
  try {
    call();
  } catch (const automation::Error& e) {
    return e;
  }
  ADD_FAILURE() << "the call raised no error";
  return automation::Error();
}

}  // namespace hosttest
