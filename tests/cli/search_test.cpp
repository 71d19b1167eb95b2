// The pieces of qx search and qx replace that need no IDE: which projects and files a run
// covers, the scanner's results placed in the files' lines, the output in ripgrep's shapes and
// the diff of a replacement.

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "automation/error.h"
#include "cli/file_matches.h"
#include "cli/prefilter.h"
#include "cli/printer.h"
#include "cli/project_files.h"
#include "cli/project_survey.h"
#include "cli/scan_results.h"
#include "cli/scratch_copy.h"
#include "cli/search_options.h"
#include "cli/unified_diff.h"
#include "host/run_view.h"
#include "host/scan/scan_request.h"
#include "platform/codepage.h"
#include "support/driver_env.h"

namespace {

namespace fs = std::filesystem;
using qxtest::DriverEnv;

TEST(SearchPaths, ProjectsGroupsAndFoldersGiveEachProjectOnceAndItsComponentFiles) {
  DriverEnv env;
  const fs::path root = env.work();
  fs::create_directories(root / "a" / "deep");
  qxtest::WriteBytes((root / "a" / "A.vbp").string(), "Type=Exe\r\n");
  qxtest::WriteBytes((root / "a" / "deep" / "B.VBP").string(), "Type=Exe\r\n");
  qxtest::WriteBytes((root / "g.vbg").string(),
                     "VBGROUP 5.0\r\nStartupProject=a\\A.vbp\r\nProject=a\\deep\\B.VBP\r\n"
                     "Project=gone\\C.vbp\r\n");
  const cli::ProjectDiscovery found =
      cli::FindProjects({(root / "g.vbg").string(), (root / "a").string(),
                         (root / "a" / "A.vbp").string(), (root / "nothing").string()});
  ASSERT_EQ(found.projects.size(), 2u);
  EXPECT_EQ(found.projects[0].filename(), "A.vbp");
  EXPECT_EQ(found.projects[1].filename(), "B.VBP");
  ASSERT_EQ(found.errors.size(), 2u);
  EXPECT_NE(found.errors[0].Description().find("line 4 of"), std::string::npos);
  EXPECT_EQ(found.errors[1].Number(), 53);

  // A project's component files come from its project file, a name from the file otherwise.
  fs::create_directories(root / "p" / "shared");
  qxtest::WriteBytes((root / "p" / "P.vbp").string(),
                     "Type=Exe\r\nForm=Main.frm\r\nModule=Util; shared\\Util.bas\r\n"
                     "Class=CThing; \"C Thing.cls\"\r\n");
  qxtest::WriteBytes(
      (root / "p" / "Main.frm").string(),
      "VERSION 5.00\r\nBegin VB.Form frmMain\r\nEnd\r\nAttribute VB_Name = \"frmMain\"\r\n");
  const std::vector<cli::ComponentFile> files = cli::ReadComponentFiles(root / "p" / "P.vbp");
  ASSERT_EQ(files.size(), 3u);
  EXPECT_EQ(files[0].collection, "Forms");
  EXPECT_EQ(files[0].name, "frmMain");
  EXPECT_EQ(files[1].name, "Util");
  EXPECT_EQ(cli::FileKey(files[1].file), cli::FileKey(root / "p" / "shared" / "Util.bas"));
  EXPECT_EQ(files[2].collection, "ClassModules");
  EXPECT_EQ(files[2].file.filename(), "C Thing.cls");
}

TEST(SearchPaths, CompanionsAreTheFilesOfTheSameNameAndAPagesSourceFile) {
  DriverEnv env;
  const fs::path root = env.work();
  fs::create_directories(root / "Pages");
  for (const char* name : {"Form1.frm", "FORM1.FRX", "form1.log", "Form10.frx", "Form1.frm.bak"})
    qxtest::WriteBytes((root / name).string(), "x");
  const auto names = [](const std::vector<cli::CompanionFile>& files) {
    std::vector<std::string> out;
    for (const cli::CompanionFile& file : files)
      out.push_back(file.file.filename().string() + (file.absolute ? " absolute" : ""));
    return out;
  };
  EXPECT_EQ(names(cli::CompanionFiles(root / "Form1.frm")),
            (std::vector<std::string>{"FORM1.FRX", "form1.log"}));

  // A page's SourceFile, found as Windows finds it; a nested object's setting is not the page's.
  qxtest::WriteBytes((root / "Pages" / "main.htm").string(), "<HTML>");
  const std::string page =
      "VERSION 5.00\r\nBegin {90290CCD-F27D-11D0-8031-00C04FB6C701} Page1 \r\n"
      "   BeginProperty Font \r\n      Name = \"Arial\"\r\n   EndProperty\r\n"
      "   SourceFile      =   \"pages\\Main.HTM\"\r\nEnd\r\nAttribute VB_Name = \"Page1\"\r\n";
  qxtest::WriteBytes((root / "Page1.Dsr").string(), page);
  EXPECT_EQ(names(cli::CompanionFiles(root / "Page1.Dsr")), std::vector<std::string>{"main.htm"});
  qxtest::WriteBytes((root / "Page2.Dsr").string(),
                     "VERSION 5.00\r\nBegin {90290CCD-F27D-11D0-8031-00C04FB6C701} Page2 \r\n"
                     "   SourceFile      =   \"z:" +
                         (root / "Pages" / "main.htm").string() + "\"\r\nEnd\r\n");
  EXPECT_EQ(names(cli::CompanionFiles(root / "Page2.Dsr")),
            std::vector<std::string>{"main.htm absolute"});
  qxtest::WriteBytes((root / "Page3.Dsr").string(),
                     "VERSION 5.00\r\nBegin {X} Page3 \r\n   Begin VB.Label l \r\n"
                     "      SourceFile = \"pages\\main.htm\"\r\n   End\r\nEnd\r\n");
  EXPECT_TRUE(cli::CompanionFiles(root / "Page3.Dsr").empty());
}

// A preview's scratch copy: a fresh private folder for each copy, every file made new there, a
// link of the project copied as the file it names, never written through; gone with the copy.
TEST(SearchPaths, AScratchCopyIsPrivateFreshAndHoldsNoLinks) {
  DriverEnv env;
  const fs::path root = env.work() / "Proj";
  qxtest::WriteBytes((env.work() / "outside" / "Real.bas").string(),
                     "Attribute VB_Name = \"M\"\r\n");
  qxtest::WriteBytes((root / "P.vbp").string(), "Type=Exe\r\n");
  qxtest::WriteBytes((root / "Form1.frm").string(), "form");
  qxtest::WriteBytes((root / "Form1.frx").string(), "companion");
  fs::create_symlink(env.work() / "outside" / "Real.bas", root / "Module1.bas");
  const std::vector<cli::ComponentFile> files = {{"Forms", "Form1", root / "Form1.frm", false},
                                                 {"Modules", "M", root / "Module1.bas", false}};
  fs::path first;
  {
    const cli::ScratchCopy copy(root / "P.vbp", files);
    const cli::ScratchCopy second(root / "P.vbp", files);
    first = copy.root();
    EXPECT_NE(copy.root(), second.root());
    EXPECT_EQ(copy.root().filename().string().rfind("qx-preview-", 0), 0u);
    EXPECT_EQ(fs::status(copy.root()).permissions() & fs::perms::all, fs::perms::owner_all);
    const fs::path module = copy.Inside(root / "Module1.bas");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(module)));
    EXPECT_EQ(qxtest::ReadBytes(copy.Inside(root / "Form1.frx")), "companion");
    EXPECT_EQ(copy.Outside(module), root / "Module1.bas");
    qxtest::WriteBytes(module.string(), "changed in the copy");
    EXPECT_EQ(qxtest::ReadBytes(env.work() / "outside" / "Real.bas"),
              "Attribute VB_Name = \"M\"\r\n");
    EXPECT_EQ(copy.project(), copy.Inside(root / "P.vbp"));
  }
  EXPECT_FALSE(fs::exists(first));
  // A file named by an absolute path is left out of the copy, and said to be.
  const std::vector<cli::ComponentFile> absolute = {{"Modules", "M", root / "Module1.bas", true}};
  const cli::ScratchCopy copy(root / "P.vbp", absolute);
  ASSERT_EQ(copy.LeftOut().size(), 1u);
  EXPECT_EQ(copy.LeftOut()[0].file, root / "Module1.bas");
  EXPECT_FALSE(fs::exists(copy.Inside(root / "Module1.bas")));
}

