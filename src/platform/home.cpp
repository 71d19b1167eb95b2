#include "platform/home.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <system_error>
#include <vector>

#include "automation/error.h"
#include "platform/os_error.h"

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
  std::filesystem::create_directories(home, ec);
  if (ec) RaiseOsError(ec.value(), home.string(), automation::err::kPathNotFound);
  return home;
}

}  // namespace platform
