#pragma once
// A fresh qx home folder for one test: QX_HOME points at a new temporary folder for the test's
// life, and the folder is removed afterwards, so no test sees another's registry or ini files.

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace qxtest {

class TempDir {
 public:
  // A fresh private folder (mkdtemp: mode 0700, a name nobody could have taken beforehand).
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "qx-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp: " + pattern);
    path_ = pattern;
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

class TempHome {
 public:
  TempHome() {
    if (const char* old = std::getenv("QX_HOME")) previous_ = old;
    ::setenv("QX_HOME", dir_.path().c_str(), 1);
  }
  ~TempHome() {
    if (previous_) {
      ::setenv("QX_HOME", previous_->c_str(), 1);
    } else {
      ::unsetenv("QX_HOME");
    }
  }
  TempHome(const TempHome&) = delete;
  TempHome& operator=(const TempHome&) = delete;
  const std::filesystem::path& path() const { return dir_.path(); }

 private:
  TempDir dir_;
  std::optional<std::string> previous_;
};

}  // namespace qxtest
