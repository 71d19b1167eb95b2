#pragma once
// One line of a project or component file: its text as the program sees it (UTF-8), and, while
// it is unchanged, where its bytes and line end are in the file as read, so that saving can
// write them back exactly.
//
// A million-line project holds a million of these, so a line read from a file owns nothing: its
// text is a view into the file's text, which the file's model keeps once for all its lines
// (source_text.h). Only a line that was written or changed owns its text. The offsets are 32
// bits (files are read up to a limit far below 4 GB), which keeps a line at 24 bytes.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ide {

enum class LineEnd : uint8_t { kNone, kCrLf, kLf, kCr };

std::string_view LineEndBytes(LineEnd end);

class SourceLine {
 public:
  SourceLine() = default;
  SourceLine(const SourceLine& other);
  SourceLine& operator=(const SourceLine& other);
  SourceLine(SourceLine&& other) noexcept;
  SourceLine& operator=(SourceLine&& other) noexcept;
  ~SourceLine() { Release(); }

  // A line as read: `text` is a view into text that outlives the line; `rawOffset` and
  // `rawLength` say where its bytes are in the file, `end` how it ended there.
  static SourceLine Read(std::string_view text, std::size_t rawOffset, std::size_t rawLength,
                         LineEnd end);
  // A new line, owning its text (it gets the file's usual line end when saved).
  static SourceLine New(std::string_view text);

  std::string_view Text() const { return {data_, length_}; }
  // Gives the line a new text, which it owns from now on; its bytes as read no longer stand for
  // it, its line end stays.
  void SetText(std::string_view text);
  // Whether the line owns its text (it was written or changed), rather than viewing the file's.
  bool OwnsText() const { return owned_; }

 private:
  void Own(std::string_view text);
  void Release();

  // First, so that the public fields below pack with them.
  const char* data_ = nullptr;
  uint32_t length_ = 0;

 public:
  uint32_t rawOffset = 0;  // the line's bytes in the file as read (when original)
  uint32_t rawLength = 0;
  LineEnd end = LineEnd::kNone;  // the line end it had in the file (kNone for new lines)
  bool original = false;         // the text still stands for exactly those bytes

 private:
  bool owned_ = false;
};

static_assert(sizeof(SourceLine) <= 24, "a line of a million-line project stays small");

}  // namespace ide
