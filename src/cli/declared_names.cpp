#include "cli/declared_names.h"

#include <regex>

#include "host/scan/code_parts.h"

namespace cli {
namespace {

// The code with its strings and comments blanked, and each statement continued by " _" joined
// to one line.
std::string Statements(std::string_view code) {
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
  static const std::regex kContinuation(" _[ \t]*\r?\n");
  return std::regex_replace(kept, kContinuation, " ");
}

// The first name of each comma-separated item, at bracket depth 0, after the words that may
// come before it (ByVal, Optional, WithEvents, ...).
void ItemNames(std::string_view list, std::vector<std::string>& names) {
  static const std::regex kItem(
      R"(^\s*(?:(?:ByVal|ByRef|Optional|ParamArray|WithEvents|Preserve)\s+)*([A-Za-z]\w*))",
      std::regex::icase);
  int depth = 0;
  size_t start = 0;
  for (size_t i = 0; i <= list.size(); ++i) {
    if (i < list.size() && list[i] == '(') ++depth;
    if (i < list.size() && list[i] == ')') --depth;
    if (i < list.size() && (list[i] != ',' || depth != 0)) continue;
    const std::string item(list.substr(start, i - start));
    std::smatch match;
    if (std::regex_search(item, match, kItem)) names.push_back(match[1]);
    start = i + 1;
  }
}

}  // namespace

std::vector<std::string> DeclaredNames(std::string_view code) {
  static const std::regex kProcedure(
      R"(^\s*(?:(?:Public|Private|Friend|Static|Global)\s+)*(?:Sub|Function|Event|Property\s+(?:Get|Let|Set)|Declare\s+(?:Sub|Function))\s+\w+[^(]*\((.*)\))",
      std::regex::icase);
  static const std::regex kTypeOrEnum(
      R"(^\s*(?:(?:Public|Private|Global)\s+)?(?:Type|Enum)\s+([A-Za-z]\w*))", std::regex::icase);
  static const std::regex kDeclaration(
      R"(^\s*(?:(?:Public|Private|Global|Static|Dim|Const|ReDim)\s+)+(?!Sub\b|Function\b|Property\b|Event\b|Declare\b|Type\b|Enum\b)(.*))",
      std::regex::icase);
  std::vector<std::string> names;
  const std::string statements = Statements(code);
  size_t lineStart = 0;
  while (lineStart <= statements.size()) {
    size_t lineEnd = statements.find_first_of("\r\n", lineStart);
    if (lineEnd == std::string::npos) lineEnd = statements.size();
    // A line may hold several statements, parted by ":".
    size_t start = lineStart;
    while (start <= lineEnd) {
      size_t end = statements.find(':', start);
      if (end == std::string::npos || end > lineEnd) end = lineEnd;
      const std::string statement = statements.substr(start, end - start);
      std::smatch match;
      if (std::regex_search(statement, match, kProcedure)) {
        ItemNames(match[1].str(), names);
      } else if (std::regex_search(statement, match, kTypeOrEnum)) {
        names.push_back(match[1]);
      } else if (std::regex_search(statement, match, kDeclaration)) {
        ItemNames(match[1].str(), names);
      }
      start = end + 1;
    }
    lineStart = lineEnd + 1;
  }
  return names;
}

}  // namespace cli
