// The IDE as a process, end to end: qx starts qxvb6.exe through the start-up sequence, finds it
// again, lists it, reads the project from it and stops it; the failures of the start-up say
// what the driver says; a killed IDE gives 462 and is replaced by a fresh one.

#include <signal.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

#include "automation/error.h"
#include "automation/object.h"
#include "host/host_utility.h"
#include "host/register.h"
#include "ide_process/ide_processes.h"
#include "support/errors.h"

namespace {

using qxtest::IdeProcesses;
using qxtest::ProcessGone;
using qxtest::WaitGone;

constexpr const char* kTrail = "PROGRAM CONTEXT:";

TEST_F(IdeProcesses, StartStartsOneIdeAndASecondStartConnectsToIt) {
  const auto first = Qx({"ide", "start", vbp_});
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_EQ(first.out.rfind("started IDE process ", 0), 0u) << first.out;
  const long pid = PidIn(first.out);
  ASSERT_GT(pid, 0);
  EXPECT_FALSE(ProcessGone(pid));

  const auto second = Qx({"ide", "start", vbp_});
  ASSERT_EQ(second.status, 0) << second.err;
  EXPECT_EQ(second.out, "connected to IDE process " + std::to_string(pid) + " for " + vbp_ + "\n");
  // Relative, from the project's folder (other letter case and separators are the object
  // table's names, matched as Windows paths).
  const auto relative = Qx({"ide", "start", "Inventory.vbp"}, (work() / "Inventory").string());
  EXPECT_EQ(relative.out,
            "connected to IDE process " + std::to_string(pid) + " for Inventory.vbp\n")
      << relative.err;

  const auto list = Qx({"ide", "list"});
  ASSERT_EQ(list.status, 0) << list.err;
  EXPECT_TRUE(std::regex_match(
      list.out, std::regex(std::to_string(pid) + "  idle \\d+s  " +
                           std::regex_replace(vbp_, std::regex("[.]"), "[.]") + "\n")))
      << list.out;

  // Listed by the IDE: the entry carries its file's time.
  const auto raw = Qx({"list", "--raw", vbp_});
  EXPECT_TRUE(std::regex_search(raw.out, std::regex("frmMain\t4\t\\d{14}\t1\t1\t1\t0"))) << raw.out;

  const auto stop = Qx({"ide", "stop", "--all"});
  ASSERT_EQ(stop.status, 0) << stop.err;
  EXPECT_EQ(stop.out, "stopped IDE process " + std::to_string(pid) + "\n");
  EXPECT_TRUE(ProcessGone(pid));
  EXPECT_EQ(Qx({"ide", "list"}).out, "");
}

TEST_F(IdeProcesses, StopEndsOnlyTheIdeOfThatProjectAndSaysSoWhenThereIsNone) {
  const auto none = Qx({"ide", "stop", vbp_});
  EXPECT_EQ(none.status, 1);
  EXPECT_NE(none.err.find("no IDE has " + vbp_ + " open"), std::string::npos) << none.err;

  std::filesystem::copy(work() / "Inventory", work() / "Other",
                        std::filesystem::copy_options::recursive);
  const std::string other = (work() / "Other" / "Inventory.vbp").string();
  // Far from idle: what ends it is the request, which wakes its loop.
  ::setenv("QX_IDE_IDLE_SECONDS", "3600", 1);
  const long a = PidIn(Qx({"ide", "start", vbp_}).out);
  const long b = PidIn(Qx({"ide", "start", other}).out);
  ASSERT_GT(a, 0);
  ASSERT_GT(b, 0);
  ASSERT_NE(a, b);
  const auto stop = Qx({"ide", "stop", other});
  EXPECT_EQ(stop.status, 0) << stop.err;
  EXPECT_TRUE(ProcessGone(b));
  EXPECT_FALSE(ProcessGone(a));
  EXPECT_NE(qxtest::ReadBytes(home() / "qxvb6.log")
                .find("qxvb6[" + std::to_string(b) + "] ending: asked to end"),
            std::string::npos);
  EXPECT_EQ(Qx({"ide", "stop", "neither", "--all"}).status, 2);  // one or the other
}

TEST_F(IdeProcesses, TwoStartsAtTheSameMomentEndWithOneIde) {
  const pid_t one = StartQx({"ide", "start", vbp_});
  const pid_t two = StartQx({"ide", "start", vbp_});
  int status = 0;
  ::waitpid(one, &status, 0);
  const auto first = Collect(one, status);
  ::waitpid(two, &status, 0);
  const auto second = Collect(two, status);
  ASSERT_EQ(first.status, 0) << first.err;
  ASSERT_EQ(second.status, 0) << second.err;
  EXPECT_EQ(PidIn(first.out), PidIn(second.out));
  const auto list = Qx({"ide", "list"});
  EXPECT_EQ(std::count(list.out.begin(), list.out.end(), '\n'), 1) << list.out;
}

TEST_F(IdeProcesses, AKilledIdeGives462AndIsReplacedByAFreshOneAtTheNextRun) {
  const long pid = PidIn(Qx({"ide", "start", vbp_}).out);
  ASSERT_GT(pid, 0);
  host::RegisterClasses();
  automation::ObjectRef dispatcher = host::HostUtility::Instance()->GetRegisteredObject(vbp_);
  ASSERT_NE(dispatcher, nullptr);
  ::kill(static_cast<pid_t>(pid), SIGKILL);
  ASSERT_TRUE(WaitGone(pid, std::chrono::seconds(10)));
  EXPECT_EQ(qxtest::ErrorOf([&] { automation::Dispatch(dispatcher).Call("EnumForms"); }),
            automation::err::kServerUnavailable);
  dispatcher.reset();

  const auto restart = Qx({"ide", "start", vbp_});
  ASSERT_EQ(restart.status, 0) << restart.err;
  EXPECT_EQ(restart.out.rfind("started IDE process ", 0), 0u) << restart.out;
  EXPECT_NE(PidIn(restart.out), pid);
  // Nothing of the killed process is left in the table.
  for (const auto& file : std::filesystem::directory_iterator(home() / "run")) {
    EXPECT_NE(file.path().filename().string().rfind(std::to_string(pid) + "-", 0), 0u)
        << file.path();
  }
}

TEST_F(IdeProcesses, WithNoIdlePeriodTheIdeEndsWhenTheLastHostLetsGo) {
  ::setenv("QX_IDE_IDLE_SECONDS", "0", 1);
  const long pid = PidIn(Qx({"ide", "start", vbp_}).out);
  ASSERT_GT(pid, 0);
  EXPECT_TRUE(WaitGone(pid, std::chrono::seconds(10)));
  const std::string log = qxtest::ReadBytes(home() / "qxvb6.log");
  EXPECT_NE(log.find("qxvb6[" + std::to_string(pid) + "] ending: idle"), std::string::npos) << log;
}

// A program in place of VB6 for the failure paths: a shell script under a vb6.exe name.
std::string FakeVb6(const std::filesystem::path& folder, const std::string& body) {
  std::filesystem::create_directories(folder);
  const auto path = folder / "vb6.exe";
  std::ofstream(path) << "#!/bin/sh\n" << body << "\n";
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  return path.string();
}

// The IDE's own command line answers a wrong one with the error status, as qx does.
TEST_F(IdeProcesses, TheIdesUsageErrorsEndWithTheErrorStatus) {
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"--no-such-option"}, {"dump"}, {"--codepage", "x", vbp_}}) {
    int status = 0;
    const pid_t pid = Start(QXVB6_BIN, args);
    ::waitpid(pid, &status, 0);
    const qxtest::RunResult result = Collect(pid, status);
    EXPECT_EQ(result.status, 2) << args.front();
    EXPECT_EQ(result.err.rfind("qxvb6: ", 0), 0u) << result.err;
  }
}

