// Round trips: every fixture and generated projects in every line-end style come back byte for
// byte, and procedures rewritten through the CodeModule the way the driver writes them give
// exactly the files expected.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "automation/error.h"
#include "bench/generator/project_generator.h"
#include "fixture_copy.h"
#include "ide/model/project.h"
#include "platform/codepage.h"
#include "support/procedure_text.h"
#include "support/temp_home.h"

namespace {

namespace fs = std::filesystem;
using idetest::ReadBytes;
using idetest::RenderThroughLines;
using idetest::Snapshot;
using qxbench::LineEnds;

const char* StyleName(LineEnds ends) {
  switch (ends) {
    case LineEnds::kCrLf:
      return "CR LF";
    case LineEnds::kLf:
      return "LF";
    case LineEnds::kCr:
      return "CR";
    case LineEnds::kMixed:
      return "mixed";
    case LineEnds::kCycle:
      break;
  }
  return "cycle";
}

TEST(RoundTrip, GeneratedProjectsInEveryLineEndStyleResaveByteForByte) {
  for (LineEnds ends : {LineEnds::kCrLf, LineEnds::kLf, LineEnds::kCr, LineEnds::kMixed}) {
    SCOPED_TRACE(StyleName(ends));
    qxtest::TempHome home;
    qxbench::GeneratorOptions options;
    options.totalLines = 600;
    options.proceduresPerComponent = 12;
    options.ends = ends;
    auto generated = qxbench::GenerateProject(home.path() / "big", options);
    ASSERT_GE(generated.components, 5u);  // module, class (one with a NUL tail), form, ...
    auto before = Snapshot(home.path() / "big");

    auto project = ide::Project::Open(generated.vbp.string(), platform::GetCodePage(1252));
    std::size_t procedures = 0;
    for (std::size_t i = 0; i < project->Count(); ++i) {
      ide::Component& component = project->At(i);
      SCOPED_TRACE(component.FileName());
      procedures += qxtest::WalkProcedures(component.Code()).size();
      EXPECT_EQ(RenderThroughLines(component.File()), ReadBytes(component.FileName()));
      component.Save();
    }
    project->Save();
    EXPECT_EQ(procedures, generated.procedures);
    EXPECT_EQ(Snapshot(home.path() / "big"), before);
  }
}

// The driver's replace in every procedure of every component (read the text, change it, write
// it back), then SaveAs into another folder: the files are exactly those of the same project
// generated with the other word. Hidden member attributes come back after their headings, new
// lines take the file's line ends, and the final line break (or its absence) and NUL tails stay.
TEST(RoundTrip, ProceduresRewrittenThroughTheCodeModuleSaveAsExactlyExpected) {
  for (LineEnds ends : {LineEnds::kCrLf, LineEnds::kLf, LineEnds::kCr}) {
    SCOPED_TRACE(StyleName(ends));
    qxtest::TempHome home;
    qxbench::GeneratorOptions options;
    options.totalLines = 400;
    options.proceduresPerComponent = 8;
    options.ends = ends;
    auto original = qxbench::GenerateProject(home.path() / "original", options);
    options.word = "summed";
    auto expected = qxbench::GenerateProject(home.path() / "expected", options);
    auto untouched = Snapshot(home.path() / "original");
    fs::create_directory(home.path() / "saved");

    auto project = ide::Project::Open(original.vbp.string(), platform::GetCodePage(1252));
    for (std::size_t i = 0; i < project->Count(); ++i) {
      ide::Component& component = project->At(i);
      SCOPED_TRACE(component.FileName());
      ide::CodeModule& code = component.Code();
      for (const qxtest::ProcRef& proc : qxtest::WalkProcedures(code)) {
        std::string text = qxtest::ReadProcedureText(code, proc);
        std::size_t at = text.find("running");
        ASSERT_NE(at, std::string::npos);
        text.replace(at, 7, "summed");
        ASSERT_TRUE(qxtest::WriteProcedureText(code, proc, text)) << proc.name;
      }
      EXPECT_TRUE(component.IsDirty());
      fs::path name = fs::path(component.FileName()).filename();
      component.SaveAs((home.path() / "saved" / name).string());
      EXPECT_FALSE(component.IsDirty());
      EXPECT_EQ(ReadBytes(home.path() / "saved" / name),
                ReadBytes(home.path() / "expected" / name));
    }
    EXPECT_EQ(Snapshot(home.path() / "original"), untouched);  // SaveAs wrote elsewhere
  }
}

// Writing back the text just read changes nothing but the line ends of a file whose ends are
// mixed: the rewritten lines are new and take the file's most common line end.
TEST(RoundTrip, TextWrittenBackUnchangedOnlyEvensOutMixedLineEnds) {
  qxtest::TempHome home;
  qxbench::GeneratorOptions options;
  options.totalLines = 1;
  options.proceduresPerComponent = 6;
  options.ends = LineEnds::kMixed;
  auto generated = qxbench::GenerateProject(home.path() / "mixed", options);
  auto project = ide::Project::Open(generated.vbp.string(), platform::GetCodePage(1252));
  ide::Component& module = project->At(0);
  std::string before = ReadBytes(module.FileName());
  ide::CodeModule& code = module.Code();
  auto procs = qxtest::WalkProcedures(code);
  ASSERT_EQ(procs.size(), 6u);
  for (const auto& proc : procs)
    ASSERT_TRUE(qxtest::WriteProcedureText(code, proc, qxtest::ReadProcedureText(code, proc)));
  module.Save();
  std::string after = ReadBytes(module.FileName());
  EXPECT_NE(after, before);
  // The same text once line ends are set aside; and the header and declarations kept theirs.
  auto strip = [](std::string s) {
    std::erase_if(s, [](char c) { return c == '\r' || c == '\n'; });
    return s;
  };
  EXPECT_EQ(strip(after), strip(before));
  // Up to the end of the declarations nothing changed; after it every line end is the same.
  std::size_t declarations = before.find("Private mCount As Long") + 22;
  std::size_t rest = declarations + (before.compare(declarations, 2, "\r\n") == 0 ? 2 : 1);
  EXPECT_EQ(after.substr(0, rest), before.substr(0, rest));
  std::set<std::string> ends;
  for (std::size_t at = rest; at < after.size(); ++at) {
    if (after[at] == '\r' && at + 1 < after.size() && after[at + 1] == '\n') {
      ends.insert("CR LF");
      ++at;
    } else if (after[at] == '\r') {
      ends.insert("CR");
    } else if (after[at] == '\n') {
      ends.insert("LF");
    }
  }
  EXPECT_EQ(ends.size(), 1u);
}

}  // namespace
