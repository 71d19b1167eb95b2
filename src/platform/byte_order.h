#pragma once
// Byte-order marks and UTF-16 text. VB6 writes its files in the ANSI code page without a mark,
// but editors add a UTF-8 mark to files they touch, and some save them as UTF-16.

#include <cstddef>
#include <string_view>

namespace platform {

inline constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

// The length of the UTF-8 byte-order mark that bytes start with: 3, or 0 when there is none.
std::size_t Utf8BomLength(std::string_view bytes);

enum class Utf16 { kNo, kLittleEndian, kBigEndian };

// Whether bytes are UTF-16 text: they start with its byte-order mark, or, without one, their
// first characters are two bytes each with a NUL as the high byte (text in Latin letters).
Utf16 DetectUtf16(std::string_view bytes);

// "UTF-16 little-endian" or "UTF-16 big-endian", for messages.
std::string_view Utf16Name(Utf16 kind);

}  // namespace platform
