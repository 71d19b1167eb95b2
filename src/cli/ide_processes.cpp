#include "cli/ide_processes.h"

#include <signal.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>

#include "automation/error.h"
#include "automation/peer.h"
#include "host/host_utility.h"
#include "host/ide_control.h"
#include "host/object_table.h"
#include "host/register.h"
#include "platform/process_exit.h"

namespace cli {
namespace {

using automation::Dispatch;

using Clock = std::chrono::steady_clock;

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

bool Gone(long pid) {
  return automation::StateOf(pid) == automation::ProcessState::Gone;
}

// Waits until the process has gone or the time is up; true when gone. Interrupted by Ctrl-C:
// the signal ends qx, as it should, while it waits. Woken by the process's end; only where the
// system cannot watch a process does it look at it every few milliseconds.
bool WaitUntilGone(long pid, std::chrono::seconds limit) {
  if (const std::optional<bool> ended = platform::WaitForExit(static_cast<pid_t>(pid), limit))
    return *ended;
  const auto deadline = Clock::now() + limit;
  while (!Gone(pid)) {
    if (Clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

// The registered names of an IDE that does not answer that are project files: what it has open.
std::vector<std::string> ProjectsInTable(long pid) {
  std::vector<std::string> projects;
  for (std::string& name : host::ObjectTable::Get().NamesOf(pid)) {
    if (!host::ControlProcess(name) && name.find('\\') != std::string::npos)
      projects.push_back(std::move(name));
  }
  return projects;
}

}  // namespace

std::vector<RunningIde> RunningIdes() {
  host::RegisterClasses();
  const auto utility = host::HostUtility::Instance();
  std::vector<RunningIde> ides;
  for (const std::string& name : host::ObjectTable::Get().Names()) {
    if (!host::ControlProcess(name)) continue;
    const long pid = *host::ControlProcess(name);
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
      if (e.Number() != automation::err::kServerUnavailable || Gone(pid)) continue;
      // There, but it does not answer: listed from the table, so that it can be ended.
      RunningIde ide;
      ide.process.pid = pid;
      ide.process.projects = ProjectsInTable(pid);
      ide.process.unresponsive = e.Description();
      ides.push_back(std::move(ide));
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

void StopIdesOf(const std::string& projectFile) {
  std::vector<RunningIde> targets;
  for (RunningIde& ide : RunningIdes()) {
    if (HasOpen(ide.process, projectFile)) targets.push_back(std::move(ide));
  }
  StopIdes(std::move(targets), [](const IdeProcess&) {});
}

namespace detail {

void Quit(RunningIde& ide) {
  if (!ide.control) return;
  try {
    Dispatch(ide.control).Call("Quit");
  } catch (const automation::Error& e) {
    if (e.Number() != automation::err::kServerUnavailable) throw;
    if (!Gone(ide.process.pid)) ide.process.unresponsive = e.Description();
  }
  ide.control.reset();
}

void WaitGone(IdeProcess& process) {
  const long pid = process.pid;
  if (process.unresponsive.empty() && WaitUntilGone(pid, kQuitGrace)) return;
  // A stopped process takes SIGTERM when it runs again; SIGKILL ends it either way.
  process.killed = true;
  ::kill(static_cast<pid_t>(pid), SIGTERM);
  ::kill(static_cast<pid_t>(pid), SIGCONT);
  if (WaitUntilGone(pid, kTermGrace)) return;
  ::kill(static_cast<pid_t>(pid), SIGKILL);
  if (!WaitUntilGone(pid, kTermGrace)) {
    automation::Raise(automation::err::kInternal,
                      "IDE process " + std::to_string(pid) + " did not end, even on SIGKILL");
  }
}

}  // namespace detail
}  // namespace cli
