#include "platform/byte_order.h"

#include <algorithm>

namespace platform {

std::size_t Utf8BomLength(std::string_view bytes) {
  return bytes.substr(0, kUtf8Bom.size()) == kUtf8Bom ? kUtf8Bom.size() : 0;
}

Utf16 DetectUtf16(std::string_view bytes) {
  if (bytes.substr(0, 2) == "\xFF\xFE") return Utf16::kLittleEndian;
  if (bytes.substr(0, 2) == "\xFE\xFF") return Utf16::kBigEndian;
  // Without a mark: look at the first characters. Text in ANSI code pages has no NUL bytes, so
  // a regular pattern of them in nearly every pair is UTF-16 (a few characters outside Latin-1
  // have a nonzero high byte).
  const std::size_t pairs = std::min<std::size_t>(bytes.size() / 2, 128);
  if (pairs < 2) return Utf16::kNo;
  std::size_t little = 0;
  std::size_t big = 0;
  for (std::size_t i = 0; i < pairs; ++i) {
    const char first = bytes[2 * i];
    const char second = bytes[2 * i + 1];
    if (first != '\0' && second == '\0') ++little;
    if (first == '\0' && second != '\0') ++big;
  }
  if (little * 10 >= pairs * 9) return Utf16::kLittleEndian;
  if (big * 10 >= pairs * 9) return Utf16::kBigEndian;
  return Utf16::kNo;
}

std::string_view Utf16Name(Utf16 kind) {
  return kind == Utf16::kBigEndian ? "UTF-16 big-endian" : "UTF-16 little-endian";
}

}  // namespace platform
