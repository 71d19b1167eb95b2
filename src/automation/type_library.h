#pragma once
// What a library publishes in its type information besides its classes: its enumerations, each
// a name with named 32-bit values, in the order the library declares them. Members of classes
// refer to them by name (Member::typeName).

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace automation {

struct Enumeration {
  std::string name;                                     // "AlignConstants"
  std::vector<std::pair<std::string, int32_t>> values;  // {"vbAlignNone", 0}, ...
};

// Publishes the library's enumerations (replacing what it published before).
void PublishEnumerations(std::string library, std::vector<Enumeration> enumerations);

// The enumerations the library published, in their order (none when it published nothing).
const std::vector<Enumeration>& PublishedEnumerations(std::string_view library);

}  // namespace automation
