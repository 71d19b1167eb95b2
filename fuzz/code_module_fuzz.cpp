// The code-module engine: random edits (lines inserted, deleted and replaced anywhere, whole
// procedures deleted and inserted at procedure boundaries, with look-ups in between so that the
// index is updated in place where it can be) must leave the module answering exactly as a module
// freshly read from the same lines does.
//
// The module starts from a file's text, as the IDE reads it: its lines are views of the file's
// text, and only the lines an edit writes own theirs. After every edit each line holds the text
// a plain list of strings, edited alike, holds; a line still viewing the file's text stands for
// its bytes there (it is original, and they decode to it), a line owning its text is not
// original; and the file written from the lines reads back as those lines.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "automation/error.h"
#include "fuzz_support.h"
#include "ide/code/code_module.h"
#include "ide/text/source_text.h"
#include "platform/lines.h"

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
    fresh.AppendLoadedLine(ide::SourceLine::New(line.line.Text()));
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

// The lines of a text as InsertLines cuts them: every line end starts a line, so text that ends
// with one (or is empty) has an empty line last.
std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  platform::LineReader reader(text);
  std::string_view line;
  bool ended = true;
  while (reader.Next(line)) {
    lines.emplace_back(line);
    ended = !reader.LastLineEnd().empty();
  }
  if (ended) lines.emplace_back();
  return lines;
}

// The module's lines against the texts they must hold, and each line's storage against what it
// claims: a view of the file's text, or text of its own.
void CheckLines(const CodeModule& code, const std::vector<std::string>& expected,
                std::string_view file, const platform::CodePage& codePage) {
  const auto& lines = code.RawLines();
  QX_FUZZ_CHECK(lines.size() == expected.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const ide::SourceLine& line = lines[i].line;
    QX_FUZZ_CHECK(line.Text() == expected[i]);
    if (line.original) {
      QX_FUZZ_CHECK(!line.OwnsText());
      QX_FUZZ_CHECK(line.rawOffset + line.rawLength <= file.size());
      QX_FUZZ_CHECK(codePage.Decode(file.substr(line.rawOffset, line.rawLength)) == line.Text());
    } else {
      // An empty line has no text to own.
      QX_FUZZ_CHECK(line.OwnsText() || line.Text().empty());
    }
  }
}

