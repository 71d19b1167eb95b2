// Round trips: every fixture and generated projects in every line-end style come back byte for
// byte, and procedures rewritten through the CodeModule the way the driver writes them give
// exactly the files expected.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

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

// A generated project in every line-end style, forms with their controls and companions
// included, resaves byte for byte. Then the driver's replace
// in every procedure of every component (read the text, change it, write it back), and SaveAs
// into another folder: the files are exactly those of the same project generated with the other
// word. Hidden member attributes come back after their headings, new lines take the file's line
// ends, and the final line break (or its absence) and NUL tails stay.
TEST(RoundTrip, GeneratedProjectsResaveByteForByteAndRewrittenProceduresSaveAsExpected) {
  const std::pair<LineEnds, const char*> styles[] = {{LineEnds::kCrLf, "CR LF"},
                                                     {LineEnds::kLf, "LF"},
                                                     {LineEnds::kCr, "CR"},
                                                     {LineEnds::kMixed, "mixed"}};
  for (const auto& [ends, style] : styles) {
    SCOPED_TRACE(style);
    qxtest::TempHome home;
    qxbench::GeneratorOptions options;
    options.totalLines = 600;
    options.proceduresPerComponent = 12;
    options.ends = ends;
    // Two forms a cycle, with controls and combo box items in their .frx.
    options.formsPerCycle = 2;
    options.controlsPerForm = 10;
    options.proceduresPerForm = 4;
    auto original = qxbench::GenerateProject(home.path() / "original", options);
    options.word = "summed";
    qxbench::GenerateProject(home.path() / "expected", options);
    ASSERT_GE(original.components, 5u);  // module, class (one with a NUL tail), form, ...
    const auto untouched = Snapshot(home.path() / "original");
    fs::create_directory(home.path() / "saved");

    auto project = ide::Project::Open(original.vbp.string(), platform::GetCodePage(1252));
    std::size_t procedures = 0;
    for (std::size_t i = 0; i < project->Count(); ++i) {
      ide::Component& component = project->At(i);
      SCOPED_TRACE(component.FileName());
      procedures += qxtest::WalkProcedures(component.Code()).size();
      EXPECT_EQ(RenderThroughLines(component.File()), ReadBytes(component.FileName()));
      component.Save();
    }
    project->Save();
    EXPECT_EQ(procedures, original.procedures);
    EXPECT_EQ(Snapshot(home.path() / "original"), untouched);
    // In mixed line ends a rewritten line takes the most common end, which the generator does not
    // know; a procedure written back keeps its lines' own ends (ComponentFile tests).
    if (ends == LineEnds::kMixed) continue;

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

}  // namespace
