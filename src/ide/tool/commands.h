#pragma once
// The headless IDE's own command line (qxvb6.exe): what it can show of a project and the
// round-trip check that proves it writes files back as it read them.

#include <iosfwd>
#include <string>

namespace ide::tool {

// Exit statuses: 0 all went well, 1 a component could not be loaded or a file did not come back
// as it was, 2 the project itself could not be used.
inline constexpr int kExitOk = 0;
inline constexpr int kExitComponentProblem = 1;
inline constexpr int kExitError = 2;

struct DumpOptions {
  std::string projectFile;
  std::string component;  // empty: every component
};

// Prints the model: per component its line (name, type, designer, file, dirty), then its code
// module's size and one line per procedure in module order.
int RunDump(const DumpOptions& options, std::ostream& out, std::ostream& err);

struct ResaveOptions {
  std::string projectFile;
};

// Loads every component and saves it through the line writer (as after an edit), then reads
// each file back and reports any whose bytes changed.
int RunResave(const ResaveOptions& options, std::ostream& out, std::ostream& err);

}  // namespace ide::tool
