#pragma once
// What the verbs of qx find, as records: the printer shows them as text or JSON.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/codepage_detect.h"

namespace cli {

// What can be done with a component's file.
enum class FileState {
  Writable,
  ReadOnly,
  Missing,
  // The listing said "not writable" and nothing could tell which of the two it is.
  ReadOnlyOrMissing,
};

struct Component {
  std::string name;     // empty when nothing names the component
  std::string version;  // the file's last change, "yyyymmddhhnnss"; empty when unknown
  FileState state = FileState::Missing;
  std::vector<std::string> problems;  // what is wrong with it, in words
};

struct CollectionListing {
  std::string name;                   // "Forms"
  std::vector<Component> components;  // in the project's order
};

// Something wrong that did not stop the run.
struct Problem {
  std::optional<int32_t> number;  // the driver's error number; none for qx's own findings
  std::string description;
};

// An error or a note of a search, replace or rename run, with its place: the project file and,
// where it has them, the component and the project file's line. A note is worth knowing and
// changes nothing (a library not registered here, searched anyway); an error makes the run's exit
// status 2 (a component file that is missing, a project that cannot be opened).
struct RunProblem {
  bool note = false;
  std::string project;    // the project (or group) file as shown; "" for the run's own
  std::string component;  // "" when not about one component
  size_t line = 0;        // the project file's line; 0 when none
  std::optional<int32_t> number;
  std::string message;
};

// One line of a component file with matches, as qx search shows it.
struct SearchHit {
  std::string collection;  // "Modules"
  std::string component;   // "Module1"
  std::string procedure;   // "<declarations>", "Foo", "Value.Get"; empty for the name; for a
                           // property, its place ("Option1(2).Caption")
  std::string control;     // a property's control ("Option1(2)"), "" for the component's own
  std::string property;    // a property's member ("Caption"), else ""
  size_t line = 0;         // 1-based in the file; 0 when the place was not found in the file
  std::string text;        // the line, UTF-8, without its line end
  std::string lineEnd;     // the line end in the file
  size_t offset = 0;       // where the line starts in the file's bytes
  // The place the line's matches are in, as the scanner names it ("Module1/procedure/Foo"):
  // what `qx replace --write --only` takes.
  std::string place;
  struct Submatch {
    size_t start = 0;  // bytes of the UTF-8 line
    size_t end = 0;
    std::string text;
    std::optional<std::string> replacement = std::nullopt;  // of a replace: what it becomes
  };
  std::vector<Submatch> submatches;
  // What replacing here resets that the user did not name ("ItemData (3 values)"), else "".
  std::string resets;
};

// What one component file gave.
struct FileMatches {
  std::string path;  // as shown: relative to the current folder when below it
  // The code page the file was read in: its project's, given to the run or detected.
  std::optional<platform::ProjectCodePage> codePage;
  std::vector<SearchHit> hits;
  size_t matches = 0;
  size_t bytes = 0;  // the file's size
  double seconds = 0;
};

// A write that the IDE refused, or another failure at one place.
struct Refusal {
  std::string path;
  size_t line = 0;  // 0 when not known
  std::string collection;
  std::string component;
  std::string procedure;
  int32_t number = 0;
  std::string description;
  std::string place;  // the place's id, as a match names it
};

// What a replace at one place resets that its text does not show: the ItemData of a list whose
// items it rewrites.
struct ResetNote {
  std::string path;
  std::string component;
  std::string control;  // "" for the component's own
  std::string place;    // the place's id, as a match names it
  std::string what;     // "ItemData (3 values)"
};

// What replacing would change (or changed) in one file.
struct FileDiff {
  std::string path;
  std::string diff;  // unified, UTF-8
};

// The totals of a search or replace run.
struct SearchTotals {
  size_t files = 0;  // component files searched
  size_t filesWithMatches = 0;
  size_t matches = 0;
  size_t matchedLines = 0;
  size_t bytes = 0;
  double seconds = 0;
  bool replace = false;
  bool written = false;  // replace --write
  size_t filesChanged = 0;
  size_t refused = 0;
  size_t idesKept = 0;              // IDEs this run started and left running for the next
  std::chrono::seconds keptFor{0};  // how long they wait for it
  size_t projectsNamed = 0;         // projects the paths named
  size_t projects = 0;              // projects searched
  size_t projectsWithProblems = 0;  // of all the run named, those with notes or errors
  size_t componentsSkipped = 0;     // component files not searched, each reported
  size_t problems = 0;              // notes and errors reported
  // Places where a replacement resets data the user did not name: "frmProps.lstItems: ItemData
  // (3 values)".
  std::vector<std::string> resets;
};

// How a run that went through ended.
struct Summary {
  std::optional<size_t> components;  // how many components were listed
  // The code page the project's files were read in, and how it was chosen.
  std::optional<platform::ProjectCodePage> codePage;
};

// An IDE process of this qx home (qxvb6.exe serving projects).
struct IdeProcess {
  long pid = 0;
  std::vector<std::string> projects;  // the project files it has open, as it reports them
  int32_t idleSeconds = 0;            // since its last call
  // Why it does not answer (stopped, busy past the call time-out); empty when it answers. Its
  // projects then come from the registered-object table, as the table spells them.
  std::string unresponsive;
  bool killed = false;  // `ide stop` had to end it with a signal
};

// What `qx ide start` did to have the project in an IDE.
struct IdeStart {
  std::string project;   // as given
  bool started = false;  // false: connected to an IDE that was running
  IdeProcess process;
};

}  // namespace cli
