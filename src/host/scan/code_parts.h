#pragma once
// CodeParts: the parts of VB code that `--in statements`, `--in comments` and `--in strings`
// search, and that a rename keeps to (statements only). A lexer reads the code line by line:
//   - a string literal runs from " to the next " that is not doubled ("" inside stands for one
//     quote), or to the end of its line when it is not closed; its contents are the bytes between
//     the quotes, doubled quotes included, as they stand in the code;
//   - a comment starts at ' outside a string, or at the keyword Rem where a statement may start
//     (not inside a name: `Remove`, `x.Rem`), and runs to the end of its line; a comment line that
//     ends with " _" goes on over the next line, as VB6 reads it;
//   - the statements are what is left: code outside strings and comments.
// The quotes, the ' and the Rem themselves belong to none of the three parts, so that a search
// of one part never finds the bytes that delimit it.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace host::scan {

enum CodePart : uint8_t {
  kStatements = 1,
  kComments = 2,
  kStrings = 4,
};
inline constexpr uint8_t kEveryCodePart = kStatements | kComments | kStrings;

// The bytes [start, end) of a text, all of one part and all on one line.
struct CodeSpan {
  std::size_t start = 0;
  std::size_t end = 0;
  CodePart part = kStatements;
};

// The spans of a text's parts in text order, from the line that holds `from` on. It starts
// reading at the first line of the statement or comment that holds `from` (a line that an
// earlier " _" continues is read with the lines before it), so the part of every byte is known.
// Empty spans are left out.
class CodeLexer {
 public:
  CodeLexer(std::string_view text, std::size_t from);

  // The next span; false at the end of the text.
  bool Next(CodeSpan& span);

 private:
  // Reads the line at lineStart_ into spans_; false at the end of the text.
  bool ReadLine();

  std::string_view text_;
  std::size_t lineStart_ = 0;
  bool inComment_ = false;  // the line at lineStart_ goes on with a comment
  bool done_ = false;
  std::vector<CodeSpan> spans_;
  std::size_t nextSpan_ = 0;
};

}  // namespace host::scan
