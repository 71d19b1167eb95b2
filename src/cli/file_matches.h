#pragma once
// A component's scan shown in its file: each match placed at its line and column in the file's
// own lines, and the matches grouped into hits, one per line, as a search prints them.

#include <cstddef>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/results.h"
#include "cli/scan_results.h"

namespace cli {

// One line of a component file, decoded to UTF-8.
struct FileLine {
  std::string_view text;  // without its line end
  std::string_view end;   // "\r\n", "\n", "\r" or "" (the last line without one)
  size_t offset = 0;      // where the line starts in the file's bytes
};

// A file's lines. A line of plain ASCII reads the same in every code page: it is a view of the
// file's own bytes, which must outlive the lines; only a line with other bytes is decoded, and
// kept here.
class FileLines {
 public:
  explicit FileLines(std::string_view bytes);
  FileLines(const FileLines&) = delete;
  FileLines& operator=(const FileLines&) = delete;

  std::span<const FileLine> all() const { return lines_; }

 private:
  std::vector<FileLine> lines_;
  std::deque<std::string> decoded_;  // a deque: what it holds stays where it is as it grows
};

// A match's place in the file: the 1-based line (0 when the place's text was not found in the
// file) and the bytes of the match within that line's UTF-8 text.
struct FilePlace {
  size_t line = 0;
  size_t start = 0;
  size_t end = 0;
};

// Finds each place's text among the file's lines and gives every match of the place its line
// in the file, in the order of the place's matches. Places come in file order; hidden member
// "Attribute" lines between a procedure's lines are skipped. A name's matches lie in the file's
// "Attribute VB_Name" line. A property's matches lie in the line that sets it in the object's
// block of the form description ("Caption = ..."; for a value kept in the binary companion, the
// line that refers to it); a property left at its default has no line of its own, and its
// matches are given the object's Begin line.
std::vector<std::vector<FilePlace>> MapToFile(std::span<const FileLine> lines,
                                              const std::vector<ScanPlace>& places);

// The text split into lines at CR LF, CR or LF.
std::vector<std::string_view> TextLines(std::string_view text);

// The scan's matches as hits in the file whose bytes are given: one hit per line of the file
// with all its matches, or, for a place that the file does not hold as text (a name, a property
// left at its default), one per line of the place's text. `placeLines` gets, for each place, the
// file line of its first match (0 when none or not found).
std::vector<SearchHit> GroupMatches(const ComponentScan& scan, std::span<const FileLine> lines,
                                    std::vector<size_t>& placeLines);

}  // namespace cli
