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

void RegisterCreatable(std::string_view className, automation::Factory make) {
  automation::RegisterClass(std::string(kProjectName) + "." + std::string(className),
                            [make = std::move(make)] {
                              if (!GetGlobals().problemLog) Main();
                              return make();
                            });
}

}  // namespace foundation
