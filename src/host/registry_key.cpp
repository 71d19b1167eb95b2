#include "host/registry_key.h"

#include "automation/error.h"
#include "host/run_view.h"
#include "platform/registry.h"

namespace host {

const automation::ClassInfo& RegistryKey::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<RegistryKey>("RegistryKey")
          .Get("Path", &RegistryKey::Path)
          .Put("Path", &RegistryKey::SetPath)
          .Method("Open", &RegistryKey::Open, {"Mode"})
          .Method("ReadValue", &RegistryKey::ReadValue, {"Name", "Default"})
          .Get("Exists", &RegistryKey::Exists)
          .Build();
  return info;
}

void RegistryKey::SetPath(const std::string& path) {
  path_ = path;
  open_ = false;
}

void RegistryKey::Open(int32_t mode) {
  switch (mode) {
    case 0:
      open_ = false;
      break;
    case 1:
      open_ = true;
      break;
    default:
      automation::Raise(
          automation::err::kInvalidCall,
          "registry key open mode " + std::to_string(mode) + " (1 opens for reading, 0 closes)");
  }
}

std::string RegistryKey::ReadValue(const std::string& name, const std::string& defaultValue) {
  if (path_.empty()) return defaultValue;
  auto value = platform::Registry::Instance().ReadValue(path_, name);
  return value ? *value : defaultValue;
}

bool RegistryKey::Exists() {
  return !path_.empty() &&
         (platform::Registry::Instance().KeyExists(path_) || RunView::Current().HasKey(path_));
}

}  // namespace host
