#pragma once
// Splitting bytes into lines. Project files checked out on Linux often have LF ends, so by
// default CR LF, a lone CR and a lone LF each end a line. The DHTML page file follows the other
// rule: only CR LF and a lone CR end a line, and a lone LF is part of the line.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

enum class LineEnds {
  kAny,      // CR LF, CR or LF
  kCrOrCrLf  // CR LF or CR; a lone LF stays in the line
};

// Reads lines from a buffer without copying: each line is a view into it. The last line counts
// even without a line end; an empty buffer has no lines, and a buffer that ends with a line end
// has no empty line after it.
//
// The next CR and the next LF are found apart, each with memchr, and remembered until the reading
// passes them, so every byte is looked at about once: testing each byte against both one at a
// time is several times slower on the long files the IDE reads.
class LineReader {
 public:
  explicit LineReader(std::string_view text, LineEnds ends = LineEnds::kAny);

  // The next line, without its line end; false when there are no more.
  bool Next(std::string_view& line);

  // The line end of the line Next returned last: "\r\n", "\r", "\n" or "" (none, at the end).
  std::string_view LastLineEnd() const { return lastEnd_; }

  // Offset in the buffer where the next line starts.
  std::size_t Position() const { return pos_; }

 private:
  std::size_t Find(char c, std::size_t from) const;

  std::string_view text_;
  std::size_t pos_ = 0;
  std::size_t cr_;  // the next CR at or after pos_, or npos
  std::size_t lf_;  // the next LF at or after pos_, or npos (always npos for kCrOrCrLf)
  std::string_view lastEnd_;
};

// The lines of a text file (a Windows-style path, see paths.h), decoded with the current code
// page. Raises as ReadFile does.
std::vector<std::string> ReadLines(std::string_view path, LineEnds ends = LineEnds::kAny);

}  // namespace platform
