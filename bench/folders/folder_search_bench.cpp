// `qx search` over a folder of many small projects, as a user runs it on a source tree: the
// wall time, the most IDE processes alive at once, and the peak memory of qx and of the IDEs.
// qx runs as a program of its own; its IDEs are its child processes, so a sampler that reads
// /proc every few milliseconds sees each of them and their memory. What the run leaves in the
// qx home's run folder, and any IDE that outlives it, is reported too (both should be none).
//
//   qx_bench_folders [PROJECTS] [LINES-PER-PROJECT]      (default 300 and 300)

#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "bench/generator/project_generator.h"
#include "bench/support/processes.h"
#include "support/child_processes.h"
#include "support/temp_home.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;
using qxbench::StatusKb;

struct ProcessInfo {
  long parent = 0;
  std::string name;
  char state = 0;
};

ProcessInfo Stat(long pid) {
  ProcessInfo info;
  std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
  std::string line;
  if (!std::getline(in, line)) return info;
  const size_t open = line.find('('), close = line.rfind(')');
  if (open == std::string::npos || close == std::string::npos) return info;
  info.name = line.substr(open + 1, close - open - 1);
  std::istringstream fields(line.substr(close + 1));
  fields >> info.state >> info.parent;
  return info;
}

std::vector<long> ChildrenOf(long parent) {
  std::vector<long> children;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    const long pid = std::stol(name);
    const ProcessInfo info = Stat(pid);
    if (info.parent == parent && info.state != 'Z' && info.state != 'X') children.push_back(pid);
  }
  return children;
}

}  // namespace

int main(int argc, char** argv) {
  const size_t projects = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 300;
  const size_t lines = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 300;
  ::prctl(PR_SET_CHILD_SUBREAPER, 1);  // an IDE that outlived qx becomes ours, and is ended
  ::setenv("QX_VB6_EXE", QXVB6_BIN, 1);
  qxtest::TempHome home;
  qxtest::TempDir work;

  const fs::path folder = work.path() / "projects";
  const qxbench::GeneratedProject generated = qxbench::GenerateFolder(folder, projects, lines);
  const size_t components = generated.components, totalLines = generated.lines;
  size_t bytes = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file()) bytes += entry.file_size();
  std::printf("folder: %zu projects, %zu components, %zu lines, %.1f MB\n", projects, components,
              totalLines, static_cast<double>(bytes) / 1e6);

  std::vector<std::string> args{QX_BIN, "search", "-c", "running", folder.string()};
  std::vector<char*> raw;
  for (auto& a : args)
    raw.push_back(a.data());
  raw.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, (work.path() / "out").c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, 2, (work.path() / "err").c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const auto start = std::chrono::steady_clock::now();
  pid_t qx = 0;
  if (::posix_spawn(&qx, raw[0], &actions, nullptr, raw.data(), environ) != 0) {
    std::fprintf(stderr, "cannot start qx\n");
    return 1;
  }
  posix_spawn_file_actions_destroy(&actions);

  size_t peakIdes = 0, ides = 0;
  long peakIdeKb = 0, peakIdesTotalKb = 0, peakQxKb = 0;
  std::map<long, long> seen;  // IDE process id: its peak resident memory seen
  int status = 0;
  for (;;) {
    const pid_t done = ::waitpid(qx, &status, WNOHANG);
    if (done == qx) break;
    peakQxKb = std::max(peakQxKb, StatusKb(qx, "VmHWM"));
    const std::vector<long> alive = ChildrenOf(qx);
    peakIdes = std::max(peakIdes, alive.size());
    long total = 0;
    for (const long pid : alive) {
      const long hwm = StatusKb(pid, "VmHWM");
      seen[pid] = std::max(seen[pid], hwm);
      peakIdeKb = std::max(peakIdeKb, hwm);
      total += StatusKb(pid, "VmRSS");
    }
    peakIdesTotalKb = std::max(peakIdesTotalKb, total);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  ides = seen.size();

  std::string out;
  {
    std::ifstream in(work.path() / "out");
    out.assign(std::istreambuf_iterator<char>(in), {});
  }
  size_t files = 0;
  for (const char c : out)
    files += c == '\n';
  std::ifstream errIn(work.path() / "err");
  const std::string err((std::istreambuf_iterator<char>(errIn)), {});

  std::vector<std::string> left;
  std::error_code ec;
  for (fs::directory_iterator it(home.path() / "run", ec), end; !ec && it != end; it.increment(ec))
    left.push_back(it->path().filename().string());
  // Ended IDEs that qx did not collect are ours now, but they are no longer running.
  const size_t outlived = ChildrenOf(::getpid()).size();

  std::printf("qx exit status %d; %zu files with matches\n",
              WIFEXITED(status) ? WEXITSTATUS(status) : -1, files);
  std::printf("wall time: %.2f s (%.1f ms a project)\n", seconds, seconds * 1000 / projects);
  std::printf("IDE processes: %zu seen, at most %zu alive at once\n", ides, peakIdes);
  std::printf("peak memory: qx %.1f MB; one IDE %.1f MB; all IDEs together %.1f MB\n",
              peakQxKb / 1024.0, peakIdeKb / 1024.0, peakIdesTotalKb / 1024.0);
  std::printf("left behind: %zu files in the run folder, %zu processes\n", left.size(), outlived);
  if (!err.empty()) std::printf("standard error:\n%s", err.c_str());
  qxtest::ChildProcesses::EndAll();
  return WIFEXITED(status) && WEXITSTATUS(status) <= 1 ? 0 : 1;
}
