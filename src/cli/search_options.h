#pragma once
// What qx search and qx replace are asked to do: the patterns and how they match, where to look,
// how to show what was found, and for replace the replacement and whether to write. The request
// that the component objects' scanner reads is made from these.

#include <optional>
#include <string>
#include <vector>

#include "host/scan/matcher.h"

namespace cli {

enum class CaseChoice { Sensitive, Insensitive, Smart };

// How matches are shown (ripgrep's output modes).
enum class SearchStyle {
  Grouped,           // the file's path, then LINE:COLUMN: and the line of each match
  Vimgrep,           // path:line:column:text, one line a match
  Count,             // path:count
  FilesWithMatches,  // the path of each file with a match
  Quiet,             // nothing; the exit status says it
};

enum class ColorChoice { Auto, Always, Never };

struct SearchOptions {
  std::vector<std::string> patterns;  // -e, or the first positional argument
  bool literal = false;               // -F
  CaseChoice caseChoice = CaseChoice::Sensitive;
  bool wordRegexp = false;                                                   // -w
  std::vector<std::string> scope = {"code", "names", "properties", "html"};  // --in
  std::vector<std::string> kinds;  // --kind; empty: every kind
  std::string componentGlob;       // --component; empty: any
  std::vector<std::string> paths;  // none: the current folder
  SearchStyle style = SearchStyle::Grouped;
  ColorChoice color = ColorChoice::Auto;
  std::optional<std::string> replacement;  // qx replace only
  bool write = false;                      // qx replace --write
  // qx replace --only: the places to change, by the ids that --json gives them (each match's
  // "place"); empty: every place with a match
  std::vector<std::string> only;
  bool interactive = false;  // qx replace --interactive: ask about each place, write those accepted
  bool noKeep = false;       // --no-keep: end the IDEs the run started
  bool summary = true;       // false: the run is a step of a command that sums up itself
  // Pass over a component whose bytes cannot hold a match without asking the IDE (search and
  // replace; a rename looks at every component)
  bool prefilter = false;
  // Have an agent in the IDE's process scan the components, many per call (a search: every
  // component takes the options' request); false: one call per component
  bool batch = false;
  // All or nothing: a project whose preview failed anywhere is not written (a rename)
  bool whole = false;
};

// The places a search can look in, and the component kinds it can be narrowed to.
const std::vector<std::string>& ScopeNames();

// Checks the options that the command line parser cannot: known scopes and kinds (kinds are
// given their proper spelling), and patterns and replacement that compile, so that a bad one
// stops the run before any IDE starts. Raises the error to print, with the matcher's message
// for a pattern.
void ValidateSearchOptions(SearchOptions& options);

// How the scanner matches the options' patterns.
host::scan::MatchOptions MatchOptionsOf(const SearchOptions& options);

// The request document for the scan buffer.
std::string BuildRequest(const SearchOptions& options);

// Whether a component name matches the --component glob (shell wildcards, letter case not
// mattering, as VB names compare).
bool ComponentSelected(const SearchOptions& options, const std::string& name);

}  // namespace cli
