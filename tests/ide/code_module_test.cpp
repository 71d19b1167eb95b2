// Procedure boundaries, look-ups and edits of the CodeModule, on modules written the way real
// VB6 code is written, including the shapes that fool simple parsers.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "ide/code/code_module.h"
#include "module_text.h"
#include "platform/codepage.h"
#include "support/errors.h"

namespace {

using qxtest::ErrorOf;

using ide::CodeModule;
using ide::ProcKind;
using idetest::Crlf;
using idetest::Fixture;
using idetest::Module;

struct Expected {
  std::string name;
  ProcKind kind;
  int start, body, count;
};

void ExpectProcedures(const CodeModule& code, const std::vector<Expected>& expected) {
  auto procs = code.Procedures();
  ASSERT_EQ(procs.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    SCOPED_TRACE(expected[i].name);
    EXPECT_EQ(procs[i].name, expected[i].name);
    EXPECT_EQ(procs[i].kind, expected[i].kind);
    EXPECT_EQ(code.ProcStartLine(expected[i].name, expected[i].kind), expected[i].start);
    EXPECT_EQ(code.ProcBodyLine(expected[i].name, expected[i].kind), expected[i].body);
    EXPECT_EQ(code.ProcCountLines(expected[i].name, expected[i].kind), expected[i].count);
  }
  // The walk the driver makes: from the declarations, procedure by procedure, to the end.
  int line = code.CountOfDeclarationLines() + 1;
  std::size_t seen = 0;
  while (line <= code.CountOfLines()) {
    ProcKind kind;
    std::string name = code.ProcOfLine(line, kind);
    ASSERT_LT(seen, expected.size());
    EXPECT_EQ(name, expected[seen].name);
    EXPECT_EQ(code.ProcStartLine(name, kind), line);
    line += code.ProcCountLines(name, kind);
    ++seen;
  }
  EXPECT_EQ(seen, expected.size());
}

TEST(CodeModule, PropertiesAreFoundByKindAndHiddenAttributesAreNotLines) {
  auto file = Fixture("components/Class1.cls", ide::FileKind::kClass);
  const CodeModule& code = file->Code();
  EXPECT_EQ(file->Name(), "Class1");
  EXPECT_EQ(code.CountOfLines(), 13);
  EXPECT_EQ(code.CountOfDeclarationLines(), 2);
  ExpectProcedures(code, {{"Value", ProcKind::kGet, 3, 4, 4},
                          {"Value", ProcKind::kLet, 7, 8, 4},
                          {"Target", ProcKind::kSet, 11, 12, 3}});
  ProcKind kind;
  EXPECT_EQ(code.ProcOfLine(5, kind), "Value");
  EXPECT_EQ(kind, ProcKind::kGet);
  EXPECT_EQ(code.ProcStartLine("VALUE", ProcKind::kGet), 3);  // names compare as VB compares
  EXPECT_EQ(code.Lines(4, 2), "Public Property Get Value() As Long\r\n    Value = mValue");
  EXPECT_EQ(ErrorOf([&] { code.ProcStartLine("Value", ProcKind::kProc); }), 35);
  EXPECT_EQ(ErrorOf([&] { code.ProcStartLine("Target", ProcKind::kLet); }), 35);
}

// Module shapes that fool simple parsers, each with the procedures it holds and, for lines
// inside them, the procedure that owns the line.
struct Shape {
  const char* what;
  const char* file;
  int declarations;
  std::vector<Expected> procedures;
  std::vector<std::pair<int, const char*>> owners;
};

TEST(CodeModule, ProcedureBoundariesOfModulesThatFoolSimpleParsers) {
  const Shape shapes[] = {
      {"comments above a heading belong to its procedure, trailing lines to the last one",
       "modComments.bas",
       1,
       {{"Add", ProcKind::kProc, 2, 4, 5}, {"Beta", ProcKind::kProc, 7, 9, 6}},
       {{1, ""}, {3, "Add"}, {12, "Beta"}}},
      // Declarations, a Const holding "End Sub", a heading continued over four lines.
      {"headings with modifiers, continuations, strings and comments",
       "modHeadings.bas",
       10,
       {{"Spread", ProcKind::kProc, 11, 13, 9},
        {"F", ProcKind::kProc, 20, 20, 1},
        {"Counter", ProcKind::kProc, 21, 21, 2}},
       {{15, "Spread"}}},  // inside the continued heading
      // A comment continued onto a Sub line; a _ inside a string.
      {"continued comments and strings do not open procedures",
       "modContinued.bas",
       4,
       {{"Real", ProcKind::kProc, 5, 5, 4}},
       {}},
      {"conditional compilation with the same heading in both branches",
       "modConditional.bas",
       8,
       {{"Handle", ProcKind::kProc, 9, 9, 6},
        {"Trace", ProcKind::kProc, 15, 17, 8},
        {"Last", ProcKind::kProc, 23, 24, 3}},
       {}},
      // Stray Ends, a procedure without one, a heading cut short at the end.
      {"broken structure gives a best-effort model",
       "modBroken.bas",
       2,
       {{"A", ProcKind::kProc, 3, 3, 2},
        {"B", ProcKind::kProc, 5, 5, 2},
        {"C", ProcKind::kProc, 7, 9, 3}},
       {}},
      {"only declarations", "modDeclarations.bas", 4, {}, {}},
      {"comments right below an End belong to the next procedure",
       "modBelow.bas",
       1,
       {{"A", ProcKind::kProc, 2, 2, 2},
        {"B", ProcKind::kProc, 4, 5, 3},
        {"C", ProcKind::kProc, 7, 7, 3}},
       {{4, "B"}, {9, "C"}}},
  };
  for (const Shape& shape : shapes) {
    SCOPED_TRACE(shape.what);
    auto file = Fixture(std::string("components/") + shape.file);
    const CodeModule& code = file->Code();
    EXPECT_EQ(code.CountOfDeclarationLines(), shape.declarations);
    ExpectProcedures(code, shape.procedures);
    for (const auto& [line, owner] : shape.owners) {
      ProcKind kind = ProcKind::kGet;
      EXPECT_EQ(code.ProcOfLine(line, kind), owner) << "line " << line;
      if (*owner == '\0') {
        EXPECT_EQ(kind, ProcKind::kProc) << "line " << line;  // declarations
      }
    }
  }
  auto empty = Module("Attribute VB_Name = \"Empty\"\r\n");
  EXPECT_EQ(empty->Code().CountOfLines(), 0);
  EXPECT_EQ(empty->Code().CountOfDeclarationLines(), 0);
  EXPECT_EQ(empty->Code().Lines(1, 0), "");
}

TEST(CodeModule, LinesOutsideTheModuleRaiseVbErrorsAndTheEdgesAreAllowed) {
  auto file = Module(Crlf({"Sub A()", "End Sub"}));
  CodeModule& code = file->Code();
  constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
  ProcKind kind;
  EXPECT_EQ(ErrorOf([&] { code.ProcOfLine(0, kind); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.ProcOfLine(3, kind); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.Lines(0, 1); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.Lines(3, 1); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.Lines(std::numeric_limits<int32_t>::min(), 1); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.Lines(1, -1); }), 5);
  EXPECT_EQ(ErrorOf([&] { code.DeleteLines(3); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.DeleteLines(1, 3); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.DeleteLines(2, kMax); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.DeleteLines(1, -1); }), 5);
  EXPECT_EQ(ErrorOf([&] { code.InsertLines(0, "x"); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.InsertLines(4, "x"); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.InsertLines(kMax, "x"); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.ProcStartLine("Nope", ProcKind::kProc); }), 35);
  EXPECT_EQ(ErrorOf([&] { code.ProcCountLines("A", static_cast<ProcKind>(7)); }), 5);
  EXPECT_EQ(code.CountOfLines(), 2);
  EXPECT_FALSE(code.IsDirty());

  EXPECT_EQ(code.Lines(3, 0), "");          // nothing, just after the end
  EXPECT_EQ(code.Lines(2, 10), "End Sub");  // a count past the end stops at the last line
  EXPECT_EQ(code.Lines(1, kMax), "Sub A()\r\nEnd Sub");
  code.DeleteLines(3, 0);  // none, just after the end
  code.DeleteLines(1, 2);
  // The driver writes the empty declarations of an empty module: delete none, insert.
  code.DeleteLines(1, 0);
  EXPECT_EQ(ErrorOf([&] { code.DeleteLines(2, 0); }), 9);
  code.InsertLines(1, "Function F()\r\nEnd Function");
  ExpectProcedures(code, {{"F", ProcKind::kProc, 1, 1, 2}});
}

// VB takes names that differ only in letter case for one, in every script of its code page. It
// loads a module that declares a name twice (it only refuses to compile it): look-ups find the
// first, and the driver's walk still moves through the module.
TEST(CodeModule, LookUpsIgnoreLetterCaseAndFindTheFirstOfTwoProceduresWithOneName) {
  auto accented = Module(platform::GetCodePage(1252).Encode(
      Crlf({"Sub Ärger()", "End Sub", "Property Get Größe()", "End Property"})));
  EXPECT_EQ(accented->Code().ProcStartLine("äRGER", ProcKind::kProc), 1);
  EXPECT_EQ(accented->Code().ProcStartLine("GRÖßE", ProcKind::kGet), 3);

  auto file = Module(Crlf({"Sub Twice()", "    x = 1", "End Sub", "", "Sub Twice()", "End Sub",
                           "Sub Other()", "End Sub"}));
  const CodeModule& code = file->Code();
  ASSERT_EQ(code.Procedures().size(), 3u);
  EXPECT_EQ(code.ProcStartLine("Twice", ProcKind::kProc), 1);
  ProcKind kind;
  EXPECT_EQ(code.ProcOfLine(5, kind), "Twice");
  EXPECT_EQ(code.ProcCountLines("Twice", ProcKind::kProc), 3);  // still the first one
  EXPECT_EQ(code.ProcStartLine("Other", ProcKind::kProc), 7);
}

// Writing a procedure's text updates the index in place; every other edit rebuilds it. Either
// way the answers must be those of the module read afresh: this replays the driver's writes
// (same text, a renamed heading, two procedures for one, none) and other edits (lines inside a
// body, comments between procedures, code in the declarations, appended procedures), checking
// after each one against a new reading of the saved text.
TEST(CodeModule, TheIndexAfterEveryEditIsTheIndexOfTheTextReadAfresh) {
  std::string text = "Attribute VB_Name = \"M\"\r\nOption Explicit\r\nDim x As Long\r\n";
  for (int i = 0; i < 12; ++i) {
    std::string n = std::to_string(i);
    text += "\r\n' P" + n + "\r\n";
    text += i % 3 == 1
                ? "Public Property Get P" + n + "() As Long\r\nEnd Property\r\n"
                : "Private Sub P" + n + "(ByVal a As Long, _\r\n  b)\r\n  x = 1\r\nEnd Sub\r\n";
  }
  text += "\r\n' the end\r\n";
  auto file = Module(text);
  CodeModule& code = file->Code();

  auto check = [&](const std::string& step) {
    SCOPED_TRACE(step);
    auto fresh = Module(file->Render());
    idetest::ExpectSameIndex(code, fresh->Code());
  };
  // The driver's write: the region replaced by CR LF and the text.
  auto write = [&](const std::string& name, ProcKind kind, const std::string& newText) {
    int32_t start = code.ProcStartLine(name, kind);
    int32_t count = code.ProcCountLines(name, kind);
    code.DeleteLines(start, count);
    check("after deleting " + name);
    code.InsertLines(start, "\r\n" + newText);
    check("after writing " + name);
  };
  check("as read");
  write("P0", ProcKind::kProc, "' P0\r\nPrivate Sub P0()\r\nEnd Sub");
  write("P1", ProcKind::kGet, "Public Property Let P1(v As Long)\r\nEnd Property\r\n\r\n");
  write("P2", ProcKind::kProc, "Sub Q2()\r\nEnd Sub\r\n' between\r\nSub R2(): End Sub");
  write("P11", ProcKind::kProc, "Sub Last()\r\nEnd Sub\r\n\r\n' trailing");
  write("P5", ProcKind::kProc, "' nothing left of P5");
  write("P6", ProcKind::kProc, "Sub P6()\r\n  x = 1");  // no End: the next one is taken in
  write("P8", ProcKind::kProc, "Dim y As Long");        // code where a procedure was
  code.InsertLines(code.ProcBodyLine("P9", ProcKind::kProc) + 2, "  y = 2");
  check("a line inside a body");
  code.InsertLines(code.ProcStartLine("P3", ProcKind::kProc), "' above P3\r\n");
  check("comments above a procedure");
  code.InsertLines(3, "Dim z As Long");
  check("a declaration");
  code.InsertLines(code.CountOfLines() + 1, "Function Appended()\r\nEnd Function");
  check("a procedure appended");
  code.InsertLines(code.CountOfLines() + 1, "");  // "" is one empty line
  EXPECT_EQ(code.Lines(code.CountOfLines(), 1), "");
  check("a blank line appended");
  code.InsertLines(code.ProcStartLine("P3", ProcKind::kProc), "Sub P4()\r\nEnd Sub");
  check("a second P4");
  code.DeleteLines(code.ProcStartLine("P4", ProcKind::kProc), 2);
  check("part of a region");
  // Every line end VB knows separates inserted lines; a final one leaves an empty line.
  const int32_t lines = code.CountOfLines();
  code.InsertLines(code.ProcStartLine("P10", ProcKind::kGet),
                   "Function Beta() As Long\rBeta = 1\nEnd Function\r\n");
  EXPECT_EQ(code.CountOfLines(), lines + 4);
  check("lines ended by CR, LF and CR LF");
  // Deleting a heading leaves its End as a stray line, which the next procedure's region takes.
  code.DeleteLines(code.ProcBodyLine("Beta", ProcKind::kProc));
  check("a heading");
  code.DeleteLines(code.CountOfDeclarationLines() + 1,
                   code.CountOfLines() - code.CountOfDeclarationLines());
  check("every procedure");
  EXPECT_TRUE(code.IsDirty());
  code.DeleteLines(1, code.CountOfLines());
  EXPECT_EQ(code.CountOfLines(), 0);
  EXPECT_TRUE(code.Procedures().empty());
}

// Found by fuzzing: deleting the first procedure made the next one start at line 1, although a
// declaration stood between the two and now belongs to the declarations.
TEST(CodeModuleFound, DeletingTheFirstProcedureGivesTheNextOneTheDeclarations) {
  auto file = Module(Crlf({"Attribute VB_Name = \"M\"", "Sub A()", "End Sub",
                           "Private Declare Sub S Lib \"k\" ()", "", "Sub B()", "End Sub"}));
  CodeModule& code = file->Code();
  ExpectProcedures(code, {{"A", ProcKind::kProc, 1, 1, 2}, {"B", ProcKind::kProc, 3, 5, 4}});
  code.DeleteLines(1, 2);
  EXPECT_EQ(code.CountOfDeclarationLines(), 1);
  ExpectProcedures(code, {{"B", ProcKind::kProc, 2, 3, 3}});
}

}  // namespace
