#include "project/project_file_check.h"

#include <cstdint>
#include <string_view>
#include <vector>

#include "contracts/host_classes.h"
#include "foundation/vbstrings.h"
#include "foundation/vxhandler.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/project_lines.h"

namespace project {
namespace {

using foundation::LCase;
using foundation::SplitAt;
using foundation::Trim;

bool IsComponentKey(std::string_view key) {
  return key == "class" || key == "designer" || key == "form" || key == "module" ||
         key == "propertypage" || key == "resfile32" || key == "usercontrol" ||
         key == "userdocument";
}

bool IsLibraryKey(std::string_view key) {
  return key == "object" || key == "reference";
}

std::vector<std::string_view> SplitAll(std::string_view s, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const auto at = s.find(separator);
    parts.push_back(s.substr(0, at));
    if (at == std::string_view::npos) return parts;
    s.remove_prefix(at + 1);
  }
}

class Checker {
 public:
  explicit Checker(const std::string& projectFile)
      : host_(contracts::HostUtility::Get()),
        folder_(projectFile.substr(
            0, std::min(platform::LastSeparator(projectFile), projectFile.size()))) {}

  // Whether the component or resource file of this value can be found.
  bool ComponentFound(std::string_view value) const {
    const std::string file(platform::SplitComponentValue(value).file);
    return Exists(file) || Exists(folder_ + "\\" + file);
  }

  // Whether the control library or type library of this value can be found.
  bool LibraryFound(std::string_view key, std::string value) const {
    std::erase(value, ' ');
    const auto brace = value.find('{');
    if (brace != std::string::npos) {
      std::string text = value.substr(brace);
      std::replace(text.begin(), text.end(), ';', '#');
      const std::vector<std::string_view> parts = SplitAll(text, '#');
      if (parts.size() < 4) return false;
      const std::string identifier(parts[0]);
      const std::string file =
          key == "reference" ? std::string(parts[3]) : folder_ + "\\" + std::string(parts[3]);
      if (Exists(file)) return true;
      contracts::RegistryKey typeLib = contracts::RegistryKey::New();
      typeLib.SetPath("HKEY_CLASSES_ROOT\\TypeLib\\" + identifier);
      return typeLib.Exists();
    }
    const auto split = SplitAt(value, ';');
    if (!split.found) return false;
    const std::string name(Trim(split.before));
    const std::string file(Trim(split.after));
    return Exists(file) || Exists(folder_ + "\\" + file) || Exists(host_.ResolvePath(name));
  }

 private:
  bool Exists(const std::string& path) const { return host_.FileExists(path); }

  contracts::HostUtility host_;
  std::string folder_;
};

}  // namespace

void CheckProjectFile(const std::string& projectFile) {
  const Checker checker(projectFile);
  const std::string bytes = platform::ReadFile(projectFile);
  platform::ProjectLineReader reader(bytes, platform::CurrentCodePage(), projectFile);
  while (reader.Next()) {
    const platform::ProjectLine& line = reader.Line();
    if (!line.hasKey) continue;
    const std::string key = LCase(line.key);
    const std::string value = LCase(line.value);
    bool found = true;
    if (IsComponentKey(key)) {
      found = checker.ComponentFound(value);
    } else if (IsLibraryKey(key)) {
      found = checker.LibraryFound(key, value);
    }
    if (!found) {
      const std::string number = std::to_string(reader.Number());
      foundation::RaiseUserError(
          "One of the components used in the project (or referenced by the project) is "
          "missing. The component is referenced on line " +
          number + " of the Visual Basic Project (VBP) file.\r\nLine " + number + ": " +
          reader.Text());
    }
  }
}

}  // namespace project
