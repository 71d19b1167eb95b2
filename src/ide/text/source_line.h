#pragma once
// One line of a project or component file: its text as the program sees it (UTF-8), and, while
// it is unchanged, where its bytes and line end are in the file as read, so that saving can
// write them back exactly.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ide {

enum class LineEnd : uint8_t { kNone, kCrLf, kLf, kCr };

std::string_view LineEndBytes(LineEnd end);

// A million-line project holds a million of these: the offsets are 32 bits (files are read up
// to a limit far below 4 GB), which keeps the struct at 48 bytes.
struct SourceLine {
  std::string text;        // decoded, without its line end
  uint32_t rawOffset = 0;  // the line's bytes in the file as read (when original)
  uint32_t rawLength = 0;
  LineEnd end = LineEnd::kNone;  // the line end it had in the file (kNone for new lines)
  bool original = false;         // text still stands for exactly those bytes

  static SourceLine New(std::string text) {
    SourceLine line;
    line.text = std::move(text);
    return line;
  }
};

}  // namespace ide
