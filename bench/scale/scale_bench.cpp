// qx against ripgrep and sed on generated projects of a million lines and more: the real `qx`
// and `qxvb6.exe` programs, `rg` and `sed`, each run as a process and timed from start to exit,
// over the same files in the same run. Every figure is printed with its target.
//
//   qx_bench_scale [--lines 1000000,3000000] [--repeat 3] [--work DIR] [--forms 0|1]
//                  [--replace-all 0|1] [--folder 300]
//
// For each size it generates a project as real ones are made (about 600 lines a component): a
// module, a class and a form by turns, so a third of the components are forms, each a data-entry
// form of 50 controls with its .frx (captions, texts, tool tips, tags, combo box items) and 20
// procedures (--forms 0: modules and classes only). Then it measures, each `--repeat` times and
// reported as the median with every run:
//   search -c        the common word (in every procedure), the rare word (in 1% of the
//                    procedures and of the tool tips) and a regular expression with -i:
//                      rg     `rg -c` with the same pattern and options over the project's folder
//                      cold   `qx search -c` with no IDE running: the run starts one
//                      warm   the same while an IDE started by `qx ide start` holds the project
//                             and has read its files (one search, not timed, before the first)
//                    targets: cold within 10x rg for the common word and the expression, 5x for
//                    the rare word; warm within 2x
//   IDE memory       the IDE's peak resident size (VmHWM) after the warm searches, against the
//                    bytes of the component files and companions: target 3x those + 50 MB
//   replace --write  `qx replace --write` changing the common word in every procedure, cold, on
//                    a fresh copy of the project each time (up to 1,000,000 lines unless
//                    --replace-all 1), against `sed -i` making the same textual change in the
//                    component files of another fresh copy: target under 3 s and within 10x sed;
//                    the two copies are compared afterwards, and must hold the same lines
// and, once, `qx search -c` of the common word over a folder of --folder projects of 300 lines
// each (0: none), against `rg -c` over the same folder: target within 20x.
// Before every cold run each IDE is ended (`qx ide stop --all`, not timed), so IDEs that a run
// leaves running do not make the next one warm. Every program runs in the project's folder, as a
// user would run it, and writes its output into a file (not /dev/null, which rg treats as -q).
// QX_HOME is a temporary folder of its own; each IDE the benchmark starts is ended. The machine
// may be shared: the load average is printed with every size.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "bench/generator/project_generator.h"
#include "bench/support/processes.h"

namespace fs = std::filesystem;

namespace {

using qxbench::Median;
using qxbench::Run;
using qxbench::RunResult;

constexpr const char* kRareWord = "Reconcile";  // in every 100th procedure and tool tip
constexpr const char* kCommonWord = "running";  // in every procedure
constexpr const char* kNewWord = "walking";     // what replace writes for it
// A regular expression for -i: the rare word's places, in any letter case.
constexpr const char* kExpression = "reconc[a-z]+ (it|field)";

struct Settings {
  std::vector<std::size_t> sizes{1000000, 3000000};
  int repeat = 3;
  bool replaceAll = false;
  bool forms = true;
  std::size_t folderProjects = 300;
  fs::path work;
};

// The bytes of the component files and their companions: what rg reads and the IDE loads.
std::uintmax_t ComponentBytes(const fs::path& folder) {
  std::uintmax_t bytes = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string ext = entry.path().extension().string();
    if (ext == ".bas" || ext == ".cls" || ext == ".frm" || ext == ".frx")
      bytes += entry.file_size();
  }
  return bytes;
}

std::vector<std::string> SourceFiles(const fs::path& folder) {
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string ext = entry.path().extension().string();
    if (ext == ".bas" || ext == ".cls" || ext == ".frm") files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string Contents(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A file's text with every line end as LF: a procedure that qx rewrites takes the file's usual
// line end, where sed keeps each line's own (the generator mixes them in some files).
std::string Lines(const fs::path& file) {
  const std::string bytes = Contents(file);
  std::string text;
  text.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] != '\r') {
      text += bytes[i];
    } else if (i + 1 >= bytes.size() || bytes[i + 1] != '\n') {
      text += '\n';
    }
  }
  return text;
}

