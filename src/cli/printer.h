#pragma once
// How qx prints: one interface for every verb, as text for people or as JSON lines for tools,
// chosen once per run. Text goes to standard output, problems and errors to standard error;
// JSON puts every record, problems and errors included, on standard output, one object a line
// with its "type". To a terminal, control characters from project files are shown as escapes.

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "automation/error.h"
#include "cli/results.h"
#include "cli/search_options.h"

namespace cli {

enum class Format { Text, Json };

// Which of the two streams are terminals (isatty), and whether matches are coloured.
struct Terminals {
  bool out = false;
  bool err = false;
  bool color = false;
};

class Printer {
 public:
  virtual ~Printer() = default;

  // One collection's enumeration string, exactly as the driver returned it.
  virtual void Enumeration(std::string_view collection, std::string_view text) = 0;
  // One collection with its components.
  virtual void Collection(const CollectionListing& listing) = 0;
  virtual void Problem(const cli::Problem& problem) = 0;
  virtual void Summary(const cli::Summary& summary) = 0;
  // The IDE that `qx ide start` started or connected to.
  virtual void IdeStarted(const IdeStart& start) = 0;
  // One IDE process of `qx ide list`.
  virtual void IdeListed(const IdeProcess& process) = 0;
  // An IDE process that `qx ide stop` ended.
  virtual void IdeStopped(const IdeProcess& process) = 0;
  // The error that stopped the run (or, in a search, the work of one project or component).
  virtual void Error(const automation::Error& error) = 0;

  // qx search and replace: one file's matches, in the style asked for.
  virtual void SearchFile(const FileMatches& file, SearchStyle style) = 0;
  // qx replace: the matches of one file, before its diff. Text shows the diff alone; JSON gives
  // the matches with their places (and what replacing one resets) as a search does.
  virtual void ReplaceFile(const FileMatches& file) = 0;
  virtual void Refused(const cli::Refusal& refusal) = 0;
  // What a replace at one place resets (text says it once more in the summary).
  virtual void Reset(const ResetNote& note) = 0;
  // An error or a note of a search run, with its place.
  virtual void Report(const RunProblem& problem) = 0;
  virtual void Diff(const FileDiff& diff) = 0;
  virtual void SearchSummary(const SearchTotals& totals, SearchStyle style) = 0;
  // A progress line on standard error (replacing the one before), shown only when standard
  // error is a terminal and never among JSON lines; empty clears it.
  virtual void Progress(std::string_view text) = 0;
  // Something the user should know that is neither a problem nor an error: what a run left out.
  virtual void Notice(std::string_view text) = 0;
  // Whether standard output can no longer be written, as when `qx search ... | head` has read
  // enough: the run then stops, as ripgrep does.
  virtual bool OutputClosed() const = 0;
};

std::unique_ptr<Printer> MakeTextPrinter(std::ostream& out, std::ostream& err, Terminals terminals);
std::unique_ptr<Printer> MakeJsonPrinter(std::ostream& out, Terminals terminals);

inline std::unique_ptr<Printer> MakePrinter(Format format, std::ostream& out, std::ostream& err,
                                            Terminals terminals) {
  if (format == Format::Json) return MakeJsonPrinter(out, terminals);
  return MakeTextPrinter(out, err, terminals);
}

// "20261123091244" as "2026-11-23 09:12:44" (with 'T' between date and time for ISO 8601);
// anything else as it is.
std::string ShowVersion(const std::string& version, char separator = ' ');

// How a code page was chosen, for people: "given by --codepage", "detected from 812
// non-ASCII bytes, confidence 0.97", ...
std::string CodePageOrigin(const platform::ProjectCodePage& codePage);

// How a code page was chosen, for tools: "option", "environment", "detected", "default".
std::string_view CodePageSourceName(platform::CodePageSource source);

// The words for a file state: "writable", "read-only", "missing", "read-only or missing".
std::string_view StateText(FileState state);

}  // namespace cli
