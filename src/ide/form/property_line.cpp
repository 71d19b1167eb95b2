#include "ide/form/property_line.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "platform/codepage.h"
#include "platform/text.h"

namespace ide::form {
namespace {

using platform::IsBlank;
using platform::TrimBlanks;

constexpr std::size_t kNameColumns = 16;

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

// Where the quoted string starting at `open` ends (one past its closing quote), or npos when
// it is not closed. Doubled quotes stand for one.
std::size_t QuotedEnd(std::string_view text, std::size_t open) {
  std::size_t i = open + 1;
  while (i < text.size()) {
    if (text[i] == '"') {
      if (i + 1 < text.size() && text[i + 1] == '"') {
        i += 2;
        continue;
      }
      return i + 1;
    }
    ++i;
  }
  return std::string_view::npos;
}

}  // namespace

std::optional<CompanionReference> ParseCompanionReference(std::string_view value) {
  CompanionReference reference;
  std::size_t i = 0;
  if (i < value.size() && value[i] == '$') {
    reference.isString = true;
    ++i;
  }
  if (i >= value.size() || value[i] != '"') return std::nullopt;
  const std::size_t close = value.find('"', i + 1);
  if (close == std::string_view::npos || close + 1 >= value.size() || value[close + 1] != ':') {
    return std::nullopt;
  }
  reference.fileName.assign(value.substr(i + 1, close - i - 1));
  const std::string_view digits = value.substr(close + 2);
  if (digits.empty() || digits.size() > 8) return std::nullopt;
  for (char c : digits) {
    if (!IsHexDigit(c)) return std::nullopt;
  }
  std::from_chars(digits.data(), digits.data() + digits.size(), reference.offset, 16);
  return reference;
}

std::string FormatCompanionReference(const CompanionReference& reference) {
  std::array<char, 16> digits{};
  std::snprintf(digits.data(), digits.size(), "%04X", static_cast<unsigned>(reference.offset));
  std::string out = reference.isString ? "$\"" : "\"";
  out += reference.fileName;
  out += "\":";
  out += digits.data();
  return out;
}

std::optional<PropertyLineParts> SplitPropertyLine(std::string_view line) {
  PropertyLineParts parts;
  while (parts.indent < line.size() && IsBlank(line[parts.indent]))
    ++parts.indent;
  const std::size_t equals = line.find('=', parts.indent);
  if (equals == std::string_view::npos) return std::nullopt;
  parts.name = TrimBlanks(line.substr(parts.indent, equals - parts.indent));
  if (parts.name.empty()) return std::nullopt;
  for (char c : parts.name) {
    if (IsBlank(c)) return std::nullopt;  // two words before `=`: not a property line
  }
  std::size_t start = equals + 1;
  while (start < line.size() && IsBlank(line[start]))
    ++start;
  parts.valueText = line.substr(start);
  // The value ends at an `'` outside quoted strings; a value can hold several (`$"a":0000`).
  std::size_t i = start;
  while (i < line.size() && line[i] != '\'') {
    if (line[i] == '"') {
      const std::size_t end = QuotedEnd(line, i);
      if (end == std::string_view::npos) {
        i = line.size();
        break;
      }
      i = end;
    } else {
      ++i;
    }
  }
  parts.value = TrimBlanks(line.substr(start, i - start));
  if (i < line.size()) {
    parts.hasComment = true;
    parts.comment = line.substr(i + 1);
  }
  return parts;
}

std::string FormatPropertyLine(std::size_t indent, std::string_view name,
                               std::string_view valueText) {
  std::string out(indent, ' ');
  out += name;
  // A dotted `Object.Width` is padded as if `Object.` were not there.
  const std::size_t dot = name.rfind('.');
  const std::size_t counted = dot == std::string_view::npos ? name.size() : name.size() - dot - 1;
  if (counted < kNameColumns) out.append(kNameColumns - counted, ' ');
  out += "=   ";
  out += valueText;
  return out;
}

std::string FormatString(std::string_view text) {
  std::string out = "\"";
  for (char c : text) {
    out += c;
    if (c == '"') out += '"';
  }
  out += '"';
  return out;
}

std::string FormatNumber(int64_t value) {
  return std::to_string(value);
}

std::string FormatSingle(float value) {
  std::array<char, 64> digits{};
  auto result =
      std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
  std::string out(digits.data(), result.ptr);
  if (out == "-0") out = "0";
  return out;
}

std::string FormatColour(uint32_t value) {
  std::array<char, 16> digits{};
  std::snprintf(digits.data(), digits.size(), "&H%08X&", static_cast<unsigned>(value));
  return digits.data();
}

std::string FormatBoolean(bool value) {
  return value ? "-1  'True" : "0   'False";
}

std::string FormatEnumeration(int32_t value, std::string_view description) {
  std::string out = std::to_string(value);
  out += "  '";
  out += description;
  return out;
}

std::optional<std::string> UnquoteString(std::string_view value) {
  if (value.size() < 2 || value.front() != '"' || QuotedEnd(value, 0) != value.size()) {
    return std::nullopt;
  }
  std::string out;
  for (std::size_t i = 1; i + 1 < value.size(); ++i) {
    out += value[i];
    if (value[i] == '"') ++i;  // the second of a doubled quote
  }
  return out;
}

bool StringNeedsCompanion(std::string_view text, const platform::CodePage& codePage) {
  if (text.find_first_of("\r\n") != std::string_view::npos) return true;
  if (text.size() <= kLongestInlineString) {
    // No code page makes a string longer in bytes than in UTF-8.
    return false;
  }
  return codePage.Encode(text).size() > kLongestInlineString;
}

}  // namespace ide::form
