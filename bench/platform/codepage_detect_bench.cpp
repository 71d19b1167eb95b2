// Detecting a project's code page, at 100k and 1M lines: a project of plain ASCII, where every
// component file is read to its end (up to 1 MB each) without finding a line to sample, and a
// Shift-JIS one, where the sample fills up after the first files and reading stops there.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>

#include "bench/generator/project_generator.h"
#include "platform/codepage_detect.h"

namespace {

namespace fs = std::filesystem;

const qxbench::GeneratedProject& ProjectOf(std::size_t lines, bool japanese) {
  struct Cache {
    fs::path root = fs::temp_directory_path() / ("qx-bench-codepage-" + std::to_string(::getpid()));
    std::map<std::pair<std::size_t, bool>, qxbench::GeneratedProject> projects;
    ~Cache() {
      std::error_code ec;
      fs::remove_all(root, ec);
    }
  };
  static Cache cache;
  const auto key = std::make_pair(lines, japanese);
  auto it = cache.projects.find(key);
  if (it == cache.projects.end()) {
    qxbench::GeneratorOptions options;
    options.totalLines = lines;
    // "データ" in Shift-JIS, once in every procedure.
    if (japanese) options.word = "\x83\x66\x81\x5B\x83\x5E";
    const fs::path folder = cache.root / (std::to_string(lines) + (japanese ? "-sjis" : "-ascii"));
    it = cache.projects.emplace(key, qxbench::GenerateProject(folder, options)).first;
  }
  return it->second;
}

void BM_Detect(benchmark::State& state) {
  const bool japanese = state.range(1) != 0;
  const auto& project = ProjectOf(static_cast<std::size_t>(state.range(0)), japanese);
  int number = 0;
  for (auto _ : state) {
    number = platform::DetectProjectCodePage(project.vbp.string()).number;
    benchmark::DoNotOptimize(number);
  }
  if (number != (japanese ? 932 : 1252)) state.SkipWithError("wrong code page");
  state.counters["lines"] = static_cast<double>(project.lines);
}
BENCHMARK(BM_Detect)
    ->Args({100'000, 0})
    ->Args({1'000'000, 0})
    ->Args({100'000, 1})
    ->Args({1'000'000, 1})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
