#pragma once
// Trimming: the one helper every layer uses to take blanks off both ends of a text. The blanks
// are spaces and tabs, as Windows-style files put them around keys, values and keywords
// (platform/text.h); a caller with another rule names its own blanks (VB's conversion of text
// to numbers also skips line ends).

#include <string_view>

namespace automation {

inline bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

// The text without the leading and trailing characters that are among `blanks`.
inline std::string_view TrimBlanks(std::string_view text, std::string_view blanks = " \t") {
  const size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace automation
