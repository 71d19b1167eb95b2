#pragma once
// Every VB6 file among the fixtures, with what the IDE needs to read it: the kind its extension
// stands for and the code page of its project.

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "ide/model/component_file.h"

namespace idetest {

struct FixtureFile {
  std::filesystem::path path;
  std::string name;                   // relative to the fixtures folder, for messages
  std::optional<ide::FileKind> kind;  // none for a project file
  int codePage = 1252;
};

inline std::optional<ide::FileKind> KindOfExtension(std::string extension) {
  for (char& c : extension)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (extension == ".bas") return ide::FileKind::kModule;
  if (extension == ".cls") return ide::FileKind::kClass;
  if (extension == ".frm") return ide::FileKind::kForm;
  if (extension == ".ctl") return ide::FileKind::kUserControl;
  if (extension == ".pag") return ide::FileKind::kPropertyPage;
  if (extension == ".dob") return ide::FileKind::kUserDocument;
  if (extension == ".dsr") return ide::FileKind::kDesigner;
  return std::nullopt;
}

// Component and project files under tests/fixtures, sorted by path. The projects of the gbk
// folder are in code page 936, all others in 1252.
inline std::vector<FixtureFile> FixtureVbFiles(bool withProjects) {
  namespace fs = std::filesystem;
  const fs::path root(QX_FIXTURES);
  std::vector<FixtureFile> files;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (!entry.is_regular_file()) continue;
    FixtureFile file;
    file.path = entry.path();
    file.name = fs::relative(entry.path(), root).string();
    file.kind = KindOfExtension(entry.path().extension().string());
    std::string extension = entry.path().extension().string();
    bool project = extension == ".vbp" || extension == ".VBP";
    if (!file.kind && !(withProjects && project)) continue;
    if (file.name.find("/gbk/") != std::string::npos) file.codePage = 936;
    files.push_back(std::move(file));
  }
  std::sort(files.begin(), files.end(),
            [](const FixtureFile& a, const FixtureFile& b) { return a.name < b.name; });
  return files;
}

}  // namespace idetest