TEST_F(IdeProcesses, AnOpenCommandNamingNoProgramFailsWithItsPath) {
  const std::string missing = (work() / "nowhere" / "vb6.exe").string();
  ::setenv("QX_VB6_EXE", missing.c_str(), 1);
  const auto result = Qx({"ide", "start", vbp_});
  EXPECT_EQ(result.status, 2);
  std::string windows = "z:" + missing;
  std::replace(windows.begin(), windows.end(), '/', '\\');
  EXPECT_EQ(result.err.rfind("qx: error -32767: File '" + windows + "' not found.", 0), 0u)
      << result.err;
  EXPECT_NE(result.err.find(kTrail), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("Project.Activate"), std::string::npos) << result.err;
}

TEST_F(IdeProcesses, AProgramThatNeverRegistersFailsAfterTheTimeOut) {
  ::setenv("QX_VB6_EXE", FakeVb6(work() / "silent", "exec sleep 120").c_str(), 1);
  ::setenv("QX_START_TIMEOUT_SECONDS", "2", 1);
  const auto start = std::chrono::steady_clock::now();
  const auto result = Qx({"ide", "start", vbp_});
  const auto took = std::chrono::steady_clock::now() - start;
  ::unsetenv("QX_START_TIMEOUT_SECONDS");
  EXPECT_GE(took, std::chrono::seconds(2));
  EXPECT_LT(took, std::chrono::seconds(20));
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err.rfind(
                "qx: error -32767: Quarrix was unable to start and/or communicate with VB6.", 0),
            0u)
      << result.err;
}

