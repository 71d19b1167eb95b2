#pragma once
// One component file as a search or replace scanned it: its bytes before and after, what the
// scanner found there, and what a --write must do again to make the same change.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/scan_results.h"
#include "contracts/enumeration.h"
#include "platform/codepage_detect.h"

namespace cli {

// A file's bytes before and after a write; none when it is not there.
struct FileChange {
  std::filesystem::path original;  // the file as the user knows it (outside any scratch copy)
  std::optional<std::string> before;
  std::optional<std::string> after;
};

struct ScannedFile {
  std::filesystem::path original;  // the file as the user knows it (outside any scratch copy)
  std::string before;
  std::string after;  // after a write; equal to before otherwise
  // The file's size, when a search found nothing in it and did not read it.
  std::optional<std::uintmax_t> unread;
  std::vector<FileChange> companions;  // of a replace: each companion's bytes
  ComponentScan scan;
  double seconds = 0;
  platform::ProjectCodePage codePage;
  // What a write must do again: the component, its request and the places the scan wrote.
  std::string collection;
  contracts::EnumerationEntry entry;
  size_t line = 0;  // the project file's line that names the component
  std::string request;
  std::vector<std::string> accepted;
};

// Whether the scan changed the file or one of its companions.
bool Changed(const ScannedFile& scanned);

// The ids of the places the scan wrote.
std::vector<std::string> Accepted(const ComponentScan& scan);

// The request with its writes narrowed to these places.
std::string OnlyThese(const std::string& request, const std::vector<std::string>& ids);

// The file's bytes; none when it is not there.
std::optional<std::string> ReadIfThere(const std::filesystem::path& file);

}  // namespace cli
