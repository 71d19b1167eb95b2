// Text for people: each collection as a table of its components, a count at the end; problems
// and errors on standard error.

#include <algorithm>
#include <cstdio>
#include <ostream>

#include "cli/printer.h"
#include "cli/terminal.h"
#include "cli/warm_ides.h"

namespace cli {
namespace {

// Columns are counted in characters, not bytes, so non-ASCII names line up.
size_t DisplayWidth(std::string_view text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

std::string Pad(const std::string& text, size_t width) {
  return text + std::string(width - DisplayWidth(text), ' ');
}

// "42s", "3m05s", "2h01m": how long an IDE has been quiet.
std::string IdleText(int32_t seconds) {
  char text[32];
  if (seconds < 60) {
    std::snprintf(text, sizeof text, "%ds", seconds);
  } else if (seconds < 3600) {
    std::snprintf(text, sizeof text, "%dm%02ds", seconds / 60, seconds % 60);
  } else {
    std::snprintf(text, sizeof text, "%dh%02dm", seconds / 3600, seconds / 60 % 60);
  }
  return text;
}

class TextPrinter : public Printer {
 public:
  TextPrinter(std::ostream& out, std::ostream& err, Terminals terminals)
      : out_(out), err_(err), terminals_(terminals) {}

  void Enumeration(std::string_view collection, std::string_view text) override {
    const std::string block = "[" + std::string(collection) + "]\n" + std::string(text) + "\n";
    out_ << (terminals_.out ? EscapeControls(PlainLines(block)) : block);
  }

  void Collection(const CollectionListing& listing) override {
    if (listing.components.empty()) return;
    struct Row {
      std::string name, modified, state, problems;
    };
    std::vector<Row> rows;
    size_t nameWidth = 0, modifiedWidth = 0, stateWidth = 0;
    for (const Component& component : listing.components) {
      Row row;
      row.name = ForOut(component.name.empty() ? "(no name)" : component.name);
      row.modified = component.version.empty() ? (component.state == FileState::Missing ? "-" : "?")
                                               : ForOut(ShowVersion(component.version));
      row.state = StateText(component.state);
      for (const std::string& problem : component.problems)
        row.problems += (row.problems.empty() ? "" : "; ") + ForOut(problem);
      nameWidth = std::max(nameWidth, DisplayWidth(row.name));
      modifiedWidth = std::max(modifiedWidth, DisplayWidth(row.modified));
      stateWidth = std::max(stateWidth, DisplayWidth(row.state));
      rows.push_back(std::move(row));
    }
    out_ << ForOut(listing.name) << "\n";
    for (const Row& row : rows) {
      out_ << "  " << Pad(row.name, nameWidth) << "  " << Pad(row.modified, modifiedWidth) << "  ";
      if (row.problems.empty()) {
        out_ << row.state << "\n";
      } else {
        out_ << Pad(row.state, stateWidth) << "  " << row.problems << "\n";
      }
    }
  }

  void Problem(const cli::Problem& problem) override {
    ClearProgress();
    const std::string number = problem.number ? std::to_string(*problem.number) : std::string();
    err_ << "qx: problem" << (number.empty() ? "" : " " + number) << ": "
         << ForErr(problem.description) << "\n";
  }

  void Summary(const cli::Summary& summary) override {
    if (summary.codePage) {
      out_ << "Code page " << summary.codePage->number << " (" << CodePageOrigin(*summary.codePage)
           << ")\n";
    }
    if (summary.components) {
      const size_t count = *summary.components;
      out_ << count << (count == 1 ? " component" : " components") << "\n";
    } else {
      out_ << "OK\n";
    }
  }

  void IdeStarted(const IdeStart& start) override {
    out_ << (start.started ? "started" : "connected to") << " IDE process " << start.process.pid
         << " for " << ForOut(start.project) << "\n";
  }

  void IdeListed(const IdeProcess& process) override {
    out_ << process.pid << "  ";
    if (process.unresponsive.empty()) {
      out_ << "idle " << IdleText(process.idleSeconds);
    } else {
      out_ << "not answering (" << ForOut(process.unresponsive) << ")";
    }
    for (const std::string& project : process.projects)
      out_ << "  " << ForOut(project);
    out_ << "\n";
  }

  void IdeStopped(const IdeProcess& process) override {
    out_ << "stopped IDE process " << process.pid
         << (process.killed ? " (it did not end when asked: ended with a signal)" : "") << "\n";
  }

  void Error(const automation::Error& error) override {
    ClearProgress();
    err_ << "qx: error " << error.Number() << ": " << ForErr(error.Description()) << "\n";
  }

  void SearchFile(const FileMatches& file, SearchStyle style) override {
    ClearProgress();
    ShowFile(file, style);
    out_.flush();  // a reader that has gone is noticed at once
  }

  void ReplaceFile(const FileMatches&) override {}

  // The summary lists what the replace resets, after the diffs that make it.
  void Reset(const ResetNote&) override {}

  void Refused(const cli::Refusal& refusal) override {
    ClearProgress();
    std::string place = refusal.path;
    if (refusal.line != 0) place += ":" + std::to_string(refusal.line);
    std::string what = refusal.component;
    if (!refusal.procedure.empty()) what += "." + refusal.procedure;
    err_ << "qx: " << ForErr(place) << ": " << ForErr(what) << ": error " << refusal.number << ": "
         << ForErr(refusal.description) << "\n";
  }

  // "qx: App/App.vbp: line 3: library {...}#1.1 not registered on this machine; searched anyway"
  void Report(const RunProblem& problem) override {
    ClearProgress();
    std::string where;
    if (!problem.project.empty()) where += problem.project + ": ";
    if (problem.line != 0) where += "line " + std::to_string(problem.line) + ": ";
    if (!problem.component.empty()) where += problem.component + ": ";
    if (problem.number && !problem.note) where += "error " + std::to_string(*problem.number) + ": ";
    err_ << "qx: " << ForErr(where + problem.message) << "\n";
  }

  void Diff(const FileDiff& diff) override {
    ClearProgress();
    std::string_view rest = diff.diff;
    while (!rest.empty()) {
      const size_t end = rest.find('\n');
      std::string_view line = rest.substr(0, end);
      rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
      // A CR LF line end is written as it is, so the diff of a CR LF file applies to it.
      const bool crlf = line.ends_with('\r');
      if (crlf) line.remove_suffix(1);
      const bool header = line.starts_with("--- ") || line.starts_with("+++ ");
      const char* color = header                   ? kBold
                          : line.starts_with("@@") ? kHunkColor
                          : line.starts_with("-")  ? kRemovedColor
                          : line.starts_with("+")  ? kAddedColor
                                                   : nullptr;
      out_ << (color ? Paint(color, ForOut(line)) : ForOut(line)) << (crlf ? "\r\n" : "\n");
    }
    out_.flush();
  }

  void SearchSummary(const SearchTotals& totals, SearchStyle style) override {
    ClearProgress();
    if (totals.idesKept > 0 && terminals_.err)
      err_ << KeptNotice(totals.idesKept, totals.keptFor) << "\n";
    const auto plural = [](size_t n, const char* one, const char* many) {
      return std::to_string(n) + " " + (n == 1 ? one : many);
    };
    // What was not searched, or is worth knowing, has been said above, each with its place; in a
    // run over several projects one line counts it, where the matches do not drown it.
    if (totals.projectsNamed > 1 && (totals.problems != 0 || totals.componentsSkipped != 0)) {
      err_ << "qx: " << plural(totals.projects, "project", "projects") << " searched, "
           << totals.projectsWithProblems << " with notes, "
           << plural(totals.componentsSkipped, "component", "components")
           << " skipped; the details are above, on standard error\n";
    }
    if (!totals.replace || style == SearchStyle::Quiet) return;
    for (const std::string& reset : totals.resets)
      out_ << ForOut(reset) << " is reset by this change\n";
    out_ << plural(totals.matches, "replacement", "replacements") << " in "
         << plural(totals.filesChanged, "file", "files");
    if (totals.refused != 0)
      out_ << ", " << plural(totals.refused, "place", "places") << " refused";
    out_ << (totals.written ? "; written\n" : "; nothing written (--write applies them)\n");
  }

  void Notice(std::string_view text) override {
    ClearProgress();
    err_ << "qx: " << ForErr(text) << "\n";
  }

  bool OutputClosed() const override { return !out_; }

  void Progress(std::string_view text) override {
    if (!terminals_.err) return;
    ClearProgress();
    if (text.empty()) return;
    err_ << ForErr(text) << std::flush;
    progressShown_ = true;
  }

 private:
  void ShowFile(const FileMatches& file, SearchStyle style) {
    const std::string path = Paint(kPathColor, ForOut(file.path));
    switch (style) {
      case SearchStyle::Quiet:
        return;
      case SearchStyle::FilesWithMatches:
        out_ << path << "\n";
        return;
      case SearchStyle::Count:
        out_ << path << ":" << file.hits.size() << "\n";
        return;
      case SearchStyle::Vimgrep:
        for (const SearchHit& hit : file.hits) {
          for (const SearchHit::Submatch& sub : hit.submatches) {
            out_ << path << ":" << hit.line << ":" << sub.start + 1 << ":"
                 << Highlight(hit.text, {sub}) << "\n";
          }
        }
        return;
      case SearchStyle::Grouped:
        break;
    }
    if (groupsPrinted_++ > 0) out_ << "\n";
    out_ << path << "\n";
    const std::string* procedure = nullptr;
    for (const SearchHit& hit : file.hits) {
      if (procedure == nullptr || *procedure != hit.procedure) {
        procedure = &hit.procedure;
        const std::string label = hit.procedure.empty() ? "name of " + hit.component
                                                        : hit.component + "." + hit.procedure;
        out_ << Paint(kProcedureColor, "[" + ForOut(label) + "]") << "\n";
      }
      const size_t column = hit.submatches.empty() ? 1 : hit.submatches.front().start + 1;
      out_ << Paint(kLineColor, hit.line == 0 ? "?" : std::to_string(hit.line)) << ":" << column
           << ":" << Highlight(hit.text, hit.submatches) << "\n";
    }
  }

  std::string ForOut(std::string_view text) const {
    return terminals_.out ? EscapeControls(PlainLines(text)) : PlainLines(text);
  }
  std::string ForErr(std::string_view text) const {
    return terminals_.err ? EscapeControls(PlainLines(text)) : PlainLines(text);
  }

  static constexpr const char* kPathColor = "\x1b[35m";
  static constexpr const char* kLineColor = "\x1b[32m";
  static constexpr const char* kMatchColor = "\x1b[1;31m";
  static constexpr const char* kProcedureColor = "\x1b[36m";
  static constexpr const char* kHunkColor = "\x1b[36m";
  static constexpr const char* kRemovedColor = "\x1b[31m";
  static constexpr const char* kAddedColor = "\x1b[32m";
  static constexpr const char* kBold = "\x1b[1m";

  std::string Paint(const char* color, const std::string& text) const {
    return terminals_.color ? std::string(color) + text + "\x1b[0m" : text;
  }

  // The line with its matches painted; each piece is escaped on its own, so escapes never cut
  // through a colour.
  std::string Highlight(const std::string& line,
                        const std::vector<SearchHit::Submatch>& submatches) const {
    std::string out;
    size_t at = 0;
    for (const SearchHit::Submatch& sub : submatches) {
      const size_t start = std::min(std::max(sub.start, at), line.size());
      const size_t end = std::min(std::max(sub.end, start), line.size());
      out += ForOut(line.substr(at, start - at));
      out += Paint(kMatchColor, ForOut(line.substr(start, end - start)));
      at = end;
    }
    return out + ForOut(line.substr(at));
  }

  void ClearProgress() {
    if (!progressShown_) return;
    err_ << "\r\x1b[K" << std::flush;
    progressShown_ = false;
  }

  std::ostream& out_;
  std::ostream& err_;
  Terminals terminals_;
  size_t groupsPrinted_ = 0;
  bool progressShown_ = false;
};

}  // namespace

std::unique_ptr<Printer> MakeTextPrinter(std::ostream& out, std::ostream& err,
                                         Terminals terminals) {
  return std::make_unique<TextPrinter>(out, err, terminals);
}

}  // namespace cli
