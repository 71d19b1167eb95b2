#pragma once
// What the benchmarks that run real programs share: running one as a process and timing it,
// medians, the machine's load, and the memory figures of a running process from /proc.

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace qxbench {

struct RunResult {
  double seconds = 0;
  int status = -1;    // the exit status; -1 when a signal ended it (a time-out among them)
  long maxRssKb = 0;  // the program's own peak, from wait4
  bool timedOut = false;
};

// The longest a program of a benchmark may run before it is ended.
inline constexpr unsigned kRunLimitSeconds = 900;

// Runs `argv` in `folder` (when given) with its standard output and error into `output`, and
// times it from start to exit. A program still running after kRunLimitSeconds is ended
// (SIGALRM, which exec keeps pending for it).
inline RunResult Run(const std::vector<std::string>& argv, const std::filesystem::path& output,
                     const std::filesystem::path& folder = {}) {
  std::vector<char*> args;
  for (const std::string& a : argv)
    args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  const auto start = std::chrono::steady_clock::now();
  const pid_t pid = ::fork();
  if (pid == 0) {
    std::FILE* out = std::fopen(output.c_str(), "wb");
    if (out == nullptr) ::_exit(127);
    if (!folder.empty() && ::chdir(folder.c_str()) != 0) ::_exit(127);
    ::dup2(::fileno(out), 1);
    ::dup2(::fileno(out), 2);
    ::signal(SIGALRM, SIG_DFL);
    ::alarm(kRunLimitSeconds);
    ::execvp(args[0], args.data());
    ::_exit(127);
  }
  RunResult result;
  int status = 0;
  struct rusage usage {};
  ::wait4(pid, &status, 0, &usage);
  result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.timedOut = WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM;
  result.maxRssKb = usage.ru_maxrss;
  return result;
}

inline double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  if (values.empty()) return 0;
  const std::size_t n = values.size();
  return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

// The load averages of the last 1, 5 and 15 minutes, as /proc/loadavg gives them.
inline std::string LoadAverage() {
  std::ifstream in("/proc/loadavg");
  std::string one, five, fifteen;
  in >> one >> five >> fifteen;
  return one + " " + five + " " + fifteen;
}

inline std::size_t CountLines(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return static_cast<std::size_t>(
      std::count(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>(), '\n'));
}

// A field of /proc/PID/status in kB ("VmHWM", "VmRSS"); 0 when the process is gone.
inline long StatusKb(long pid, const std::string& field) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/status");
  for (std::string line; std::getline(in, line);) {
    if (line.rfind(field + ":", 0) == 0)
      return std::strtol(line.c_str() + field.size() + 1, nullptr, 10);
  }
  return 0;
}

// The processes running now (zombies left out) whose command line holds every one of `words`.
inline std::vector<long> FindProcesses(const std::vector<std::string>& words) {
  std::vector<long> found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename().string();
    if (name.empty() || name.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream in(entry.path() / "cmdline", std::ios::binary);
    const std::string cmdline((std::istreambuf_iterator<char>(in)),
                              std::istreambuf_iterator<char>());
    if (cmdline.empty()) continue;  // a zombie, or gone meanwhile
    if (std::all_of(words.begin(), words.end(), [&](const std::string& word) {
          return cmdline.find(word) != std::string::npos;
        })) {
      found.push_back(std::stol(name));
    }
  }
  return found;
}

}  // namespace qxbench
