#pragma once
// Small helpers for the platform tests: bytes written and read directly, bypassing the shim,
// and the names in a folder.

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "support/bytes.h"

namespace platformtest {

using qxtest::ReadBytes;
using qxtest::WriteBytes;

// The names in a folder, sorted.
inline std::vector<std::string> Names(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace platformtest
