#pragma once
// The IDEs that a run started and keeps warm for the next run: a second search of a large
// project then answers from the IDE that has it loaded. A run keeps the IDEs of the last few
// projects it used, within a count and a memory budget (the oldest go first), so a folder of
// hundreds of projects still leaves only a few alive; each ends by itself once idle
// (QX_IDE_IDLE_SECONDS), or with `qx ide stop`.

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace cli {

struct KeepSettings {
  size_t count = 3;                // QX_KEEP_IDES; 0 keeps none (as --no-keep)
  size_t megabytes = 2048;         // QX_KEEP_IDES_MB: the resident memory of the kept IDEs together
  std::chrono::seconds idle{600};  // how long a kept IDE waits for the next call
};

// The settings from the environment; raises 5 for a value that is no whole number.
KeepSettings KeepSettingsFromEnvironment();

class WarmIdes {
 public:
  explicit WarmIdes(KeepSettings settings) : settings_(settings) {}

  // The run is done with the project, whose IDE it started: kept, and the IDEs kept longest
  // ended while more are kept than the count or the budget allows.
  void Done(const std::string& projectFile);
  // Ends every IDE kept (--no-keep, or an interrupted run).
  void EndAll();
  // How many are kept.
  size_t Count() const { return projects_.size(); }

 private:
  KeepSettings settings_;
  std::vector<std::string> projects_;  // most recent last
};

// "IDE kept for 10 min: qx ide stop --all ends it", as the summary says it on a terminal.
std::string KeptNotice(size_t count, std::chrono::seconds idle);

}  // namespace cli