// Before a project is opened, the driver's own check is run with the run's view: each library
// it stops at is a note, each missing component file an error, both with their line, and the view
// answers for exactly those; a line nothing can stand in for leaves the project unopened.
TEST(SearchPaths, TheSurveyNotesLibrariesAndMissingFilesAndTheViewAnswersForThem) {
  DriverEnv env;
  const fs::path estate = env.CopyFixture("estate");
  const host::RunView::Scope scope;

  const cli::ProjectSurvey orders = cli::SurveyProject(estate / "Orders" / "Orders.vbp");
  EXPECT_TRUE(orders.opens);
  ASSERT_EQ(orders.problems.size(), 2u);
  EXPECT_TRUE(orders.problems[0].note);
  EXPECT_EQ(orders.problems[0].line, 3u);
  EXPECT_EQ(orders.problems[0].message,
            "library {6C3A0C1E-4B2D-4E8A-9A51-2F7D3B1C0E91}#1.1 (Vendor Library) not registered "
            "on this machine; searched anyway");
  EXPECT_EQ(orders.problems[1].line, 4u);
  EXPECT_NE(orders.problems[1].message.find("#2.0 (VENDOR.OCX)"), std::string::npos);
  EXPECT_TRUE(host::RunView::Current().HasKey(
      "HKEY_CLASSES_ROOT\\TypeLib\\{8B1E4F2A-3C5D-4A6B-9E7F-1A2B3C4D5E6F}"));

  const cli::ProjectSurvey gaps = cli::SurveyProject(estate / "Gaps" / "Gaps.vbp");
  EXPECT_FALSE(host::RunView::Current().HasKey(
      "HKEY_CLASSES_ROOT\\TypeLib\\{8B1E4F2A-3C5D-4A6B-9E7F-1A2B3C4D5E6F}"))
      << "each project has its own view";
  ASSERT_EQ(gaps.problems.size(), 1u);
  EXPECT_FALSE(gaps.problems[0].note);
  EXPECT_EQ(gaps.problems[0].line, 4u);
  EXPECT_EQ(gaps.problems[0].component, "modShared");
  EXPECT_EQ(*gaps.problems[0].number, 53);
  EXPECT_EQ(gaps.missing.size(), 1u);
  EXPECT_EQ(gaps.files.size(), 3u);
  EXPECT_TRUE(host::RunView::Current().HasFile((estate / "Shared" / "modShared.bas").string()));
  EXPECT_FALSE(fs::exists(estate / "Shared"));

  const cli::ProjectSurvey linked = cli::SurveyProject(estate / "Linked" / "Linked.vbp");
  EXPECT_FALSE(linked.opens);
  ASSERT_EQ(linked.problems.size(), 1u);
  EXPECT_EQ(linked.problems[0].line, 2u);
  EXPECT_NE(linked.problems[0].message.find("Reference=*\\A..\\Orders\\Orders.vbp"),
            std::string::npos)
      << linked.problems[0].message;

  // A library line that the check cannot take apart is no library the view can stand in for.
  EXPECT_EQ(cli::LibraryKey("*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#x.tlb#OLE"),
            "HKEY_CLASSES_ROOT\\TypeLib\\{00020430-0000-0000-C000-000000000046}");
  EXPECT_EQ(cli::LibraryKey("*\\G{00020430-0000-0000-C000-000000000046}#2.0"), std::nullopt);
  EXPECT_EQ(cli::CheckedLineOf("One ... missing.\r\nLine 12: Form=a.frm")->number, 12u);
  EXPECT_FALSE(cli::CheckedLineOf("File not found: x"));
}

