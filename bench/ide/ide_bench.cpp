// The headless IDE over a large project: opening it and reading every component, listing every
// procedure of every module, and resaving it, at 100k, 300k and 1M lines. Each should grow
// linearly with the project's size.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ide/model/project.h"
#include "platform/codepage.h"
#include "project_generator.h"

namespace {

namespace fs = std::filesystem;

// One generated project per size, written once and removed at exit.
const idebench::GeneratedProject& ProjectOfSize(std::size_t lines) {
  struct Cache {
    fs::path root = fs::temp_directory_path() / ("qx-bench-ide-" + std::to_string(::getpid()));
    std::map<std::size_t, idebench::GeneratedProject> projects;
    ~Cache() {
      std::error_code ec;
      fs::remove_all(root, ec);
    }
  };
  static Cache cache;
  auto it = cache.projects.find(lines);
  if (it == cache.projects.end()) {
    it = cache.projects
             .emplace(lines, idebench::GenerateProject(cache.root / std::to_string(lines), lines))
             .first;
  }
  return it->second;
}

std::unique_ptr<ide::Project> OpenAndRead(const idebench::GeneratedProject& generated) {
  auto project = ide::Project::Open(generated.vbp.string(), platform::GetCodePage(1252));
  for (std::size_t i = 0; i < project->Count(); ++i)
    project->At(i).File();
  return project;
}

std::size_t ListProcedures(ide::Project& project) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < project.Count(); ++i) {
    const ide::CodeModule& code = project.At(i).Code();
    // The driver's walk: procedure by procedure through ProcOfLine and ProcCountLines.
    int32_t line = code.CountOfDeclarationLines() + 1;
    while (line <= code.CountOfLines()) {
      ide::ProcKind kind;
      std::string name = code.ProcOfLine(line, kind);
      benchmark::DoNotOptimize(code.ProcStartLine(name, kind));
      line += code.ProcCountLines(name, kind);
      ++count;
    }
  }
  return count;
}

void SetCounters(benchmark::State& state, const idebench::GeneratedProject& generated) {
  state.counters["lines"] = static_cast<double>(generated.lines);
  state.counters["components"] = static_cast<double>(generated.components);
  state.counters["lines/s"] = benchmark::Counter(static_cast<double>(generated.lines),
                                                 benchmark::Counter::kIsIterationInvariantRate);
}

void BM_Load(benchmark::State& state) {
  const auto& generated = ProjectOfSize(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    auto project = OpenAndRead(generated);
    benchmark::DoNotOptimize(project.get());
  }
  SetCounters(state, generated);
}

void BM_ListProcedures(benchmark::State& state) {
  const auto& generated = ProjectOfSize(static_cast<std::size_t>(state.range(0)));
  auto project = OpenAndRead(generated);
  // The index is built on the first look-up after loading; count that too, on a fresh project
  // each time.
  for (auto _ : state) {
    state.PauseTiming();
    project = OpenAndRead(generated);
    state.ResumeTiming();
    std::size_t found = ListProcedures(*project);
    if (found != generated.procedures) state.SkipWithError("wrong number of procedures");
  }
  SetCounters(state, generated);
}

void BM_Resave(benchmark::State& state) {
  const auto& generated = ProjectOfSize(static_cast<std::size_t>(state.range(0)));
  auto project = OpenAndRead(generated);
  for (auto _ : state) {
    for (std::size_t i = 0; i < project->Count(); ++i)
      project->At(i).Save();
  }
  SetCounters(state, generated);
}

// Every component edited (a line inserted and deleted again), so that saving goes through the
// line writer rather than writing the bytes it read.
void BM_ResaveEdited(benchmark::State& state) {
  const auto& generated = ProjectOfSize(static_cast<std::size_t>(state.range(0)));
  auto project = OpenAndRead(generated);
  for (auto _ : state) {
    state.PauseTiming();
    for (std::size_t i = 0; i < project->Count(); ++i) {
      ide::CodeModule& code = project->At(i).Code();
      code.InsertLines(1, "' touched");
      code.DeleteLines(1);
    }
    state.ResumeTiming();
    for (std::size_t i = 0; i < project->Count(); ++i)
      project->At(i).Save();
  }
  SetCounters(state, generated);
}

// One big module whose every procedure is written back the way the driver writes a procedure's
// text after a replace: walk the procedures (the driver's snapshot), delete the region, insert
// CR LF and the new text, walk again to check. Modules reach 58,000 lines in real projects.
void BM_RewriteEveryProcedure(benchmark::State& state) {
  auto lines = static_cast<std::size_t>(state.range(0));
  fs::path folder = fs::temp_directory_path() / ("qx-bench-module-" + std::to_string(::getpid()));
  auto generated = idebench::GenerateProject(folder, lines, lines / 10);
  std::size_t walks = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto project = ide::Project::Open(generated.vbp.string(), platform::GetCodePage(1252));
    ide::CodeModule& code = project->At(0).Code();
    std::vector<std::pair<std::string, ide::ProcKind>> procs;
    for (const auto& p : code.Procedures())
      procs.emplace_back(p.name, p.kind);
    state.ResumeTiming();
    for (const auto& [name, kind] : procs) {
      int32_t start = code.ProcStartLine(name, kind);
      int32_t count = code.ProcCountLines(name, kind);
      std::string text = code.Lines(start, count);
      code.DeleteLines(start, count);
      code.InsertLines(start, "\r\n" + text.substr(text.find_first_not_of("\r\n")));
      walks += code.Procedures().size();
    }
  }
  benchmark::DoNotOptimize(walks);
  state.counters["lines"] = static_cast<double>(generated.lines);
  std::error_code ec;
  fs::remove_all(folder, ec);
}

void Sizes(benchmark::internal::Benchmark* b) {
  b->Arg(100'000)->Arg(300'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_Load)->Apply(Sizes);
BENCHMARK(BM_ListProcedures)->Apply(Sizes);
BENCHMARK(BM_Resave)->Apply(Sizes);
BENCHMARK(BM_ResaveEdited)->Apply(Sizes);
BENCHMARK(BM_RewriteEveryProcedure)
    ->Arg(10'000)
    ->Arg(30'000)
    ->Arg(58'000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
