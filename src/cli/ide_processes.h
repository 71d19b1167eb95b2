#pragma once
// The IDE processes of this qx home, as qx sees them: each registers a control object in the
// registered-object table, through which qx asks what it has open and tells it to end. One that
// does not answer (stopped, or busy past the call time-out) is still listed, marked so, and is
// ended with signals.

#include <chrono>
#include <string>
#include <vector>

#include "automation/object.h"
#include "cli/results.h"

namespace cli {

struct RunningIde {
  IdeProcess process;
  automation::ObjectRef control;  // null for one that does not answer
};

// How long `ide stop` waits for an IDE told to end before it sends SIGTERM, and after SIGTERM
// before SIGKILL.
inline constexpr std::chrono::seconds kQuitGrace{20};
inline constexpr std::chrono::seconds kTermGrace{5};

// The IDE processes of this qx home, by process id. One that ends while it is asked is left out.
std::vector<RunningIde> RunningIdes();

// Whether the IDE has the project open, its path compared as the registered-object table
// compares names.
bool HasOpen(const IdeProcess& process, const std::string& projectFile);

// Ends each IDE and waits until every one has gone, calling `stopped` for each as it goes. One
// that answers is told to end (it saves nothing it was not asked to save); one that does not,
// or that is still there after kQuitGrace, gets SIGTERM, and SIGKILL after kTermGrace.
template <class Stopped>
void StopIdes(std::vector<RunningIde> ides, Stopped&& stopped);

// Ends the IDEs that have the project open and waits for them.
void StopIdesOf(const std::string& projectFile);

namespace detail {
void Quit(RunningIde& ide);
void WaitGone(IdeProcess& process);
}  // namespace detail

template <class Stopped>
void StopIdes(std::vector<RunningIde> ides, Stopped&& stopped) {
  for (RunningIde& ide : ides)
    detail::Quit(ide);
  for (RunningIde& ide : ides) {
    detail::WaitGone(ide.process);
    stopped(ide.process);
  }
}

}  // namespace cli
