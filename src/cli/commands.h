#pragma once
// The verbs of qx.

#include <iosfwd>
#include <string>

namespace cli {

struct ListOptions {
  std::string projectFile;
  bool raw = false;
};

// Lists the project's components per collection; --raw prints each collection's enumeration
// string exactly as the driver returns it.
int RunList(const ListOptions& options, std::ostream& out, std::ostream& err);

struct CheckOptions {
  std::string projectFile;
};

// Runs the checks the driver makes before it opens a project in the IDE.
int RunCheck(const CheckOptions& options, std::ostream& out, std::ostream& err);

}  // namespace cli
