#include "cli/scanned_file.h"

#include <algorithm>

#include "host/scan/scan_request.h"
#include "platform/files.h"

namespace cli {

bool Changed(const ScannedFile& scanned) {
  return scanned.after != scanned.before ||
         std::any_of(scanned.companions.begin(), scanned.companions.end(),
                     [](const FileChange& change) { return change.before != change.after; });
}

std::vector<std::string> Accepted(const ComponentScan& scan) {
  std::vector<std::string> ids;
  for (const ScanPlace& place : scan.places) {
    if (place.written) ids.push_back(place.id);
  }
  return ids;
}

std::string OnlyThese(const std::string& request, const std::vector<std::string>& ids) {
  host::scan::ScanRequest narrowed = host::scan::ScanRequest::Parse(request);
  narrowed.only.emplace(ids.begin(), ids.end());
  return narrowed.Encode();
}

std::optional<std::string> ReadIfThere(const std::filesystem::path& file) {
  if (!platform::FileExists(file.string())) return std::nullopt;
  return platform::ReadFile(file.string());
}

}  // namespace cli
