#include <gtest/gtest.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/commands.h"
#include "support/driver_env.h"
#include "tests/cli/outcome.h"

namespace {

using qxtest::DriverEnv;
using qxtest::JsonLines;
using qxtest::Outcome;

class Qx : public ::testing::Test {
 protected:
  Outcome List(const std::string& project, bool raw, cli::Format format = cli::Format::Text,
               cli::Terminals terminals = {}) {
    std::ostringstream out, err;
    const auto printer = cli::MakePrinter(format, out, err, terminals);
    const int status = cli::RunList({project, raw}, *printer);
    return {status, out.str(), err.str()};
  }
  Outcome Check(const std::string& project, cli::Terminals terminals = {}) {
    std::ostringstream out, err;
    const auto printer = cli::MakePrinter(cli::Format::Text, out, err, terminals);
    const int status = cli::RunCheck({project}, *printer);
    return {status, out.str(), err.str()};
  }
  std::filesystem::path Folder() const { return env_.work() / "p"; }
  std::string Project(const std::string& vbp) {
    qxtest::WriteBytes(Folder() / "P.vbp", vbp);
    return (Folder() / "P.vbp").string();
  }
  void Component(const std::string& file, const std::string& name, bool readOnly = false) {
    qxtest::WriteBytes(Folder() / file, name.empty() ? "VERSION 5.00\r\n"
                                                     : "Attribute VB_Name = \"" + name + "\"\r\n");
    if (readOnly) ::chmod((Folder() / file).c_str(), 0444);
  }
  std::string Basic() {
    Component("Form1.frm", "Form1");
    Component("Module1.bas", "Module1");
    Component("CThing.cls", "CThing", true);
    return Project(
        "Type=Exe\r\nForm=Form1.frm\r\nModule=Module1; Module1.bas\r\n"
        "Class=CThing; CThing.cls\r\n");
  }
  DriverEnv env_;
};

TEST_F(Qx, ListPrintsRawStringsOrComponentsWithTimesAndStateAsTextOrJson) {
  const std::string vbp = Basic();
  Outcome run = List(vbp, true);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out,
            "[ClassModules]\nCThing\t2\t\t0\t0\t1\t0\n"
            "[Designers]\n\n[DHTMLPages]\n\n"
            "[Forms]\nForm1\t4\t\t1\t1\t1\t0\n"
            "[Modules]\nModule1\t5\t\t0\t1\t1\t0\n"
            "[PropertyPages]\n\n[UserConnections]\n\n[UserControls]\n\n[UserDocuments]\n\n");

  std::filesystem::remove(Folder() / "Module1.bas");
  run = List(vbp, false);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_NE(run.out.find("ClassModules\n  CThing  "), std::string::npos);
  EXPECT_NE(run.out.find("  read-only\n"), std::string::npos);
  EXPECT_NE(run.out.find("Forms\n  Form1  20"), std::string::npos);
  EXPECT_NE(run.out.find("Modules\n  Module1  -  missing\n"), std::string::npos);
  EXPECT_EQ(run.out.find("Designers"), std::string::npos);
  EXPECT_NE(run.out.find("3 components\n"), std::string::npos);

  // JSON: one record a line.
  run = List(vbp, false, cli::Format::Json);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  std::vector<nlohmann::json> records = JsonLines(run.out);
  ASSERT_EQ(records.size(), 4u);
  EXPECT_EQ(records[0]["type"], "component");
  EXPECT_EQ(records[0]["collection"], "ClassModules");
  EXPECT_EQ(records[0]["name"], "CThing");
  EXPECT_EQ(records[0]["state"], "read-only");
  EXPECT_EQ(records[0]["modified"].get<std::string>().size(), 19u);  // 2026-11-23T09:12:44
  EXPECT_EQ(records[0]["modified"].get<std::string>()[10], 'T');
  EXPECT_EQ(records[0]["problems"], nlohmann::json::array());
  EXPECT_EQ(records[3]["components"], 3);

  run = List(vbp, true, cli::Format::Json);
  records = JsonLines(run.out);
  ASSERT_EQ(records.size(), 9u);
  EXPECT_EQ(records[3], nlohmann::json::parse(R"({"type":"enumeration","collection":"Forms",)"
                                              R"("text":"Form1\t4\t\t1\t1\t1\t0"})"));
}