TEST(SearchOptions, BadKindsScopesPatternsAndReplacementsStopTheRun) {
  cli::SearchOptions options;
  // The host's matcher compiles the patterns: its own cases pin the messages.
  options.patterns = {"a(b"};
  EXPECT_THROW(cli::ValidateSearchOptions(options), automation::Error);
  options.patterns = {"(a)"};
  options.replacement = "$2";
  EXPECT_THROW(cli::ValidateSearchOptions(options), automation::Error);
  options.replacement = "${1}x";
  options.kinds = {"modules"};
  cli::ValidateSearchOptions(options);
  EXPECT_EQ(options.kinds[0], "Modules");
  // The request says it all as the host's Scanner reads it.
  options.literal = true;
  options.wordRegexp = true;
  options.caseChoice = cli::CaseChoice::Insensitive;
  const auto request = host::scan::ScanRequest::Parse(cli::BuildRequest(options));
  EXPECT_EQ(request.patterns, options.patterns);
  EXPECT_TRUE(request.options.literal);
  EXPECT_TRUE(request.options.wholeWord);
  EXPECT_EQ(request.options.caseMode, host::scan::CaseMode::kInsensitive);
  EXPECT_EQ(request.replacement, "${1}x");
  EXPECT_TRUE(request.write);
  EXPECT_EQ(request.scopes, options.scope);
  options.scope = {"code", "htm"};
  EXPECT_THROW(cli::ValidateSearchOptions(options), automation::Error);
  options.componentGlob = "frm*";
  EXPECT_TRUE(cli::ComponentSelected(options, "FrmMain"));
  EXPECT_FALSE(cli::ComponentSelected(options, "Module1"));
}

