#pragma once
// How qx shows failures: the error number and the whole description, trail included, on
// standard error.

#include <iosfwd>
#include <string>
#include <string_view>

#include "automation/error.h"

namespace cli {

// Exit statuses, as grep-like tools use them.
inline constexpr int kExitMatch = 0;
inline constexpr int kExitNoMatch = 1;
inline constexpr int kExitError = 2;

// The driver's texts use CR LF; a terminal or a pipe wants plain line feeds.
std::string ForTerminal(std::string_view text);

void PrintError(std::ostream& out, const automation::Error& error);

}  // namespace cli
