#include <gtest/gtest.h>
#include <sys/stat.h>

#include <sstream>

#include "cli/commands.h"
#include "support/driver_env.h"

namespace {

using qxtest::DriverEnv;

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

class Qx : public ::testing::Test {
 protected:
  Outcome List(const std::string& project, bool raw) {
    std::ostringstream out, err;
    const int status = cli::RunList({project, raw}, out, err);
    return {status, out.str(), err.str()};
  }
  Outcome Check(const std::string& project) {
    std::ostringstream out, err;
    const int status = cli::RunCheck({project}, out, err);
    return {status, out.str(), err.str()};
  }
  std::string Basic() {
    const auto folder = env_.work() / "basic";
    DriverEnv::Write(folder / "Basic.vbp",
                     "Type=Exe\r\nForm=Form1.frm\r\nModule=Module1; Module1.bas\r\n"
                     "Class=CThing; CThing.cls\r\n");
    DriverEnv::Write(folder / "Form1.frm", "Attribute VB_Name = \"Form1\"\r\n");
    DriverEnv::Write(folder / "Module1.bas", "Attribute VB_Name = \"Module1\"\r\n");
    DriverEnv::Write(folder / "CThing.cls", "Attribute VB_Name = \"CThing\"\r\n");
    ::chmod((folder / "CThing.cls").c_str(), 0444);
    return (folder / "Basic.vbp").string();
  }
  DriverEnv env_;
};

TEST_F(Qx, ListRawPrintsEachCollectionsEnumerationString) {
  const Outcome run = List(Basic(), true);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out,
            "[ClassModules]\nCThing\t2\t\t0\t0\t1\t0\n"
            "[Designers]\n\n[DHTMLPages]\n\n"
            "[Forms]\nForm1\t4\t\t1\t1\t1\t0\n"
            "[Modules]\nModule1\t5\t\t0\t1\t1\t0\n"
            "[PropertyPages]\n\n[UserConnections]\n\n[UserControls]\n\n[UserDocuments]\n\n");
}

TEST_F(Qx, ListShowsComponentsWithTimesAndState) {
  const std::string vbp = Basic();
  std::filesystem::remove(std::filesystem::path(vbp).parent_path() / "Module1.bas");
  const Outcome run = List(vbp, false);
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.out.find("ClassModules\n  CThing  "), std::string::npos);
  EXPECT_NE(run.out.find("  read-only\n"), std::string::npos);
  EXPECT_NE(run.out.find("Forms\n  Form1  20"), std::string::npos);
  EXPECT_NE(run.out.find("Modules\n  Module1  -  missing\n"), std::string::npos);
  EXPECT_EQ(run.out.find("Designers"), std::string::npos);
  EXPECT_NE(run.out.find("3 components\n"), std::string::npos);
}

TEST_F(Qx, MissingProjectFileIsAnErrorWithItsTrail) {
  const std::string path = (env_.work() / "Missing.vbp").string();
  const Outcome run = List(path, false);
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "qx: error -32767: File not found: " + path +
                         "\n\nPROGRAM CONTEXT:\nqxvb60.Project.Initialize.1  (4.1.475)\n"
                         "qxvb60.Driver.IDriver_GetProject.1  (4.1.475)\n");
}

TEST_F(Qx, CheckSaysOkOrNamesTheMissingLine) {
  const std::string vbp = Basic();
  Outcome run = Check(vbp);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "OK\n");
  DriverEnv::Write(vbp,
                   "Type=Exe\r\nReference=*\\G{12345678-1234-1234-1234-123456789ABC}#1.0#0#"
                   "c:\\nowhere\\x.tlb#Nowhere Library\r\n");
  run = Check(vbp);
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("qx: error -32767: One of the components used in the project"),
            std::string::npos);
  EXPECT_NE(run.err.find("Line 2: Reference=*\\G{12345678"), std::string::npos);
  EXPECT_NE(run.err.find("registry.reg"), std::string::npos);
  EXPECT_NE(run.err.find("[HKEY_CLASSES_ROOT\\TypeLib\\{12345678-1234-1234-1234-123456789ABC}]"),
            std::string::npos);
  // A missing component file gets no registry advice.
  DriverEnv::Write(vbp, "Type=Exe\r\nModule=Gone; Gone.bas\r\n");
  run = Check(vbp);
  EXPECT_EQ(run.err.find("registry.reg"), std::string::npos);
}

}  // namespace
