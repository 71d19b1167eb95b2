#pragma once
// The records of qx's JSON lines (--json), one per line of its output.

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace qxtest {

inline std::vector<nlohmann::json> JsonLines(const std::string& text) {
  std::vector<nlohmann::json> records;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);)
    records.push_back(nlohmann::json::parse(line));
  return records;
}

}  // namespace qxtest
