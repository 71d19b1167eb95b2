#pragma once
// The enumeration string that ICollection.EnumObjects, the dispatcher's Enum operations and
// Project.EnumObjects return, read into records: entries joined by CR LF, seven tab-separated
// fields each, nothing quoted or escaped.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace contracts {

struct EnumerationEntry {
  std::string name;      // may be empty: nothing named the component
  int32_t bitmapId = 0;  // the kind's bitmap code
  std::string version;   // "yyyymmddhhnnss", or empty (always empty from the project file)
  // From the project file: the name was read from the component's file. From the IDE: the
  // file's date could be read.
  bool flag = false;
  bool writable = false;  // the file's attributes do not include read-only
};

// The entries in order; an empty string has none. A name may hold a tab (nothing escapes it),
// so the six fixed fields are taken from the end of each entry. An entry with fewer than seven
// fields, or with fields that are not what the format says, raises 5 quoting it.
std::vector<EnumerationEntry> ParseEnumeration(std::string_view text);

// The collection names of IProject.EnumCollections, which are joined by one tab.
std::vector<std::string> ParseCollectionNames(std::string_view text);

}  // namespace contracts
