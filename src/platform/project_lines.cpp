#include "platform/project_lines.h"

#include "automation/casefold.h"
#include "automation/error.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/lines.h"
#include "platform/text.h"

namespace platform {
namespace {

constexpr int32_t kInvalidFileFormat = 321;
constexpr std::string_view kUtf8ByteOrderMark = "\xEF\xBB\xBF";

// Where the trailing padding of NUL, Ctrl-Z and line-end bytes begins.
std::size_t PaddingStart(std::string_view bytes) {
  std::size_t start = bytes.size();
  while (start > 0) {
    const char c = bytes[start - 1];
    if (c != '\0' && c != '\x1a' && c != '\r' && c != '\n') break;
    --start;
  }
  return start;
}

// The offset of the first character that is not a blank, or the size.
std::size_t LeadingBlanks(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && IsBlank(text[at]))
    ++at;
  return at;
}

}  // namespace

std::size_t ByteOrderMarkLength(std::string_view bytes) {
  return bytes.starts_with(kUtf8ByteOrderMark) ? kUtf8ByteOrderMark.size() : 0;
}

bool HoldsBinaryData(std::string_view bytes) {
  return bytes.substr(0, PaddingStart(bytes)).find('\0') != std::string_view::npos;
}

void RequireProjectText(std::string_view bytes, std::string_view fileName) {
  if (!HoldsBinaryData(bytes)) return;
  automation::RaiseMessage(kInvalidFileFormat, "Invalid file format: " + std::string(fileName) +
                                                   ": a project file holds no NUL bytes");
}

ProjectLine SplitProjectLine(std::string_view line) {
  ProjectLine result;
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return result;
  result.hasKey = true;
  result.key = TrimBlanks(line.substr(0, equals));
  const std::string_view after = line.substr(equals + 1);
  result.valueOffset = equals + 1 + LeadingBlanks(after);
  result.value = TrimBlanks(after);
  return result;
}

ComponentValue SplitComponentValue(std::string_view value) {
  ComponentValue result;
  std::string_view file = value;
  const std::size_t semicolon = value.find(';');
  if (semicolon != std::string_view::npos) {
    result.hasName = true;
    const std::string_view name = value.substr(0, semicolon);
    result.nameOffset = LeadingBlanks(name);
    result.name = TrimBlanks(name);
    file = value.substr(semicolon + 1);
  } else {
    result.nameOffset = LeadingBlanks(value);
  }
  file = TrimBlanks(file);
  if (file.starts_with('"')) file = file.size() >= 2 ? file.substr(1, file.size() - 2) : "";
  result.file = file;
  return result;
}

ProjectLineReader::ProjectLineReader(std::string_view bytes, const CodePage& codePage,
                                     std::string_view fileName)
    : rest_(bytes.substr(ByteOrderMarkLength(bytes))), codePage_(codePage) {
  RequireProjectText(bytes, fileName);
}

bool ProjectLineReader::Next() {
  LineReader reader(rest_);
  std::string_view raw;
  if (!reader.Next(raw)) return false;
  rest_.remove_prefix(reader.Position());
  ++number_;
  text_ = codePage_.Decode(raw);
  line_ = SplitProjectLine(text_);
  return true;
}

bool IsGroupFile(std::string_view path) {
  return path.size() > 4 && automation::EqualsAsciiNoCase(path.substr(path.size() - 4), ".vbg");
}

std::vector<GroupMember> ReadGroupMembers(std::string_view bytes, const CodePage& codePage,
                                          std::string_view fileName) {
  std::vector<GroupMember> members;
  ProjectLineReader reader(bytes, codePage, fileName);
  while (reader.Next()) {
    const ProjectLine& line = reader.Line();
    if (!line.hasKey) continue;
    const bool startup = automation::EqualsAsciiNoCase(line.key, "StartupProject");
    if (startup || automation::EqualsAsciiNoCase(line.key, "Project"))
      members.push_back({std::string(line.value), reader.Number(), startup});
  }
  return members;
}

std::optional<std::string> ComponentNameFromFile(std::string_view file) {
  std::string bytes;
  try {
    bytes = ReadFile(file);
  } catch (const automation::Error&) {
    return std::nullopt;
  }
  // VB's Trim: spaces only.
  const auto trim = [](std::string_view text) {
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return std::string_view();
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
  };
  const CodePage& codePage = CurrentCodePage();
  LineReader reader(bytes);
  std::string_view raw;
  while (reader.Next(raw)) {
    const std::string line = codePage.Decode(raw);
    const std::string_view text = trim(line);
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos ||
        !automation::EqualsAsciiNoCase(trim(text.substr(0, equals)), "Attribute VB_Name")) {
      continue;
    }
    std::string value(trim(text.substr(equals + 1)));
    if (!value.empty() && value.front() == '"') {
      value = value.size() >= 2 ? value.substr(1, value.size() - 2) : std::string();
    }
    return value;
  }
  return std::string();
}

}  // namespace platform
