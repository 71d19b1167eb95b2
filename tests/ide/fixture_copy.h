#pragma once
// A private copy of a fixture project beside a fresh qx home folder, for tests that save. (Not in
// the home: what is there is the home's private state.)

#include <filesystem>
#include <string>

#include "ide/model/component_file.h"
#include "support/bytes.h"
#include "support/temp_home.h"

namespace idetest {

class FixtureCopy {
 public:
  explicit FixtureCopy(const std::string& name) {
    dir_ = work_.path() / name;
    std::filesystem::copy(std::filesystem::path(QX_FIXTURES) / "ide" / name, dir_,
                          std::filesystem::copy_options::recursive);
  }
  const std::filesystem::path& dir() const { return dir_; }
  std::string Path(const std::string& relative) const { return (dir_ / relative).string(); }

 private:
  qxtest::TempHome home_;
  qxtest::TempDir work_;
  std::filesystem::path dir_;
};

using qxtest::ReadBytes;
using qxtest::Snapshot;
using qxtest::WriteBytes;

// What saving writes once every line went through the line writer (an edit and its undo), as
// after a real replace, instead of the bytes that were read.
inline std::string RenderThroughLines(ide::ComponentFile& file) {
  file.Code().InsertLines(1, "' scratch");
  file.Code().DeleteLines(1);
  return file.Render();
}

}  // namespace idetest
