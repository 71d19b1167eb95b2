#pragma once
// Starting programs from Windows command lines, detached from the caller.

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace host {

// The words of a Windows command line, split as Windows programs split theirs: the program is
// everything up to the first blank, or the text between the first pair of quotes; in the
// arguments, blanks inside quotes do not split, "" inside quotes is one quote, and backslashes
// escape a quote only (2n backslashes before a quote are n backslashes, 2n+1 are n and a
// literal quote).
std::vector<std::string> SplitCommandLine(std::string_view commandLine);

// Starts the command line in a session of its own, with no input and its output discarded (its
// error output stays), so that it outlives the caller. The program's path and every argument
// that starts with a drive letter are mapped to Linux paths by the Windows shim. Returns the new
// process's id, or -1 when the program cannot be started.
pid_t StartDetached(std::string_view commandLine);

}  // namespace host
