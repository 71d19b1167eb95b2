#include <cstddef>
#include <optional>
#include <ostream>
#include <string>

#include "ide/model/project.h"
#include "ide/tool/commands.h"
#include "ide/tool/report.h"
#include "platform/files.h"

namespace ide::tool {
namespace {

// The offset of the first byte where two contents differ (the shorter one's size when one is
// the other's beginning).
std::size_t FirstDifference(const std::string& a, const std::string& b) {
  std::size_t i = 0;
  while (i < a.size() && i < b.size() && a[i] == b[i])
    ++i;
  return i;
}

}  // namespace

int RunResave(const ResaveOptions& options, std::ostream& out, std::ostream& err) {
  std::unique_ptr<Project> project;
  try {
    project = Project::Open(options.projectFile);
  } catch (const automation::Error& e) {
    PrintError(err, e);
    return kExitError;
  }

  std::size_t saved = 0;
  std::size_t changed = 0;
  std::size_t skipped = 0;
  std::size_t failed = 0;
  for (std::size_t i = 0; i < project->Count(); ++i) {
    Component& component = project->At(i);
    const std::string& file = component.FileName();
    std::string before;
    try {
      before = platform::ReadFile(file);
      component.File();
    } catch (const automation::Error& e) {
      // A missing or unreadable component is the project's state, not something resave broke.
      err << "skipped " << file << ": " << Describe(e) << "\n";
      ++skipped;
      continue;
    }
    try {
      // An edit and its undo: the component is then saved through the line writer, as after a
      // real replace, instead of handing back the bytes it read.
      CodeModule& code = component.Code();
      code.InsertLines(1, "' qxvb6 resave");
      code.DeleteLines(1);
      component.Save();
    } catch (const automation::Error& e) {
      err << "not saved " << file << ": " << Describe(e) << "\n";
      ++failed;
      continue;
    }
    ++saved;
    const std::string after = platform::ReadFile(component.FileName());
    if (after != before) {
      out << "changed " << file << " (first difference at byte " << FirstDifference(before, after)
          << ", " << before.size() << " bytes before, " << after.size() << " after)\n";
      ++changed;
    }
  }
  out << saved << " saved, " << changed << " changed, " << skipped << " skipped, " << failed
      << " not saved\n";
  return (changed != 0 || failed != 0) ? kExitComponentProblem : kExitOk;
}

}  // namespace ide::tool
