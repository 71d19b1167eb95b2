#pragma once
// One reading of the lines of a VB project file (.vbp), shared by everything that reads one:
// the driver's check and listing and the IDE's project model. It says what a line's key and
// value are and how a component's "name; file" value splits, and it refuses a file that is not
// text; what each reader then does with a key is its own business.
//
// - A UTF-8 byte-order mark at the start of the file is not part of the first line.
// - A file with NUL bytes before its trailing padding (runs of NUL, Ctrl-Z and line ends that
//   old tools leave) is binary, not a project file: 321 "Invalid file format".
// - The key is the text before the first "=", the value the text after it, both without the
//   blanks (spaces and tabs) around them. A line without "=" has no key.
// - A component value "name; file" names its component; a value without ";" is only a file.
//   The file loses the blanks around it and, when it begins with a double quote, its first and
//   last character (the quotes VB writes around paths with blanks).

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

class CodePage;

// The length of a UTF-8 byte-order mark at the start of the bytes: 3, or 0 when there is none.
std::size_t ByteOrderMarkLength(std::string_view bytes);

// Whether the bytes hold a NUL byte before their trailing padding.
bool HoldsBinaryData(std::string_view bytes);

// Raises 321 "Invalid file format" naming the file when the bytes are binary.
void RequireProjectText(std::string_view bytes, std::string_view fileName);

struct ProjectLine {
  bool hasKey = false;          // the line holds "="
  std::string_view key;         // blanks around it removed
  std::string_view value;       // blanks around it removed
  std::size_t valueOffset = 0;  // where the value begins in the line
};

ProjectLine SplitProjectLine(std::string_view line);

struct ComponentValue {
  bool hasName = false;        // the value holds ";"
  std::string_view name;       // blanks around it removed; empty without ";"
  std::size_t nameOffset = 0;  // where the name (or, without one, the file) begins in the value
  std::string_view file;       // blanks and quotes around it removed
};

ComponentValue SplitComponentValue(std::string_view value);

// Reads a project file's lines in order, each decoded with the code page and numbered from 1.
// Raises as RequireProjectText does for a binary file.
class ProjectLineReader {
 public:
  ProjectLineReader(std::string_view bytes, const CodePage& codePage, std::string_view fileName);

  // Moves to the next line; false at the end of the file.
  bool Next();

  int32_t Number() const { return number_; }
  // The line as read (decoded), without its line end.
  const std::string& Text() const { return text_; }
  const ProjectLine& Line() const { return line_; }

 private:
  std::string_view rest_;
  const CodePage& codePage_;
  int32_t number_ = 0;
  std::string text_;
  ProjectLine line_;
};

// A project of a project group (.vbg), as its "StartupProject=" or "Project=" line names it: the
// path as written (relative to the group's folder unless absolute) and the line's number. VB
// opens a group's projects in the order of these lines; the other lines ("VBGROUP 5.0") say
// nothing about which projects the group holds.
struct GroupMember {
  std::string file;
  int32_t line = 0;
  bool startup = false;
};

// Whether the path names a project group (a .vbg file, in any letter case).
bool IsGroupFile(std::string_view path);

// The projects of a group file's bytes, in order. Raises as RequireProjectText does for a
// binary file.
std::vector<GroupMember> ReadGroupMembers(std::string_view bytes, const CodePage& codePage,
                                          std::string_view fileName);

// The name a component file gives itself in its "Attribute VB_Name" line, as VB reads it: the
// first line whose text before "=" is that key (spaces around both sides ignored, key in any
// letter case), its value without one pair of surrounding quotes; empty when the file has no
// such line. Nothing when the file cannot be read.
std::optional<std::string> ComponentNameFromFile(std::string_view file);

}  // namespace platform
