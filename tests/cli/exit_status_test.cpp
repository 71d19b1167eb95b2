// The real qx program: what a shell sees of a run, exit status above all.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

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
  EXPECT_EQ(run.err, "qx: a verb is required: one of list, check, search, replace" + retry);
  run = Qx({"frobnicate", vbp});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err,
            "qx: unknown verb \"frobnicate\"; the verbs are list, check, search, replace" + retry);
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
  EXPECT_EQ(run.out, "{\"type\":\"summary\",\"ok\":true,\"components\":0}\n");
  EXPECT_EQ(Qx({"check", vbp}).out, "OK\n");
}

}  // namespace