// What a component's bytes must hold: the pieces of a plain pattern in the code page, folded
// for -i up to the letters that fold beyond ASCII; nothing for a regular expression.
TEST(Prefilter, PiecesAreEncodedSplitAndFoldedAsTheBytesHoldThem) {
  const auto bytes = [](const cli::Prefilter::Needles& needles) {
    std::vector<std::vector<std::string>> all;
    for (const cli::Prefilter::Needle& needle : *needles) {
      all.emplace_back();
      for (const cli::Prefilter::Piece& piece : needle)
        all.back().push_back(piece.bytes);
    }
    return all;
  };
  cli::SearchOptions options;
  options.literal = true;
  options.scope = {"code", "names"};
  options.patterns = {"say \"hi\"(2)", "库存"};
  cli::Prefilter gbk(options, platform::GetCodePage(936));
  EXPECT_EQ(bytes(gbk.CodeNeedles()),
            (std::vector<std::vector<std::string>>{{"say ", "hi", "(2)"}, {"\xBF\xE2\xB4\xE6"}}));
  EXPECT_EQ(bytes(gbk.DesignedNeedles()),
            (std::vector<std::vector<std::string>>{{"say ", "hi"}, {"\xBF\xE2\xB4\xE6"}}));
  EXPECT_FALSE(gbk.CouldMatch("Modules", "Module1", "say \"\"hi\"\"(3)"));
  EXPECT_TRUE(gbk.CouldMatch("Forms", "Form1", "say \"\"hi\"\""));
  EXPECT_TRUE(gbk.CouldMatch("Designers", "Form1", ""));
  // A code page without the characters: no file of it holds them.
  cli::Prefilter western(options, platform::GetCodePage(1252));
  EXPECT_EQ(bytes(western.CodeNeedles()).size(), 1u);

  options.caseChoice = cli::CaseChoice::Insensitive;
  options.patterns = {"Größe"};
  cli::Prefilter caseless(options, platform::GetCodePage(1252));
  EXPECT_EQ(bytes(caseless.CodeNeedles()), (std::vector<std::vector<std::string>>{{"gr", "e"}}));
  EXPECT_TRUE(caseless.CouldMatch("Modules", "Module1", "' GRÖSSE"));
  EXPECT_FALSE(caseless.CouldMatch("Modules", "Module1", "' MASSE"));
  // The listing's name of the component counts in its names.
  EXPECT_TRUE(caseless.CouldMatch("Modules", "modGröße", ""));

  // A regular expression: the literals RE2 finds it needs, compared in both cases.
  options.literal = false;
  options.patterns = {"Gr.sse (it|field)"};
  cli::Prefilter expression(options, platform::GetCodePage(1252));
  EXPECT_TRUE(expression.CouldMatch("Modules", "Module1", "' GRUSSE FIELD"));
  EXPECT_FALSE(expression.CouldMatch("Modules", "Module1", "' GRUSSE Feld"));
  EXPECT_FALSE(expression.CouldMatch("Modules", "Module1", "' Gruss it"));
  // One that RE2 does not read (a lookbehind) lets everything through.
  options.patterns = {"Gr.sse", "(?<=x)Gr"};
  EXPECT_FALSE(cli::Prefilter(options, platform::GetCodePage(1252)).CodeNeedles());
}

