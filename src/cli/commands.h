#pragma once
// The verbs of qx. Each prints through the run's printer and returns the exit status.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/printer.h"
#include "cli/scan_results.h"
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

// Scans the component it is given with a request and returns what the scanner found.
using Look = std::function<std::vector<ComponentScan>(const std::string& request)>;
// Decides, when a run reaches a component, the request to scan it with: it may first look at
// the component with requests that write nothing. None leaves the component alone; an error
// raised refuses it (and stops the run when it is the first component).
using RequestPlan = std::function<std::optional<std::string>(const Look& look)>;

// The run of qx search and replace (the projects of the paths, their chosen components, a
// preview of a replace made on a scratch copy), each component scanned with the request that
// the plan gives it. Exit statuses as RunSearch. With the options' `prefilter`, a component whose
// bytes cannot hold a match of the options' patterns is passed over without the IDE
// (cli/prefilter.h); with a review, the user accepts or declines each place a replace changes.
class Review;
int RunScans(const SearchOptions& options, const RequestPlan& plan, Printer& printer,
             Review* review = nullptr);

struct RenameOptions {
  std::string projectFile;
  std::string control;  // COMPONENT.OLDNAME
  std::string newName;
  bool write = false;
  bool interactive = false;  // ask about each place, write those accepted
  bool noKeep = false;
};

// qx rename: the control (every element of a control array) takes the new name, its event
// procedures and the references to it in its component's code follow. Shown as a diff made on
// a scratch copy unless `write`. 0 renamed (or shown), 1 nothing to rename, 2 refused or failed.
int RunRename(const RenameOptions& options, Printer& printer);

}  // namespace cli
