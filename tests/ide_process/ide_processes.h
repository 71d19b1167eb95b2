#pragma once
// The setting of a test with real IDE processes: a fresh qx home whose registry names the built
// qxvb6.exe (or another program a test gives), a copy of the example project, and a way to run
// qx and read what it printed. Every process the test starts, directly or through qx, ends with
// the test, also when it fails: the test process adopts the orphans of its children (a child
// subreaper), so an IDE that qx started and left running is its child too, and the guard asks
// every IDE of the home to stop and then kills and reaps whatever is left.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/bytes.h"
#include "support/child_processes.h"
#include "support/json_lines.h"
#include "support/temp_home.h"

namespace qxtest {

struct RunResult {
  int status = -1;
  std::string out;
  std::string err;
};

// Gone: no such process, or one that ended and waits to be reaped.
inline bool ProcessGone(long pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
  std::string stat;
  if (!in || !std::getline(in, stat)) return true;
  const size_t close = stat.rfind(')');
  return close == std::string::npos || close + 2 >= stat.size() || stat[close + 2] == 'Z';
}

inline bool WaitGone(long pid, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!ProcessGone(pid)) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

// What a replace or rename printed before its summary line.
inline std::string Diff(const std::string& out) {
  return out.substr(0, out.rfind('\n', out.size() - 2) + 1);
}

// Every occurrence of `from` in the text replaced by `to`.
inline std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

// The arguments `head` followed by `tail`.
inline std::vector<std::string> Joined(std::vector<std::string> head,
                                       const std::vector<std::string>& tail) {
  head.insert(head.end(), tail.begin(), tail.end());
  return head;
}

class IdeProcesses : public ::testing::Test {
 protected:
  IdeProcesses() {
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    ::setenv("QX_VB6_EXE", QXVB6_BIN, 1);
    ::unsetenv("QX_IDE_IDLE_SECONDS");
    // A run ends the IDEs it started unless a test asks to keep them warm.
    ::setenv("QX_KEEP_IDES", "0", 1);
    std::filesystem::copy(std::filesystem::path(QX_EXAMPLES) / "Inventory",
                          work_.path() / "Inventory", std::filesystem::copy_options::recursive);
    vbp_ = (work_.path() / "Inventory" / "Inventory.vbp").string();
  }
  ~IdeProcesses() override {
    Qx({"ide", "stop", "--all"});
    ChildProcesses::EndAll();
    ::unsetenv("QX_VB6_EXE");
    ::unsetenv("QX_IDE_IDLE_SECONDS");
    ::unsetenv("QX_KEEP_IDES");
  }

  // Runs qx with the arguments (in the folder given, else the test's) and waits for it.
  RunResult Qx(const std::vector<std::string>& args, const std::string& folder = {}) {
    const pid_t pid = StartQx(args, folder);
    int status = 0;
    ::waitpid(pid, &status, 0);
    return Collect(pid, status);
  }

  // Runs qx with this text as its standard input (the answers that --interactive reads).
  RunResult QxAnswering(const std::string& input, const std::vector<std::string>& args) {
    input_ = work_.path() / ("in" + std::to_string(runs_ + 1));
    std::ofstream(input_, std::ios::binary) << input;
    RunResult result = Qx(args);
    input_.clear();
    return result;
  }

  pid_t StartQx(const std::vector<std::string>& args, const std::string& folder = {}) {
    return Start(QX_BIN, args, folder);
  }

  // Runs a program of ours (qx, qxvb6.exe) with the arguments, its output kept in the work folder
  // or, when given, written to the descriptor `out`.
  pid_t Start(const std::string& program, const std::vector<std::string>& args,
              const std::string& folder = {}, int out = -1) {
    std::vector<std::string> argv{program};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<char*> raw;
    for (auto& a : argv)
      raw.push_back(a.data());
    raw.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const std::string n = std::to_string(++runs_);
    if (out >= 0) {
      posix_spawn_file_actions_adddup2(&actions, out, 1);
    } else {
      posix_spawn_file_actions_addopen(&actions, 1, (work_.path() / ("out" + n)).c_str(),
                                       O_WRONLY | O_CREAT | O_TRUNC, 0644);
    }
    posix_spawn_file_actions_addopen(&actions, 2, (work_.path() / ("err" + n)).c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    if (!input_.empty()) posix_spawn_file_actions_addopen(&actions, 0, input_.c_str(), O_RDONLY, 0);
    pid_t pid = 0;
    const int failed = ::posix_spawn(&pid, raw[0], &actions, nullptr, raw.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) throw std::runtime_error("cannot start " + program);
    runOf_[pid] = n;
    return pid;
  }

  RunResult Collect(pid_t pid, int status) {
    const std::string n = runOf_[pid];
    RunResult result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.out = ReadBytes(work_.path() / ("out" + n));
    result.err = ReadBytes(work_.path() / ("err" + n));
    return result;
  }

  // The process id in "started IDE process N for ..." / "connected to IDE process N for ...".
  static long PidIn(const std::string& text) {
    const size_t at = text.find("IDE process ");
    if (at == std::string::npos) return 0;
    return std::stol(text.substr(at + 12));
  }

  const std::filesystem::path& home() const { return home_.path(); }
  const std::filesystem::path& work() const { return work_.path(); }

  TempHome home_;
  TempDir work_;
  std::string vbp_;
  int runs_ = 0;
  std::filesystem::path input_;  // the next run's standard input, when set
  std::map<pid_t, std::string> runOf_;
};

}  // namespace qxtest
