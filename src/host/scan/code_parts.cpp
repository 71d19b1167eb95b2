#include "host/scan/code_parts.h"

namespace host::scan {
namespace {

// VB6 allows 25 line continuations in a statement; a text with more is read from this far back.
constexpr int kMostContinuedLines = 64;

bool IsBreak(char c) {
  return c == '\n' || c == '\r';
}

// A character of a VB name: ASCII letters, digits, _ and every byte of a character beyond ASCII
// (names in double-byte code pages).
bool IsNameByte(char c) {
  const auto u = static_cast<unsigned char>(c);
  return u >= 0x80 || u == '_' || (u >= '0' && u <= '9') ||
         ((u | 0x20) >= 'a' && (u | 0x20) <= 'z');
}

// Whether the line [start, end) ends with a line continuation: " _" (trailing blanks allowed).
bool Continues(std::string_view text, std::size_t start, std::size_t end) {
  while (end > start && (text[end - 1] == ' ' || text[end - 1] == '\t'))
    --end;
  if (end == start || text[end - 1] != '_') return false;
  return end - 1 == start || text[end - 2] == ' ' || text[end - 2] == '\t';
}

// Whether the keyword Rem starts at i of the line [start, end).
bool RemAt(std::string_view text, std::size_t start, std::size_t i, std::size_t end) {
  if (end - i < 3 || (text[i] | 0x20) != 'r' || (text[i + 1] | 0x20) != 'e' ||
      (text[i + 2] | 0x20) != 'm') {
    return false;
  }
  if (i > start && (IsNameByte(text[i - 1]) || text[i - 1] == '.')) return false;
  return i + 3 == end || !IsNameByte(text[i + 3]);
}

// The start of the line before the one that starts at lineStart (> 0).
std::size_t PreviousLineStart(std::string_view text, std::size_t lineStart, std::size_t& end) {
  end = lineStart - 1;
  if (end > 0 && text[end] == '\n' && text[end - 1] == '\r') --end;
  std::size_t start = end;
  while (start > 0 && !IsBreak(text[start - 1]))
    --start;
  return start;
}

}  // namespace

CodeLexer::CodeLexer(std::string_view text, std::size_t from) : text_(text) {
  from = std::min(from, text.size());
  lineStart_ = from;
  while (lineStart_ > 0 && !IsBreak(text[lineStart_ - 1]))
    --lineStart_;
  for (int i = 0; i < kMostContinuedLines && lineStart_ > 0; ++i) {
    std::size_t end = 0;
    const std::size_t previous = PreviousLineStart(text, lineStart_, end);
    if (!Continues(text, previous, end)) break;
    lineStart_ = previous;
  }
}

bool CodeLexer::Next(CodeSpan& span) {
  while (nextSpan_ == spans_.size()) {
    if (!ReadLine()) return false;
  }
  span = spans_[nextSpan_++];
  return true;
}

bool CodeLexer::ReadLine() {
  if (done_) return false;
  spans_.clear();
  nextSpan_ = 0;
  const std::size_t start = lineStart_;
  std::size_t end = start;
  while (end < text_.size() && !IsBreak(text_[end]))
    ++end;
  if (end == text_.size()) {
    done_ = true;
  } else {
    lineStart_ =
        end + (text_[end] == '\r' && end + 1 < text_.size() && text_[end + 1] == '\n' ? 2 : 1);
  }
  auto add = [this](std::size_t from, std::size_t to, CodePart part) {
    if (to > from) spans_.push_back({from, to, part});
  };
  // A comment from `from` to the end of the line; it goes on over the next line after " _".
  auto comment = [&](std::size_t from) {
    add(from, end, kComments);
    inComment_ = Continues(text_, start, end);
  };
  if (inComment_) {
    comment(start);
    return true;
  }
  std::size_t code = start;  // where the current run of statements began
  for (std::size_t i = start; i < end;) {
    const char c = text_[i];
    if (c == '"') {
      add(code, i, kStatements);
      std::size_t close = i + 1;
      while (close < end) {
        if (text_[close] == '"') {
          if (close + 1 < end && text_[close + 1] == '"') {
            close += 2;
            continue;
          }
          break;
        }
        ++close;
      }
      add(i + 1, close, kStrings);
      i = close < end ? close + 1 : end;
      code = i;
    } else if (c == '\'') {
      add(code, i, kStatements);
      comment(i + 1);
      return true;
    } else if (RemAt(text_, start, i, end)) {
      add(code, i, kStatements);
      comment(i + 3);
      return true;
    } else {
      ++i;
    }
  }
  add(code, end, kStatements);
  inComment_ = false;
  return true;
}

}  // namespace host::scan
