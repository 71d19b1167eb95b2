#pragma once
// Processes that a test starts, ended when the test ends, also when it fails: the guard kills
// (SIGKILL) and reaps every child of the test process, the ones it started itself and the ones
// started for it (LaunchAndConnect), so a test run leaves nothing running.

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

extern char** environ;

namespace qxtest {

class ChildProcesses {
 public:
  ChildProcesses() = default;
  ~ChildProcesses() { EndAll(); }
  ChildProcesses(const ChildProcesses&) = delete;
  ChildProcesses& operator=(const ChildProcesses&) = delete;

  // Starts a program with arguments; the child inherits the environment (QX_HOME included).
  pid_t Start(const std::vector<std::string>& argv) {
    std::vector<char*> args;
    for (const auto& a : argv)
      args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    pid_t pid = 0;
    if (::posix_spawn(&pid, args[0], nullptr, nullptr, args.data(), environ) != 0)
      throw std::runtime_error("cannot start " + argv[0]);
    return pid;
  }

  // Kills one child and reaps it.
  static void End(pid_t pid) {
    ::kill(pid, SIGKILL);
    int status = 0;
    ::waitpid(pid, &status, 0);
  }

  // Kills and reaps every child of this process.
  static void EndAll() {
    for (pid_t pid : Children())
      End(pid);
  }

  // The children of this (single-threaded) process, as Linux lists them.
  static std::vector<pid_t> Children() {
    std::ifstream in("/proc/self/task/" + std::to_string(::getpid()) + "/children");
    std::vector<pid_t> pids;
    for (pid_t pid; in >> pid;)
      pids.push_back(pid);
    return pids;
  }
};

}  // namespace qxtest
