#include "project/utility.h"

#include <cstdio>
#include <vector>

#include "contracts/host_classes.h"
#include "foundation/globals.h"
#include "foundation/operation.h"
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

namespace {

// The IDE property of a control, through its Properties collection.
automation::Dispatch ControlProperty(const automation::ObjectRef& vbControl, const char* name) {
  const automation::Dispatch properties(
      automation::Dispatch(vbControl).Get("Properties").ToObject());
  return automation::Dispatch(properties.Call("Item", name).ToObject());
}

}  // namespace

std::string GetControlName(const automation::ObjectRef& vbControl) {
  return foundation::Operation("Utility", "GetControlName", [&] {
    const int32_t index = ControlProperty(vbControl, "Index").Get("Value").ToLong();
    std::string name = ControlProperty(vbControl, "Name").Get("Value").ToString();
    if (index != -1) name += "(" + std::to_string(index) + ")";
    return name;
  });
}

void SetControlName(const automation::ObjectRef& vbControl, const std::string& newName) {
  foundation::Operation("Utility", "SetControlName", [&] {
    const size_t open = newName.find('(');
    if (open == std::string::npos) {
      ControlProperty(vbControl, "Name").Put("Value", newName);
      ControlProperty(vbControl, "Index").Put("Value", automation::Variant::Integer(-1));
      return;
    }
    const size_t close = newName.find(')', open + 1);
    if (close == std::string::npos || close + 1 != newName.size()) {
      foundation::RaiseUserError("Invalid control name syntax.");
    }
    ControlProperty(vbControl, "Name").Put("Value", newName.substr(0, open));
    const automation::Variant index(newName.substr(open + 1, close - open - 1));
    ControlProperty(vbControl, "Index").Put("Value", automation::Variant::Long(index.ToLong()));
  });
}

}  // namespace project
