#pragma once
// Small helpers for the text of Windows-style files (registry exports, ini files, VB's project
// and component files): what counts as a blank there, trimming it, and matching keywords.

#include <cstddef>
#include <string_view>

namespace platform {

// Spaces and tabs: the blanks that these files put around keys, values and keywords.
inline bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

// The text without leading and trailing blanks.
inline std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

// Equal but for the letter case of ASCII letters: how VB matches its keywords and the keys of
// its files, whose other characters are compared as they are.
inline bool EqualsAsciiNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    char x = a[i];
    char y = b[i];
    if (x >= 'A' && x <= 'Z') x = static_cast<char>(x - 'A' + 'a');
    if (y >= 'A' && y <= 'Z') y = static_cast<char>(y - 'A' + 'a');
    if (x != y) return false;
  }
  return true;
}

}  // namespace platform