// A stopped IDE (SIGSTOP) holds no run up: `ide list` marks it, a search of a folder reports
// 462 for its project and goes on with the next, `ide stop` ends it with signals.
TEST_F(IdeProcesses, AStoppedIdeIsMarkedSkippedWith462AndEndedBySignals) {
  std::filesystem::copy(work() / "Inventory", work() / "Other",
                        std::filesystem::copy_options::recursive);
  const long pid = PidIn(Qx({"ide", "start", vbp_}).out);
  ASSERT_GT(pid, 0);
  ::kill(static_cast<pid_t>(pid), SIGSTOP);

  auto start = std::chrono::steady_clock::now();
  const auto list = Qx({"ide", "list"});
  EXPECT_EQ(list.status, 0) << list.err;
  EXPECT_EQ(list.out.rfind(std::to_string(pid) + "  not answering (", 0), 0u) << list.out;
  EXPECT_NE(list.out.find("is stopped"), std::string::npos) << list.out;
  EXPECT_NE(list.out.find("inventory.vbp"), std::string::npos) << list.out;
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));

  start = std::chrono::steady_clock::now();
  const auto search = Qx({"search", "-l", "oldValue", work().string()});
  EXPECT_EQ(search.status, 2) << search.err;
  EXPECT_NE(search.err.find("Inventory.vbp: error 462: "), std::string::npos) << search.err;
  EXPECT_NE(search.out.find("Other/CStockItem.cls"), std::string::npos) << search.out;
  EXPECT_EQ(search.out.find("Inventory/CStockItem.cls"), std::string::npos) << search.out;
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));

  const auto stop = Qx({"ide", "stop", "--all"});
  EXPECT_EQ(stop.status, 0) << stop.err;
  EXPECT_EQ(stop.out, "stopped IDE process " + std::to_string(pid) +
                          " (it did not end when asked: ended with a signal)\n");
  EXPECT_TRUE(WaitGone(pid, std::chrono::seconds(10)));
}

