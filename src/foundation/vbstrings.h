#pragma once
// VB's string functions as the driver uses them on file lines.

#include <string>
#include <string_view>

namespace foundation {

// VB's Trim: leading and trailing blanks (spaces) removed; tabs stay.
inline std::string_view Trim(std::string_view s) {
  while (!s.empty() && s.front() == ' ')
    s.remove_prefix(1);
  while (!s.empty() && s.back() == ' ')
    s.remove_suffix(1);
  return s;
}

// VB's LCase for the ASCII letters, which is all that keys of VB's files use.
inline std::string LCase(std::string_view s) {
  std::string out(s);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
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
