#include "ide/text/attribute_line.h"

#include "automation/casefold.h"
#include "automation/vb_name.h"
#include "platform/text.h"

namespace ide {

std::string_view AttributeLine::Member() const {
  const std::size_t dot = name.find('.');
  return dot == std::string_view::npos ? std::string_view{} : name.substr(0, dot);
}

std::optional<AttributeLine> ParseAttributeLine(std::string_view line) {
  constexpr std::string_view kKeyword = "Attribute";
  std::size_t pos = 0;
  const auto skipBlanks = [&] {
    while (pos < line.size() && platform::IsBlank(line[pos]))
      ++pos;
  };
  skipBlanks();
  if (line.size() - pos <= kKeyword.size() ||
      !automation::EqualsAsciiNoCase(line.substr(pos, kKeyword.size()), kKeyword) ||
      !platform::IsBlank(line[pos + kKeyword.size()])) {
    return std::nullopt;
  }
  pos += kKeyword.size();
  skipBlanks();
  const std::size_t start = pos;
  while (pos < line.size() && (automation::IsIdentChar(line[pos]) || line[pos] == '.'))
    ++pos;
  AttributeLine attribute;
  attribute.name = line.substr(start, pos - start);
  skipBlanks();
  if (attribute.name.empty() || pos == line.size() || line[pos] != '=') return std::nullopt;
  ++pos;
  skipBlanks();
  attribute.valueStart = pos;
  return attribute;
}

}  // namespace ide