// Under umask 000 the home is still private; a home that others may write is refused; a home
// so deep that its sockets' paths pass 107 bytes works all the same.
TEST_F(IdeProcesses, TheHomeIsPrivateWhateverTheUmaskAndMayBeDeep) {
  namespace fs = std::filesystem;
  fs::path deep = work() / "home";
  while (deep.string().size() < 120)
    deep /= "a-rather-long-folder-name";
  ::setenv("QX_HOME", deep.c_str(), 1);
  const mode_t umask = ::umask(0);
  const auto started = Qx({"ide", "start", vbp_});
  ::umask(umask);
  const long pid = PidIn(started.out);
  ASSERT_GT(pid, 0) << started.err;
  EXPECT_EQ(Qx({"ide", "list"}).out.rfind(std::to_string(pid) + "  idle ", 0), 0u);

  const auto mode = [](const fs::path& path) {
    return fs::symlink_status(path).permissions() & fs::perms::all;
  };
  const fs::perms folder = fs::perms::owner_all;
  const fs::perms file = fs::perms::owner_read | fs::perms::owner_write;
  for (const fs::path& made : {deep, deep / "run", deep / "drive_c"})
    EXPECT_EQ(mode(made), folder) << made;
  for (const fs::path& made : {deep / "registry.reg", deep / "qxvb6.log"})
    EXPECT_EQ(mode(made), file) << made;
  size_t sockets = 0;
  for (const auto& entry : fs::directory_iterator(deep / "run")) {
    EXPECT_EQ(mode(entry.path()), file) << entry.path();
    sockets += entry.path().extension() == ".sock";
  }
  EXPECT_GE(sockets, 1u);

  fs::permissions(deep / "run", fs::perms::all);
  const auto refused = Qx({"ide", "list"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.err.find("run folder " + (deep / "run").string() +
                             " can be written by other users (mode 0777)"),
            std::string::npos)
      << refused.err;
  fs::permissions(deep / "run", fs::perms::owner_all);
  EXPECT_EQ(Qx({"ide", "stop", "--all"}).status, 0);
  EXPECT_TRUE(WaitGone(pid, std::chrono::seconds(10)));
  ::setenv("QX_HOME", home().c_str(), 1);

  if (::geteuid() != 0) return;  // another user's folder needs root to make
  ASSERT_EQ(::chown(home().c_str(), 65534, 65534), 0);
  const auto foreign = Qx({"ide", "list"});
  ASSERT_EQ(::chown(home().c_str(), 0, 0), 0);
  EXPECT_EQ(foreign.status, 2);
  EXPECT_NE(foreign.err.find("belongs to another user (uid 65534)"), std::string::npos)
      << foreign.err;
}

// qx copied elsewhere (as an install does) starts the IDE beside it, from any folder, and the
// registry's open command follows whichever qx runs until the user changes it.
TEST_F(IdeProcesses, TheIdeIsTheOneBesideTheQxThatRuns) {
  namespace fs = std::filesystem;
  ::unsetenv("QX_VB6_EXE");
  const fs::path bin = work() / "prefix" / "bin";
  fs::create_directories(bin);
  fs::copy_file(QX_BIN, bin / "qx");
  fs::copy_file(QXVB6_BIN, bin / "qxvb6.exe");
  const auto run = [&](const fs::path& qx) {
    const pid_t pid = Start(qx.string(), {"ide", "start", vbp_}, "/");
    int status = 0;
    ::waitpid(pid, &status, 0);
    return Collect(pid, status);
  };
  const auto installed = run(bin / "qx");
  const long pid = PidIn(installed.out);
  ASSERT_GT(pid, 0) << installed.err;
  EXPECT_EQ(fs::read_symlink("/proc/" + std::to_string(pid) + "/exe"), bin / "qxvb6.exe");
  EXPECT_NE(qxtest::ReadBytes(home() / "registry.reg").find("prefix\\\\bin\\\\qxvb6.exe"),
            std::string::npos);
  ASSERT_EQ(Qx({"ide", "stop", "--all"}).status, 0);

  // The build's qx takes the command back; a command the user wrote stays.
  ASSERT_GT(PidIn(Qx({"ide", "start", vbp_}).out), 0);
  EXPECT_EQ(qxtest::ReadBytes(home() / "registry.reg").find("prefix\\\\bin"), std::string::npos);
  ASSERT_EQ(Qx({"ide", "stop", "--all"}).status, 0);
  std::string registry = qxtest::ReadBytes(home() / "registry.reg");
  const size_t open =
      registry.find("[HKEY_CLASSES_ROOT\\VisualBasic.Project\\shell\\open\\command]");
  ASSERT_NE(open, std::string::npos) << registry;
  const size_t value = registry.find("@=", open);
  registry.replace(value, registry.find('\n', value) - value,
                   "@=\"z:\\\\opt\\\\mine\\\\vb6.exe \\\"%1\\\"\"");
  std::ofstream(home() / "registry.reg", std::ios::binary | std::ios::trunc) << registry;
  const auto mine = run(bin / "qx");
  EXPECT_EQ(mine.status, 2);
  EXPECT_NE(mine.err.find("opt\\mine\\vb6.exe"), std::string::npos) << mine.err;
}

}  // namespace
