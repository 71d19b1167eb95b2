#include "platform/private_folders.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

#include "automation/error.h"
#include "platform/home.h"
#include "platform/os_error.h"

namespace fs = std::filesystem;

namespace platform {

void CreatePrivateFolders(const fs::path& folder) {
  std::vector<fs::path> missing;
  struct stat st;
  for (fs::path at = folder; !at.empty() && ::stat(at.c_str(), &st) != 0; at = at.parent_path()) {
    if (errno != ENOENT) RaiseOsError(errno, at.string(), automation::err::kPathNotFound);
    missing.push_back(at);
    if (at == at.parent_path()) break;
  }
  for (auto it = missing.rbegin(); it != missing.rend(); ++it) {
    if (::mkdir(it->c_str(), 0700) != 0 && errno != EEXIST)
      RaiseOsError(errno, it->string(), automation::err::kPathNotFound);
  }
}

void CheckPrivateFolder(const fs::path& folder, std::string_view what) {
  struct stat st;
  if (::stat(folder.c_str(), &st) != 0)
    RaiseOsError(errno, folder.string(), automation::err::kPathNotFound);
  const std::string shown = std::string(what) + " " + folder.string();
  if (!S_ISDIR(st.st_mode)) {
    automation::Raise(automation::err::kPathFileAccess, shown + " is not a folder");
  }
  if (st.st_uid != ::geteuid()) {
    automation::Raise(automation::err::kPermissionDenied,
                      shown + " belongs to another user (uid " + std::to_string(st.st_uid) +
                          "); qx keeps its state only in a folder of its own user: set QX_HOME "
                          "to one");
  }
  if ((st.st_mode & 022) != 0) {
    char mode[8];
    std::snprintf(mode, sizeof mode, "%04o", static_cast<unsigned>(st.st_mode & 07777));
    automation::Raise(automation::err::kPermissionDenied,
                      shown + " can be written by other users (mode " + mode +
                          "); qx keeps its state private: chmod go-w " + folder.string() +
                          ", or set QX_HOME to a folder of your own");
  }
}

bool IsPrivateState(const fs::path& path) {
  std::error_code ec;
  const fs::path home = fs::weakly_canonical(QxHome(), ec);
  if (ec) return false;
  const fs::path at = fs::weakly_canonical(fs::absolute(path, ec), ec);
  if (ec) return false;
  const fs::path relative = at.lexically_relative(home);
  return !relative.empty() && *relative.begin() != "..";
}

fs::path MakeTempFolder(const fs::path& parent, std::string_view prefix) {
  std::string pattern = (parent / (std::string(prefix) + "XXXXXX")).string();
  if (::mkdtemp(pattern.data()) == nullptr)
    RaiseOsError(errno, pattern, automation::err::kPathNotFound);
  return pattern;
}

}  // namespace platform
