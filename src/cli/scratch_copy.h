#pragma once
// A scratch copy of a project, on which a replace without --write does the very write that
// --write would do, so that the preview shows exactly what writing changes.

#include <filesystem>
#include <vector>

#include "cli/project_files.h"

namespace cli {

// The project file and every component file with its companions (CompanionFiles: Form1.frx or
// FORM1.FRX beside Form1.frm, a page's HTML file), each under a fresh private folder (mkdtemp,
// mode 0700) at its own absolute path, so that the project's relative paths lead into the copy.
// Every file and folder of the copy is made new there and opened without following links, so
// nothing outside the folder is ever written through it. The folder goes with the object.
class ScratchCopy {
 public:
  // A component file named by an absolute path, or with a companion so named, is left out: the
  // copy's project file still leads to the original, which a write in the copy would change.
  ScratchCopy(const std::filesystem::path& project, const std::vector<ComponentFile>& files);
  ~ScratchCopy();
  ScratchCopy(const ScratchCopy&) = delete;
  ScratchCopy& operator=(const ScratchCopy&) = delete;

  const std::filesystem::path& root() const { return root_; }
  const std::filesystem::path& project() const { return project_; }
  // The component files left out, each with its entry.
  const std::vector<ComponentFile>& LeftOut() const { return leftOut_; }
  // Where a file of the project is in the copy.
  std::filesystem::path Inside(const std::filesystem::path& file) const;
  // The file of the project that a file of the copy stands for.
  std::filesystem::path Outside(const std::filesystem::path& file) const;

 private:
  void Copy(const std::filesystem::path& file);

  std::filesystem::path root_;
  std::filesystem::path project_;
  std::vector<ComponentFile> leftOut_;
};

}  // namespace cli
