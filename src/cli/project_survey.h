#pragma once
// What a search run finds out about a project before it opens it, and the run view it opens it
// with (host/run_view.h).
//
// The driver checks a project file before it starts the IDE and stops at the first line whose
// library is not registered here or whose component file is missing; real projects name libraries
// registered only on their author's machine, and files that were never published. The headless
// IDE needs neither (it keeps every control of a library it does not know byte for byte; a
// component whose file is missing reports that for itself alone), so a run gets past them as VB6
// does on a machine where the project loads: it runs the driver's own check, and each line the
// check stops at becomes a note or an error of the run with its line, and an entry of the run
// view for exactly that library or file. A line nothing can stand in for (a library line of a form
// the check cannot read, a reference to another project) leaves the project unopened, said once.

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "cli/project_files.h"
#include "cli/results.h"

namespace cli {

struct ProjectSurvey {
  std::vector<ComponentFile> files;  // the component entries, in the project file's order
  // Notes (libraries not registered here, a missing resource file) and errors (a missing
  // component file, a project that cannot be opened), in the project file's order.
  std::vector<RunProblem> problems;
  std::set<std::string> missing;  // FileKey of each component file that is not there
  // The files the run view takes as present: the missing component and resource files.
  std::vector<std::filesystem::path> viewFiles;
  bool opens = true;  // false: the check stops at a line the run cannot get past
};

// Surveys the project whose code page is in force, leaving host::RunView::Current() set for it:
// every library it names (registered or not, so that a scratch copy of the project, which has no
// library files beside it, passes too) and the files of viewFiles. The caller empties the view
// when the project is done.
ProjectSurvey SurveyProject(const std::filesystem::path& projectFile);

// The line that a message of the driver's project-file check quotes ("...\r\nLine 12: text"):
// its number and its text, if the message is one of those.
struct CheckedLine {
  size_t number = 0;
  std::string text;
};
std::optional<CheckedLine> CheckedLineOf(std::string_view message);

// The type library key of a library line's value ("*\G{...}#1.1#0#...", "{...}#2.0#0; X.OCX") as
// the check forms it: "HKEY_CLASSES_ROOT\TypeLib\{...}"; none for a value the check cannot take
// apart (no "{", fewer than four parts).
std::optional<std::string> LibraryKey(std::string_view value);

}  // namespace cli