// A module file: header, declarations, a procedure with a hidden member attribute after its
// heading, blank lines before the next.
const char* const kModule =
    "Attribute VB_Name = \"Module1\"\r\n"
    "Option Explicit\r\n"
    "Dim Foo As Long\r\n"
    "\r\n"
    "Public Function Foo2() As Long\r\n"
    "Attribute Foo2.VB_Description = \"x\"\r\n"
    "  Foo2 = Foo\r\n"
    "End Function\r\n"
    "\r\n"
    "  \r\n"
    "Sub Bar()\r\n"
    "  Foo = 1\r\n"
    "End Sub\r\n";

cli::ScanPlace Place(const char* kind, const char* name, const char* text,
                     std::vector<cli::ScanMatch> matches, const char* control = "",
                     const char* property = "") {
  cli::ScanPlace place;
  place.kind = kind;
  place.name = name;
  place.text = text;
  place.matches = std::move(matches);
  place.control = control;
  place.property = property;
  return place;
}

// A scan as the IDE encodes it, with every field set, read back the same.
cli::ComponentScan ModuleScan() {
  cli::ComponentScan scan;
  scan.collection = "Modules";
  scan.component = "Module1";
  scan.places = {
      Place("name", "Module1", "Module1", {{1, 0, 3, "Mod"}}),
      Place("procedure", "<declarations>", "Option Explicit\r\nDim Foo As Long\r\n",
            {{2, 4, 7, "Foo"}}),
      Place("procedure", "Foo2",
            "Public Function Foo2() As Long\r\n  Foo2 = Foo\r\nEnd Function\r\n",
            {{2, 2, 5, "Foo", "Bar"}, {2, 9, 12, "Foo", ""}}),
      Place("procedure", "Bar", "Sub Bar()\r\n  Foo = 1\r\nEnd Sub", {{2, 2, 5, "Foo"}})};
  scan.places[2].replacement = "";
  scan.places[2].written = true;
  scan.places[2].resets = "ItemData (3 values)";
  scan.places[3].error = cli::ScanError{
      5000, "This replacement would have changed the total number of procedures in the module.",
      ""};
  scan.problems = {{-32767, "p", "Option1.Caption"}};
  return scan;
}

TEST(ScanResults, PlacesLandOnTheFilesLinesPastHiddenAttributes) {
  // Two results one after another, as a buffer hands them over, read back field for field.
  const std::vector<cli::ComponentScan> scans = host::scan::DecodeScans(
      host::scan::EncodeScan(ModuleScan()) + host::scan::EncodeScan(cli::ComponentScan{}));
  ASSERT_EQ(scans.size(), 2u);
  const cli::ComponentScan& scan = scans[0];
  EXPECT_EQ(scan.component, "Module1");
  ASSERT_EQ(scan.places.size(), 4u);
  EXPECT_EQ(scan.places[1].text, "Option Explicit\r\nDim Foo As Long\r\n");
  const cli::ScanPlace& foo2 = scan.places[2];
  EXPECT_EQ(foo2.matches[0].replacement, "Bar");
  EXPECT_EQ(foo2.matches[1].replacement, "");  // replaced by nothing, not "not replaced"
  EXPECT_FALSE(scan.places[1].matches[0].replacement);
  EXPECT_EQ(foo2.replacement, "");
  EXPECT_FALSE(scan.places[1].replacement);
  EXPECT_TRUE(foo2.written);
  EXPECT_EQ(foo2.resets, "ItemData (3 values)");
  EXPECT_FALSE(foo2.error);
  ASSERT_TRUE(scan.places[3].error);
  EXPECT_EQ(scan.places[3].error->number, 5000);
  ASSERT_EQ(scan.problems.size(), 1u);
  EXPECT_EQ(scan.problems[0].place, "Option1.Caption");
  EXPECT_TRUE(scans[1].places.empty());

  const cli::FileLines file(kModule);
  const std::span<const cli::FileLine> lines = file.all();
  EXPECT_EQ(lines[1].offset, 31u);
  EXPECT_EQ(lines[1].end, "\r\n");
  const auto places = cli::MapToFile(lines, scan.places);
  // The name sits inside the quotes of the VB_Name line.
  EXPECT_EQ(places[0][0].line, 1u);
  EXPECT_EQ(places[0][0].start, 21u);
  EXPECT_EQ(places[1][0].line, 3u);
  EXPECT_EQ(places[2][0].line, 7u);
  EXPECT_EQ(places[2][1].line, 7u);
  EXPECT_EQ(places[2][1].start, 9u);
  EXPECT_EQ(places[3][0].line, 12u);

  EXPECT_THROW(host::scan::DecodeScans("[{\"collection\":1}]"), automation::Error);
}

