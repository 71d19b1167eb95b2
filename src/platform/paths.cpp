#include "platform/paths.h"

#include <system_error>
#include <vector>

#include "platform/folder_listing.h"
#include "platform/home.h"

namespace fs = std::filesystem;

namespace platform {
namespace {

bool Exists(const fs::path& path) {
  std::error_code ec;
  return fs::exists(fs::symlink_status(path, ec));
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
    } else if (auto match = EntryNoCase(result, part)) {
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
