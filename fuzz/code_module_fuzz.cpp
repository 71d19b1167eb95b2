// The code-module engine: random edits (lines inserted and deleted anywhere, whole procedures
// deleted and inserted at procedure boundaries, with look-ups in between so that the index is
// updated in place where it can be) must leave the module answering exactly as a module freshly
// read from the same lines does.

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "automation/error.h"
#include "fuzz_support.h"
#include "ide/code/code_module.h"

namespace {

using ide::CodeModule;
using ide::ProcedureInfo;

bool Same(const std::vector<ProcedureInfo>& a, const std::vector<ProcedureInfo>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i].name != b[i].name || a[i].kind != b[i].kind || a[i].startLine != b[i].startLine ||
        a[i].bodyLine != b[i].bodyLine || a[i].countLines != b[i].countLines) {
      return false;
    }
  }
  return true;
}

// The edited module against one read from its lines; line by line (each line's procedure) only
// when asked, since the procedures' regions already say it.
void CheckAgainstFreshRead(const CodeModule& edited, bool eachLine) {
  CodeModule fresh;
  for (const ide::CodeLine& line : edited.RawLines())
    fresh.AppendLoadedLine(ide::SourceLine::New(line.line.text));
  QX_FUZZ_CHECK(fresh.CountOfLines() == edited.CountOfLines());
  QX_FUZZ_CHECK(fresh.CountOfDeclarationLines() == edited.CountOfDeclarationLines());
  QX_FUZZ_CHECK(Same(fresh.Procedures(), edited.Procedures()));
  for (int32_t line = 1; eachLine && line <= edited.CountOfLines(); ++line) {
    ide::ProcKind a = ide::ProcKind::kProc;
    ide::ProcKind b = ide::ProcKind::kProc;
    QX_FUZZ_CHECK(fresh.ProcOfLine(line, a) == edited.ProcOfLine(line, b) && a == b);
  }
}

// A short line of code, mostly made of the words that decide procedure boundaries.
std::string CodeLineFrom(FuzzedDataProvider& in) {
  static const char* const kWords[] = {
      "Sub A()",        "End Sub",          "Public Function F() As Long",
      "End Function",   "Property Get P()", "Property Let P(v)",
      "End Property",   "#If X Then",       "#Else",
      "#End If",        "' comment",        "",
      "Dim x As Long",  "x = 1 _",          "Private Declare Sub S Lib \"k\" ()",
      "Static Sub T()", "Exit Sub",         "Friend Sub U(): End Sub",
  };
  if (in.ConsumeBool()) return kWords[in.ConsumeIntegralInRange<std::size_t>(0, 17)];
  return in.ConsumeRandomLengthString(40);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  CodeModule code;
  const std::size_t initial = in.ConsumeIntegralInRange<std::size_t>(0, 40);
  for (std::size_t i = 0; i < initial; ++i)
    code.AppendLoadedLine(ide::SourceLine::New(CodeLineFrom(in)));
  CheckAgainstFreshRead(code, false);
  // A bounded number of edits, each checked against a fresh read: enough to reach any index
  // state, few enough to keep runs fast.
  for (int edits = 0; edits < 48 && in.remaining_bytes() > 0; ++edits) {
    const int32_t count = code.CountOfLines();
    try {
      switch (in.ConsumeIntegralInRange<int>(0, 4)) {
        case 0: {  // lines inserted anywhere
          std::string text = CodeLineFrom(in);
          for (int n = in.ConsumeIntegralInRange<int>(0, 3); n > 0; --n)
            text += "\r\n" + CodeLineFrom(in);
          code.InsertLines(in.ConsumeIntegralInRange<int32_t>(1, count + 1), text);
          break;
        }
        case 1: {  // lines deleted anywhere
          const int32_t start = in.ConsumeIntegralInRange<int32_t>(1, count + 1);
          code.DeleteLines(start, in.ConsumeIntegralInRange<int32_t>(0, count + 1 - start));
          break;
        }
        case 2: {  // a whole procedure deleted, as writing its text does first
          const auto procs = code.Procedures();
          if (procs.empty()) break;
          const ProcedureInfo& p =
              procs[in.ConsumeIntegralInRange<std::size_t>(0, procs.size() - 1)];
          code.DeleteLines(p.startLine, p.countLines);
          break;
        }
        case 3: {  // a whole procedure inserted at a procedure boundary
          const auto procs = code.Procedures();
          int32_t at = count + 1;
          if (!procs.empty() && in.ConsumeBool()) {
            at = procs[in.ConsumeIntegralInRange<std::size_t>(0, procs.size() - 1)].startLine;
          }
          code.InsertLines(at, "Public Sub New" + std::to_string(count) + "()\r\n" +
                                   CodeLineFrom(in) + "\r\nEnd Sub");
          break;
        }
        case 4:  // look-ups between edits, so that later edits update the index in place
          (void)code.Procedures();
          (void)code.CountOfDeclarationLines();
          break;
      }
    } catch (const automation::Error&) {
      // Refused edits leave the module as it was; it is checked like any other.
    }
    CheckAgainstFreshRead(code, false);
  }
  CheckAgainstFreshRead(code, true);
  return 0;
}