// A line of plain ASCII is the file's own bytes; one with other bytes is decoded from the code
// page, and stays where it is while later lines are added.
TEST(ScanResults, FileLinesDecodeOnlyTheLinesThatNeedIt) {
  platform::SetCurrentCodePage(1252);
  const std::string bytes = "Caption = \"Caf\xE9\"\r\nTag = \"x\"\n" + std::string(200, '\xE9');
  const cli::FileLines file(bytes);
  const std::span<const cli::FileLine> lines = file.all();
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0].text, "Caption = \"Caf\u00e9\"");
  EXPECT_EQ(lines[1].text.data(), bytes.data() + 18);
  EXPECT_EQ(lines[1].end, "\n");
  std::string accents;
  for (int i = 0; i < 200; ++i)
    accents += "\u00e9";
  EXPECT_EQ(lines[2].text, accents);
  EXPECT_EQ(lines[2].end, "");
}

// A procedure text's first line is looked for after the previous place: of two procedures of
// the same text, the second place is the second copy.
TEST(ScanResults, AProcedureTextsFirstLineFoundAfterThePreviousPlace) {
  const cli::FileLines file("Sub A()\nEnd Sub\nSub A()\nEnd Sub\n");
  const std::span<const cli::FileLine> lines = file.all();
  std::vector<cli::ScanPlace> places(2);
  for (cli::ScanPlace& place : places) {
    place.kind = "procedure";
    place.text = "Sub A()\r\nEnd Sub";
    place.matches.push_back({1, 4, 5, "A"});
  }
  const auto at = cli::MapToFile(lines, places);
  EXPECT_EQ(at[0][0].line, 1u);
  EXPECT_EQ(at[1][0].line, 3u);
  places[0].text = "Sub Z()";
  EXPECT_EQ(cli::MapToFile(lines, places)[0][0].line, 0u);
}

// A property's matches lie in the line that sets it in its object's block: the form's own
// (not a nested control's or font group's), a control array member's by its Index, the Begin
// line for a value left at its default.
TEST(ScanResults, APropertysMatchesLieInItsLineOfTheDescription) {
  const cli::FileLines file(
      "VERSION 5.00\r\nBegin VB.Form frmMain \r\n   Caption = \"Stock\"\r\n"
      "   BeginProperty Font \r\n      Name = \"Arial\"\r\n   EndProperty\r\n"
      "   Begin VB.OptionButton Option1 \r\n      Caption = \"In stock\"\r\n"
      "      Index = 1\r\n   End\r\n   Begin VB.OptionButton Option1 \r\n"
      "      Caption = \"In stock\"\r\n      Index = 2\r\n   End\r\n"
      "   Tag = \"stock\"\r\nEnd\r\n");
  const std::span<const cli::FileLine> lines = file.all();
  const std::vector<cli::ScanPlace> places = {
      Place("property", "Caption", "Stock", {{1, 0, 5, "Stock"}}, "", "Caption"),
      Place("property", "Tag", "stock", {{1, 0, 5, "stock"}}, "", "Tag"),
      Place("property", "Option1(2).Caption", "In stock", {{1, 3, 8, "stock"}}, "Option1(2)",
            "Caption"),
      Place("property", "Option1(1).Tag", "x", {{1, 0, 1, "x"}}, "Option1(1)", "Tag")};
  const auto at = cli::MapToFile(lines, places);
  EXPECT_EQ(at[0][0].line, 3u);
  EXPECT_EQ(at[0][0].start, 14u);
  EXPECT_EQ(at[1][0].line, 15u);
  EXPECT_EQ(at[2][0].line, 12u);
  EXPECT_EQ(at[2][0].start, 20u);
  EXPECT_EQ(at[3][0].line, 7u);
}

