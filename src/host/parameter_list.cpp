#include "host/parameter_list.h"

#include <algorithm>

#include "automation/casefold.h"
#include "automation/error.h"
#include "platform/text.h"

namespace host {
namespace {

using platform::IsBlank;
using platform::TrimBlanks;

size_t SkipBlanks(std::string_view s, size_t pos) {
  while (pos < s.size() && IsBlank(s[pos]))
    ++pos;
  return pos;
}

bool HasSpecial(std::string_view s) {
  return s.find_first_of(";=\"") != std::string_view::npos;
}

bool HasOuterBlank(std::string_view s) {
  return !s.empty() && (IsBlank(s.front()) || IsBlank(s.back()));
}

[[noreturn]] void Malformed(const std::string& what) {
  automation::Raise(automation::err::kInvalidCall, "malformed parameter string: " + what);
}

}  // namespace

const automation::ClassInfo& ParameterList::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<ParameterList>("ParameterList")
          .Method("Parse", &ParameterList::Parse, {"Text"})
          .Method("Value", &ParameterList::Value, {"Name", "Default"})
          .Method("Add", &ParameterList::Add, {"Name", "Value"})
          .Get("Text", &ParameterList::Text)
          .Build();
  return info;
}

void ParameterList::Parse(const std::string& text) {
  const std::string_view s(text);
  std::vector<Pair> pairs;
  size_t pos = 0;
  while ((pos = SkipBlanks(s, pos)) < s.size()) {
    if (s[pos] == ';') {  // an empty pair
      ++pos;
      continue;
    }
    const size_t equals = s.find_first_of("=;", pos);
    if (equals == std::string_view::npos || s[equals] == ';') {
      Malformed("the pair \"" + std::string(TrimBlanks(s.substr(pos, equals - pos))) +
                "\" has no \"=\"");
    }
    const std::string name(TrimBlanks(s.substr(pos, equals - pos)));
    if (name.empty()) {
      Malformed("the pair at character " + std::to_string(pos + 1) + " has no name");
    }
    pos = SkipBlanks(s, equals + 1);
    std::string value;
    if (pos < s.size() && s[pos] == '"') {
      ++pos;
      for (;;) {
        const size_t quote = s.find('"', pos);
        if (quote == std::string_view::npos) {
          Malformed("the value of " + name + " has no closing quote");
        }
        value.append(s.substr(pos, quote - pos));
        if (quote + 1 < s.size() && s[quote + 1] == '"') {  // a doubled quote
          value += '"';
          pos = quote + 2;
          continue;
        }
        pos = SkipBlanks(s, quote + 1);
        break;
      }
      if (pos < s.size() && s[pos] != ';') {
        Malformed("unexpected text after the closing quote of the value of " + name);
      }
      ++pos;
    } else {
      const size_t end = std::min(s.find(';', pos), s.size());
      value = TrimBlanks(s.substr(pos, end - pos));
      pos = end + 1;
    }
    Set(pairs, name, std::move(value));
  }
  pairs_ = std::move(pairs);
}

std::string ParameterList::Value(const std::string& name, const std::string& defaultValue) const {
  const Pair* pair = FindPair(name);
  return pair ? pair->value : defaultValue;
}

void ParameterList::Add(const std::string& name, const std::string& value) {
  if (name.empty() || HasSpecial(name) || HasOuterBlank(name)) {
    automation::Raise(automation::err::kInvalidCall,
                      "a parameter name must not be empty, hold \";\", \"=\" or a quote, or "
                      "begin or end with a blank: \"" +
                          name + "\"");
  }
  Set(pairs_, name, value);
}

std::string ParameterList::Text() const {
  std::string out;
  for (const Pair& pair : pairs_) {
    if (!out.empty()) out += ';';
    out += pair.name;
    out += '=';
    if (HasSpecial(pair.value) || HasOuterBlank(pair.value)) {
      out += '"';
      for (char c : pair.value) {
        if (c == '"') out += '"';
        out += c;
      }
      out += '"';
    } else {
      out += pair.value;
    }
  }
  return out;
}

void ParameterList::Set(std::vector<Pair>& pairs, std::string name, std::string value) {
  for (Pair& pair : pairs) {
    if (automation::EqualsNoCaseUnicode(pair.name, name)) {
      pair.value = std::move(value);
      return;
    }
  }
  pairs.push_back(Pair{std::move(name), std::move(value)});
}

const ParameterList::Pair* ParameterList::FindPair(std::string_view name) const {
  for (const Pair& pair : pairs_) {
    if (automation::EqualsNoCaseUnicode(pair.name, name)) return &pair;
  }
  return nullptr;
}

}  // namespace host
