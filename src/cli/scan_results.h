#pragma once
// What the scanner found in a component, as the scan buffer hands it back (one document per
// component scanned), and where each match lies in the component's file.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct ScanError {
  int32_t number = 0;
  std::string description;
  std::string place;  // of a problem: the place it concerns ("Option1.Caption"), when known
};

struct ScanMatch {
  size_t line = 1;   // 1-based, within the place's text
  size_t start = 0;  // bytes within that line
  size_t end = 0;
  std::string text;
};

struct ScanPlace {
  std::string id;        // "Module1/procedure/Foo": the same in every scan of the component
  std::string kind;      // "procedure", "name", "property", "list", "controlName" or "html"
  std::string name;      // "<declarations>", "Foo", "Value.Get"; for a name, the component's name
  std::string control;   // a control's place: the control ("Option1(2)"), else ""
  std::string property;  // a property's place: the member ("Caption", "List", "Name", "HTML")
  std::string text;      // as read, lines joined by CR LF
  std::vector<ScanMatch> matches;
  std::optional<std::string> replacement;  // the whole new text
  bool written = false;
  std::string
      resets;  // what writing it dropped that its text does not show ("ItemData (3 values)")
  std::optional<ScanError> error;
};

struct ComponentScan {
  std::string project;
  std::string collection;
  std::string component;
  bool updatable = false;
  std::vector<ScanPlace> places;
  std::vector<ScanError> problems;
};

// The buffer's Results: a JSON array of component documents. Raises 5 naming what is wrong when
// the document is not one.
std::vector<ComponentScan> ParseScanResults(std::string_view json);

// One line of a component file, decoded to UTF-8.
struct FileLine {
  std::string text;   // without its line end
  std::string end;    // "\r\n", "\n", "\r" or "" (the last line without one)
  size_t offset = 0;  // where the line starts in the file's bytes
};

std::vector<FileLine> SplitFileLines(std::string_view bytes);

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
std::vector<std::vector<FilePlace>> MapToFile(const std::vector<FileLine>& lines,
                                              const std::vector<ScanPlace>& places);

// The text split into lines at CR LF, CR or LF.
std::vector<std::string_view> TextLines(std::string_view text);

}  // namespace cli
