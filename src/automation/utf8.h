#pragma once
// Reading and writing UTF-8 one code point at a time. Strings inside qx are UTF-8; the shim needs
// code points to fold letter case, match wildcards and name a character that a code page lacks.

#include <cstddef>
#include <string>
#include <string_view>

namespace automation::utf8 {

// Returned by Next for a byte that does not start a well-formed sequence.
inline constexpr char32_t kInvalid = 0xFFFFFFFF;

// The code point that starts at text[pos]; advances pos past it. A malformed sequence (stray
// continuation byte, overlong form, surrogate, beyond U+10FFFF, cut short) yields kInvalid and
// advances by one byte, so a caller can carry that byte on unchanged.
char32_t Next(std::string_view text, std::size_t& pos);

// Appends the UTF-8 form of a code point (which must be a valid scalar value).
void Append(std::string& out, char32_t cp);

// "U+20AC" style name of a code point.
std::string CodePointName(char32_t cp);

}  // namespace automation::utf8
