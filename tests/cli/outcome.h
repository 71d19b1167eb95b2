#pragma once
// What a run of qx gives back, and its JSON output read as one record a line.

#include <string>

#include "support/json_lines.h"

namespace qxtest {

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

}  // namespace qxtest
