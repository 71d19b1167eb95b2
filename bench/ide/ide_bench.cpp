// The headless IDE over a large project, at 100k, 300k and 1M lines: opening it and reading every
// component, listing every procedure of every module, saving it unchanged, saving it with every
// component edited, and writing back the text of every procedure the way the driver does after a
// replace. Each should grow linearly with the project's size. A last case writes back every
// procedure of one module of up to 58,000 lines (the largest modules real projects have).

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/generator/project_generator.h"
#include "ide/model/project.h"
#include "platform/codepage.h"
#include "support/procedure_text.h"

namespace {

namespace fs = std::filesystem;

fs::path ScratchRoot() {
  return fs::temp_directory_path() / ("qx-bench-ide-" + std::to_string(::getpid()));
}

// One generated project per size, written once and removed at exit.
const qxbench::GeneratedProject& ProjectOfSize(std::size_t lines) {
  struct Cache {
    fs::path root = ScratchRoot();
    std::map<std::size_t, qxbench::GeneratedProject> projects;
    ~Cache() {
      std::error_code ec;
      fs::remove_all(root, ec);
    }
  };
  static Cache cache;
  auto it = cache.projects.find(lines);
  if (it == cache.projects.end()) {
    qxbench::GeneratorOptions options;
    options.totalLines = lines;
    auto generated = qxbench::GenerateProject(cache.root / std::to_string(lines), options);
    it = cache.projects.emplace(lines, generated).first;
  }
  return it->second;
}

std::unique_ptr<ide::Project> OpenAndRead(const qxbench::GeneratedProject& generated) {
  auto project = ide::Project::Open(generated.vbp.string(), platform::GetCodePage(1252));
  for (std::size_t i = 0; i < project->Count(); ++i)
    project->At(i).File();
  return project;
}

void SetCounters(benchmark::State& state, const qxbench::GeneratedProject& generated) {
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

// The same with memory handed back to the system after each load, so that every load pays for
// touching fresh memory, as the first load in a process does. Without this, the runs at small
// sizes (many iterations) reuse the memory of the run before, and the 1M run (one iteration)
// alone pays for its first touch: that made loading look slower than linear.
void BM_LoadCold(benchmark::State& state) {
  const auto& generated = ProjectOfSize(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    auto project = OpenAndRead(generated);
    benchmark::DoNotOptimize(project.get());
    state.PauseTiming();
    project.reset();
    ::malloc_trim(0);
    state.ResumeTiming();
  }
  SetCounters(state, generated);
}

// The driver's walk, procedure by procedure through ProcOfLine and ProcCountLines, over every
// module. The index is built on the first look-up after loading; that is counted too, on a
// freshly loaded project each time. At 1M lines the figure includes the first touch of the
// index's memory, which the allocator handed back to the system when the previous project was
// freed; smaller sizes reuse warm memory. With the allocator told to keep its memory
// (GLIBC_TUNABLES=glibc.malloc.trim_threshold=2000000000:glibc.malloc.top_pad=268435456) all
// sizes list at the same rate per line.
void BM_ListProcedures(benchmark::State& state) {
  const auto& generated = ProjectOfSize(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    auto project = OpenAndRead(generated);
    state.ResumeTiming();
    std::size_t found = 0;
    for (std::size_t i = 0; i < project->Count(); ++i)
      found += qxtest::WalkProcedures(project->At(i).Code()).size();
    if (found != generated.procedures) state.SkipWithError("wrong number of procedures");
    state.PauseTiming();
    project.reset();
    state.ResumeTiming();
  }
  SetCounters(state, generated);
}

// Saving every component of a project that did not change: each file is checked (read-only,
// changed on disk since) and found to hold the bytes already, so nothing is written.
void BM_Resave(benchmark::State& state) {
  const auto& generated = ProjectOfSize(static_cast<std::size_t>(state.range(0)));
  auto project = OpenAndRead(generated);
  for (auto _ : state) {
    for (std::size_t i = 0; i < project->Count(); ++i)
      project->At(i).Save();
  }
  SetCounters(state, generated);
}

// Every component edited (a comment line added at the top, then taken away again the next time),
// so that every file is written through the line writer and saved safely: checked against the
// disk, written beside, flushed, renamed over. One component after the other, as the driver
// saves them.
void BM_ResaveEdited(benchmark::State& state) {
  const auto& generated = ProjectOfSize(static_cast<std::size_t>(state.range(0)));
  auto project = OpenAndRead(generated);
  bool touched = false;
  for (auto _ : state) {
    state.PauseTiming();
    for (std::size_t i = 0; i < project->Count(); ++i) {
      ide::CodeModule& code = project->At(i).Code();
      if (touched) {
        code.DeleteLines(1);
      } else {
        code.InsertLines(1, "' touched");
      }
    }
    touched = !touched;
    state.ResumeTiming();
    for (std::size_t i = 0; i < project->Count(); ++i)
      project->At(i).Save();
  }
  SetCounters(state, generated);
}

// Writes back every procedure of every module as the driver does after a replace in each: walk
// the procedures, read the procedure's text, delete its region, insert CR LF and the text, walk
// again to check. In memory only; saving is measured above.
void BM_RewriteEveryProcedure(benchmark::State& state) {
  const auto& generated = ProjectOfSize(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    auto project = OpenAndRead(generated);
    state.ResumeTiming();
    std::size_t written = 0;
    for (std::size_t i = 0; i < project->Count(); ++i) {
      ide::CodeModule& code = project->At(i).Code();
      for (const qxtest::ProcRef& proc : qxtest::WalkProcedures(code)) {
        if (!qxtest::WriteProcedureText(code, proc, qxtest::ReadProcedureText(code, proc))) {
          state.SkipWithError("the procedures changed");
        }
        ++written;
      }
    }
    if (written != generated.procedures) state.SkipWithError("wrong number of procedures");
    state.PauseTiming();
    project.reset();
    state.ResumeTiming();
  }
  SetCounters(state, generated);
}

// The same for one module of the given size. The driver walks the whole module twice for every
// procedure it writes, so this grows with the square of the module's size by the driver's own
// algorithm; the model's part is one index update per write.
void BM_RewriteBigModule(benchmark::State& state) {
  qxbench::GeneratorOptions options;
  options.totalLines = static_cast<std::size_t>(state.range(0));
  options.proceduresPerComponent = options.totalLines / 9;  // one module of about that size
  options.ends = qxbench::LineEnds::kCrLf;
  fs::path folder = ScratchRoot() / ("module-" + std::to_string(options.totalLines));
  auto generated = qxbench::GenerateProject(folder, options);
  for (auto _ : state) {
    state.PauseTiming();
    auto project = ide::Project::Open(generated.vbp.string(), platform::GetCodePage(1252));
    ide::CodeModule& code = project->At(0).Code();
    state.ResumeTiming();
    for (const qxtest::ProcRef& proc : qxtest::WalkProcedures(code)) {
      if (!qxtest::WriteProcedureText(code, proc, qxtest::ReadProcedureText(code, proc))) {
        state.SkipWithError("the procedures changed");
      }
    }
  }
  state.counters["lines"] = static_cast<double>(generated.lines);
  std::error_code ec;
  fs::remove_all(folder, ec);
  fs::remove(ScratchRoot(), ec);  // when no other benchmark left anything there
}

void Sizes(benchmark::internal::Benchmark* b) {
  b->Arg(100'000)->Arg(300'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_Load)->Apply(Sizes);
BENCHMARK(BM_LoadCold)->Apply(Sizes);
BENCHMARK(BM_ListProcedures)->Apply(Sizes);
BENCHMARK(BM_Resave)->Apply(Sizes);
BENCHMARK(BM_ResaveEdited)->Apply(Sizes);
BENCHMARK(BM_RewriteEveryProcedure)->Apply(Sizes);
BENCHMARK(BM_RewriteBigModule)
    ->Arg(10'000)
    ->Arg(30'000)
    ->Arg(58'000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
