#pragma once
// The way the driver reads and writes procedure text through a CodeModule, for tests and
// benchmarks of the IDE model: walk the procedures from the end of the declarations with
// ProcOfLine and ProcCountLines, read a procedure's region without its leading blank lines, and
// write new text by deleting the region and inserting CR LF and the text, checking afterwards
// that the module still has the same procedures.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ide/code/code_module.h"

namespace qxtest {

struct ProcRef {
  std::string name;  // empty for the declarations section
  ide::ProcKind kind = ide::ProcKind::kProc;
  bool operator==(const ProcRef&) const = default;
};

// Every procedure in module order, as the driver finds them (the declarations not included).
inline std::vector<ProcRef> WalkProcedures(const ide::CodeModule& code) {
  std::vector<ProcRef> procs;
  const int32_t total = code.CountOfLines();
  for (int32_t line = code.CountOfDeclarationLines() + 1; line <= total;) {
    ProcRef ref;
    ref.name = code.ProcOfLine(line, ref.kind);
    int32_t count = code.ProcCountLines(ref.name, ref.kind);
    if (count < 1) break;  // never happens; a walk must not stand still
    line += count;
    procs.push_back(std::move(ref));
  }
  return procs;
}

// The lines a procedure stands for (the declarations: line 1 on), as start and count.
inline void Region(const ide::CodeModule& code, const ProcRef& proc, int32_t& start,
                   int32_t& count) {
  if (proc.name.empty()) {
    start = 1;
    count = code.CountOfDeclarationLines();
  } else {
    start = code.ProcStartLine(proc.name, proc.kind);
    count = code.ProcCountLines(proc.name, proc.kind);
  }
}

// The procedure's text: its region without the lines of spaces at its top.
inline std::string ReadProcedureText(const ide::CodeModule& code, const ProcRef& proc) {
  int32_t start = 0;
  int32_t count = 0;
  Region(code, proc, start, count);
  while (count >= 1 && code.Lines(start, 1).find_first_not_of(' ') == std::string::npos) {
    ++start;
    --count;
  }
  return count == 0 ? std::string() : code.Lines(start, count);
}

// Replaces the procedure's region with CR LF and the text. False when the module's procedures
// are no longer the same ones afterwards (the driver then undoes the write; tests just fail).
inline bool WriteProcedureText(ide::CodeModule& code, const ProcRef& proc, std::string_view text) {
  std::vector<ProcRef> before = WalkProcedures(code);
  int32_t start = 0;
  int32_t count = 0;
  Region(code, proc, start, count);
  code.DeleteLines(start, count);
  std::string inserted = "\r\n";
  inserted += text;
  code.InsertLines(start, inserted);
  return WalkProcedures(code) == before;
}

}  // namespace qxtest
