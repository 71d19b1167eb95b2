// qx ide: the IDE processes of this qx home: start one for a project (or find the one that has
// it), list them, end them.

#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "automation/error.h"
#include "automation/object.h"
#include "cli/commands.h"
#include "cli/session.h"
#include "host/host_utility.h"
#include "host/object_table.h"
#include "host/register.h"
#include "ide/server/server.h"

namespace cli {
namespace {

using automation::Dispatch;

// How long stop waits for an IDE to finish its events and exit.
constexpr std::chrono::seconds kStopWait{60};

struct RunningIde {
  IdeProcess process;
  automation::ObjectRef control;
};

std::vector<std::string> SplitTabs(const std::string& text) {
  std::vector<std::string> parts;
  if (text.empty()) return parts;
  size_t start = 0;
  for (;;) {
    const size_t tab = text.find('\t', start);
    parts.push_back(text.substr(start, tab - start));
    if (tab == std::string::npos) return parts;
    start = tab + 1;
  }
}

// The IDE processes of this qx home, by their control objects in the registered-object table.
// One that ends while it is asked is left out.
std::vector<RunningIde> RunningIdes() {
  host::RegisterClasses();
  const auto utility = host::HostUtility::Instance();
  std::vector<RunningIde> ides;
  for (const std::string& name : host::ObjectTable::Get().Names()) {
    if (!ide::server::ControlProcess(name)) continue;
    try {
      automation::ObjectRef control = utility->GetRegisteredObject(name);
      if (!control) continue;
      const Dispatch d(control);
      RunningIde ide;
      ide.process.pid = d.Get("ProcessId").ToLong();
      ide.process.projects = SplitTabs(d.Get("Projects").ToString());
      ide.process.idleSeconds = d.Get("IdleSeconds").ToLong();
      ide.control = std::move(control);
      ides.push_back(std::move(ide));
    } catch (const automation::Error& e) {
      if (e.Number() != automation::err::kServerUnavailable) throw;
    }
  }
  std::sort(ides.begin(), ides.end(),
            [](const RunningIde& a, const RunningIde& b) { return a.process.pid < b.process.pid; });
  return ides;
}

// Whether the IDE has the project open, its path compared as the registered-object table
// compares names.
bool HasOpen(const IdeProcess& process, const std::string& projectFile) {
  const std::string key = host::ObjectTable::Key(projectFile);
  return std::any_of(process.projects.begin(), process.projects.end(),
                     [&](const std::string& open) { return host::ObjectTable::Key(open) == key; });
}

// Gone: no such process any more, or one that has ended and waits for its parent.
bool ProcessGone(long pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
  std::string stat;
  if (!in || !std::getline(in, stat)) return true;
  const size_t close = stat.rfind(')');
  if (close == std::string::npos || close + 2 >= stat.size()) return true;
  const char state = stat[close + 2];
  return state == 'Z' || state == 'X';
}

}  // namespace

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
    for (RunningIde& ide : targets) {
      try {
        Dispatch(ide.control).Call("Quit");
      } catch (const automation::Error& e) {
        if (e.Number() != automation::err::kServerUnavailable) throw;
      }
      ide.control.reset();
    }
    for (const RunningIde& ide : targets) {
      const auto deadline = std::chrono::steady_clock::now() + kStopWait;
      while (!ProcessGone(ide.process.pid)) {
        if (std::chrono::steady_clock::now() > deadline) {
          automation::Raise(automation::err::kInternal,
                            "IDE process " + std::to_string(ide.process.pid) +
                                " did not end within " + std::to_string(kStopWait.count()) +
                                " seconds");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
      printer.IdeStopped(ide.process);
    }
    return kExitMatch;
  } catch (const automation::Error& e) {
    printer.Error(e);
    return kExitError;
  }
}

}  // namespace cli
