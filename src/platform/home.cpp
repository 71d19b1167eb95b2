#include "platform/home.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "automation/error.h"
#include "platform/os_error.h"
#include "platform/private_folders.h"

namespace platform {
namespace {

std::filesystem::path UserHome() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
  std::vector<char> buffer(16384);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr &&
      found->pw_dir != nullptr) {
    return found->pw_dir;
  }
  automation::Raise(automation::err::kPathNotFound,
                    "no home folder: set QX_HOME or HOME to choose where qx keeps its files");
}

// Checked once per process and folder: the home is asked for at every file of a run.
void CheckOnce(const std::filesystem::path& folder, std::string_view what) {
  static std::vector<std::filesystem::path> checked;
  for (const auto& done : checked) {
    if (done == folder) return;
  }
  CheckPrivateFolder(folder, what);
  checked.push_back(folder);
}

}  // namespace

std::filesystem::path QxHome() {
  std::filesystem::path home;
  if (const char* env = std::getenv("QX_HOME"); env != nullptr && *env != '\0') {
    std::error_code ec;
    home = std::filesystem::absolute(env, ec);
    if (ec) home = env;
  } else {
    home = UserHome() / ".local" / "share" / "qx";
  }
  std::error_code ec;
  if (!std::filesystem::exists(home, ec)) {
    // The folders above are the user's own: they keep the usual modes.
    std::filesystem::create_directories(home.parent_path(), ec);
    if (ec) RaiseOsError(ec.value(), home.string(), automation::err::kPathNotFound);
    CreatePrivateFolders(home);
  }
  CheckOnce(home, "the qx home");
  return home;
}

std::filesystem::path RunFolder() {
  const std::filesystem::path run = QxHome() / "run";
  CreatePrivateFolders(run);
  CheckOnce(run, "the qx home's run folder");
  return run;
}

}  // namespace platform
