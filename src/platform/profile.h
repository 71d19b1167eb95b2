#pragma once
// Private-profile (INI) files, as Windows' WritePrivateProfileStringA and
// GetPrivateProfileStringA keep them. A file name without a folder lives in the Windows folder,
// c:\windows, that is QxHome()/drive_c/windows. Sections and keys match case-insensitively.
// Files are in the current code page; new lines end with CR LF.

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform {

// Sets key=value in the section, keeping every other line of the file as it was (comments,
// other sections, their line ends). A new key goes after the section's last entry, a new
// section at the end of the file; a missing file and its folder are created. False when the
// file cannot be written or a name is unusable (empty, or holding a line break, or a key with
// "=").
bool WritePrivateProfileString(std::string_view section, std::string_view key,
                               std::string_view value, std::string_view fileName);

// The value of key in the section, without surrounding blanks and without one pair of
// enclosing quotes; defaultValue when the file, the section or the key is missing. A file that
// exists but cannot be read raises as ReadFile does.
std::string GetPrivateProfileString(std::string_view section, std::string_view key,
                                    std::string_view defaultValue, std::string_view fileName);

// Every key of the section with its value (as GetPrivateProfileString gives it), in file
// order; empty when the file or the section is missing.
std::vector<std::pair<std::string, std::string>> ReadProfileSection(std::string_view section,
                                                                    std::string_view fileName);

// Where a private-profile file name lands on disk.
std::filesystem::path ProfilePath(std::string_view fileName);

}  // namespace platform
