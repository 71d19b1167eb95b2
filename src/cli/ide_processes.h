#pragma once
// The IDE processes of this qx home, as qx sees them: each registers a control object in the
// registered-object table, through which qx asks what it has open and tells it to end.

#include <string>
#include <vector>

#include "automation/object.h"
#include "cli/results.h"

namespace cli {

struct RunningIde {
  IdeProcess process;
  automation::ObjectRef control;
};

// The IDE processes of this qx home, by process id. One that ends while it is asked is left out.
std::vector<RunningIde> RunningIdes();

// Whether the IDE has the project open, its path compared as the registered-object table
// compares names.
bool HasOpen(const IdeProcess& process, const std::string& projectFile);

// Whether any IDE of this qx home has the project open.
bool AnyHasOpen(const std::string& projectFile);

// Tells each IDE to end (it saves nothing it was not asked to save) and waits until every one
// of them has gone; calls `stopped` for each as it goes. Raises when one does not end in time.
template <class Stopped>
void StopIdes(std::vector<RunningIde> ides, Stopped&& stopped);

// Ends the IDEs that have the project open and waits for them.
void StopIdesOf(const std::string& projectFile);

namespace detail {
void Quit(RunningIde& ide);
void WaitGone(const IdeProcess& process);
}  // namespace detail

template <class Stopped>
void StopIdes(std::vector<RunningIde> ides, Stopped&& stopped) {
  for (RunningIde& ide : ides)
    detail::Quit(ide);
  for (const RunningIde& ide : ides) {
    detail::WaitGone(ide.process);
    stopped(ide.process);
  }
}

}  // namespace cli
