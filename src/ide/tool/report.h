#pragma once
// How the IDE's command line shows an error: number and description on one line.

#include <iosfwd>
#include <string>

#include "automation/error.h"

namespace ide::tool {

// "<number> <description>", line breaks of the description folded into blanks.
std::string Describe(const automation::Error& error);

// "qxvb6: error <number>: <description>" and a line break.
void PrintError(std::ostream& err, const automation::Error& error);

}  // namespace ide::tool
