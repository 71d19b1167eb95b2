#include "project/utility.h"

#include <cstdio>
#include <vector>

#include "contracts/host_classes.h"
#include "foundation/globals.h"
#include "foundation/vbstrings.h"
#include "platform/files.h"

namespace project {
namespace {

// The executable cache of the process.
struct ExecutableCache {
  bool resolved = false;
  std::string path;
};

std::string FromFileAssociation() {
  contracts::RegistryKey key = contracts::RegistryKey::New();
  key.SetPath("HKEY_CLASSES_ROOT\\VisualBasic.Project\\shell\\open\\command");
  key.Open(1);
  const std::string command = key.ReadValue("", "");
  key.Open(0);
  const auto at = command.find("vb6.exe");  // case-sensitive, as the association is matched
  if (at == std::string::npos) return {};
  std::string path = command.substr(0, at + 7);
  if (!path.empty() && path.front() == '"') path.erase(0, 1);
  return path;
}

}  // namespace

std::string VB6EXEPath() {
  auto& cache = automation::Process::Current().Values<ExecutableCache>();
  if (!cache.resolved) {
    std::string path = FromFileAssociation();
    if (path.empty()) {
      path = "c:\\Program Files\\Microsoft Visual Studio\\VB98\\vb6.exe";
      if (!contracts::HostUtility::Get().FileExists(path)) path.clear();
    }
    if (path.empty()) path = FindFile("c:", "vb6.exe", 5);
    cache.path = path;
    cache.resolved = true;
  }
  return std::string(foundation::Trim(cache.path));
}

std::string FindFile(const std::string& folder, const std::string& fileName, int32_t depth) {
  const std::vector<std::string> found = platform::Dir(folder + "\\" + fileName, false);
  if (!found.empty()) return folder + "\\" + found.front();
  if (depth == 1) return {};
  // The whole list of sub-folders is collected before any of them is searched.
  std::vector<std::string> subFolders;
  for (const std::string& name : platform::Dir(folder + "\\*.*", true)) {
    if (name == "." || name == "..") continue;
    if (platform::IsFolder(folder + "\\" + name)) subFolders.push_back(name);
  }
  for (const std::string& name : subFolders) {
    std::string result = FindFile(folder + "\\" + name, fileName, depth - 1);
    if (!result.empty()) return result;
  }
  return {};
}

std::string VersionText(const platform::LocalTime& t) {
  char text[32];
  std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02d", t.year, t.month, t.day, t.hour,
                t.minute, t.second);
  return text;
}

}  // namespace project
