#include "cli/project_survey.h"

#include <algorithm>

#include "automation/casefold.h"
#include "automation/error.h"
#include "contracts/component_kinds.h"
#include "host/run_view.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/project_lines.h"
#include "project/project_file_check.h"

namespace cli {
namespace fs = std::filesystem;
namespace {

constexpr int32_t kFileNotFound = 53;

bool IsResourceKey(std::string_view key) {
  return automation::EqualsAsciiNoCase(key, "ResFile32");
}

bool IsComponentKey(std::string_view key) {
  if (IsResourceKey(key)) return true;
  const auto& kinds = contracts::kComponentKinds;
  return std::any_of(kinds.begin(), kinds.end(), [key](const auto& kind) {
    return automation::EqualsAsciiNoCase(key, kind.projectFileKey);
  });
}

bool IsLibraryKey(std::string_view key) {
  return automation::EqualsAsciiNoCase(key, "Object") ||
         automation::EqualsAsciiNoCase(key, "Reference");
}

std::string_view Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// The parts of a library line's value as the check splits them: blanks removed, from the first
// "{", at every "#" and ";". Empty when there is no "{".
std::vector<std::string> LibraryParts(std::string_view value) {
  std::string text;
  for (char c : value) {
    if (c != ' ') text += c == ';' ? '#' : c;
  }
  const size_t brace = text.find('{');
  if (brace == std::string::npos) return {};
  std::vector<std::string> parts;
  for (size_t start = brace;;) {
    const size_t end = text.find('#', start);
    parts.push_back(text.substr(start, end - start));
    if (end == std::string::npos) return parts;
    start = end + 1;
  }
}

// "library {...}#1.1 (Vendor Library)": the identifier and version the line gives, with the
// name a reference gives the library (after its last "#") or a control library's file (after
// ";").
std::string LibraryText(std::string_view value) {
  const std::vector<std::string> parts = LibraryParts(value);
  std::string text = "library " + parts.at(0) + "#" + parts.at(1);
  const size_t semicolon = value.find(';');
  const std::string_view name =
      Trim(semicolon != std::string_view::npos ? value.substr(semicolon + 1)
                                               : value.substr(value.rfind('#') + 1));
  if (!name.empty()) text += " (" + std::string(name) + ")";
  return text;
}

struct Line {
  std::string text;
  std::string key;
  std::string value;
};

std::vector<Line> ReadLines(const fs::path& projectFile) {
  const std::string bytes = platform::ReadFile(projectFile.string());
  platform::ProjectLineReader reader(bytes, platform::CurrentCodePage(), projectFile.string());
  std::vector<Line> lines;
  while (reader.Next()) {
    const platform::ProjectLine& line = reader.Line();
    lines.push_back({reader.Text(), std::string(line.key), std::string(line.value)});
  }
  return lines;
}

}  // namespace

std::optional<CheckedLine> CheckedLineOf(std::string_view message) {
  static constexpr std::string_view kLine = "\r\nLine ";
  const size_t at = message.find(kLine);
  if (at == std::string_view::npos) return std::nullopt;
  std::string_view rest = message.substr(at + kLine.size());
  const size_t digits = rest.find_first_not_of("0123456789");
  if (digits == 0 || digits == std::string_view::npos || rest.substr(digits, 2) != ": ") {
    return std::nullopt;
  }
  CheckedLine line;
  for (char c : rest.substr(0, digits))
    line.number = line.number * 10 + static_cast<size_t>(c - '0');
  rest = rest.substr(digits + 2);
  line.text = std::string(rest.substr(0, rest.find_first_of("\r\n")));
  return line;
}

std::optional<std::string> LibraryKey(std::string_view value) {
  const std::vector<std::string> parts = LibraryParts(value);
  if (parts.size() < 4) return std::nullopt;
  return "HKEY_CLASSES_ROOT\\TypeLib\\" + parts[0];
}

ProjectSurvey SurveyProject(const fs::path& projectFile) {
  host::RunView& view = host::RunView::Current();
  view.Clear();
  ProjectSurvey survey;
  const std::string shown = ShowPath(projectFile);
  survey.files = ReadComponentFiles(projectFile);
  const std::vector<Line> lines = ReadLines(projectFile);

  // The check stops at the first line it cannot find; the view takes that line's library or
  // file as present, and the check runs again, up to a line nothing can stand in for.
  std::set<size_t> passed;
  for (;;) {
    try {
      project::CheckProjectFile(projectFile.string());
      break;
    } catch (const automation::Error& error) {
      const std::optional<CheckedLine> checked = CheckedLineOf(error.Description());
      const Line* line =
          checked && checked->number <= lines.size() && passed.insert(checked->number).second
              ? &lines[checked->number - 1]
              : nullptr;
      RunProblem problem{false, shown, "", checked ? checked->number : 0, error.Number(), ""};
      if (line != nullptr && IsComponentKey(line->key)) {
        const platform::ComponentValue value = platform::SplitComponentValue(line->value);
        const fs::path file = ResolveProjectPath(projectFile.parent_path(), value.file);
        view.AddFile(file.string());
        survey.viewFiles.push_back(file);
        problem.number = kFileNotFound;
        if (IsResourceKey(line->key)) {
          problem.note = true;
          problem.message =
              "resource file " + ShowPath(file) + " not found; it holds nothing searched";
        } else {
          survey.missing.insert(FileKey(file));
          problem.component = std::string(value.name);
          problem.message =
              "File not found: " + ShowPath(file) + "; the other components are searched";
        }
      } else if (line != nullptr && IsLibraryKey(line->key) && LibraryKey(line->value)) {
        view.AddKey(*LibraryKey(line->value));
        problem.note = true;
        problem.number.reset();
        problem.message =
            LibraryText(line->value) + " not registered on this machine; searched anyway";
      } else {
        survey.opens = false;
        problem.message = checked
                              ? "not searched: VB6 could not load what this line names, nor can "
                                "anything stand in for it: " +
                                    checked->text
                              : "not searched: " + error.Description();
        survey.problems.push_back(std::move(problem));
        break;
      }
      survey.problems.push_back(std::move(problem));
    }
  }
  // Every library the project names, so that a copy of the project, which has no library files
  // beside it, passes the check as the project does.
  for (const Line& line : lines) {
    if (!IsLibraryKey(line.key)) continue;
    if (const std::optional<std::string> key = LibraryKey(line.value)) view.AddKey(*key);
  }
  return survey;
}

}  // namespace cli
