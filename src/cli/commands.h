#pragma once
// The verbs of qx. Each prints through the run's printer and returns the exit status.

#include <string>

#include "cli/printer.h"
#include "cli/search_options.h"

namespace cli {

// Exit statuses, as grep-like tools use them.
inline constexpr int kExitMatch = 0;
inline constexpr int kExitNoMatch = 1;
inline constexpr int kExitError = 2;

struct ListOptions {
  std::string projectFile;
  bool raw = false;
};

// Lists the project's components per collection; with raw, each collection's enumeration string
// exactly as the driver returns it.
int RunList(const ListOptions& options, Printer& printer);

struct CheckOptions {
  std::string projectFile;
};

// Runs the checks the driver makes before it opens a project in the IDE.
int RunCheck(const CheckOptions& options, Printer& printer);

struct IdeOptions {
  std::string projectFile;
  bool all = false;  // stop: every IDE of this qx home
};

// Runs the start-up sequence for the project (reads its Dispatcher) and says whether it
// connected to a running IDE or started one, with the IDE's process id.
int RunIdeStart(const IdeOptions& options, Printer& printer);
// Lists the IDE processes of this qx home: process id, open projects, time since the last call.
int RunIdeList(Printer& printer);
// Ends the IDE that has the project open, or every IDE (all), and waits until each is gone.
// Exit 1 when no IDE has the project open.
int RunIdeStop(const IdeOptions& options, Printer& printer);

// qx search, and qx replace when the options carry a replacement: 0 when something matched (and,
// for replace, everything was applied), 1 when nothing matched, 2 when anything failed.
int RunSearch(SearchOptions& options, Printer& printer);

}  // namespace cli
