#pragma once
// What a run of qx gives back, and its JSON output read as one record a line.

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace qxtest {

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

inline std::vector<nlohmann::json> JsonLines(const std::string& text) {
  std::vector<nlohmann::json> records;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);)
    records.push_back(nlohmann::json::parse(line));
  return records;
}

}  // namespace qxtest
