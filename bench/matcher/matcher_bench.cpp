// The Scanner's matcher over about 100 MB of generated VB code, one procedure text at a time as
// the Scanner hands them over, with about 1% of the procedures matching: a literal search, the
// same case-insensitive, a regular expression (also as whole words, and replacing), and a plain
// memmem over the same texts to compare with. Each reports MB/s, the matches found and the heap
// allocations per text (none are expected while nothing matches).

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "bench/generator/project_generator.h"
#include "host/scan/matcher.h"
#include "host/scan/replacement.h"

namespace {

std::atomic<std::size_t> allocations{0};

}  // namespace

// Counts the heap allocations of the whole program (operator new and PCRE2 alike come here),
// handing each to glibc's own allocator, so that a benchmark can report its own.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* malloc(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_malloc(size);
}

namespace {

namespace fs = std::filesystem;

// The procedure texts of a generated project of about 100 MB, in one buffer.
struct Corpus {
  std::string bytes;
  std::vector<std::string_view> texts;
};

const Corpus& TheCorpus() {
  static const Corpus corpus = [] {
    Corpus c;
    fs::path root = fs::temp_directory_path() / ("qx-bench-matcher-" + std::to_string(::getpid()));
    qxbench::GeneratorOptions options;
    options.totalLines = 2'900'000;  // about 100 MB
    options.ends = qxbench::LineEnds::kCrLf;
    auto generated = qxbench::GenerateProject(root, options);
    for (const auto& entry : fs::directory_iterator(root)) {
      if (entry.path().extension() == ".vbp") continue;
      std::ifstream in(entry.path(), std::ios::binary);
      c.bytes.append(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    std::error_code ec;
    fs::remove_all(root, ec);
    // Procedures are separated by a blank line; each text runs up to the next one.
    std::string_view all(c.bytes);
    std::size_t start = 0;
    for (;;) {
      std::size_t blank = all.find("\r\n\r\n", start);
      if (blank == std::string_view::npos) {
        c.texts.push_back(all.substr(start));
        break;
      }
      c.texts.push_back(all.substr(start, blank + 2 - start));
      start = blank + 4;
    }
    return c;
  }();
  return corpus;
}

// One procedure in a hundred is numbered 42 in its component: "Proc7_42() As Long".
constexpr const char* kLiteral = "_42()";
constexpr const char* kRegex = R"(Proc\d+_42\b)";

void Report(benchmark::State& state, std::size_t matches, std::size_t allocated) {
  const Corpus& corpus = TheCorpus();
  state.counters["MB/s"] = benchmark::Counter(static_cast<double>(corpus.bytes.size()) / 1e6,
                                              benchmark::Counter::kIsIterationInvariantRate);
  state.counters["MB"] = static_cast<double>(corpus.bytes.size()) / 1e6;
  state.counters["texts"] = static_cast<double>(corpus.texts.size());
  state.counters["matches"] = static_cast<double>(matches);
  state.counters["allocs/text"] = static_cast<double>(allocated) /
                                  static_cast<double>(state.iterations() * corpus.texts.size());
}

void BM_Memmem(benchmark::State& state) {
  const Corpus& corpus = TheCorpus();
  const std::string_view needle(kLiteral);
  std::size_t matches = 0;
  std::size_t before = allocations.load();
  for (auto _ : state) {
    matches = 0;
    for (std::string_view text : corpus.texts) {
      const char* at = text.data();
      const char* end = text.data() + text.size();
      while (const void* found =
                 ::memmem(at, static_cast<std::size_t>(end - at), needle.data(), needle.size())) {
        ++matches;
        at = static_cast<const char*>(found) + needle.size();
      }
    }
    benchmark::DoNotOptimize(matches);
  }
  Report(state, matches, allocations.load() - before);
}

void Search(benchmark::State& state, const std::string& pattern,
            const host::scan::MatchOptions& options) {
  const Corpus& corpus = TheCorpus();
  host::scan::Matcher matcher(pattern, options);
  std::size_t matches = 0;
  std::size_t before = allocations.load();
  for (auto _ : state) {
    matches = 0;
    for (std::string_view text : corpus.texts)
      matches += matcher.ForEach(text, [](const host::scan::Match&) {});
    benchmark::DoNotOptimize(matches);
  }
  Report(state, matches, allocations.load() - before);
}

void BM_Literal(benchmark::State& state) {
  host::scan::MatchOptions options;
  options.literal = true;
  Search(state, kLiteral, options);
}

void BM_LiteralIgnoreCase(benchmark::State& state) {
  host::scan::MatchOptions options;
  options.literal = true;
  options.caseMode = host::scan::CaseMode::kInsensitive;
  Search(state, kLiteral, options);
}

void BM_Regex(benchmark::State& state) {
  Search(state, kRegex, {});
}

void BM_RegexWholeWord(benchmark::State& state) {
  host::scan::MatchOptions options;
  options.wholeWord = true;
  Search(state, R"(Proc\d+_42)", options);
}

// Replacing in every text; the texts where nothing matches are not copied.
void BM_RegexReplace(benchmark::State& state) {
  const Corpus& corpus = TheCorpus();
  host::scan::Matcher matcher(R"(Proc(\d+)_42\b)", {});
  host::scan::Replacement replacement("Proc${1}_Answer", matcher);
  std::size_t matches = 0;
  std::size_t before = allocations.load();
  std::string out;
  for (auto _ : state) {
    matches = 0;
    for (std::string_view text : corpus.texts)
      matches += host::scan::ReplaceAll(matcher, text, replacement, out);
    benchmark::DoNotOptimize(out);
  }
  Report(state, matches, allocations.load() - before);
}

BENCHMARK(BM_Memmem)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Literal)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LiteralIgnoreCase)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Regex)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RegexWholeWord)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RegexReplace)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
