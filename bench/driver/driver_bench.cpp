// The driver's listing without an IDE: Project.EnumObjects and GetObjectInfo, and `qx list` as a
// whole, over generated projects of 100, 1,000 and 10,000 components. Each is expected to grow
// linearly with the number of components.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "automation/object.h"
#include "automation/process.h"
#include "bench/generator/project_generator.h"
#include "cli/commands.h"
#include "host/register.h"
#include "special/qxvb60.h"
#include "support/temp_home.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;

// One generated project per size, kept for the whole run (writing 10,000 files takes a while).
const qxbench::GeneratedProject& ProjectOf(std::size_t components) {
  static qxtest::TempDir folder;
  static std::map<std::size_t, qxbench::GeneratedProject> made;
  auto it = made.find(components);
  if (it == made.end()) {
    qxbench::GeneratorOptions options;
    options.proceduresPerComponent = 1;
    // A component of one procedure takes about twenty lines.
    options.totalLines = components * 20;
    auto project = qxbench::GenerateProject(folder.path() / std::to_string(components), options);
    it = made.emplace(components, project).first;
  }
  return it->second;
}

// A host's process with the driver loaded and one project opened.
class Host {
 public:
  explicit Host(const std::filesystem::path& vbp) : process_(automation::Process::Create("host")) {
    automation::Process::Scope scope(process_);
    host::RegisterClasses();
    special::LoadDriver();
    driver_ = automation::CreateObject("qxvb60.Driver");
    project_ = Dispatch(driver_, "IDriver")
                   .Call("GetProject", "Big", 0, "FileName=" + vbp.string())
                   .ToObject();
  }
  ~Host() {
    automation::Process::Scope scope(process_);
    Dispatch(project_).Call("TearDown");
    project_.reset();
    driver_.reset();
    process_->End();
  }
  const std::shared_ptr<automation::Process>& process() const { return process_; }
  const ObjectRef& project() const { return project_; }

 private:
  qxtest::TempHome home_;
  std::shared_ptr<automation::Process> process_;
  ObjectRef driver_;
  ObjectRef project_;
};

constexpr const char* kKinds[][2] = {{"Class", "2"}, {"Form", "4"}, {"Module", "5"}};

void BM_EnumObjects(benchmark::State& state) {
  const auto& generated = ProjectOf(static_cast<std::size_t>(state.range(0)));
  Host host(generated.vbp);
  automation::Process::Scope scope(host.process());
  for (auto _ : state) {
    for (const auto& kind : kKinds) {
      benchmark::DoNotOptimize(
          Dispatch(host.project()).Call("EnumObjects", kind[0], std::stoi(kind[1])));
    }
  }
  state.SetComplexityN(state.range(0));
}

// GetObjectInfo for every component, as `qx list` asks it: one call per listed row.
void BM_GetObjectInfo(benchmark::State& state) {
  const auto& generated = ProjectOf(static_cast<std::size_t>(state.range(0)));
  Host host(generated.vbp);
  automation::Process::Scope scope(host.process());
  std::vector<std::pair<std::string, std::string>> rows;
  for (const auto& kind : kKinds) {
    std::istringstream entries(
        Dispatch(host.project()).Call("EnumObjects", kind[0], std::stoi(kind[1])).ToString());
    for (std::string entry; std::getline(entries, entry);) {
      rows.emplace_back(kind[0], entry.substr(0, entry.find('\t')));
    }
  }
  for (auto _ : state) {
    for (const auto& [className, name] : rows) {
      automation::Args args{className, name, std::string(), false};
      Dispatch(host.project()).CallArgs("GetObjectInfo", args);
      benchmark::DoNotOptimize(args);
    }
  }
  state.SetComplexityN(state.range(0));
}

void BM_QxList(benchmark::State& state) {
  const auto& generated = ProjectOf(static_cast<std::size_t>(state.range(0)));
  qxtest::TempHome home;
  for (auto _ : state) {
    auto process = automation::Process::Create("host");
    automation::Process::Scope scope(process);
    std::ostringstream out;
    std::ostringstream err;
    const auto printer = cli::MakeTextPrinter(out, err, {});
    cli::RunList({generated.vbp.string(), false}, *printer);
    benchmark::DoNotOptimize(out);
    process->End();
  }
  state.SetComplexityN(state.range(0));
}

BENCHMARK(BM_EnumObjects)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();
BENCHMARK(BM_GetObjectInfo)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();
BENCHMARK(BM_QxList)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace

BENCHMARK_MAIN();
