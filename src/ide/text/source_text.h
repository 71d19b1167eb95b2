#pragma once
// A file as lines: reading splits its bytes at every line end (CR LF, a lone CR, a lone LF) and
// decodes them with the code page; writing puts back the bytes of every line that is unchanged
// and encodes the others, so that a file read and written without changes is identical, and a
// changed one differs only in the lines that changed.

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ide/text/source_line.h"

namespace platform {
class CodePage;
}

namespace ide {

struct SourceText {
  std::vector<SourceLine> lines;
  // The text of the lines decoded, when it differs from the bytes (they hold characters beyond
  // ASCII); null when the lines are views of the bytes themselves. The lines view one or the
  // other: whoever keeps them keeps both alive and in place (the string this points to does not
  // move when the pointer does).
  std::unique_ptr<std::string> decoded;
  bool finalBreak = false;            // the last line ended with a line end
  std::size_t tailOffset = 0;         // trailing NUL / Ctrl-Z bytes start here (the size if none)
  LineEnd dominant = LineEnd::kCrLf;  // the most common line end (CR LF when none or a tie)
};

// Splits and decodes, in one pass over the bytes to find the line ends and, for text beyond
// ASCII, one decoding of the whole text. Trailing runs of NUL and Ctrl-Z bytes after the last
// line (editors and old tools leave them) are not lines: they are kept as the tail and written
// back as they were.
SourceText SplitText(std::string_view bytes, const platform::CodePage& codePage);

// Builds a file from lines. Every line but the last gets its own line end, or the dominant one
// when it has none (a new line); the last gets one only when the file had a final line break.
class TextWriter {
 public:
  TextWriter(std::string_view original, const platform::CodePage& codePage, LineEnd dominant);

  void Add(const SourceLine& line);
  std::string Finish(bool finalBreak, std::string_view tail);

 private:
  void EndLine();  // the end of the line written last

  std::string_view original_;
  const platform::CodePage& codePage_;
  LineEnd dominant_;
  LineEnd pending_ = LineEnd::kNone;
  bool any_ = false;
  std::string out_;
};

}  // namespace ide
