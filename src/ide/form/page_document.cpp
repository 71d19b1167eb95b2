#include "ide/form/page_document.h"

#include <cstdint>

namespace ide::form {
namespace {

uint32_t ReadLE32(const char* p) {
  uint32_t value = 0;
  for (int i = 3; i >= 0; --i)
    value = (value << 8) | static_cast<unsigned char>(p[i]);
  return value;
}

void WriteLE32(char* p, uint32_t value) {
  for (int i = 0; i < 4; ++i)
    p[i] = static_cast<char>((value >> (8 * i)) & 0xFF);
}

bool IsTextByte(unsigned char c) {
  return c >= 0x20 || c == '\t' || c == '\r' || c == '\n';
}

// Rewrites the u32 at `at` to `now` when it holds `was` or `was` + 1 (a count with its NUL).
void Renumber(std::string& bytes, std::size_t at, uint32_t was, uint32_t now) {
  if (at + 4 > bytes.size()) return;
  const uint32_t field = ReadLE32(bytes.data() + at);
  if (field == was) {
    WriteLE32(bytes.data() + at, now);
  } else if (field == was + 1) {
    WriteLE32(bytes.data() + at, now + 1);
  }
}

}  // namespace

PageDocument SplitPageDocument(std::string_view record) {
  std::size_t end = record.size();
  while (end > 0 && record[end - 1] == '\0')
    --end;
  std::size_t start = end;
  while (start > 0 && IsTextByte(static_cast<unsigned char>(record[start - 1])))
    --start;
  return {record.substr(0, start), record.substr(start, end - start), record.substr(end)};
}

std::string ReplacePageText(std::string_view record, std::string_view text) {
  const PageDocument page = SplitPageDocument(record);
  std::string header(page.header);
  const auto oldText = static_cast<uint32_t>(page.text.size());
  const auto newText = static_cast<uint32_t>(text.size());
  if (header.size() >= 8) Renumber(header, header.size() - 4, oldText, newText);
  if (header.size() >= 4) {
    const auto rest = static_cast<uint32_t>(record.size() - 4);
    const uint32_t newRest = rest - oldText + newText;
    if (ReadLE32(header.data()) == rest) WriteLE32(header.data(), newRest);
  }
  std::string bytes = std::move(header);
  bytes += text;
  bytes += page.trailer;
  return bytes;
}

}  // namespace ide::form
