#include "platform/lines.h"

#include <algorithm>
#include <cstring>

#include "platform/codepage.h"
#include "platform/files.h"

namespace platform {

LineReader::LineReader(std::string_view text, LineEnds ends)
    : text_(text),
      cr_(Find('\r', 0)),
      lf_(ends == LineEnds::kAny ? Find('\n', 0) : std::string_view::npos) {}

std::size_t LineReader::Find(char c, std::size_t from) const {
  if (from >= text_.size()) return std::string_view::npos;
  const void* hit = std::memchr(text_.data() + from, c, text_.size() - from);
  return hit == nullptr ? std::string_view::npos
                        : static_cast<std::size_t>(static_cast<const char*>(hit) - text_.data());
}

bool LineReader::Next(std::string_view& line) {
  const std::size_t size = text_.size();
  if (pos_ >= size) {
    lastEnd_ = {};
    return false;
  }
  // A position found earlier stays valid until the reading passes it; npos never needs renewing.
  if (cr_ < pos_) cr_ = Find('\r', pos_);
  if (lf_ < pos_) lf_ = Find('\n', pos_);
  const std::size_t end = std::min({cr_, lf_, size});
  line = text_.substr(pos_, end - pos_);
  std::size_t next = end;
  if (end < size)
    next = (text_[end] == '\r' && end + 1 < size && text_[end + 1] == '\n') ? end + 2 : end + 1;
  lastEnd_ = text_.substr(end, next - end);
  pos_ = next;
  return true;
}

std::vector<std::string> ReadLines(std::string_view path, LineEnds ends) {
  // Decoding first and splitting after gives the same lines: CR and LF are never part of a
  // multi-byte character in the code pages qx reads, and never part of an escape.
  const std::string text = CurrentCodePage().Decode(ReadFile(path));
  std::vector<std::string> lines;
  LineReader reader(text, ends);
  std::string_view line;
  while (reader.Next(line))
    lines.emplace_back(line);
  return lines;
}

}  // namespace platform
