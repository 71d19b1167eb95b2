#include "cli/printer.h"

namespace cli {

std::string ShowVersion(const std::string& version, char separator) {
  if (version.size() != 14) return version;
  return version.substr(0, 4) + "-" + version.substr(4, 2) + "-" + version.substr(6, 2) +
         separator + version.substr(8, 2) + ":" + version.substr(10, 2) + ":" +
         version.substr(12, 2);
}

std::string_view StateText(FileState state) {
  switch (state) {
    case FileState::Writable:
      return "writable";
    case FileState::ReadOnly:
      return "read-only";
    case FileState::Missing:
      return "missing";
    case FileState::ReadOnlyOrMissing:
      return "read-only or missing";
  }
  return "";
}

}  // namespace cli
