#include "cli/interruption.h"

#include <dirent.h>
#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
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
// How often, once interrupted, the IDEs that the run started are ended again.
constexpr int kTickMs = 100;

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

// The watch thread waits for one of the signals (read from a signalfd) or for the run to end
// (an eventfd the destructor writes), so neither waits for a tick.
struct Watcher {
  int signals = -1;
  int wake = -1;
  std::thread thread;
  sigset_t previous{};

  void Run() {
    std::chrono::steady_clock::time_point deadline{};
    for (;;) {
      pollfd fds[2] = {{signals, POLLIN, 0}, {wake, POLLIN, 0}};
      // Once interrupted, the IDEs are ended again at every tick: one may have been started
      // just as the signal came.
      const int ready = ::poll(fds, 2, interrupted != 0 ? kTickMs : -1);
      if (ready < 0 && errno != EINTR) return;
      if (fds[1].revents != 0) return;
      if (fds[0].revents != 0) {
        signalfd_siginfo info{};
        if (::read(signals, &info, sizeof info) == sizeof info) {
          // A second signal: the user wants out now.
          if (interrupted != 0) ::_exit(128 + interrupted);
          interrupted = static_cast<int>(info.ssi_signo);
          deadline = std::chrono::steady_clock::now() + kGrace;
        }
      }
      if (interrupted == 0) continue;
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
  watcher->signals = ::signalfd(-1, &set, SFD_CLOEXEC);
  watcher->wake = ::eventfd(0, EFD_CLOEXEC);
  watcher->thread = std::thread([] { watcher->Run(); });
}

InterruptionWatch::~InterruptionWatch() {
  const uint64_t one = 1;
  if (::write(watcher->wake, &one, sizeof one) != sizeof one) {
    // Cannot happen with a fresh eventfd; the thread would then end at the next signal.
  }
  watcher->thread.join();
  ::close(watcher->signals);
  ::close(watcher->wake);
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
