#pragma once
// Walks over a code module's procedures, as the IDE reports the procedure at a line and how many
// lines it spans: the whole module for the list, the stretch around one procedure for the check
// that a write left the list of procedures as it was.

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

// Calls visit(name, kind) for the procedures that a change of the lines from `first` to
// `last` - 1 can touch: from the one that holds line `first` (or the first procedure, when that
// line is a declaration) down to the first whose heading lies at or below `last`, the one that
// follows the change. The module's list of procedures is the list of its headings, and every
// heading outside that stretch is in text the change did not touch, so comparing these visits
// before and after a write compares the whole list at the cost of a few procedures.
template <class Visit>
void WalkProceduresAround(const contracts::CodeModule& code, int32_t first, int32_t last,
                          Visit&& visit) {
  const int32_t total = code.CountOfLines();
  for (int32_t line = std::max(first, code.CountOfDeclarationLines() + 1); line <= total;) {
    int32_t kind = 0;
    const std::string name = code.ProcOfLine(line, kind);
    visit(name, kind);
    if (code.ProcBodyLine(name, kind) >= last) break;
    // From the middle of a procedure to the start of the next; never standing still, even where
    // a name declared twice makes the look-up answer for the other procedure.
    line = std::max(line + 1,
                    code.ProcStartLine(name, kind) + std::max(code.ProcCountLines(name, kind), 1));
  }
}

// The key that identifies a procedure when the list is compared before and after a write: its
// kind as one digit, then its name ("0Main", "3Value").
inline std::string ProcedureKey(const std::string& name, int32_t kind) {
  return std::to_string(kind) + name;
}

}  // namespace components
