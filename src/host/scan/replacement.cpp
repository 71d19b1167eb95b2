#include "host/scan/replacement.h"

#include <charconv>

#include "automation/error.h"

namespace host::scan {

namespace {

bool IsNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

[[noreturn]] void RaiseBadReference(std::string_view replacement, const std::string& what) {
  std::string detail = "replacement \"";
  detail.append(replacement).append("\": ").append(what);
  automation::Raise(kInvalidPattern, detail);
}

// The group a reference names: a number, or the number of a named group.
int GroupOf(std::string_view name, bool braced, std::string_view replacement,
            const Matcher& matcher) {
  unsigned number = 0;
  auto [end, ec] = std::from_chars(name.data(), name.data() + name.size(), number);
  if (ec == std::errc() && end == name.data() + name.size()) {
    if (number > matcher.GroupCount())
      RaiseBadReference(replacement, "no group " + std::to_string(number) + " in the pattern");
    return static_cast<int>(number);
  }
  int group = matcher.GroupNumber(name);
  if (group < 0) {
    std::string what = "no group named \"" + std::string(name) + "\" in the pattern";
    std::size_t digits = 0;
    while (digits < name.size() && name[digits] >= '0' && name[digits] <= '9')
      ++digits;
    if (!braced && digits > 0) {
      what += " (write ${" + std::string(name.substr(0, digits)) + "}" +
              std::string(name.substr(digits)) + " for group " +
              std::string(name.substr(0, digits)) + " followed by \"" +
              std::string(name.substr(digits)) + "\")";
    }
    RaiseBadReference(replacement, what);
  }
  return group;
}

}  // namespace

Replacement::Replacement(std::string_view text, const Matcher& matcher) {
  std::string literal;
  auto flush = [&] {
    if (!literal.empty()) pieces_.push_back({std::move(literal), -1});
    literal.clear();
  };
  std::size_t i = 0;
  while (i < text.size()) {
    if (text[i] != '$' || i + 1 >= text.size()) {
      literal += text[i++];
      continue;
    }
    if (text[i + 1] == '$') {
      literal += '$';
      i += 2;
      continue;
    }
    std::string_view name;
    std::size_t next = i;
    bool braced = text[i + 1] == '{';
    if (braced) {
      std::size_t close = text.find('}', i + 2);
      if (close != std::string_view::npos) {
        name = text.substr(i + 2, close - i - 2);
        next = close + 1;
      }
    } else {
      std::size_t end = i + 1;
      while (end < text.size() && IsNameCharacter(text[end]))
        ++end;
      name = text.substr(i + 1, end - i - 1);
      next = end;
    }
    if (name.empty()) {  // "$" followed by nothing that names a group
      literal += text[i++];
      continue;
    }
    flush();
    pieces_.push_back({{}, GroupOf(name, braced, text, matcher)});
    i = next;
  }
  flush();
}

void Replacement::Expand(std::string_view text, const Match& match, std::string& out) const {
  for (const auto& piece : pieces_) {
    if (piece.group < 0) {
      out += piece.literal;
      continue;
    }
    std::size_t at = 2 * static_cast<std::size_t>(piece.group);
    if (at + 1 >= match.groups.size()) {
      if (piece.group == 0) out.append(text.substr(match.start, match.end - match.start));
      continue;
    }
    std::size_t start = match.groups[at];
    std::size_t end = match.groups[at + 1];
    if (start == PCRE2_UNSET || end < start) continue;  // a group that took no part
    out.append(text.substr(start, end - start));
  }
}

std::size_t ReplaceAll(Matcher& matcher, std::string_view text, const Replacement& replacement,
                       std::string& out) {
  std::size_t copied = 0;
  std::string result;
  std::size_t count = matcher.ForEach(text, [&](const Match& match) {
    if (copied == 0 && result.empty()) result.reserve(text.size() + text.size() / 8);
    result.append(text.substr(copied, match.start - copied));
    replacement.Expand(text, match, result);
    copied = match.end;
  });
  if (count == 0) return 0;
  result.append(text.substr(copied));
  out = std::move(result);
  return count;
}

}  // namespace host::scan
