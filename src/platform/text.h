#pragma once
// Small helpers for the text of Windows-style files (registry exports, ini files, VB's project
// and component files): what counts as a blank there, and trimming it. Keywords match
// with automation::EqualsAsciiNoCase (automation/casefold.h).

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

}  // namespace platform
