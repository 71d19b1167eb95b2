#pragma once
// A private copy of a fixture project in a fresh qx home folder, for tests that save.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/temp_home.h"

namespace idetest {

class FixtureCopy {
 public:
  explicit FixtureCopy(const std::string& name) {
    dir_ = home_.path() / name;
    std::filesystem::copy(std::filesystem::path(QX_FIXTURES) / "ide" / name, dir_,
                          std::filesystem::copy_options::recursive);
  }
  const std::filesystem::path& dir() const { return dir_; }
  std::string Path(const std::string& relative) const { return (dir_ / relative).string(); }

 private:
  qxtest::TempHome home_;
  std::filesystem::path dir_;
};

inline std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
}

}  // namespace idetest
