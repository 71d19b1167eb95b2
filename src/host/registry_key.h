#pragma once
// RegistryKey: one key of the registry, named by a path that begins with the hive
// ("HKEY_CLASSES_ROOT\TypeLib\{...}", "HKCU\Software\..."), read through the platform's
// registry store.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace host {

class RegistryKey : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.RegistryKey";

  const automation::ClassInfo& Class() const override;

  std::string Path() const { return path_; }
  // Naming another key closes the key.
  void SetPath(const std::string& path);
  // 1 opens the key for reading, 0 closes it; other modes raise 5. Opening a key that does not
  // exist succeeds: its values read as their defaults.
  void Open(int32_t mode);
  // The text of the named value (the empty name is the key's default value), or the default
  // when the key or the value is absent.
  std::string ReadValue(const std::string& name, const std::string& defaultValue);
  // Whether the key exists, or the run's view takes it as present (run_view.h); needs no Open.
  bool Exists();

  bool IsOpen() const { return open_; }

 private:
  std::string path_;
  bool open_ = false;
};

}  // namespace host
