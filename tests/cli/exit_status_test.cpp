// The real qx program: what a shell sees of a run, exit status above all.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "support/driver_env.h"
#include "tests/cli/outcome.h"

namespace {

using qxtest::DriverEnv;
using qxtest::JsonLines;
using qxtest::Outcome;

class QxProgram : public ::testing::Test {
 protected:
  // Runs qx with these arguments (each single-quoted for the shell), standard output and error
  // sent to files; system() waits for it to end.
  Outcome Qx(const std::vector<std::string>& args) {
    std::string command = std::string("'") + QX_BINARY + "'";
    for (const std::string& arg : args)
      command += " '" + arg + "'";
    const auto out = env_.work() / "out.txt", err = env_.work() / "err.txt";
    command += " >'" + out.string() + "' 2>'" + err.string() + "' </dev/null";
    const int raw = std::system(command.c_str());
    const int status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
    return {status, qxtest::ReadBytes(out), qxtest::ReadBytes(err)};
  }
  DriverEnv env_;
};

TEST_F(QxProgram, UsageErrorsExitTwoWithTheirMessageAndHelpExitsZero) {
  const std::string vbp = (env_.work() / "P.vbp").string();
  qxtest::WriteBytes(vbp, "Type=Exe\r\n");
  const std::string retry = "\nRun 'qx --help' for more information.\n";

  using Case = std::pair<std::vector<std::string>, std::string>;
  for (const auto& [args, err] : std::vector<Case>{
           {{},
            "qx: a verb is required: one of list, check, ide, search, replace, rename, help" +
                retry},
           {{"frobnicate", vbp},
            "qx: unknown verb \"frobnicate\"; the verbs are list, check, ide, search, replace, "
            "rename, help" +
                retry},
           {{"rename", vbp, "frmMain.Option1"}, "qx: NEWNAME is required" + retry},
           // A name that cannot be a control's is refused before any IDE starts.
           {{"rename", vbp, "frmMain.Option1", "1st"},
            "qx: " + vbp +
                ": error -32767: frmMain.Option1 -> 1st: Invalid control name syntax.\n"},
           {{"rename", vbp, "frmMain.Option1.Value", "Choice"},
            "qx: " + vbp +
                ": error 5: \"frmMain.Option1.Value\": name a component, or a control as "
                "COMPONENT.OLDNAME\n"},
           {{"list", "--bogus", vbp},
            "qx: The following argument was not expected: --bogus" + retry},
           {{"list"}, "qx: PROJECT is required" + retry},
           {{"--codepage", "abc", "list", vbp}, "qx: Could not convert: --codepage = abc" + retry},
           {{"--codepage", "77", "list", vbp}, "qx: error 5: Unknown code page: 77\n"}}) {
    SCOPED_TRACE(err);
    const Outcome run = Qx(args);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, err);
    EXPECT_EQ(run.out, "");
  }
  Outcome run;
  for (const auto& help : std::vector<std::vector<std::string>>{{"--help"}, {"list", "--help"}}) {
    run = Qx(help);
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("Usage:"), std::string::npos);
  }

  // With --json every error is a record on standard output, a command line's included.
  for (const auto& args : std::vector<std::vector<std::string>>{
           {"search", "--json", "x", (env_.work() / "Missing.vbp").string()},
           {"search", "--json", "(unclosed", vbp},
           {"search", "--json", "--bogus", "x"}}) {
    run = Qx(args);
    EXPECT_EQ(run.status, 2) << args[2];
    EXPECT_EQ(run.err, "") << args[2];
    const auto records = JsonLines(run.out);
    EXPECT_TRUE(std::any_of(records.begin(), records.end(), [](const auto& record) {
      return record["type"] == "error";
    })) << run.out;
  }

  // Every verb's help at once, and as the manual page that is installed.
  run = Qx({"help"});
  EXPECT_EQ(run.status, 0);
  for (const char* verb : {"qx search", "qx replace", "qx ide stop", "--no-keep", "--write"})
    EXPECT_NE(run.out.find(verb), std::string::npos) << verb;
  run = Qx({"help", "--man"});
  EXPECT_EQ(run.out.rfind(".TH QX 1", 0), 0u) << run.out.substr(0, 200);
  EXPECT_NE(run.out.find("qx ide stop"), std::string::npos);
}

class QxCodePage : public QxProgram {
 protected:
  void SetUp() override { ::unsetenv("QX_CODEPAGE"); }
  void TearDown() override { ::unsetenv("QX_CODEPAGE"); }
  std::string Fixture(const std::string& folder, const std::string& vbp) {
    std::filesystem::create_directories(env_.work() / "codepage");
    if (!std::filesystem::exists(env_.work() / "codepage" / folder))
      env_.CopyFixture("codepage/" + folder);
    return (env_.work() / "codepage" / folder / vbp).string();
  }
};

// Without options, a Japanese project's names and file names come out right: the code page is
// read from its files, and said.
TEST_F(QxCodePage, ListDetectsTheProjectsCodePageUnlessTold) {
  const std::string sjis = Fixture("sjis", "顧客管理.vbp");
  Outcome run = Qx({"list", "--json", sjis});
  ASSERT_EQ(run.status, 0) << run.err;
  std::vector<nlohmann::json> records = JsonLines(run.out);
  ASSERT_EQ(records.size(), 3u) << run.out;
  EXPECT_EQ(records[0]["name"], "顧客一覧");
  EXPECT_EQ(records[0]["state"], "writable");
  EXPECT_EQ(records[2]["codepage"]["number"], 932);

  // Another code page, and ASCII files, as the text listing says them (what detection gives for
  // each fixture is the code page detection's own case).
  const std::vector<std::vector<std::string>> cases = {
      {"cyrillic", "Клиенты.vbp", "Forms\n  ФормаКлиентов  "},
      {"cyrillic", "Клиенты.vbp", "\nCode page 1251 (detected from "},
      {"ascii", "Customers.vbp",
       "\nCode page 1252 (detected: the project's files are ASCII)\n2 components\n"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c[0]);
    const std::string out = Qx({"list", Fixture(c[0], c[1])}).out;
    EXPECT_NE(out.find(c[2]), std::string::npos) << out;
  }

  // The option, then the environment, override detection.
  run = Qx({"--codepage", "1251", "list", "--json", sjis});
  ASSERT_EQ(run.status, 0) << run.err;
  records = JsonLines(run.out);
  EXPECT_EQ(records.back()["codepage"],
            nlohmann::json::parse(R"({"number":1251,"source":"option","confidence":1.0,)"
                                  R"("non_ascii_bytes":0})"));
  // Read as Cyrillic, the Japanese file name finds no file.
  EXPECT_EQ(records[0]["state"], "missing");

  ::setenv("QX_CODEPAGE", "936", 1);
  run = Qx({"list", sjis});
  EXPECT_NE(run.out.find("\nCode page 936 (given by QX_CODEPAGE)\n"), std::string::npos) << run.out;
}

}  // namespace
