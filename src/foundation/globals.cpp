#include "foundation/globals.h"

#include "contracts/host_classes.h"

namespace foundation {

const std::string& ProjectName() {
  Globals& g = GetGlobals();
  if (g.projectName.empty()) g.projectName = kProjectName;
  return g.projectName;
}

void Main() {
  Globals& g = GetGlobals();
  g.problemLog = contracts::ProblemLog::New().object();
  g.traceFlag = contracts::Tracer::Get().IsEnabled();
}

}  // namespace foundation