// GetObjectInfo picks a component by name, so a repeated name cannot be asked about: each entry
// keeps what its own enumeration fields say, and the output says what is wrong.
TEST_F(Qx, ListTellsRepeatedAndMissingNamesApart) {
  Component("a.bas", "");
  Component("b.bas", "", true);
  Component("Other.bas", "");
  Component("NoName.frm", "");
  const std::string vbp = Project(
      "Type=Exe\r\nModule=M; a.bas\r\nModule=M; b.bas\r\nModule=m; gone.bas\r\n"
      "Module=Other; Other.bas\r\nForm=NoName.frm\r\nUserControl=Gone.ctl\r\n"
      "Class=Other; x.cls\r\n");
  const Outcome run = List(vbp, false);
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.out.find("ClassModules\n  Other  -  missing  name used 2 times\n"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("Forms\n  (no name)  20"), std::string::npos);
  EXPECT_NE(run.out.find("  writable  no name: its file has no Attribute VB_Name line\n"),
            std::string::npos);
  EXPECT_NE(run.out.find("Modules\n"
                         "  M      ?                    writable              name used 3 times\n"
                         "  M      ?                    read-only or missing  name used 3 times\n"
                         "  m      ?                    read-only or missing  name used 3 times\n"
                         "  Other  20"),
            std::string::npos);
  EXPECT_NE(run.out.find("UserControls\n  (no name)  -  missing  no name: its file, which would "
                         "give it, is missing\n"),
            std::string::npos);
  EXPECT_EQ(run.out.find("unreadable"), std::string::npos);
  EXPECT_EQ(run.err,
            "qx: problem: The project has 3 components named M (Modules); VB6 will not load a "
            "project with two components of one name.\n"
            "qx: problem: The project has 2 components named Other (ClassModules, Modules); VB6 "
            "will not load a project with two components of one name.\n");

  const std::vector<nlohmann::json> records = JsonLines(List(vbp, false, cli::Format::Json).out);
  ASSERT_EQ(records.size(), 10u);
  EXPECT_EQ(records[1]["name"], "");
  EXPECT_TRUE(records[1]["modified"].is_string());
  EXPECT_EQ(records[3]["name"], "M");
  EXPECT_TRUE(records[3]["modified"].is_null());
  EXPECT_EQ(records[3]["state"], "read-only or missing");
  EXPECT_EQ(records[3]["problems"], nlohmann::json::parse(R"(["name used 3 times"])"));
  EXPECT_EQ(records[7]["type"], "problem");
  EXPECT_TRUE(records[7]["number"].is_null());
  EXPECT_EQ(records[9], nlohmann::json::parse(R"({"type":"summary","ok":true,"components":7,)"
                                              R"("codepage":{"number":1252,"source":"detected",)"
                                              R"("confidence":1.0,"non_ascii_bytes":0}})"));
}

// A missing project file: the error with its trail as text on standard error, as a record in
// JSON.
TEST_F(Qx, MissingProjectFileIsAnErrorWithItsTrail) {
  const std::string path = (env_.work() / "Missing.vbp").string();
  Outcome run = List(path, false);
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "qx: error -32767: File not found: " + path +
                         "\n\nPROGRAM CONTEXT:\nqxvb60.Project.Initialize.1  (4.1.475)\n"
                         "qxvb60.Driver.IDriver_GetProject.1  (4.1.475)\n");

  run = List(path, false, cli::Format::Json);
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "");
  const std::vector<nlohmann::json> records = JsonLines(run.out);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0]["type"], "error");
  EXPECT_EQ(records[0]["number"], -32767);
  EXPECT_EQ(records[0]["description"].get<std::string>().rfind("File not found: " + path, 0), 0u);
}

// Control characters from a project file reach a terminal as escapes; a pipe gets them exactly.
TEST_F(Qx, ControlCharactersAreEscapedOnlyForATerminal) {
  const std::string name = "\x1b]0;owned\x07\x1b[2J";
  Component("a.bas", name);
  const std::string vbp = Project("Type=Exe\r\nModule=a.bas\r\n");
  const cli::Terminals both{true, true};

  Outcome run = List(vbp, false, cli::Format::Text, both);
  EXPECT_NE(run.out.find("Modules\n  \\x1b]0;owned\\x07\\x1b[2J  20"), std::string::npos);
  EXPECT_EQ(run.out.find('\x1b'), std::string::npos);
  run = List(vbp, true, cli::Format::Text, both);
  EXPECT_NE(run.out.find("[Modules]\n\\x1b]0;owned\\x07\\x1b[2J\t5\t\t1\t1\t1\t0\n"),
            std::string::npos);

  run = List(vbp, true);
  EXPECT_NE(run.out.find("[Modules]\n" + name + "\t5\t"), std::string::npos);
  run = List(vbp, false, cli::Format::Json);
  EXPECT_EQ(JsonLines(run.out)[0]["name"], name);

  // The check quotes the line in its error, on standard error.
  Project("Type=Exe\r\nObject=" + name + "\r\n");
  run = Check(vbp, both);
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("Line 2: Object=\\x1b]0;owned\\x07\\x1b[2J\n"), std::string::npos);
  EXPECT_EQ(run.err.find('\x1b'), std::string::npos);
  EXPECT_NE(Check(vbp).err.find("Line 2: Object=" + name + "\n"), std::string::npos);
}

TEST_F(Qx, CheckSaysOkOrNamesTheMissingLineHoweverLong) {
  const std::string vbp = Basic();
  Outcome run = Check(vbp);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "OK\n");
  qxtest::WriteBytes(vbp,
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
  qxtest::WriteBytes(vbp, "Type=Exe\r\nModule=Gone; Gone.bas\r\n");
  run = Check(vbp);
  EXPECT_EQ(run.err.find("registry.reg"), std::string::npos);

  // A 40 KB library line, with and without an identifier at its end, is read in one pass.
  const std::string filler(40 * 1024, 'x');
  Project("Type=Exe\r\nObject=" + filler +
          "{0ABCDEF0-1234-1234-1234-123456789ABC}#2.0#0; X.OCX\r\n");
  run = Check(vbp);
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find(filler + "{0ABCDEF0"), std::string::npos);
  EXPECT_NE(run.err.find("[HKEY_CLASSES_ROOT\\TypeLib\\{0ABCDEF0-1234-1234-1234-123456789ABC}]"),
            std::string::npos);
  Project("Type=Exe\r\nReference=" + filler + "\r\n");
  run = Check(vbp);
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("Line 2: Reference=" + filler + "\n"), std::string::npos);
  EXPECT_EQ(run.err.find("registry.reg"), std::string::npos);
}

}  // namespace
