#include "cli/declared_names.h"

#include "host/scan/code_parts.h"
#include "host/scan/matcher.h"

namespace cli {
namespace {

using host::scan::Match;
using host::scan::Matcher;
using host::scan::MatchOptions;

// A pattern over statements, case-insensitive as VB is. The patterns spell out their classes:
// names of ASCII letters, digits and "_", blanks of ASCII (the Matcher's \w and \s would take
// letters and spaces of every script).
Matcher Statement(std::string_view pattern) {
  MatchOptions options;
  options.caseMode = host::scan::CaseMode::kInsensitive;
  return Matcher(pattern, options);
}

// The statements that declare names. Each DeclaredNames makes its own (a Matcher's match data
// is not shared; what compiling gives is, so making them costs little).
struct Declarations {
  // A procedure, event or declared function: group 1 is its parameter list.
  Matcher procedure =
      Statement(R"(^[ \t\x0b\f]*(?:(?:Public|Private|Friend|Static|Global)[ \t\x0b\f]+)*)"
                R"((?:Sub|Function|Event|Property[ \t\x0b\f]+(?:Get|Let|Set)|)"
                R"(Declare[ \t\x0b\f]+(?:Sub|Function))[ \t\x0b\f]+[A-Za-z0-9_]+[^(]*\((.*)\))");
  // A user-defined type or an enumeration: group 1 is its name.
  Matcher typeOrEnum = Statement(
      R"(^[ \t\x0b\f]*(?:(?:Public|Private|Global)[ \t\x0b\f]+)?(?:Type|Enum)[ \t\x0b\f]+)"
      R"(([A-Za-z][A-Za-z0-9_]*))");
  // Variables and constants: group 1 is the list of them.
  Matcher declaration =
      Statement(R"(^[ \t\x0b\f]*(?:(?:Public|Private|Global|Static|Dim|Const|ReDim)[ \t\x0b\f]+)+)"
                R"((?!(?:Sub|Function|Property|Event|Declare|Type|Enum)(?![A-Za-z0-9_]))(.*))");
  // One item of a list: group 1 is its name.
  Matcher item = Statement(
      R"(^[ \t\x0b\f]*(?:(?:ByVal|ByRef|Optional|ParamArray|WithEvents|Preserve)[ \t\x0b\f]+)*)"
      R"(([A-Za-z][A-Za-z0-9_]*))");
  // A line continued: " _" at its end.
  Matcher continuation = Statement(" _[ \t]*$");
};

// The text of group 1 of a match in `text`.
std::string_view GroupOne(std::string_view text, const Match& match) {
  return text.substr(match.groups[2], match.groups[3] - match.groups[2]);
}

// The code with its strings and comments blanked, and each statement continued by " _" joined
// to one line.
std::string Statements(std::string_view code, Matcher& continuation) {
  std::string kept(code.size(), ' ');
  for (size_t i = 0; i < code.size(); ++i) {
    if (code[i] == '\r' || code[i] == '\n') kept[i] = code[i];
  }
  host::scan::CodeLexer lexer(code, 0);
  host::scan::CodeSpan span;
  while (lexer.Next(span)) {
    if (span.part == host::scan::kStatements)
      kept.replace(span.start, span.end - span.start,
                   code.substr(span.start, span.end - span.start));
  }
  // A match keeps to its line: the line break after " _" is joined here (CR LF or LF).
  std::string joined;
  joined.reserve(kept.size());
  size_t copied = 0;
  continuation.ForEach(kept, [&](const Match& match) {
    size_t next = match.end;
    if (next < kept.size() && kept[next] == '\r') ++next;
    if (next >= kept.size() || kept[next] != '\n') return;
    joined.append(kept, copied, match.start - copied);
    joined += ' ';
    copied = next + 1;
  });
  joined.append(kept, copied);
  return joined;
}

// The first name of each comma-separated item, at bracket depth 0, after the words that may
// come before it (ByVal, Optional, WithEvents, ...).
void ItemNames(std::string_view list, Matcher& item, std::vector<std::string>& names) {
  int depth = 0;
  size_t start = 0;
  for (size_t i = 0; i <= list.size(); ++i) {
    if (i < list.size() && list[i] == '(') ++depth;
    if (i < list.size() && list[i] == ')') --depth;
    if (i < list.size() && (list[i] != ',' || depth != 0)) continue;
    const std::string_view text = list.substr(start, i - start);
    Match match;
    if (item.Find(text, 0, match)) names.emplace_back(GroupOne(text, match));
    start = i + 1;
  }
}

}  // namespace

std::vector<std::string> DeclaredNames(std::string_view code) {
  Declarations is;
  std::vector<std::string> names;
  const std::string statements = Statements(code, is.continuation);
  size_t lineStart = 0;
  while (lineStart <= statements.size()) {
    size_t lineEnd = statements.find_first_of("\r\n", lineStart);
    if (lineEnd == std::string::npos) lineEnd = statements.size();
    // A line may hold several statements, parted by ":".
    size_t start = lineStart;
    while (start <= lineEnd) {
      size_t end = statements.find(':', start);
      if (end == std::string::npos || end > lineEnd) end = lineEnd;
      const std::string_view statement = std::string_view(statements).substr(start, end - start);
      Match match;
      if (is.procedure.Find(statement, 0, match)) {
        ItemNames(GroupOne(statement, match), is.item, names);
      } else if (is.typeOrEnum.Find(statement, 0, match)) {
        names.emplace_back(GroupOne(statement, match));
      } else if (is.declaration.Find(statement, 0, match)) {
        ItemNames(GroupOne(statement, match), is.item, names);
      }
      start = end + 1;
    }
    lineStart = lineEnd + 1;
  }
  return names;
}

}  // namespace cli
