#pragma once
// How the IDE's command line shows an error: number and description on one line.

#include <iosfwd>
#include <string>
#include <string_view>

#include "automation/error.h"

namespace ide::tool {

// "<number> <description>", line breaks of the description folded into blanks.
std::string Describe(const automation::Error& error);

// "qxvb6: error <number>: <description>" and a line break.
void PrintError(std::ostream& err, const automation::Error& error);
// "qxvb6: <subject>: error <number>: <description>": an error of one part of the work (a
// component) that does not end it.
void PrintError(std::ostream& err, std::string_view subject, const automation::Error& error);

}  // namespace ide::tool
