#include "cli/file_matches.h"

#include "automation/casefold.h"
#include "automation/text.h"
#include "platform/codepage.h"
#include "platform/lines.h"

namespace cli {
namespace {

bool StartsWithAttribute(std::string_view line) {
  const size_t first = line.find_first_not_of(" \t");
  return first != std::string_view::npos &&
         automation::EqualsAsciiNoCase(line.substr(first, 10), "Attribute ");
}

// The first line at or after `from` where the text's lines begin, each following text line on
// the next file line but for hidden Attribute lines; fills `at` with the file line of each text
// line.
bool FindText(std::span<const FileLine> lines, const std::vector<std::string_view>& text,
              size_t from, std::vector<size_t>& at) {
  for (size_t first = from; first < lines.size(); ++first) {
    if (text.empty() || lines[first].text != text[0]) continue;
    at.assign(1, first);
    size_t j = first + 1;
    for (size_t k = 1; k < text.size(); ++k) {
      while (j < lines.size() && lines[j].text != text[k] && StartsWithAttribute(lines[j].text))
        ++j;
      if (j >= lines.size() || lines[j].text != text[k]) break;
      at.push_back(j++);
    }
    if (at.size() == text.size()) return true;
  }
  return false;
}

// Where the name's text begins in the "Attribute VB_Name" line, or false.
bool FindNameLine(std::span<const FileLine> lines, size_t& line, size_t& column) {
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string_view text = lines[i].text;
    const size_t equals = text.find('=');
    if (equals == std::string::npos) continue;
    std::string_view key = text.substr(0, equals);
    while (!key.empty() && (key.back() == ' ' || key.back() == '\t'))
      key.remove_suffix(1);
    if (!automation::EqualsAsciiNoCase(key, "Attribute VB_Name")) continue;
    size_t value = text.find_first_not_of(" \t", equals + 1);
    if (value == std::string::npos) value = text.size();
    if (value < text.size() && text[value] == '"') ++value;
    line = i;
    column = value;
    return true;
  }
  return false;
}

constexpr auto Trimmed = [](std::string_view text) { return automation::TrimBlanks(text); };

// "Begin VB.CommandButton cmdOK" -> "cmdOK"; "" for other lines.
std::string_view BeginName(std::string_view line) {
  line = Trimmed(line);
  if (line.size() < 6 || !automation::EqualsAsciiNoCase(line.substr(0, 6), "Begin ")) return {};
  const size_t space = line.find_last_of(" \t");
  return line.substr(space + 1);
}

bool IsEnd(std::string_view line) {
  return automation::EqualsAsciiNoCase(Trimmed(line), "End");
}

// The key of a "Key = value" line, or "".
std::string_view KeyOf(std::string_view line) {
  const size_t equals = line.find('=');
  return equals == std::string_view::npos ? std::string_view() : Trimmed(line.substr(0, equals));
}

// The line of an object's property in the form description: the object's Begin line (the
// first at depth 0 for the component; for a control, its name and, in a control array, its
// "Index = n" line), then its own "Property = ..." line (not those of nested objects or property
// groups). The Begin line when the property has no line; nullopt when the object is not found.
std::optional<size_t> FindPropertyLine(std::span<const FileLine> lines, const std::string& control,
                                       const std::string& property) {
  std::string_view name = control;
  std::string index;
  if (const size_t open = name.find('('); open != std::string_view::npos) {
    index = std::string(name.substr(open + 1, name.size() - open - 2));
    name = name.substr(0, open);
  }
  for (size_t begin = 0; begin < lines.size(); ++begin) {
    const std::string_view beginName = BeginName(lines[begin].text);
    if (beginName.empty()) continue;
    if (!control.empty() && !automation::EqualsAsciiNoCase(beginName, name)) continue;
    std::optional<size_t> found;
    bool indexMatches = index.empty();
    int depth = 0;
    for (size_t i = begin + 1; i < lines.size(); ++i) {
      const std::string_view text = lines[i].text;
      if (IsEnd(text) || automation::EqualsAsciiNoCase(Trimmed(text), "EndProperty")) {
        if (depth-- == 0) break;
        continue;
      }
      const std::string_view trimmed = Trimmed(text);
      if (!BeginName(text).empty() ||
          automation::EqualsAsciiNoCase(trimmed.substr(0, 13), "BeginProperty")) {
        ++depth;
        continue;
      }
      if (depth != 0) continue;
      const std::string_view key = KeyOf(text);
      if (!found && automation::EqualsAsciiNoCase(key, property)) found = i;
      if (!index.empty() && automation::EqualsAsciiNoCase(key, "Index"))
        indexMatches = Trimmed(text.substr(text.find('=') + 1)) == index;
    }
    if (indexMatches) return found ? *found : begin;
  }
  return std::nullopt;
}

}  // namespace

