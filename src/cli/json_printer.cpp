// JSON lines for tools: one object a line, each with its "type", all on standard output: errors,
// notes and refusals too. Strings keep every character; JSON's own escapes carry the control
// characters.

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/printer.h"
#include "cli/terminal.h"

namespace cli {
namespace {

using json = nlohmann::ordered_json;

// The line as a replace makes it, ended as "lines" is: each submatch in it replaced; nothing when
// the matches have no replacement (a search).
std::optional<std::string> ReplacedLine(const SearchHit& hit) {
  std::string line;
  size_t copied = 0;
  for (const SearchHit::Submatch& sub : hit.submatches) {
    if (!sub.replacement || sub.start < copied || sub.end > hit.text.size()) return std::nullopt;
    line.append(hit.text, copied, sub.start - copied).append(*sub.replacement);
    copied = sub.end;
  }
  line.append(hit.text, copied).append(hit.lineEnd.empty() ? "" : "\n");
  return line;
}

class JsonPrinter : public Printer {
 public:
  JsonPrinter(std::ostream& out, Terminals terminals) : out_(out), terminals_(terminals) {}

  void Enumeration(std::string_view collection, std::string_view text) override {
    Write({{"type", "enumeration"}, {"collection", collection}, {"text", text}});
  }

  void Collection(const CollectionListing& listing) override {
    for (const Component& component : listing.components) {
      Write({{"type", "component"},
             {"collection", listing.name},
             {"name", component.name},
             {"modified", component.version.empty() ? json(nullptr)
                                                    : json(ShowVersion(component.version, 'T'))},
             {"state", StateText(component.state)},
             {"problems", component.problems}});
    }
  }

  void Problem(const cli::Problem& problem) override {
    json record = {{"type", "problem"}};
    record["number"] = problem.number ? json(*problem.number) : json(nullptr);
    record["description"] = problem.description;
    Write(record);
  }

  void Summary(const cli::Summary& summary) override {
    json record = {{"type", "summary"}, {"ok", true}};
    if (summary.components) record["components"] = *summary.components;
    if (summary.codePage) record["codepage"] = CodePage(*summary.codePage);
    Write(record);
  }

  void IdeStarted(const IdeStart& start) override {
    Write({{"type", "ide"},
           {"action", start.started ? "started" : "connected"},
           {"project", start.project},
           {"pid", start.process.pid}});
  }

  void IdeListed(const IdeProcess& process) override {
    json record = {{"type", "ide-process"},
                   {"pid", process.pid},
                   {"projects", process.projects},
                   {"responsive", process.unresponsive.empty()}};
    if (process.unresponsive.empty()) {
      record["idle_seconds"] = process.idleSeconds;
    } else {
      record["unresponsive"] = process.unresponsive;
    }
    Write(record);
  }

  void IdeStopped(const IdeProcess& process) override {
    Write(
        {{"type", "ide"}, {"action", "stopped"}, {"pid", process.pid}, {"killed", process.killed}});
  }

  void Error(const automation::Error& error) override {
    Write({{"type", "error"}, {"number", error.Number()}, {"description", error.Description()}});
  }

  // ripgrep's JSON Lines messages: "begin", one "match" per matching line, "end" with the
  // file's statistics, and "summary" at the end; the begin data gains the code page the file was
  // read in, the match data the component's place.
  void SearchFile(const FileMatches& file, SearchStyle) override {
    const json path = {{"text", file.path}};
    json begin = {{"path", path}};
    if (file.codePage) begin["codepage"] = CodePage(*file.codePage);
    Write({{"type", "begin"}, {"data", begin}});
    size_t printed = 0;
    for (const SearchHit& hit : file.hits) {
      json submatches = json::array();
      const std::optional<std::string> replaced = ReplacedLine(hit);
      for (const SearchHit::Submatch& sub : hit.submatches) {
        json submatch = {{"match", {{"text", sub.text}}}, {"start", sub.start}, {"end", sub.end}};
        if (sub.replacement) {
          submatch["replacement"] = {{"text", *sub.replacement},
                                     {"line", replaced ? json(*replaced) : json(nullptr)}};
        }
        submatches.push_back(std::move(submatch));
      }
      json data = {
          {"path", path},
          {"lines", {{"text", hit.text + (hit.lineEnd.empty() ? "" : "\n")}}},
          {"line_number", hit.line == 0 ? json(nullptr) : json(hit.line)},
          {"absolute_offset", hit.offset},
          {"submatches", submatches},
          {"collection", hit.collection},
          {"component", hit.component},
          {"procedure",
           hit.procedure.empty() || !hit.property.empty() ? json(nullptr) : json(hit.procedure)}};
      if (!hit.property.empty()) {
        data["control"] = hit.control.empty() ? json(nullptr) : json(hit.control);
        data["property"] = hit.property;
      }
      if (!hit.resets.empty()) data["resets"] = hit.resets;
      if (!hit.place.empty()) data["place"] = hit.place;
      printed += Write({{"type", "match"}, {"data", data}});
    }
    json stats = Stats(file.seconds, 1, file.hits.empty() ? 0 : 1, file.bytes, printed,
                       file.hits.size(), file.matches);
    Write({{"type", "end"},
           {"data", {{"path", path}, {"binary_offset", nullptr}, {"stats", stats}}}});
    printed_ += printed;
    out_.flush();  // a reader that has gone is noticed at once
  }

