#pragma once
// Processes that a test starts, ended when the test ends, also when it fails: the guard kills
// (SIGKILL) and reaps every child of the test process, the ones it started itself and the ones
// started for it (LaunchAndConnect), so a test run leaves nothing running.

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
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

  // The children of this process, as Linux lists them, or (where the kernel keeps no such
  // list) as the parent field of every process says.
  static std::vector<pid_t> Children() {
    std::vector<pid_t> pids;
    std::ifstream in("/proc/self/task/" + std::to_string(::getpid()) + "/children");
    if (in) {
      for (pid_t pid; in >> pid;)
        pids.push_back(pid);
      return pids;
    }
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
      const std::string name = entry.path().filename().string();
      if (name.empty() || name.find_first_not_of("0123456789") != std::string::npos) continue;
      std::ifstream stat(entry.path() / "stat");
      std::string line;
      if (!std::getline(stat, line)) continue;
      // "pid (name) state ppid ...": the name may hold anything, so fields count from the last ")".
      const size_t close = line.rfind(')');
      if (close == std::string::npos) continue;
      std::istringstream fields(line.substr(close + 1));
      std::string state;
      long parent = 0;
      if (fields >> state >> parent && parent == ::getpid()) pids.push_back(std::stoi(name));
    }
    return pids;
  }
};

}  // namespace qxtest
