// qx against ripgrep on generated projects of a million lines and more: the real `qx` and
// `qxvb6.exe` programs and `rg`, each run as a process, timed from start to exit, over the same
// component files in the same run.
//
//   qx_bench_scale [--lines 1000000,3000000] [--repeat 5] [--work DIR] [--forms 1]
//
// For each size it generates a project of modules and classes (about 600 lines a component, as
// real projects have); with --forms 1, each module and class is followed by three data-entry
// forms of 50 controls (captions, texts, tool tips, tags, combo box items in the .frx; the rare
// word is in 1% of the tool tips too) and 20 procedures, so that 3,000,000 lines hold about
// 2,000 forms, and every place is searched. Then it measures, each `--repeat` times and reported as
// the median:
//   rg        `rg -n --column WORD FOLDER`, the rare word that is in 1% of the procedures
//   cold      `qx search --no-keep WORD PROJECT` with no IDE running: the run starts one and
//             ends it
//   warm      the same search while an IDE started by `qx ide start` holds the project
//   replace   `qx replace --write WORD2 NEW PROJECT` changing every procedure, cold, on a fresh
//             copy of the project each time (up to 1,000,000 lines, unless --replace-all 1)
//   memory    the peak resident size (VmHWM) of the IDE holding the project, after the warm
//             searches, against the bytes of the component files
// Every program runs in the project's folder, as a user would run it, and writes its output into
// a file (not /dev/null, which rg treats as -q). Each IDE
// the benchmark starts is ended; QX_HOME is a temporary folder of its own.

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "bench/generator/project_generator.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kRareWord = "Reconcile";  // in every 100th procedure
constexpr const char* kCommonWord = "running";  // in every procedure

struct RunResult {
  double seconds = 0;
  int status = -1;
  long maxRssKb = 0;  // the program's own peak, from wait4
};

// Runs `argv` in `folder` (when given) with its standard output and error into `output`, and
// times it.
RunResult Run(const std::vector<std::string>& argv, const fs::path& output,
              const fs::path& folder = {}) {
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
    ::execvp(args[0], args.data());
    ::_exit(127);
  }
  RunResult result;
  int status = 0;
  struct rusage usage {};
  ::wait4(pid, &status, 0, &usage);
  result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.maxRssKb = usage.ru_maxrss;
  return result;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  if (values.empty()) return 0;
  const std::size_t n = values.size();
  return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

std::string LoadAverage() {
  std::ifstream in("/proc/loadavg");
  std::string one, five, fifteen;
  in >> one >> five >> fifteen;
  return one + " " + five + " " + fifteen;
}

std::size_t CountLines(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return static_cast<std::size_t>(
      std::count(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>(), '\n'));
}

// The process id of the qxvb6.exe that has `vbp` on its command line, or 0.
long FindIde(const fs::path& vbp) {
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename().string();
    if (name.empty() || !std::isdigit(static_cast<unsigned char>(name[0]))) continue;
    std::ifstream in(entry.path() / "cmdline", std::ios::binary);
    std::string cmdline((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (cmdline.find("qxvb6.exe") != std::string::npos &&
        cmdline.find(vbp.string()) != std::string::npos)
      return std::stol(name);
  }
  return 0;
}

// A field of /proc/PID/status in kB ("VmHWM", "VmRSS"), or -1.
long StatusKb(long pid, const std::string& field) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/status");
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind(field + ":", 0) == 0) return std::stol(line.substr(field.size() + 1));
  }
  return -1;
}

// The bytes of the component files and their companions: what rg reads and the IDE loads.
std::uintmax_t ComponentBytes(const fs::path& folder) {
  std::uintmax_t bytes = 0;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string ext = entry.path().extension().string();
    if (ext == ".bas" || ext == ".cls" || ext == ".frm" || ext == ".frx")
      bytes += entry.file_size();
  }
  return bytes;
}

qxbench::GeneratedProject Generate(const fs::path& folder, std::size_t lines, bool forms) {
  fs::remove_all(folder);
  qxbench::GeneratorOptions options;
  options.totalLines = lines;
  options.proceduresPerComponent = 55;  // about 600 lines a component
  options.forms = forms;
  if (forms) {
    options.formsPerCycle = 3;
    options.controlsPerForm = 50;
    options.proceduresPerForm = 20;
  }
  options.rareEvery = 100;
  options.rareWord = kRareWord;
  options.word = kCommonWord;
  return qxbench::GenerateProject(folder, options);
}

struct Settings {
  std::vector<std::size_t> sizes{1000000, 3000000};
  int repeat = 5;
  bool replaceAll = false;
  bool forms = false;
  fs::path work;
};

void Report(const std::string& what, const std::vector<double>& times, const std::string& note) {
  std::ostringstream line;
  line.precision(3);
  line << std::fixed << "  " << what << ": median " << Median(times) << " s  (runs:";
  for (double t : times)
    line << " " << t;
  line << ")" << note;
  std::cout << line.str() << std::endl;
}

