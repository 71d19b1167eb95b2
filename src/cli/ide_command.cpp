// qx ide: the IDE processes of this qx home: start one for a project (or find the one that has
// it), list them, end them.

#include <algorithm>
#include <string>
#include <vector>

#include "automation/error.h"
#include "automation/object.h"
#include "cli/commands.h"
#include "cli/ide_processes.h"
#include "cli/session.h"

namespace cli {

using automation::Dispatch;

int RunIdeStart(const IdeOptions& options, Printer& printer) {
  try {
    Session session;
    const automation::ObjectRef project = session.OpenProject(options.projectFile);
    std::vector<long> before;
    for (const RunningIde& ide : RunningIdes())
      before.push_back(ide.process.pid);
    Dispatch(project).Get("Dispatcher");  // the start-up sequence
    for (RunningIde& ide : RunningIdes()) {
      if (!HasOpen(ide.process, options.projectFile)) continue;
      IdeStart start;
      start.project = options.projectFile;
      start.started = std::find(before.begin(), before.end(), ide.process.pid) == before.end();
      start.process = std::move(ide.process);
      printer.IdeStarted(start);
      return kExitMatch;
    }
    automation::Raise(automation::err::kServerUnavailable,
                      "the IDE that has " + options.projectFile + " open ended");
  } catch (const automation::Error& e) {
    printer.Error(e);
    return kExitError;
  }
}

int RunIdeList(Printer& printer) {
  try {
    for (const RunningIde& ide : RunningIdes())
      printer.IdeListed(ide.process);
    return kExitMatch;
  } catch (const automation::Error& e) {
    printer.Error(e);
    return kExitError;
  }
}

int RunIdeStop(const IdeOptions& options, Printer& printer) {
  try {
    std::vector<RunningIde> targets;
    for (RunningIde& ide : RunningIdes()) {
      if (options.all || HasOpen(ide.process, options.projectFile))
        targets.push_back(std::move(ide));
    }
    if (targets.empty() && !options.all) {
      printer.Problem({std::nullopt, "no IDE has " + options.projectFile + " open"});
      return kExitNoMatch;
    }
    StopIdes(std::move(targets), [&](const IdeProcess& process) { printer.IdeStopped(process); });
    return kExitMatch;
  } catch (const automation::Error& e) {
    printer.Error(e);
    return kExitError;
  }
}

}  // namespace cli
