#include "platform/profile.h"

#include <optional>
#include <system_error>

#include "automation/casefold.h"
#include "automation/error.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/lines.h"
#include "platform/paths.h"
#include "platform/private_folders.h"
#include "platform/text.h"

namespace fs = std::filesystem;

namespace platform {
namespace {

constexpr std::string_view kNewLine = "\r\n";

std::string_view Unquote(std::string_view value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
      value.back() == value.front()) {
    return value.substr(1, value.size() - 2);
  }
  return value;
}

// The file as lines, each with its own line end, and what each line means.
struct Line {
  std::string_view text;
  std::string_view end;
};

struct Profile {
  std::string text;  // decoded contents; the lines point into it
  std::vector<Line> lines;
};

Profile Load(const fs::path& native) {
  Profile profile;
  std::error_code ec;
  if (!fs::is_regular_file(native, ec)) return profile;
  profile.text = CurrentCodePage().Decode(ReadFile(native.string()));
  LineReader reader(profile.text);
  std::string_view line;
  while (reader.Next(line))
    profile.lines.push_back({line, reader.LastLineEnd()});
  return profile;
}

// The name in a section header line, or nullopt for any other line.
std::optional<std::string_view> SectionName(std::string_view line) {
  line = TrimBlanks(line);
  if (line.empty() || line.front() != '[') return std::nullopt;
  line.remove_prefix(1);
  const auto close = line.find(']');
  return TrimBlanks(close == std::string_view::npos ? line : line.substr(0, close));
}

// The key of a key=value line (not a comment), or nullopt.
std::optional<std::string_view> KeyOf(std::string_view line, std::string_view* value = nullptr) {
  const std::string_view trimmed = TrimBlanks(line);
  if (trimmed.empty() || trimmed.front() == ';') return std::nullopt;
  const auto equals = trimmed.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  if (value != nullptr) *value = Unquote(TrimBlanks(trimmed.substr(equals + 1)));
  return TrimBlanks(trimmed.substr(0, equals));
}

// Index of the header line of the first section with this name, or nullopt.
std::optional<std::size_t> FindSection(const Profile& profile, std::string_view section) {
  for (std::size_t i = 0; i < profile.lines.size(); ++i) {
    if (auto name = SectionName(profile.lines[i].text);
        name && automation::EqualsNoCaseUnicode(*name, section)) {
      return i;
    }
  }
  return std::nullopt;
}

bool Usable(std::string_view name) {
  return !TrimBlanks(name).empty() && name.find_first_of("\r\n") == std::string_view::npos;
}

}  // namespace

fs::path ProfilePath(std::string_view fileName) {
  if (LastSeparator(fileName) == std::string_view::npos &&
      !(fileName.size() >= 2 && fileName[1] == ':')) {
    return ToNative("c:\\windows\\" + std::string(fileName));
  }
  return ToNative(fileName);
}

bool WritePrivateProfileString(std::string_view section, std::string_view key,
                               std::string_view value, std::string_view fileName) {
  if (!Usable(section) || !Usable(key) || key.find('=') != std::string_view::npos ||
      value.find_first_of("\r\n") != std::string_view::npos || fileName.empty()) {
    return false;
  }
  section = TrimBlanks(section);
  key = TrimBlanks(key);
  try {
    const fs::path native = ProfilePath(fileName);
    const Profile profile = Load(native);
    std::vector<Line> lines = profile.lines;
    std::string changed;  // storage for the one line we write

    if (auto header = FindSection(profile, section)) {
      std::size_t insertAfter = *header;
      std::optional<std::size_t> found;
      for (std::size_t i = *header + 1; i < lines.size(); ++i) {
        if (SectionName(lines[i].text)) break;
        if (!TrimBlanks(lines[i].text).empty()) insertAfter = i;
        if (auto existing = KeyOf(lines[i].text);
            existing && automation::EqualsNoCaseUnicode(*existing, key)) {
          found = i;
          break;
        }
      }
      if (found) {
        const std::string_view existingKey = *KeyOf(lines[*found].text);
        changed = std::string(existingKey) + "=" + std::string(value);
        lines[*found].text = changed;
      } else {
        changed = std::string(key) + "=" + std::string(value);
        if (lines[insertAfter].end.empty()) lines[insertAfter].end = kNewLine;
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(insertAfter) + 1,
                     Line{changed, kNewLine});
      }
    } else {
      // Built by appending: GCC 12 at -O3 reports a false -Wrestrict for "literal" + string.
      changed.push_back('[');
      changed.append(section).append("]\r\n").append(key).append("=").append(value);
      if (!lines.empty() && lines.back().end.empty()) lines.back().end = kNewLine;
      lines.push_back({changed, kNewLine});
    }

    std::string text;
    text.reserve(profile.text.size() + changed.size() + 8);
    for (const Line& line : lines) {
      text += line.text;
      text += line.end;
    }
    if (text == profile.text && !profile.lines.empty()) return true;  // nothing to change
    const std::string bytes = CurrentCodePage().Encode(text);
    std::error_code ec;
    if (IsPrivateState(native.parent_path())) {
      CreatePrivateFolders(native.parent_path());
    } else {
      fs::create_directories(native.parent_path(), ec);
    }
    WriteFileAtomic(native.string(), bytes);
    return true;
  } catch (const automation::Error&) {
    return false;
  } catch (const std::exception&) {
    return false;
  }
}

std::string GetPrivateProfileString(std::string_view section, std::string_view key,
                                    std::string_view defaultValue, std::string_view fileName) {
  const Profile profile = Load(ProfilePath(fileName));
  if (auto header = FindSection(profile, TrimBlanks(section))) {
    for (std::size_t i = *header + 1; i < profile.lines.size(); ++i) {
      if (SectionName(profile.lines[i].text)) break;
      std::string_view value;
      if (auto existing = KeyOf(profile.lines[i].text, &value);
          existing && automation::EqualsNoCaseUnicode(*existing, TrimBlanks(key))) {
        return std::string(value);
      }
    }
  }
  return std::string(defaultValue);
}

std::vector<std::pair<std::string, std::string>> ReadProfileSection(std::string_view section,
                                                                    std::string_view fileName) {
  std::vector<std::pair<std::string, std::string>> entries;
  const Profile profile = Load(ProfilePath(fileName));
  if (auto header = FindSection(profile, TrimBlanks(section))) {
    for (std::size_t i = *header + 1; i < profile.lines.size(); ++i) {
      if (SectionName(profile.lines[i].text)) break;
      std::string_view value;
      if (auto key = KeyOf(profile.lines[i].text, &value)) {
        entries.emplace_back(std::string(*key), std::string(value));
      }
    }
  }
  return entries;
}

}  // namespace platform
