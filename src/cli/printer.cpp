#include "cli/printer.h"

#include <cstdio>

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

std::string CodePageOrigin(const platform::ProjectCodePage& codePage) {
  switch (codePage.source) {
    case platform::CodePageSource::Option:
      return "given by --codepage";
    case platform::CodePageSource::Environment:
      return "given by QX_CODEPAGE";
    case platform::CodePageSource::Default:
      return "the default";
    case platform::CodePageSource::Detected:
      break;
  }
  if (codePage.nonAsciiBytes == 0) return "detected: the project's files are ASCII";
  char confidence[16];
  std::snprintf(confidence, sizeof confidence, "%.2f", codePage.confidence);
  return "detected from " + std::to_string(codePage.nonAsciiBytes) +
         " non-ASCII bytes, confidence " + confidence;
}

std::string_view CodePageSourceName(platform::CodePageSource source) {
  switch (source) {
    case platform::CodePageSource::Option:
      return "option";
    case platform::CodePageSource::Environment:
      return "environment";
    case platform::CodePageSource::Detected:
      return "detected";
    case platform::CodePageSource::Default:
      return "default";
  }
  return "";
}

}  // namespace cli