qxbench::GeneratedProject Generate(const fs::path& folder, std::size_t lines, bool forms) {
  fs::remove_all(folder);
  qxbench::GeneratorOptions options;
  options.totalLines = lines;
  options.proceduresPerComponent = 55;  // about 600 lines a component
  options.forms = forms;
  if (forms) {
    options.formsPerCycle = 1;
    options.controlsPerForm = 50;
    options.proceduresPerForm = 20;
  }
  options.rareEvery = 100;
  options.rareWord = kRareWord;
  options.word = kCommonWord;
  return qxbench::GenerateProject(folder, options);
}

std::string Fixed(double value, int precision) {
  std::ostringstream text;
  text.precision(precision);
  text << std::fixed << value;
  return text.str();
}

// One timed figure: the median of its runs, and the runs.
std::string Timing(const std::vector<double>& runs) {
  std::string text = Fixed(Median(runs), 3) + " s  (";
  for (std::size_t i = 0; i < runs.size(); ++i)
    text += (i ? " " : "") + Fixed(runs[i], 3);
  return text + ")";
}

// "  12.3x rg  target <= 10x: missed by 1.23x" for a figure against its baseline.
std::string Against(double value, double base, const std::string& baseName, double target) {
  if (base <= 0) return "  (no " + baseName + " figure)";
  const double ratio = value / base;
  std::string text =
      "  " + Fixed(ratio, 1) + "x " + baseName + "  target <= " + Fixed(target, 0) + "x: ";
  return text + (ratio <= target ? "met" : "missed by " + Fixed(ratio / target, 2) + "x");
}

void Print(const std::string& label, const std::string& figure, const std::string& note = {}) {
  std::cout << "    " << label << std::string(label.size() < 14 ? 14 - label.size() : 1, ' ')
            << figure << note << std::endl;
}

class Bench {
 public:
  explicit Bench(const Settings& settings) : settings_(settings), out_(settings.work / "out.txt") {
    haveRg_ = Run({"rg", "--version"}, out_).status == 0;
    if (!haveRg_) std::cout << "rg not found: install ripgrep (scripts/install-deps.sh bench)\n";
  }

  int Main() {
    StopAll();
    std::vector<double> coldCommon;  // per size, for the growth
    for (const std::size_t size : settings_.sizes)
      coldCommon.push_back(Size(size));
    if (settings_.sizes.size() > 1 && coldCommon.front() > 0) {
      std::cout << "growth: cold common-word search "
                << Fixed(coldCommon.back() / coldCommon.front(), 2) << "x the time for "
                << Fixed(static_cast<double>(settings_.sizes.back()) /
                             static_cast<double>(settings_.sizes.front()),
                         2)
                << "x the lines" << std::endl;
    }
    if (settings_.folderProjects > 0) Folder();
    StopAll();
    return failures_ == 0 ? 0 : 1;
  }

 private:
  // The search figures of one pattern: rg, and qx cold and warm (filled in two passes, so that
  // every cold run comes before the IDE is started for the warm ones).
  struct Search {
    std::string title;
    std::vector<std::string> options;  // for both programs: "-F", "-i"
    std::string pattern;
    double coldTarget;
    std::vector<double> rg, cold, warm;
    std::size_t rgFiles = 0, qxFiles = 0;
  };

  void StopAll() { Run({qx_, "ide", "stop", "--all"}, settings_.work / "stop.txt"); }

  // Runs a qx command and says so when it did not end as a search should (0 or 1).
  RunResult Qx(std::vector<std::string> args, const fs::path& folder) {
    args.insert(args.begin(), qx_);
    const RunResult r = Run(args, out_, folder);
    if (r.status != 0 && r.status != 1) {
      ++failures_;
      std::cout << "    (qx " << args[1] << " exited with " << r.status
                << (r.timedOut ? ", timed out" : "") << ": " << Contents(out_).substr(0, 300)
                << ")\n";
    }
    return r;
  }

  std::vector<std::string> SearchArgs(const Search& search, const std::string& where) {
    std::vector<std::string> args{"search", "-c", "--color", "never"};
    args.insert(args.end(), search.options.begin(), search.options.end());
    args.push_back(search.pattern);
    args.push_back(where);
    return args;
  }

