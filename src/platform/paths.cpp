#include "platform/paths.h"

#include <sys/stat.h>

#include <cstdint>
#include <ctime>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "automation/casefold.h"
#include "platform/home.h"

namespace fs = std::filesystem;

namespace platform {
namespace {

bool Exists(const fs::path& path) {
  std::error_code ec;
  return fs::exists(fs::symlink_status(path, ec));
}

// The entries of a folder by their folded names (the first in byte order where several fold
// alike), so that the answer does not depend on the order of the directory listing.
struct Listing {
  int64_t modifiedNs = 0;
  ino_t inode = 0;  // a folder made anew at the same path is another folder
  std::unordered_map<std::string, std::string> byFolded;
};

int64_t Nanoseconds(const struct timespec& time) {
  return static_cast<int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

// A project names thousands of files in one folder, each looked up here when its letter case
// differs; listing the folder each time made opening a project quadratic. A listing is used
// again while the folder's modification time stays the same, and is kept only when that time
// was two seconds old when the folder was read: a change within the file system's clock tick
// of the reading would not show in the time.
Listing ReadListing(const fs::path& folder, bool& ok) {
  Listing listing;
  std::error_code ec;
  fs::directory_iterator it(folder, ec);
  ok = !ec;
  if (ec) return listing;
  for (; it != fs::directory_iterator(); it.increment(ec)) {
    if (ec) break;
    std::string name = it->path().filename().string();
    auto [entry, added] = listing.byFolded.try_emplace(automation::FoldCaseUnicode(name), name);
    if (!added && name < entry->second) entry->second = std::move(name);
  }
  return listing;
}

// The entry of folder whose name equals part ignoring case.
std::optional<std::string> MatchNoCase(const fs::path& folder, const std::string& part) {
  static std::unordered_map<std::string, Listing> listings;
  struct stat st {};
  const bool known = ::stat(folder.c_str(), &st) == 0;
  const int64_t modified = known ? Nanoseconds(st.st_mtim) : 0;
  const auto find = [&](const Listing& listing) -> std::optional<std::string> {
    const auto found = listing.byFolded.find(automation::FoldCaseUnicode(part));
    if (found == listing.byFolded.end()) return std::nullopt;
    return found->second;
  };
  if (known) {
    const auto cached = listings.find(folder.string());
    if (cached != listings.end() && cached->second.modifiedNs == modified &&
        cached->second.inode == st.st_ino)
      return find(cached->second);
  }
  bool ok = false;
  Listing listing = ReadListing(folder, ok);
  if (!ok) return std::nullopt;
  std::optional<std::string> answer = find(listing);
  struct timespec now {};
  ::clock_gettime(CLOCK_REALTIME, &now);
  constexpr int64_t kSettled = int64_t{2} * 1000000000;
  if (known && Nanoseconds(now) - modified >= kSettled) {
    if (listings.size() >= 64) listings.clear();
    listing.modifiedNs = modified;
    listing.inode = st.st_ino;
    listings.insert_or_assign(folder.string(), std::move(listing));
  }
  return answer;
}

}  // namespace

fs::path ToNative(std::string_view path) {
  if (path.empty()) return {};
  fs::path base;
  std::string_view rest = path;
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  if (path.size() >= 2 && path[1] == ':' && isLetter(path[0])) {
    const char drive = static_cast<char>(path[0] | 0x20);
    base = drive == 'z' ? fs::path("/") : QxHome() / (std::string("drive_") + drive);
    rest = path.substr(2);
  } else if (path[0] == '\\' || path[0] == '/') {
    base = "/";
  } else {
    std::error_code ec;
    base = fs::current_path(ec);
    if (ec) base = ".";
  }

  std::vector<std::string> parts;
  std::size_t pos = 0;
  while (pos <= rest.size()) {
    std::size_t end = rest.find_first_of("\\/", pos);
    if (end == std::string_view::npos) end = rest.size();
    if (end > pos) parts.emplace_back(rest.substr(pos, end - pos));
    pos = end + 1;
  }

  fs::path asWritten = base;
  for (const auto& part : parts)
    asWritten /= part;
  if (Exists(asWritten)) return asWritten;

  fs::path result = base;
  bool missing = false;
  for (const auto& part : parts) {
    if (missing || part == "." || part == "..") {
      result /= part;
      continue;
    }
    fs::path candidate = result / part;
    if (Exists(candidate)) {
      result = std::move(candidate);
    } else if (auto match = MatchNoCase(result, part)) {
      result /= *match;
    } else {
      result = std::move(candidate);
      missing = true;
    }
  }
  return result;
}

std::string::size_type LastSeparator(std::string_view path) {
  return path.find_last_of("\\/");
}

std::string ToWindows(const fs::path& path) {
  std::error_code ec;
  fs::path absolute = fs::absolute(path, ec);
  if (ec) absolute = path;
  std::string text = absolute.lexically_normal().string();
  for (char& c : text) {
    if (c == '/') c = '\\';
  }
  // A normalised folder path may end in a separator; Windows paths name folders without one,
  // except the root itself.
  if (text.size() > 1 && text.back() == '\\') text.pop_back();
  return "z:" + text;
}

}  // namespace platform
