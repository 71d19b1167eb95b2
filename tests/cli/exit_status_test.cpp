// The real qx program: what a shell sees of a run, exit status above all.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>

#include "support/driver_env.h"

namespace {

using qxtest::DriverEnv;

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

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
    return {status, DriverEnv::Read(out), DriverEnv::Read(err)};
  }
  DriverEnv env_;
};

TEST_F(QxProgram, UsageErrorsExitTwoWithTheirMessageAndHelpExitsZero) {
  const std::string vbp = (env_.work() / "P.vbp").string();
  DriverEnv::Write(vbp, "Type=Exe\r\n");
  const std::string retry = "\nRun 'qx --help' for more information.\n";

  Outcome run = Qx({});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "qx: a verb is required: one of list, check, ide, search, replace" + retry);
  run = Qx({"frobnicate", vbp});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(
      run.err,
      "qx: unknown verb \"frobnicate\"; the verbs are list, check, ide, search, replace" + retry);
  run = Qx({"list", "--bogus", vbp});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "qx: The following argument was not expected: --bogus" + retry);
  run = Qx({"list"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "qx: PROJECT is required" + retry);
  run = Qx({"--codepage", "abc", "list", vbp});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "qx: Could not convert: --codepage = abc" + retry);
  EXPECT_EQ(run.out, "");

  run = Qx({"--codepage", "77", "list", vbp});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "qx: error 5: Unknown code page: 77\n");
  run = Qx({"list", (env_.work() / "Missing.vbp").string()});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err.rfind("qx: error -32767: File not found: ", 0), 0u);

  for (const auto& help : std::vector<std::vector<std::string>>{{"--help"}, {"list", "--help"}}) {
    run = Qx(help);
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("Usage:"), std::string::npos);
  }
  run = Qx({"list", "--json", vbp});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out.rfind("{\"type\":\"summary\",\"ok\":true,\"components\":0,", 0), 0u);
  EXPECT_EQ(Qx({"check", vbp}).out, "OK\n");
}

class QxCodePage : public QxProgram {
 protected:
  void SetUp() override { ::unsetenv("QX_CODEPAGE"); }
  void TearDown() override { ::unsetenv("QX_CODEPAGE"); }
  std::string Fixture(const std::string& folder, const std::string& vbp) {
    std::filesystem::create_directories(env_.work() / "codepage");
    return (env_.CopyFixture("codepage/" + folder) / vbp).string();
  }
  static std::vector<nlohmann::json> JsonLines(const std::string& text) {
    std::vector<nlohmann::json> records;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
      records.push_back(nlohmann::json::parse(line));
    return records;
  }
};

// Without options, a Japanese project's names and file names come out right: the code page is
// read from its files, and said.
TEST_F(QxCodePage, ListDetectsTheProjectsCodePage) {
  const std::string sjis = Fixture("sjis", "顧客管理.vbp");
  Outcome run = Qx({"list", "--json", sjis});
  ASSERT_EQ(run.status, 0) << run.err;
  std::vector<nlohmann::json> records = JsonLines(run.out);
  ASSERT_EQ(records.size(), 3u) << run.out;
  EXPECT_EQ(records[0]["name"], "顧客一覧");
  EXPECT_EQ(records[0]["state"], "writable");
  EXPECT_EQ(records[1]["name"], "共通処理");
  EXPECT_EQ(records[1]["state"], "writable");
  const nlohmann::json& codePage = records[2]["codepage"];
  EXPECT_EQ(codePage["number"], 932);
  EXPECT_EQ(codePage["source"], "detected");
  EXPECT_GT(codePage["confidence"].get<double>(), 0.9);

  run = Qx({"list", Fixture("cyrillic", "Клиенты.vbp")});
  EXPECT_NE(run.out.find("Forms\n  ФормаКлиентов  "), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("\nCode page 1251 (detected from "), std::string::npos) << run.out;
  run = Qx({"list", Fixture("gbk", "客户管理.vbp")});
  EXPECT_NE(run.out.find("\nCode page 936 (detected from "), std::string::npos) << run.out;
  run = Qx({"list", Fixture("german", "Kunden.vbp")});
  EXPECT_NE(run.out.find("\nCode page 1252 (detected from "), std::string::npos) << run.out;
  run = Qx({"list", Fixture("ascii", "Customers.vbp")});
  EXPECT_NE(run.out.find("\nCode page 1252 (detected: the project's files are ASCII)\n"
                         "2 components\n"),
            std::string::npos)
      << run.out;
}

TEST_F(QxCodePage, OptionAndEnvironmentOverrideDetection) {
  const std::string sjis = Fixture("sjis", "顧客管理.vbp");
  Outcome run = Qx({"--codepage", "1251", "list", "--json", sjis});
  ASSERT_EQ(run.status, 0) << run.err;
  std::vector<nlohmann::json> records = JsonLines(run.out);
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
