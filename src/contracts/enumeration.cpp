#include "contracts/enumeration.h"

#include <array>
#include <charconv>

#include "automation/error.h"

namespace contracts {
namespace {

std::vector<std::string_view> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> parts;
  if (text.empty()) return parts;
  for (;;) {
    const size_t at = text.find(separator);
    parts.push_back(text.substr(0, at));
    if (at == std::string_view::npos) return parts;
    text.remove_prefix(at + separator.size());
  }
}

[[noreturn]] void Malformed(std::string_view entry) {
  automation::Raise(automation::err::kInvalidCall,
                    "not an entry of an enumeration string: " + std::string(entry));
}

bool ParseFlag(std::string_view field, std::string_view entry) {
  if (field == "1") return true;
  if (field == "0") return false;
  Malformed(entry);
}

EnumerationEntry ParseEntry(std::string_view entry) {
  // fields[0..5] are the six fixed fields, right to left; the rest of the entry is the name.
  std::array<std::string_view, 6> fields;
  std::string_view rest = entry;
  for (std::string_view& field : fields) {
    const size_t tab = rest.rfind('\t');
    if (tab == std::string_view::npos) Malformed(entry);
    field = rest.substr(tab + 1);
    rest = rest.substr(0, tab);
  }
  EnumerationEntry result;
  result.name = rest;
  const std::string_view bitmap = fields[5];
  const auto [end, ec] =
      std::from_chars(bitmap.data(), bitmap.data() + bitmap.size(), result.bitmapId);
  if (bitmap.empty() || ec != std::errc() || end != bitmap.data() + bitmap.size()) {
    Malformed(entry);
  }
  result.version = fields[4];
  result.flag = ParseFlag(fields[3], entry);
  result.writable = ParseFlag(fields[2], entry);
  if (fields[1] != "1" || fields[0] != "0") Malformed(entry);
  return result;
}

}  // namespace

std::vector<EnumerationEntry> ParseEnumeration(std::string_view text) {
  std::vector<EnumerationEntry> entries;
  for (std::string_view entry : Split(text, "\r\n"))
    entries.push_back(ParseEntry(entry));
  return entries;
}

std::vector<std::string> ParseCollectionNames(std::string_view text) {
  std::vector<std::string> names;
  for (std::string_view name : Split(text, "\t"))
    names.emplace_back(name);
  return names;
}

}  // namespace contracts
