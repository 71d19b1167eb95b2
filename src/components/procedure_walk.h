#pragma once
// The walk over a code module's procedures that the list and the procedure-list check share:
// from the line after the declarations to the last line, one procedure at a time, as the IDE
// reports the procedure at a line and how many lines it spans.

#include <algorithm>
#include <cstdint>
#include <string>

#include "contracts/ide_objects.h"

namespace components {

// Calls visit(name, kind) for each procedure of the module, top to bottom.
template <class Visit>
void WalkProcedures(const contracts::CodeModule& code, Visit&& visit) {
  const int32_t total = code.CountOfLines();
  for (int32_t line = code.CountOfDeclarationLines() + 1; line <= total;) {
    int32_t kind = 0;
    const std::string name = code.ProcOfLine(line, kind);
    visit(name, kind);
    // A procedure spans at least its heading; the walk never stands still.
    line += std::max(code.ProcCountLines(name, kind), int32_t{1});
  }
}

// The key that identifies a procedure when the list is compared before and after a write: its
// kind as one digit, then its name ("0Main", "3Value").
inline std::string ProcedureKey(const std::string& name, int32_t kind) {
  return std::to_string(kind) + name;
}

}  // namespace components
