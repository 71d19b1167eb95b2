#pragma once
// VB's string functions as the driver uses them on file lines.

#include <string>
#include <string_view>

#include "automation/casefold.h"

namespace foundation {

// VB's Trim: leading and trailing blanks (spaces) removed; tabs stay.
inline std::string_view Trim(std::string_view s) {
  while (!s.empty() && s.front() == ' ')
    s.remove_prefix(1);
  while (!s.empty() && s.back() == ' ')
    s.remove_suffix(1);
  return s;
}

// VB's LCase: every letter in lower case.
inline std::string LCase(std::string_view s) {
  return automation::FoldCaseUnicode(s);
}

// The text before and after the first occurrence of a separator (npos: no separator).
struct Split {
  std::string_view before;
  std::string_view after;
  bool found = false;
};

inline Split SplitAt(std::string_view s, char separator) {
  const auto at = s.find(separator);
  if (at == std::string_view::npos) return {s, {}, false};
  return {s.substr(0, at), s.substr(at + 1), true};
}

}  // namespace foundation
