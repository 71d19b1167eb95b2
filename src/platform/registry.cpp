#include "platform/registry.h"

#include <sys/stat.h>

#include <cstdlib>
#include <system_error>

#include "automation/casefold.h"
#include "automation/error.h"
#include "platform/files.h"
#include "platform/home.h"
#include "platform/paths.h"
#include "platform/private_folders.h"
#include "platform/registry_seed.h"

namespace fs = std::filesystem;

namespace platform {
namespace {

constexpr std::string_view kIdeSettings =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Visual Basic\\6.0";
constexpr std::string_view kTypeLibRoot = "HKEY_CLASSES_ROOT\\TypeLib\\";
// Beside the open command: the command as qx last wrote it. While the two agree the command is
// qx's own and follows the running program; once they differ the user has chosen another.
constexpr std::string_view kWrittenByQx = "WrittenByQx";

std::string NormalizeOrRaise(std::string_view keyPath) {
  std::string path = NormalizeKeyPath(keyPath);
  if (path.empty()) {
    automation::Raise(automation::err::kInvalidCall,
                      "registry key " + std::string(keyPath) + " does not begin with a known hive");
  }
  return path;
}

RegistryValue* FindValue(RegistryKeyEntry& key, std::string_view name) {
  for (auto& value : key.values) {
    if (automation::EqualsNoCaseUnicode(value.name, name)) return &value;
  }
  return nullptr;
}

bool HasDriveLetter(std::string_view path) {
  return path.size() >= 2 && path[1] == ':' &&
         ((path[0] >= 'a' && path[0] <= 'z') || (path[0] >= 'A' && path[0] <= 'Z'));
}

}  // namespace

Registry& Registry::Instance() {
  static Registry registry;
  return registry;
}

fs::path Registry::FilePath() {
  return QxHome() / "registry.reg";
}

std::string Registry::OpenCommand() {
  std::string ide;
  if (const char* env = std::getenv("QX_VB6_EXE"); env != nullptr && *env != '\0') {
    ide = HasDriveLetter(env) ? std::string(env) : ToWindows(env);
  } else {
    std::error_code ec;
    const fs::path self = fs::read_symlink("/proc/self/exe", ec);
    ide = ToWindows((ec ? fs::current_path() : self.parent_path()) / "qxvb6.exe");
  }
  return "\"" + ide + "\" \"%1\"";
}

Registry::Stamp Registry::StampOf(const fs::path& file) {
  struct stat st;
  if (::stat(file.c_str(), &st) != 0) return {};
  return {static_cast<long long>(st.st_mtim.tv_sec), static_cast<long long>(st.st_mtim.tv_nsec),
          static_cast<long long>(st.st_size), static_cast<unsigned long long>(st.st_ino)};
}

RegistryFile Registry::Seed() {
  RegistryFile seed;
  const auto add = [&seed](std::string_view path, std::string_view name, std::string text) {
    RegistryValue value;
    value.name = name;
    value.data = std::move(text);
    seed.keys.push_back({std::string(path), {std::move(value)}, {}});
  };
  add(kIdeSettings, "BackgroundProjectLoad", "0");
  add(kOpenCommandKey, "", OpenCommand());
  seed.keys.back().values.push_back(
      RegistryValue{std::string(kWrittenByQx), RegistryValue::Kind::kString, OpenCommand(), {}});
  for (const TypeLibrarySeed& library : SeedTypeLibraries()) {
    add(std::string(kTypeLibRoot) + std::string(library.guid), "",
        std::string(library.description));
  }
  return seed;
}

void Registry::Refresh() {
  const fs::path home = QxHome();
  const fs::path file = home / "registry.reg";
  std::error_code ec;
  if (!fs::exists(file, ec)) {
    CreatePrivateFolders(home / "drive_c" / "windows");
    data_ = Seed();
    file_ = file;
    Save();
    return;
  }
  const Stamp stamp = StampOf(file);
  if (file == file_ && stamp == stamp_) return;
  // Forget the old contents first: if the new file does not parse, every call reports it
  // until it is fixed, rather than answering from another home's registry.
  file_.clear();
  data_ = {};
  const std::string text = ReadFile(file.string());
  data_ = ParseRegistryFile(text, file.string());
  file_ = file;
  stamp_ = stamp;
  KeepOpenCommandCurrent();
}

void Registry::KeepOpenCommandCurrent() {
  RegistryKeyEntry* key = Find(NormalizeKeyPath(kOpenCommandKey));
  if (key == nullptr) return;
  RegistryValue* command = FindValue(*key, "");
  if (command == nullptr || command->kind != RegistryValue::Kind::kString) return;
  const std::string current = OpenCommand();
  RegistryValue* written = FindValue(*key, kWrittenByQx);
  // A registry of a qx that kept no record: its command is qx's own when it opens a qxvb6.exe.
  const bool ours =
      written != nullptr
          ? written->data == command->data
          : automation::LowerAscii(command->data).find("qxvb6.exe\"") != std::string::npos;
  if (!ours || (command->data == current && written != nullptr)) return;
  command->data = current;
  if (written == nullptr) {
    key->values.push_back(
        RegistryValue{std::string(kWrittenByQx), RegistryValue::Kind::kString, current, {}});
  } else {
    written->data = current;
  }
  try {
    Save();
  } catch (const automation::Error&) {
    // A registry that cannot be written is still read; the next look tries again.
  }
}

void Registry::Save() {
  try {
    WriteFileAtomic(file_.string(), FormatRegistryFile(data_));
  } catch (...) {
    // What is held no longer matches the disk: read the file again on the next call.
    file_.clear();
    throw;
  }
  stamp_ = StampOf(file_);
}

RegistryKeyEntry* Registry::Find(const std::string& normalizedPath) {
  for (auto& key : data_.keys) {
    if (automation::EqualsNoCaseUnicode(key.path, normalizedPath)) return &key;
  }
  return nullptr;
}

RegistryKeyEntry& Registry::FindOrAdd(const std::string& normalizedPath) {
  if (RegistryKeyEntry* key = Find(normalizedPath)) return *key;
  data_.keys.push_back({normalizedPath, {}, {}});
  return data_.keys.back();
}

bool Registry::KeyExists(std::string_view keyPath) {
  std::lock_guard lock(mutex_);
  Refresh();
  const std::string path = NormalizeKeyPath(keyPath);
  if (path.empty()) return false;
  const std::string folded = automation::FoldCaseUnicode(path);
  for (const auto& key : data_.keys) {
    const std::string candidate = automation::FoldCaseUnicode(key.path);
    if (candidate == folded) return true;
    if (candidate.size() > folded.size() && candidate.compare(0, folded.size(), folded) == 0 &&
        candidate[folded.size()] == '\\') {
      return true;
    }
  }
  return false;
}

std::optional<std::string> Registry::ReadValue(std::string_view keyPath,
                                               std::string_view valueName) {
  std::lock_guard lock(mutex_);
  Refresh();
  const std::string path = NormalizeKeyPath(keyPath);
  if (path.empty()) return std::nullopt;
  RegistryKeyEntry* key = Find(path);
  if (key == nullptr) return std::nullopt;
  const RegistryValue* value = FindValue(*key, valueName);
  if (value == nullptr) return std::nullopt;
  switch (value->kind) {
    case RegistryValue::Kind::kString:
      return value->data;
    case RegistryValue::Kind::kDword:
      return DwordText(value->data);
    case RegistryValue::Kind::kOther:
      return std::nullopt;
  }
  return std::nullopt;
}

void Registry::WriteValue(std::string_view keyPath, std::string_view valueName,
                          std::string_view text) {
  if (text.find_first_of("\r\n") != std::string_view::npos ||
      valueName.find_first_of("\r\n") != std::string_view::npos) {
    automation::Raise(automation::err::kInvalidCall,
                      "a registry value cannot hold a line break (" + std::string(keyPath) + ")");
  }
  const std::string path = NormalizeOrRaise(keyPath);
  std::lock_guard lock(mutex_);
  Refresh();
  RegistryKeyEntry& key = FindOrAdd(path);
  if (RegistryValue* value = FindValue(key, valueName)) {
    if (value->kind == RegistryValue::Kind::kString && value->data == text) return;
    value->kind = RegistryValue::Kind::kString;
    value->data = text;
  } else {
    RegistryValue added;
    added.name = valueName;
    added.data = text;
    key.values.push_back(std::move(added));
  }
  Save();
}

void Registry::CreateKey(std::string_view keyPath) {
  const std::string path = NormalizeOrRaise(keyPath);
  std::lock_guard lock(mutex_);
  Refresh();
  if (Find(path) != nullptr) return;
  data_.keys.push_back({path, {}, {}});
  Save();
}

}  // namespace platform