  void ReplaceFile(const FileMatches& file) override { SearchFile(file, SearchStyle::Grouped); }

  void Refused(const cli::Refusal& refusal) override {
    Write({{"type", "refused"},
           {"data",
            {{"path", {{"text", refusal.path}}},
             {"line_number", refusal.line == 0 ? json(nullptr) : json(refusal.line)},
             {"collection", refusal.collection},
             {"component", refusal.component},
             {"procedure", refusal.procedure.empty() ? json(nullptr) : json(refusal.procedure)},
             {"number", refusal.number},
             {"description", refusal.description},
             {"place", refusal.place}}}});
  }

  void Reset(const ResetNote& note) override {
    Write({{"type", "reset"},
           {"data",
            {{"path", {{"text", note.path}}},
             {"component", note.component},
             {"control", note.control.empty() ? json(nullptr) : json(note.control)},
             {"place", note.place},
             {"resets", note.what}}}});
  }

  void Report(const RunProblem& problem) override {
    const auto text = [](const std::string& value) {
      return value.empty() ? json(nullptr) : json(value);
    };
    Write({{"type", problem.note ? "note" : "error"},
           {"project", text(problem.project)},
           {"component", text(problem.component)},
           {"line", problem.line == 0 ? json(nullptr) : json(problem.line)},
           {"number", problem.number ? json(*problem.number) : json(nullptr)},
           {"message", problem.message}});
  }

  void Diff(const FileDiff& diff) override {
    Write({{"type", "diff"}, {"data", {{"path", {{"text", diff.path}}}, {"diff", diff.diff}}}});
  }

  void SearchSummary(const SearchTotals& totals, SearchStyle) override {
    json stats = Stats(totals.seconds, totals.files, totals.filesWithMatches, totals.bytes,
                       printed_, totals.matchedLines, totals.matches);
    json data = {{"elapsed_total", Elapsed(totals.seconds)},
                 {"stats", stats},
                 {"ides_kept", totals.idesKept}};
    data["projects"] = {{"searched", totals.projects},
                        {"with_notes", totals.projectsWithProblems},
                        {"components_skipped", totals.componentsSkipped}};
    if (totals.replace) {
      data["replace"] = {{"written", totals.written},
                         {"files_changed", totals.filesChanged},
                         {"refused", totals.refused},
                         {"resets", totals.resets}};
    }
    Write({{"type", "summary"}, {"data", data}});
  }

  bool OutputClosed() const override { return !out_; }

  // A progress line would garble the stream that tools read; JSON runs show none.
  void Progress(std::string_view) override {}

  void Notice(std::string_view text) override { Write({{"type", "notice"}, {"text", text}}); }

 private:
  // Writes the record as one line; returns the bytes written.
  size_t Write(const json& record) {
    // Text inside qx is UTF-8 throughout, so nothing is ever replaced here.
    const std::string line = record.dump(-1, ' ', false, json::error_handler_t::replace);
    const std::string shown = terminals_.out ? EscapeJsonControls(line) : line;
    out_ << shown << "\n";
    return shown.size() + 1;
  }

  static json CodePage(const platform::ProjectCodePage& codePage) {
    return {{"number", codePage.number},
            {"source", CodePageSourceName(codePage.source)},
            // Two decimals are all a guess's confidence says.
            {"confidence", std::round(codePage.confidence * 100) / 100},
            {"non_ascii_bytes", codePage.nonAsciiBytes}};
  }

  static json Elapsed(double seconds) {
    const auto secs = static_cast<int64_t>(seconds);
    const auto nanos = static_cast<int64_t>((seconds - static_cast<double>(secs)) * 1e9);
    char human[32];
    std::snprintf(human, sizeof human, "%.6fs", seconds);
    return {{"secs", secs}, {"nanos", nanos}, {"human", human}};
  }

  static json Stats(double seconds, size_t searches, size_t withMatch, size_t bytes, size_t printed,
                    size_t lines, size_t matches) {
    return {{"elapsed", Elapsed(seconds)},
            {"searches", searches},
            {"searches_with_match", withMatch},
            {"bytes_searched", bytes},
            {"bytes_printed", printed},
            {"matched_lines", lines},
            {"matches", matches}};
  }

  std::ostream& out_;
  Terminals terminals_;
  size_t printed_ = 0;
};

}  // namespace

std::unique_ptr<Printer> MakeJsonPrinter(std::ostream& out, Terminals terminals) {
  return std::make_unique<JsonPrinter>(out, terminals);
}

}  // namespace cli