  double Size(std::size_t size) {
    const fs::path folder = settings_.work / ("p" + std::to_string(size));
    const auto project = Generate(folder, size, settings_.forms);
    const std::uintmax_t bytes = ComponentBytes(folder);
    std::cout << "== " << project.lines << " lines: " << project.components << " components ("
              << project.forms << " forms, " << project.controls << " controls), "
              << project.procedures << " procedures, " << Fixed(bytes / 1048576.0, 1)
              << " MB of component files and companions; load " << qxbench::LoadAverage()
              << std::endl;

    std::vector<Search> searches{
        {"search -c -F " + std::string(kCommonWord) + " (every procedure)",
         {"-F"},
         kCommonWord,
         10,
         {},
         {},
         {}},
        {"search -c -F " + std::string(kRareWord) + " (1% of procedures and tool tips)",
         {"-F"},
         kRareWord,
         5,
         {},
         {},
         {}},
        {"search -c -i '" + std::string(kExpression) + "' (a regular expression)",
         {"-i"},
         kExpression,
         10,
         {},
         {},
         {}},
    };
    const std::string vbp = project.vbp.string();
    for (int i = 0; i < settings_.repeat; ++i) {
      for (Search& search : searches) {
        if (haveRg_) {
          std::vector<std::string> rg{"rg", "-c"};
          rg.insert(rg.end(), search.options.begin(), search.options.end());
          rg.push_back(search.pattern);
          rg.push_back(folder.string());
          search.rg.push_back(Run(rg, out_, folder).seconds);
          search.rgFiles = qxbench::CountLines(out_);
        }
        StopAll();
        search.cold.push_back(Qx(SearchArgs(search, vbp), folder).seconds);
        search.qxFiles = qxbench::CountLines(out_);
      }
    }
    StopAll();
    const RunResult start = Run({qx_, "ide", "start", vbp}, out_);
    const std::vector<long> ides = qxbench::FindProcesses({"qxvb6.exe", vbp});
    const long pid = ides.empty() ? 0 : ides.front();
    if (pid == 0) {
      ++failures_;
      std::cout << "    (qx ide start left no IDE running: " << Contents(out_).substr(0, 300)
                << ")\n";
    }
    const long loadedKb = pid ? qxbench::StatusKb(pid, "VmHWM") : 0;
    // The IDE reads a component's file when it is first asked for it: one search first, so that
    // every warm run finds the files read, as a second search of a project does.
    Qx(SearchArgs(searches.front(), vbp), folder);
    for (int i = 0; i < settings_.repeat; ++i) {
      for (Search& search : searches)
        search.warm.push_back(Qx(SearchArgs(search, vbp), folder).seconds);
    }
    const long peakKb = pid ? qxbench::StatusKb(pid, "VmHWM") : 0;
    StopAll();

    for (const Search& search : searches) {
      std::cout << "  " << search.title << std::endl;
      if (haveRg_) Print("rg", Timing(search.rg), "  " + std::to_string(search.rgFiles) + " files");
      Print("qx cold", Timing(search.cold),
            Against(Median(search.cold), Median(search.rg), "rg", search.coldTarget) + "  " +
                std::to_string(search.qxFiles) + " components");
      Print("qx warm", Timing(search.warm),
            Against(Median(search.warm), Median(search.rg), "rg", 2));
    }
    const double megabytes = static_cast<double>(bytes) / 1048576;
    const double limit = 3 * megabytes + 50;
    std::cout << "  IDE memory (ide start " << Fixed(start.seconds, 3) << " s)" << std::endl;
    Print("peak",
          Fixed(peakKb / 1024.0, 0) + " MB (" + Fixed(loadedKb / 1024.0, 0) +
              " MB after loading)  " + Fixed(peakKb / 1024.0 / megabytes, 2) +
              "x the bytes  target <= " + Fixed(limit, 0) + " MB: " +
              (peakKb / 1024.0 <= limit ? "met"
                                        : "missed by " + Fixed(peakKb / 1024.0 / limit, 2) + "x"));
    if (size <= 1000000 || settings_.replaceAll) Replace(size, project.procedures);
    fs::remove_all(folder);
    return Median(searches.front().cold);
  }