std::vector<cli::DiffLine> Lines(std::initializer_list<const char*> texts) {
  std::vector<cli::DiffLine> out;
  for (const char* text : texts)
    out.push_back({text, "\r\n"});
  return out;
}

// Lines keep their own ends: the diff of a CR LF file applies to it as it is.
TEST(UnifiedDiff, HunksWithThreeLinesOfContextAndTheLinesOwnEnds) {
  EXPECT_EQ(cli::UnifiedDiff("m.bas", Lines({"a", "b"}), Lines({"a", "b"})), "");
  EXPECT_EQ(cli::UnifiedDiff("m.bas", Lines({"1", "2", "3", "4", "5", "6", "7", "8", "9"}),
                             Lines({"1", "2", "3", "4", "x", "6", "7", "8", "9"})),
            "--- a/m.bas\n+++ b/m.bas\n@@ -2,7 +2,7 @@\n 2\r\n 3\r\n 4\r\n-5\r\n+x\r\n 6\r\n"
            " 7\r\n 8\r\n");
  // Far apart: two hunks; an insertion into an empty file names line 0.
  std::vector<cli::DiffLine> before, after;
  for (int i = 0; i < 20; ++i)
    before.push_back({std::to_string(i), "\n"});
  after = before;
  after[1].text = "one";
  after[18].text = "eighteen";
  EXPECT_EQ(cli::UnifiedDiff("f", before, after),
            "--- a/f\n+++ b/f\n@@ -1,5 +1,5 @@\n 0\n-1\n+one\n 2\n 3\n 4\n"
            "@@ -16,5 +16,5 @@\n 15\n 16\n 17\n-18\n+eighteen\n 19\n");
  EXPECT_EQ(cli::UnifiedDiff("f", {}, Lines({"a"})), "--- a/f\n+++ b/f\n@@ -0,0 +1 @@\n+a\r\n");
  // A changed line end is a change; a last line without one says so.
  std::vector<cli::DiffLine> lf = Lines({"a"});
  lf[0].end = "\n";
  EXPECT_EQ(cli::UnifiedDiff("f", Lines({"a"}), lf), "--- a/f\n+++ b/f\n@@ -1 +1 @@\n-a\r\n+a\n");
  lf[0].end = "";
  EXPECT_EQ(cli::UnifiedDiff("f", Lines({"a"}), lf),
            "--- a/f\n+++ b/f\n@@ -1 +1 @@\n-a\r\n+a\n\\ No newline at end of file\n");
}

// A file whose every line changed is one hunk; lines added in the middle of a long file still
// give the smallest hunk, headed as git heads it by the last line before it that begins with a
// letter (a procedure's heading, in VB code).
TEST(UnifiedDiff, LongFilesGiveMinimalHunks) {
  std::vector<cli::DiffLine> before, after;
  for (int i = 0; i < 5000; ++i) {
    before.push_back({"line " + std::to_string(i), "\n"});
    after.push_back({"LINE " + std::to_string(i), "\n"});
  }
  const std::string all = cli::UnifiedDiff("f", before, after);
  EXPECT_TRUE(all.starts_with("--- a/f\n+++ b/f\n@@ -1,5000 +1,5000 @@\n-line 0\n"));
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 3 + 2 * 5000);

  after = before;
  after.insert(after.begin() + 2500, {{"new", "\n"}, {"lines", "\n"}});
  EXPECT_EQ(cli::UnifiedDiff("f", before, after),
            "--- a/f\n+++ b/f\n@@ -2498,6 +2498,8 @@ line 2496\n line 2497\n line 2498\n"
            " line 2499\n+new\n+lines\n line 2500\n line 2501\n line 2502\n");
}

cli::FileMatches Sample() {
  cli::FileMatches file;
  file.path = "p/Module1.bas";
  file.bytes = 100;
  file.matches = 2;
  cli::SearchHit hit;
  hit.collection = "Modules";
  hit.component = "Module1";
  hit.procedure = "Foo2";
  hit.line = 7;
  hit.text = "  Foo2 = Foo\x1b";
  hit.lineEnd = "\r\n";
  hit.offset = 90;
  hit.submatches = {{2, 5, "Foo"}, {9, 12, "Foo"}};
  file.hits.push_back(hit);
  return file;
}

