#include <ostream>

#include "ide/model/project.h"
#include "ide/tool/commands.h"
#include "ide/tool/report.h"

namespace ide::tool {
namespace {

const char* KindName(ProcKind kind) {
  switch (kind) {
    case ProcKind::kLet:
      return "Let";
    case ProcKind::kSet:
      return "Set";
    case ProcKind::kGet:
      return "Get";
    case ProcKind::kProc:
      break;
  }
  return "Proc";
}

// One component: its line, then its code module. A component whose file cannot be read shows
// what the project file tells of it and the error, and the dump goes on with the next one.
bool DumpComponent(Component& component, std::ostream& out) {
  out << "component " << component.Name();
  try {
    // Type and DesignerID read the file where the project file does not tell.
    const auto type = static_cast<int32_t>(component.Type());
    const std::string designer = component.DesignerID();
    CodeModule& code = component.Code();
    out << " type=" << type << " designer=" << designer << " file=" << component.FileName()
        << " dirty=" << (component.IsDirty() ? 1 : 0) << "\n";
    out << "  lines " << code.CountOfLines() << " declarations " << code.CountOfDeclarationLines()
        << "\n";
    for (const ProcedureInfo& proc : code.Procedures()) {
      out << "  proc " << KindName(proc.kind) << " " << proc.name << " start=" << proc.startLine
          << " count=" << proc.countLines << "\n";
    }
    return true;
  } catch (const automation::Error& e) {
    out << " type=? designer=? file=" << component.FileName() << " dirty=0\n";
    out << "  error " << Describe(e) << "\n";
    return false;
  }
}

}  // namespace

int RunDump(const DumpOptions& options, std::ostream& out, std::ostream& err) {
  if (options.properties) return RunDumpProperties(options, out, err);
  try {
    auto project = Project::Open(options.projectFile);
    if (!options.component.empty()) {
      return DumpComponent(project->Item(options.component), out) ? kExitOk : kExitComponentProblem;
    }
    bool allLoaded = true;
    for (std::size_t i = 0; i < project->Count(); ++i)
      allLoaded = DumpComponent(project->At(i), out) && allLoaded;
    return allLoaded ? kExitOk : kExitComponentProblem;
  } catch (const automation::Error& e) {
    PrintError(err, e);
    return kExitError;
  }
}

}  // namespace ide::tool