  void Replace(std::size_t size, std::size_t procedures) {
    std::vector<double> qx, sed;
    bool same = true;
    const fs::path qxCopy = settings_.work / ("r" + std::to_string(size));
    const fs::path sedCopy = settings_.work / ("s" + std::to_string(size));
    for (int i = 0; i < settings_.repeat; ++i) {
      StopAll();
      const auto fresh = Generate(qxCopy, size, settings_.forms);
      qx.push_back(Qx({"replace", "--write", "--color", "never", "-F", kCommonWord, kNewWord,
                       fresh.vbp.string()},
                      qxCopy)
                       .seconds);
      Generate(sedCopy, size, settings_.forms);
      std::vector<std::string> args{"sed", "-i", "-e",
                                    std::string("s/") + kCommonWord + "/" + kNewWord + "/g"};
      const std::vector<std::string> files = SourceFiles(sedCopy);
      args.insert(args.end(), files.begin(), files.end());
      sed.push_back(Run(args, out_, sedCopy).seconds);
      if (i == 0) {
        for (const std::string& file : files) {
          const fs::path name = fs::path(file).filename();
          same = same && Lines(qxCopy / name) == Lines(sedCopy / name);
        }
      }
      fs::remove_all(qxCopy);
      fs::remove_all(sedCopy);
    }
    StopAll();
    std::cout << "  replace --write -F " << kCommonWord << " " << kNewWord << " (" << procedures
              << " procedures)" << std::endl;
    Print("sed -i", Timing(sed));
    const double median = Median(qx);
    Print("qx cold", Timing(qx),
          "  target < 3 s: " +
              std::string(median < 3 ? "met" : "missed by " + Fixed(median / 3, 2) + "x") + ";" +
              Against(median, Median(sed), "sed", 10));
    if (!same) {
      ++failures_;
      std::cout << "    (qx and sed wrote different lines)\n";
    }
  }

  void Folder() {
    const fs::path folder = settings_.work / "folder";
    fs::remove_all(folder);
    const auto generated = qxbench::GenerateFolder(folder, settings_.folderProjects, 300);
    std::cout << "== a folder of " << settings_.folderProjects
              << " projects: " << generated.components << " components, " << generated.lines
              << " lines, " << Fixed(ComponentBytes(folder) / 1048576.0, 1) << " MB; load "
              << qxbench::LoadAverage() << std::endl;
    std::vector<double> rg, qx;
    std::size_t rgFiles = 0, qxFiles = 0;
    for (int i = 0; i < settings_.repeat; ++i) {
      if (haveRg_) {
        rg.push_back(Run({"rg", "-c", "-F", kCommonWord, folder.string()}, out_, folder).seconds);
        rgFiles = qxbench::CountLines(out_);
      }
      StopAll();
      qx.push_back(
          Qx({"search", "-c", "--color", "never", "-F", kCommonWord, folder.string()}, folder)
              .seconds);
      qxFiles = qxbench::CountLines(out_);
    }
    StopAll();
    std::cout << "  search -c -F " << kCommonWord << std::endl;
    if (haveRg_) Print("rg", Timing(rg), "  " + std::to_string(rgFiles) + " files");
    Print(
        "qx", Timing(qx),
        Against(Median(qx), Median(rg), "rg", 20) + "  " + std::to_string(qxFiles) + " components");
    fs::remove_all(folder);
  }

  const Settings& settings_;
  const std::string qx_ = QX_BIN;
  const fs::path out_;
  bool haveRg_ = false;
  int failures_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  Settings settings;
  for (int i = 1; i < argc; i += 2) {
    const std::string option = argv[i];
    const std::string value = i + 1 < argc ? argv[i + 1] : "";
    if (option == "--lines") {
      settings.sizes.clear();
      std::stringstream list(value);
      std::string item;
      while (std::getline(list, item, ','))
        settings.sizes.push_back(std::stoul(item));
    } else if (option == "--repeat") {
      settings.repeat = std::max(1, std::atoi(value.c_str()));
    } else if (option == "--work") {
      settings.work = value;
    } else if (option == "--forms") {
      settings.forms = value == "1";
    } else if (option == "--replace-all") {
      settings.replaceAll = value == "1";
    } else if (option == "--folder") {
      settings.folderProjects = std::strtoul(value.c_str(), nullptr, 10);
    } else {
      std::cerr << "usage: qx_bench_scale [--lines N,N] [--repeat N] [--work DIR] [--forms 0|1] "
                   "[--replace-all 0|1] [--folder PROJECTS]\n";
      return 2;
    }
  }
  char home[] = "/tmp/qx_bench_scale_XXXXXX";
  if (::mkdtemp(home) == nullptr) return 2;
  ::setenv("QX_HOME", home, 1);
  ::setenv("QX_VB6_EXE", QXVB6_BIN, 1);
  if (settings.work.empty()) settings.work = fs::path(home) / "work";
  fs::create_directories(settings.work);
  const int status = Bench(settings).Main();
  fs::remove_all(home);
  return status;
}
