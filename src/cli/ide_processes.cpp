#include "cli/ide_processes.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <thread>

#include "automation/error.h"
#include "host/host_utility.h"
#include "host/ide_control.h"
#include "host/object_table.h"
#include "host/register.h"

namespace cli {
namespace {

using automation::Dispatch;

// How long qx waits for an IDE to finish its events and exit.
constexpr std::chrono::seconds kStopWait{60};

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

std::vector<RunningIde> RunningIdes() {
  host::RegisterClasses();
  const auto utility = host::HostUtility::Instance();
  std::vector<RunningIde> ides;
  for (const std::string& name : host::ObjectTable::Get().Names()) {
    if (!host::ControlProcess(name)) continue;
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

bool HasOpen(const IdeProcess& process, const std::string& projectFile) {
  const std::string key = host::ObjectTable::Key(projectFile);
  return std::any_of(process.projects.begin(), process.projects.end(),
                     [&](const std::string& open) { return host::ObjectTable::Key(open) == key; });
}

bool AnyHasOpen(const std::string& projectFile) {
  const std::vector<RunningIde> ides = RunningIdes();
  return std::any_of(ides.begin(), ides.end(),
                     [&](const RunningIde& ide) { return HasOpen(ide.process, projectFile); });
}

void StopIdesOf(const std::string& projectFile) {
  std::vector<RunningIde> targets;
  for (RunningIde& ide : RunningIdes()) {
    if (HasOpen(ide.process, projectFile)) targets.push_back(std::move(ide));
  }
  StopIdes(std::move(targets), [](const IdeProcess&) {});
}

namespace detail {

void Quit(RunningIde& ide) {
  try {
    Dispatch(ide.control).Call("Quit");
  } catch (const automation::Error& e) {
    if (e.Number() != automation::err::kServerUnavailable) throw;
  }
  ide.control.reset();
}

void WaitGone(const IdeProcess& process) {
  const auto deadline = std::chrono::steady_clock::now() + kStopWait;
  while (!ProcessGone(process.pid)) {
    if (std::chrono::steady_clock::now() > deadline) {
      automation::Raise(automation::err::kInternal,
                        "IDE process " + std::to_string(process.pid) + " did not end within " +
                            std::to_string(kStopWait.count()) + " seconds");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

}  // namespace detail
}  // namespace cli
