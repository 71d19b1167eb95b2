#pragma once
// Writes large VB6 projects for benchmarks: modules, classes and forms with many procedures, in
// every line-end style VB6 projects come in.

#include <cstddef>
#include <filesystem>
#include <string>

namespace idebench {

struct GeneratedProject {
  std::filesystem::path vbp;
  std::size_t components = 0;
  std::size_t procedures = 0;
  std::size_t lines = 0;  // code and header lines of all component files
};

// Writes a project of about `totalLines` lines into `folder` (created if needed): components of
// `proceduresPerComponent` procedures each, cycling through module, class and form, and through
// CR LF, LF, lone CR and mixed line ends (one in three files without a final line break).
GeneratedProject GenerateProject(const std::filesystem::path& folder, std::size_t totalLines,
                                 std::size_t proceduresPerComponent = 100);

}  // namespace idebench
