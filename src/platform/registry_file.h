#pragma once
// The REGEDIT4 text format of the stand-in registry: first line "REGEDIT4", then [key] lines
// each followed by its values, "Name"="text" or @="text" for the default value, backslash and
// double quote escaped with a backslash. dword:0000001f and hex:... values are kept as written.
// Comment lines (";") stay with the key or value that follows them, so a file a user edited
// keeps its notes when qx rewrites it.

#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct RegistryValue {
  enum class Kind { kString, kDword, kOther };
  std::string name;  // empty for the default value
  Kind kind = Kind::kString;
  std::string data;  // the text for kString; what follows "=" as written for the others
  std::vector<std::string> comments;
};

struct RegistryKeyEntry {
  std::string path;  // hive in its long form, parts joined with "\"
  std::vector<RegistryValue> values;
  std::vector<std::string> comments;
};

struct RegistryFile {
  std::vector<RegistryKeyEntry> keys;  // in file order; a key's path is unique ignoring case
  std::vector<std::string> trailingComments;
};

// A key path with its hive in the long form (HKCU -> HKEY_CURRENT_USER) and empty parts
// dropped ("HKCR\TypeLib\" -> "HKEY_CLASSES_ROOT\TypeLib"); empty for an unknown hive.
std::string NormalizeKeyPath(std::string_view keyPath);

// Parses a registry file. A malformed line raises 5 naming fileName and the line number. Keys
// that appear twice are merged; a value that appears twice keeps the later text.
RegistryFile ParseRegistryFile(std::string_view text, std::string_view fileName);

// The file's text: stable, in the order of keys and values held, one blank line after each key.
std::string FormatRegistryFile(const RegistryFile& file);

// The text of a dword value written as "dword:0000001f": "31".
std::string DwordText(std::string_view data);

}  // namespace platform
