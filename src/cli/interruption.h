#pragma once
// Ctrl-C (SIGINT), SIGTERM and SIGHUP during a search or replace. The IDE that a run starts has
// a session of its own, so the terminal's Ctrl-C never reaches it; left alone it would run on
// until its idle time ran out. While a watch is in place these signals are taken by a thread of
// their own: the first ends the IDE processes this run started (qx's child processes; an IDE
// that was running before the run is not one of them) and tells the run, which stops at its
// next step, removes what it made and exits with 128 + the signal's number. A second signal, or
// a run that has not stopped within a few seconds, ends qx at once.

#include <sys/types.h>

#include <vector>

namespace cli {

class InterruptionWatch {
 public:
  // Blocks the signals in the calling thread, and so in every thread started after it; make it
  // before anything starts a thread.
  InterruptionWatch();
  ~InterruptionWatch();
  InterruptionWatch(const InterruptionWatch&) = delete;
  InterruptionWatch& operator=(const InterruptionWatch&) = delete;
};

// The signal that interrupted the run, or 0.
int Interrupted();

// The processes whose parent is this process.
std::vector<pid_t> ChildProcesses();

}  // namespace cli