int Main(const Settings& settings) {
  const std::string qx = QX_BIN;
  const bool haveRg = Run({"rg", "--version"}, settings.work / "rg-version.txt").status == 0;
  if (!haveRg) std::cout << "rg not found: install ripgrep (scripts/install-deps.sh bench)\n";
  const auto stopAll = [&] { Run({qx, "ide", "stop", "--all"}, settings.work / "stop.txt"); };
  stopAll();
  for (std::size_t size : settings.sizes) {
    const fs::path folder = settings.work / ("p" + std::to_string(size));
    const auto project = Generate(folder, size, settings.forms);
    const std::uintmax_t bytes = ComponentBytes(folder);
    std::cout << "== " << project.lines << " lines, " << project.components << " components ("
              << project.forms << " forms, " << project.controls << " controls), "
              << project.procedures << " procedures, " << bytes << " bytes; load " << LoadAverage()
              << std::endl;
    const fs::path out = settings.work / "out.txt";
    std::vector<double> rg, cold, warm;
    std::size_t rgLines = 0, qxLines = 0;
    for (int i = 0; i < settings.repeat && haveRg; ++i) {
      rg.push_back(Run({"rg", "-n", "--column", kRareWord, folder.string()}, out, folder).seconds);
      rgLines = CountLines(out);
    }
    long coldQxRss = 0;
    for (int i = 0; i < settings.repeat; ++i) {
      // Cold each time: the run does not keep its IDE warm.
      const RunResult r =
          Run({qx, "search", "--no-keep", "--color", "never", kRareWord, project.vbp}, out, folder);
      if (r.status != 0) std::cout << "  qx search exited with " << r.status << "\n";
      cold.push_back(r.seconds);
      coldQxRss = r.maxRssKb;
      qxLines = CountLines(out);
      if (FindIde(project.vbp) != 0) std::cout << "  (an IDE is left running after a cold run)\n";
    }
    const RunResult start = Run({qx, "ide", "start", project.vbp}, out);
    const long pid = FindIde(project.vbp);
    const long loadedHwm = pid ? StatusKb(pid, "VmHWM") : -1;
    std::cout << "  ide start: " << start.seconds << " s, pid " << pid << std::endl;
    for (int i = 0; i < settings.repeat; ++i) {
      const RunResult r =
          Run({qx, "search", "--color", "never", kRareWord, project.vbp}, out, folder);
      warm.push_back(r.seconds);
    }
    const long hwm = pid ? StatusKb(pid, "VmHWM") : -1;
    const long rss = pid ? StatusKb(pid, "VmRSS") : -1;
    stopAll();
    const double rgMedian = Median(rg);
    std::ostringstream ratio;
    ratio.precision(2);
    ratio << std::fixed;
    if (haveRg) Report("rg", rg, "  output lines " + std::to_string(rgLines));
    ratio << "  " << Median(cold) / rgMedian << "x rg; qx peak RSS " << coldQxRss / 1024
          << " MB; output lines " << qxLines;
    Report("qx search, cold", cold, ratio.str());
    ratio.str("");
    ratio << "  " << Median(warm) / rgMedian << "x rg";
    Report("qx search, warm", warm, ratio.str());
    const double limitMb = 3.0 * static_cast<double>(bytes) / 1048576 + 50;
    std::cout << "  IDE memory: VmHWM after load " << loadedHwm / 1024 << " MB, after searches "
              << hwm / 1024 << " MB, VmRSS " << rss / 1024 << " MB; project " << bytes / 1048576.0
              << " MB; " << (hwm / 1024.0) / (bytes / 1048576.0) << "x the bytes; target "
              << limitMb << " MB" << std::endl;

    if (size <= 1000000 || settings.replaceAll) {
      std::vector<double> replace;
      for (int i = 0; i < settings.repeat; ++i) {
        const fs::path copy = settings.work / ("r" + std::to_string(size));
        const auto fresh = Generate(copy, size, settings.forms);
        const RunResult r = Run({qx, "replace", "--write", "--no-keep", "--color", "never",
                                 kCommonWord, "walking", fresh.vbp},
                                out);
        if (r.status != 0) std::cout << "  qx replace exited with " << r.status << "\n";
        replace.push_back(r.seconds);
        if (i == 0) {
          const RunResult check = Run({"grep", "-rlc", kCommonWord, "--include=*.bas",
                                       "--include=*.cls", "--include=*.frm", copy.string()},
                                      settings.work / "check.txt");
          if (check.status == 0) std::cout << "  (replace left matches behind)\n";
        }
        fs::remove_all(copy);
      }
      Report("qx replace --write, cold", replace,
             "  (" + std::to_string(project.procedures) + " procedures changed)");
    }
    fs::remove_all(folder);
  }
  stopAll();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Settings settings;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string option = argv[i];
    if (option == "--lines") {
      settings.sizes.clear();
      std::stringstream list(argv[i + 1]);
      std::string item;
      while (std::getline(list, item, ','))
        settings.sizes.push_back(std::stoul(item));
    } else if (option == "--repeat") {
      settings.repeat = std::max(1, std::atoi(argv[i + 1]));
    } else if (option == "--work") {
      settings.work = argv[i + 1];
    } else if (option == "--forms") {
      settings.forms = std::string(argv[i + 1]) == "1";
    } else if (option == "--replace-all") {
      settings.replaceAll = std::string(argv[i + 1]) == "1";
    } else {
      std::cerr << "usage: qx_bench_scale [--lines N,N] [--repeat N] [--work DIR] [--forms 0|1]\n";
      return 2;
    }
  }
  char home[] = "/tmp/qx_bench_scale_XXXXXX";
  if (::mkdtemp(home) == nullptr) return 2;
  ::setenv("QX_HOME", home, 1);
  ::setenv("QX_VB6_EXE", QXVB6_BIN, 1);
  const bool ownWork = settings.work.empty();
  if (ownWork) settings.work = fs::path(home) / "work";
  fs::create_directories(settings.work);
  const int status = Main(settings);
  fs::remove_all(home);
  return status;
}
