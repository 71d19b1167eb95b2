#pragma once
// The stand-in registry: QxHome()/registry.reg in REGEDIT4 text (see registry_file.h), which
// users may edit, for instance to register a type library. Key paths begin with a hive name
// (HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS or HKCR, HKCU, HKLM);
// key paths and value names match case-insensitively.
//
// A home folder without registry.reg gets a fresh one on first use, set up as a machine with
// VB6 installed: background project loading off, VB6 projects opened by the headless IDE
// (qxvb6.exe beside the running program, or $QX_VB6_EXE), the type libraries of a VB6
// installation registered, and the Windows folder drive_c/windows created. The open command
// keeps following the running program (a build that moved, an installed qx) until the user
// changes it.

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/registry_file.h"

namespace platform {

class Registry {
 public:
  // The registry of the current QxHome(): loaded on first use, loaded again when QX_HOME
  // changes or when the file changes on disk.
  static Registry& Instance();

  // A key exists when it has a [key] section of its own or a sub-key has one.
  bool KeyExists(std::string_view keyPath);

  // The value's text; an empty name reads the default value (@). dword values read as decimal
  // text. nullopt when the key or value is missing or holds binary data.
  std::optional<std::string> ReadValue(std::string_view keyPath, std::string_view valueName);

  // Sets a string value, creating the key, and saves the file atomically. Raises 5 for an
  // unknown hive or a text with a line break (REGEDIT4 cannot hold one).
  void WriteValue(std::string_view keyPath, std::string_view valueName, std::string_view text);

  // Creates the key (with no values) when it has no section yet, and saves.
  void CreateKey(std::string_view keyPath);

  // The file behind the registry of the current QxHome().
  static std::filesystem::path FilePath();

  // The key of the command that opens a VB project or project group: VisualBasic.Project's.
  static constexpr std::string_view kOpenCommandKey =
      "HKEY_CLASSES_ROOT\\VisualBasic.Project\\shell\\open\\command";

  // The open command of VisualBasic.Project in a fresh registry: "<ide>" "%1".
  static std::string OpenCommand();

 private:
  Registry() = default;

  struct Stamp {
    long long seconds = -1;
    long long nanoseconds = 0;
    long long size = 0;
    unsigned long long inode = 0;
    bool operator==(const Stamp&) const = default;
  };

  void Refresh();
  // Points the open command at the IDE beside the running program (OpenCommand()) while it is
  // the command qx wrote, and saves when that changed it.
  void KeepOpenCommandCurrent();
  void Save();
  RegistryKeyEntry* Find(const std::string& normalizedPath);
  RegistryKeyEntry& FindOrAdd(const std::string& normalizedPath);
  static Stamp StampOf(const std::filesystem::path& file);
  static RegistryFile Seed();

  std::mutex mutex_;
  std::filesystem::path file_;  // the file data_ was loaded from
  Stamp stamp_;
  RegistryFile data_;
};

}  // namespace platform
