#include "cli/interruption.h"

#include <dirent.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <thread>

namespace cli {
namespace {

std::atomic<int> interrupted{0};

// How long the run has to stop by itself once its IDEs are ended.
constexpr std::chrono::seconds kGrace{10};

sigset_t Watched() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  sigaddset(&set, SIGHUP);
  return set;
}

void EndChildren() {
  for (const pid_t child : ChildProcesses())
    ::kill(child, SIGTERM);
}

struct Watcher {
  std::atomic<bool> stop{false};
  std::thread thread;
  sigset_t previous{};

  void Run() {
    const sigset_t set = Watched();
    const timespec tick{0, 100'000'000};
    std::chrono::steady_clock::time_point deadline{};
    while (!stop) {
      const int signal = ::sigtimedwait(&set, nullptr, &tick);
      if (signal > 0) {
        // A second signal: the user wants out now.
        if (interrupted != 0) ::_exit(128 + interrupted);
        interrupted = signal;
        deadline = std::chrono::steady_clock::now() + kGrace;
      }
      if (interrupted == 0) continue;
      // Again at every tick: an IDE may have been started just as the signal came.
      EndChildren();
      if (std::chrono::steady_clock::now() > deadline) ::_exit(128 + interrupted);
    }
  }
};

Watcher* watcher = nullptr;

}  // namespace

InterruptionWatch::InterruptionWatch() {
  watcher = new Watcher;
  const sigset_t set = Watched();
  ::pthread_sigmask(SIG_BLOCK, &set, &watcher->previous);
  watcher->thread = std::thread([] { watcher->Run(); });
}

InterruptionWatch::~InterruptionWatch() {
  watcher->stop = true;
  watcher->thread.join();
  // A signal that came after the watch stopped looking is delivered now, as if none had been.
  ::pthread_sigmask(SIG_SETMASK, &watcher->previous, nullptr);
  delete watcher;
  watcher = nullptr;
}

int Interrupted() {
  return interrupted;
}

std::vector<pid_t> ChildProcesses() {
  std::vector<pid_t> children;
  const pid_t self = ::getpid();
  DIR* proc = ::opendir("/proc");
  if (proc == nullptr) return children;
  while (const dirent* entry = ::readdir(proc)) {
    char* end = nullptr;
    const long pid = std::strtol(entry->d_name, &end, 10);
    if (pid <= 0 || *end != '\0') continue;
    std::ifstream in("/proc/" + std::string(entry->d_name) + "/stat");
    std::string stat;
    if (!std::getline(in, stat)) continue;
    // "pid (name) state ppid ...": the name may hold spaces and parentheses.
    const size_t close = stat.rfind(')');
    if (close == std::string::npos) continue;
    char state = 0;
    long parent = 0;
    if (std::sscanf(stat.c_str() + close + 1, " %c %ld", &state, &parent) != 2) continue;
    if (parent == self && state != 'Z') children.push_back(static_cast<pid_t>(pid));
  }
  ::closedir(proc);
  return children;
}

}  // namespace cli
