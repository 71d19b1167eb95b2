// The IDE's command line: the dump format, and resave's round trip over every fixture project.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <map>
#include <sstream>

#include "fixture_copy.h"
#include "ide/tool/commands.h"
#include "platform/codepage.h"

namespace {

namespace fs = std::filesystem;
using idetest::ReadBytes;

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

Outcome Dump(const std::string& project, const std::string& component = "") {
  std::ostringstream out, err;
  const int status = ide::tool::RunDump({project, component}, out, err);
  return {status, out.str(), err.str()};
}

Outcome Resave(const std::string& project) {
  std::ostringstream out, err;
  const int status = ide::tool::RunResave({project}, out, err);
  return {status, out.str(), err.str()};
}

class Tool : public ::testing::Test {
 protected:
  // A project with a module (two procedures, one a Property Get with a member attribute), a
  // form and a component whose file is missing.
  std::string Small() { return small_.Path("Small.vbp"); }

  qxtest::TempHome home_;
  idetest::FixtureCopy small_{"small"};
};

TEST_F(Tool, DumpShowsEachComponentItsCodeAndProceduresAndFailsClearly) {
  const std::string vbp = Small();
  const std::string dir = fs::path(vbp).parent_path().string();
  const Outcome run = Dump(vbp);
  EXPECT_EQ(run.status, ide::tool::kExitComponentProblem);  // CGone.cls is missing
  EXPECT_EQ(run.out, "component Util type=1 designer= file=" + dir +
                         "/Util.bas dirty=0\n"
                         "  lines 10 declarations 1\n"
                         "  proc Proc Hello start=2 count=5\n"
                         "  proc Get Answer start=7 count=4\n"
                         "component Main type=5 designer=VB.Form file=" +
                         dir +
                         "/Main.frm dirty=0\n"
                         "  lines 2 declarations 0\n"
                         "  proc Proc Form_Load start=1 count=2\n"
                         "component CGone type=? designer=? file=" +
                         dir +
                         "/CGone.cls dirty=0\n"
                         "  error 53 File not found: " +
                         dir + "/CGone.cls (No such file or directory)\n");

  const Outcome one = Dump(vbp, "util");
  EXPECT_EQ(one.status, ide::tool::kExitOk);
  EXPECT_EQ(one.out.rfind("component Util type=1", 0), 0u);
  EXPECT_EQ(one.out.find("component Main"), std::string::npos);

  const Outcome absent = Dump(vbp, "NoSuchThing");
  EXPECT_EQ(absent.status, ide::tool::kExitError);
  EXPECT_EQ(absent.err.rfind("qxvb6: error 9: ", 0), 0u);
  const Outcome missing = Dump((home_.path() / "Nowhere.vbp").string());
  EXPECT_EQ(missing.status, ide::tool::kExitError);
  EXPECT_EQ(missing.out, "");
  EXPECT_EQ(missing.err.rfind("qxvb6: error 53: File not found: ", 0), 0u);
}

// Every fixture project, whatever its line ends, code page or damage, comes back byte for byte.
TEST_F(Tool, ResaveLeavesEveryFixtureFileAsItWas) {
  const fs::path root = home_.path() / "fixtures";
  fs::copy(QX_FIXTURES, root, fs::copy_options::recursive);
  const auto before = idetest::Snapshot(root);
  // The Chinese, Japanese and Russian projects name their files in their code pages.
  const std::map<std::string, int> pages = {{"gbk", 936}, {"sjis", 932}, {"cyrillic", 1251}};
  int projects = 0;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (entry.path().extension() != ".vbp") continue;
    const auto page = pages.find(entry.path().parent_path().filename().string());
    if (page != pages.end()) platform::SetCurrentCodePage(page->second);
    const Outcome run = Resave(entry.path().string());
    if (page != pages.end()) {
      platform::ClearCurrentCodePage();
      EXPECT_EQ(run.err.find("skipped"), std::string::npos) << run.err;  // every file found
    }
    EXPECT_EQ(run.status, ide::tool::kExitOk) << entry.path() << "\n" << run.out << run.err;
    EXPECT_EQ(run.out.find("changed "), std::string::npos) << run.out;
    ++projects;
  }
  EXPECT_GE(projects, 10);
  EXPECT_EQ(idetest::Snapshot(root), before);
}

TEST_F(Tool, ResaveReportsAReadOnlyFileAndLeavesIt) {
  const std::string vbp = Small();
  const fs::path util = fs::path(vbp).parent_path() / "Util.bas";
  const std::string bytes = ReadBytes(util);
  ::chmod(util.c_str(), 0444);
  const Outcome run = Resave(vbp);
  EXPECT_EQ(run.status, ide::tool::kExitComponentProblem);
  EXPECT_NE(run.err.find("not saved " + util.string() + ": 75 "), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("skipped "), std::string::npos);  // the missing class
  EXPECT_NE(run.out.find("1 saved, 0 changed, 1 skipped, 1 not saved"), std::string::npos);
  EXPECT_EQ(ReadBytes(util), bytes);
}

}  // namespace
