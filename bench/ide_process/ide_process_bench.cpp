// The driver with a real IDE process: EnumObjects of every collection of a 1,000-component
// project that an IDE has open (each a call into qxvb6.exe, which walks its components and reads
// each file's time), and the start-up of the IDE for a 100,000-line project up to the
// connection (the first read of the project's Dispatcher: checks, launch, load, registration).
// Every IDE the benchmark starts is stopped; what is left at the end is killed.

#include <benchmark/benchmark.h>
#include <sys/prctl.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>

#include "automation/object.h"
#include "bench/generator/project_generator.h"
#include "cli/commands.h"
#include "cli/session.h"
#include "contracts/driver_interfaces.h"
#include "contracts/enumeration.h"
#include "support/child_processes.h"
#include "support/temp_home.h"

namespace {

using automation::Dispatch;

// The qx home and the generated projects, for the whole run.
struct Setting {
  Setting() {
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);  // IDEs started for us end with us
    ::setenv("QX_VB6_EXE", QXVB6_BIN, 1);
  }
  // Ends what the run started (called from main, while everything it uses is still there).
  void End() {
    StopAll();
    qxtest::ChildProcesses::EndAll();
  }
  const qxbench::GeneratedProject& Project(std::size_t components, std::size_t lines) {
    const std::string key = std::to_string(components) + "-" + std::to_string(lines);
    auto it = made.find(key);
    if (it == made.end()) {
      qxbench::GeneratorOptions options;
      options.totalLines = lines;
      options.proceduresPerComponent = std::max<std::size_t>(1, lines / components / 11);
      it = made.emplace(key, qxbench::GenerateProject(work.path() / key, options)).first;
    }
    return it->second;
  }
  static void StopAll() {
    std::ostringstream out, err;
    const auto printer = cli::MakeTextPrinter(out, err, {});
    cli::RunIdeStop({"", true}, *printer);
  }

  qxtest::TempHome home;
  qxtest::TempDir work;
  std::map<std::string, qxbench::GeneratedProject> made;
};

Setting& TheSetting() {
  static Setting* setting = new Setting();  // ended by main, its folders removed at exit
  return *setting;
}

void BM_EnumObjectsActive(benchmark::State& state) {
  const auto& project = TheSetting().Project(1000, 17000);
  cli::Session session;
  const automation::ObjectRef host = session.OpenProject(project.vbp.string());
  const contracts::IProject iproject(host);
  Dispatch(host).Get("Dispatcher");  // starts the IDE
  const auto names = contracts::ParseCollectionNames(iproject.EnumCollections());
  std::size_t entries = 0;
  for (auto _ : state) {
    entries = 0;
    for (const std::string& name : names) {
      const std::string text = contracts::ICollection(iproject.GetCollection(name)).EnumObjects();
      entries += contracts::ParseEnumeration(text).size();
    }
  }
  state.counters["components"] = static_cast<double>(entries);
  Setting::StopAll();
}
BENCHMARK(BM_EnumObjectsActive)->Unit(benchmark::kMillisecond);

void BM_StartAndConnect(benchmark::State& state) {
  const auto& project = TheSetting().Project(300, 100000);
  for (auto _ : state) {
    cli::Session session;
    const automation::ObjectRef host = session.OpenProject(project.vbp.string());
    const contracts::IProject iproject(host);
    Dispatch(host).Get("Dispatcher");
    state.PauseTiming();
    iproject.Deactivate();
    Setting::StopAll();
    state.ResumeTiming();
  }
  state.counters["lines"] = static_cast<double>(project.lines);
}
BENCHMARK(BM_StartAndConnect)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  TheSetting().End();
  delete &TheSetting();
  return 0;
}
