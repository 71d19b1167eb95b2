#include "platform/lines.h"

#include <cstring>

#include "platform/codepage.h"
#include "platform/files.h"

namespace platform {

bool LineReader::Next(std::string_view& line) {
  const std::size_t size = text_.size();
  if (pos_ >= size) {
    lastEnd_ = {};
    return false;
  }
  const char* data = text_.data();
  const std::size_t start = pos_;
  std::size_t end = start;
  if (ends_ == LineEnds::kAny) {
    while (end < size && data[end] != '\n' && data[end] != '\r')
      ++end;
  } else {
    const void* cr = std::memchr(data + start, '\r', size - start);
    end = cr != nullptr ? static_cast<std::size_t>(static_cast<const char*>(cr) - data) : size;
  }
  line = text_.substr(start, end - start);
  std::size_t next = end;
  if (end < size) {
    if (data[end] == '\r' && end + 1 < size && data[end + 1] == '\n') {
      next = end + 2;
    } else {
      next = end + 1;
    }
  }
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