FileLines::FileLines(std::string_view bytes) {
  const platform::CodePage& codePage = platform::CurrentCodePage();
  platform::LineReader reader(bytes);
  std::string_view line;
  size_t offset = reader.Position();
  while (reader.Next(line)) {
    const std::string_view text =
        codePage.DecodesToItself(line) ? line : decoded_.emplace_back(codePage.Decode(line));
    lines_.push_back({text, reader.LastLineEnd(), offset});
    offset = reader.Position();
  }
}

std::vector<std::string_view> TextLines(std::string_view text) {
  std::vector<std::string_view> lines;
  size_t start = 0;
  for (size_t i = 0; i <= text.size(); ++i) {
    if (i == text.size() || text[i] == '\r' || text[i] == '\n') {
      lines.push_back(text.substr(start, i - start));
      if (i < text.size() && text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
      start = i + 1;
    }
  }
  return lines;
}

std::vector<std::vector<FilePlace>> MapToFile(std::span<const FileLine> lines,
                                              const std::vector<ScanPlace>& places) {
  std::vector<std::vector<FilePlace>> out;
  size_t cursor = 0;
  for (const ScanPlace& place : places) {
    std::vector<FilePlace> located;
    if (place.kind == "name") {
      size_t line = 0, column = 0;
      const bool found = FindNameLine(lines, line, column);
      for (const ScanMatch& m : place.matches) {
        located.push_back(found ? FilePlace{line + 1, column + m.start, column + m.end}
                                : FilePlace{0, m.start, m.end});
      }
    } else if (!place.property.empty() && place.kind != "html") {
      // The value's matches within the property's line when the value stands there as read;
      // else (a list, a value in the companion, a default) at their bytes within the value.
      const std::optional<size_t> line = FindPropertyLine(lines, place.control, place.property);
      for (const ScanMatch& m : place.matches) {
        size_t column = std::string::npos;
        if (line && m.line == 1 && place.text.find_first_of("\r\n") == std::string::npos)
          column = lines[*line].text.find(place.text, lines[*line].text.find('=') + 1);
        located.push_back(!line ? FilePlace{0, m.start, m.end}
                          : column == std::string::npos
                              ? FilePlace{*line + 1, m.start, m.end}
                              : FilePlace{*line + 1, column + m.start, column + m.end});
      }
    } else {
      const std::vector<std::string_view> text = TextLines(place.text);
      std::vector<size_t> at;
      const bool found = FindText(lines, text, cursor, at) || FindText(lines, text, 0, at);
      if (found) cursor = at.back() + 1;
      for (const ScanMatch& m : place.matches) {
        const bool known = found && m.line >= 1 && m.line <= at.size();
        located.push_back({known ? at[m.line - 1] + 1 : 0, m.start, m.end});
      }
    }
    out.push_back(std::move(located));
  }
  return out;
}

std::vector<SearchHit> GroupMatches(const ComponentScan& scan, std::span<const FileLine> lines,
                                    std::vector<size_t>& placeLines) {
  const std::vector<std::vector<FilePlace>> places = MapToFile(lines, scan.places);
  std::vector<SearchHit> hits;
  placeLines.assign(scan.places.size(), 0);
  for (size_t p = 0; p < scan.places.size(); ++p) {
    const ScanPlace& place = scan.places[p];
    const std::string procedure = place.kind == "name" ? std::string() : place.name;
    if (!place.matches.empty()) placeLines[p] = places[p][0].line;
    for (size_t m = 0; m < place.matches.size(); ++m) {
      const FilePlace& at = places[p][m];
      const ScanMatch& match = place.matches[m];
      SearchHit* hit = hits.empty() ? nullptr : &hits.back();
      // A place not found in the file starts a hit at each line of its own text.
      if (hit == nullptr || hit->line != at.line || hit->procedure != procedure ||
          (at.line == 0 && (m == 0 || match.line != place.matches[m - 1].line))) {
        SearchHit fresh;
        fresh.collection = scan.collection;
        fresh.component = scan.component;
        fresh.procedure = procedure;
        fresh.control = place.control;
        fresh.property = place.property;
        fresh.line = at.line;
        fresh.resets = place.resets;
        fresh.place = place.id;
        if (at.line != 0) {
          fresh.text = lines[at.line - 1].text;
          fresh.lineEnd = lines[at.line - 1].end;
          fresh.offset = lines[at.line - 1].offset;
        } else if (const auto text = TextLines(place.text); match.line <= text.size()) {
          fresh.text = place.kind == "name" ? place.text : std::string(text[match.line - 1]);
        }
        hits.push_back(std::move(fresh));
        hit = &hits.back();
      }
      hit->submatches.push_back({at.start, at.end, match.text, match.replacement});
    }
  }
  return hits;
}

}  // namespace cli