std::string Text(cli::SearchStyle style, bool color, bool terminal = false) {
  std::ostringstream out, err;
  auto printer = cli::MakeTextPrinter(out, err, {terminal, false, color});
  printer->SearchFile(Sample(), style);
  return out.str();
}

TEST(SearchOutput, TextInRipgrepsShapes) {
  EXPECT_EQ(Text(cli::SearchStyle::Grouped, false),
            "p/Module1.bas\n[Module1.Foo2]\n7:3:  Foo2 = Foo\x1b\n");
  EXPECT_EQ(Text(cli::SearchStyle::Vimgrep, false),
            "p/Module1.bas:7:3:  Foo2 = Foo\x1b\np/Module1.bas:7:10:  Foo2 = Foo\x1b\n");
  EXPECT_EQ(Text(cli::SearchStyle::Count, false), "p/Module1.bas:1\n");
  EXPECT_EQ(Text(cli::SearchStyle::FilesWithMatches, false), "p/Module1.bas\n");
  EXPECT_EQ(Text(cli::SearchStyle::Quiet, false), "");
  // On a terminal, matches are painted and control characters escaped outside the colours.
  EXPECT_TRUE(Text(cli::SearchStyle::Vimgrep, true, true)
                  .starts_with("\x1b[35mp/Module1.bas\x1b[0m:7:3:  \x1b[1;31mFoo\x1b[0m2 = "
                               "Foo\\x1b\n"));
}

TEST(SearchOutput, JsonIsRipgrepsMessagesWithThePlaceAdded) {
  std::ostringstream out;
  auto printer = cli::MakeJsonPrinter(out, {});
  printer->SearchFile(Sample(), cli::SearchStyle::Grouped);
  printer->Report({false, "p/P.vbp", "Module2", 4, 53, "File not found: p/Module2.bas"});
  std::istringstream lines(out.str());
  std::string begin, match, end, problem;
  std::getline(lines, begin);
  std::getline(lines, match);
  std::getline(lines, end);
  std::getline(lines, problem);
  EXPECT_EQ(begin, R"({"type":"begin","data":{"path":{"text":"p/Module1.bas"}}})");
  EXPECT_EQ(match,
            R"({"type":"match","data":{"path":{"text":"p/Module1.bas"},)"
            R"("lines":{"text":"  Foo2 = Foo\u001b\n"},"line_number":7,"absolute_offset":90,)"
            R"("submatches":[{"match":{"text":"Foo"},"start":2,"end":5},)"
            R"({"match":{"text":"Foo"},"start":9,"end":12}],)"
            R"("collection":"Modules","component":"Module1","procedure":"Foo2"}})");
  EXPECT_NE(
      end.find(R"({"type":"end","data":{"path":{"text":"p/Module1.bas"},"binary_offset":null,)"
               R"("stats":{"elapsed":)"),
      std::string::npos);
  EXPECT_NE(end.find(R"("searches":1,"searches_with_match":1,"bytes_searched":100,)"),
            std::string::npos);
  EXPECT_NE(end.find(R"("matched_lines":1,"matches":2})"), std::string::npos);
  // Errors and notes are records with their place, among the others on standard output.
  EXPECT_EQ(problem,
            R"({"type":"error","project":"p/P.vbp","component":"Module2","line":4,"number":53,)"
            R"("message":"File not found: p/Module2.bas"})");

  // The code page the file was read in is our own field of "begin", beside ripgrep's path.
  cli::FileMatches file = Sample();
  file.codePage = platform::ProjectCodePage{932, platform::CodePageSource::Detected, 0.987, 812};
  out.str("");
  printer->SearchFile(file, cli::SearchStyle::Grouped);
  const nlohmann::json record = nlohmann::json::parse(out.str().substr(0, out.str().find('\n')));
  EXPECT_EQ(record["type"], "begin");
  EXPECT_EQ(record["data"]["path"]["text"], "p/Module1.bas");
  EXPECT_EQ(record["data"]["codepage"],
            nlohmann::json::parse(R"({"number":932,"source":"detected","confidence":0.99,)"
                                  R"("non_ascii_bytes":812})"));
}

}  // namespace