// The file written from the module's lines reads back as those lines. Text typed into the IDE
// that the code page cannot write is refused by the writer, which is not this target's concern.
void CheckWritten(const CodeModule& code, std::string_view file,
                  const platform::CodePage& codePage) {
  // NUL and Ctrl-Z bytes at the end of a file are read as its tail, not as text. An escape
  // character typed into a line is written as the byte it stands for, which the code page may
  // read back as other text (a byte it decodes, or one that joins its neighbour): such a line
  // is the code page's promise, not the writer's.
  for (const ide::CodeLine& line : code.RawLines()) {
    const std::string_view text = line.line.Text();
    if (text.find_first_of(std::string_view("\0\x1a", 2)) != std::string_view::npos) return;
    try {
      if (codePage.Decode(codePage.Encode(text)) != text) return;
    } catch (const automation::Error&) {
      // Not writable in the code page: the writer refuses it below.
    }
  }
  std::string written;
  try {
    ide::TextWriter writer(file, codePage, ide::LineEnd::kCrLf);
    for (const ide::CodeLine& line : code.RawLines())
      writer.Add(line.line);
    written = writer.Finish(false, {});
  } catch (const automation::Error&) {
    return;
  }
  const ide::SourceText read = ide::SplitText(written, codePage);
  // A last empty line has nothing to show it in a file without a final line break.
  std::size_t count = code.RawLines().size();
  if (count > 0 && code.RawLines().back().line.Text().empty()) --count;
  QX_FUZZ_CHECK(read.lines.size() >= count);
  for (std::size_t i = 0; i < count; ++i)
    QX_FUZZ_CHECK(read.lines[i].Text() == code.RawLines()[i].line.Text());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  const platform::CodePage& codePage = qxfuzz::CodePageFor(in.ConsumeIntegral<unsigned char>());
  // The file: lines with the line ends VB files come in.
  static const char* const kEnds[] = {"\r\n", "\n", "\r"};
  std::string file;
  const std::size_t initial = in.ConsumeIntegralInRange<std::size_t>(0, 40);
  for (std::size_t i = 0; i < initial; ++i) {
    std::string line = CodeLineFrom(in);
    line.erase(std::remove_if(line.begin(), line.end(),
                              [](char c) { return c == '\r' || c == '\n' || c == '\0'; }),
               line.end());
    file += line;
    if (i + 1 < initial || in.ConsumeBool()) file += kEnds[in.ConsumeIntegralInRange<int>(0, 2)];
  }
  const ide::SourceText text = ide::SplitText(file, codePage);
  CodeModule code;
  std::vector<std::string> expected;
  for (const ide::SourceLine& line : text.lines) {
    code.AppendLoadedLine(line);
    expected.emplace_back(line.Text());
  }
  CheckLines(code, expected, file, codePage);
  CheckAgainstFreshRead(code, false);
  // A bounded number of edits, each checked against a fresh read: enough to reach any index
  // state, few enough to keep runs fast.
  for (int edits = 0; edits < 48 && in.remaining_bytes() > 0; ++edits) {
    const int32_t count = code.CountOfLines();
    try {
      switch (in.ConsumeIntegralInRange<int>(0, 5)) {
        case 0: {  // lines inserted anywhere
          std::string inserted = CodeLineFrom(in);
          for (int n = in.ConsumeIntegralInRange<int>(0, 3); n > 0; --n)
            inserted += "\r\n" + CodeLineFrom(in);
          const int32_t at = in.ConsumeIntegralInRange<int32_t>(1, count + 1);
          code.InsertLines(at, inserted);
          const std::vector<std::string> added = LinesOf(inserted);
          expected.insert(expected.begin() + (at - 1), added.begin(), added.end());
          break;
        }
        case 1: {  // lines deleted anywhere
          const int32_t start = in.ConsumeIntegralInRange<int32_t>(1, count + 1);
          const int32_t n = in.ConsumeIntegralInRange<int32_t>(0, count + 1 - start);
          code.DeleteLines(start, n);
          expected.erase(expected.begin() + (start - 1), expected.begin() + (start - 1 + n));
          break;
        }
        case 2: {  // a whole procedure deleted, as writing its text does first
          const auto procs = code.Procedures();
          if (procs.empty()) break;
          const ProcedureInfo& p =
              procs[in.ConsumeIntegralInRange<std::size_t>(0, procs.size() - 1)];
          code.DeleteLines(p.startLine, p.countLines);
          expected.erase(expected.begin() + (p.startLine - 1),
                         expected.begin() + (p.startLine - 1 + p.countLines));
          break;
        }
        case 3: {  // a whole procedure inserted at a procedure boundary
          const auto procs = code.Procedures();
          int32_t at = count + 1;
          if (!procs.empty() && in.ConsumeBool()) {
            at = procs[in.ConsumeIntegralInRange<std::size_t>(0, procs.size() - 1)].startLine;
          }
          const std::string inserted = "Public Sub New" + std::to_string(count) + "()\r\n" +
                                       CodeLineFrom(in) + "\r\nEnd Sub";
          code.InsertLines(at, inserted);
          const std::vector<std::string> added = LinesOf(inserted);
          expected.insert(expected.begin() + (at - 1), added.begin(), added.end());
          break;
        }
        case 4: {  // a line replaced, as VBIDE's ReplaceLine does: deleted, then the text put there
          if (count == 0) break;
          const int32_t at = in.ConsumeIntegralInRange<int32_t>(1, count);
          const std::string replacement = CodeLineFrom(in);
          code.DeleteLines(at, 1);
          expected.erase(expected.begin() + (at - 1));
          code.InsertLines(at, replacement);
          const std::vector<std::string> added = LinesOf(replacement);
          expected.insert(expected.begin() + (at - 1), added.begin(), added.end());
          break;
        }
        case 5:  // look-ups between edits, so that later edits update the index in place
          (void)code.Procedures();
          (void)code.CountOfDeclarationLines();
          break;
      }
    } catch (const automation::Error&) {
      // Refused edits leave the module as it was; it is checked like any other.
    }
    CheckLines(code, expected, file, codePage);
    CheckAgainstFreshRead(code, false);
  }
  CheckAgainstFreshRead(code, true);
  CheckWritten(code, file, codePage);
  return 0;
}
