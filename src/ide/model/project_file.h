#pragma once
// The project file (.vbp) as lines. Every line is kept as read, so that a project that does not
// change is never rewritten and one that does changes only the line concerned. The component
// entries (`Module=`, `Class=`, `Form=`, `UserControl=`, `UserDocument=`, `PropertyPage=`,
// `Designer=`) are read in file order; everything else (`Reference=`, `Object=`, unknown keys,
// the sections of other tools) stays as it is.
//
// Each line is decoded with the project's code page before it is split at "=", ";" or "\": in
// Shift-JIS the second byte of some characters is 0x5C, the backslash.

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ide/model/component_file.h"
#include "ide/text/source_line.h"

namespace platform {
class CodePage;
}

namespace ide {

struct ProjectEntry {
  FileKind kind = FileKind::kModule;
  std::string name;      // the name part of "name; file"; "" when the line gives only a file
  std::string path;      // as written (decoded), blanks and quotes around it removed
  bool hasName = false;  // the line holds "name; file"
  std::size_t line = 0;
  std::size_t nameOffset = 0;  // where the name is (or goes) in the line's text
};

class ProjectFile {
 public:
  // Raises 321 "Invalid file format" for a binary file (not a project file).
  static std::unique_ptr<ProjectFile> Parse(std::string bytes, const platform::CodePage& codePage,
                                            std::string_view fileName);

  const std::vector<ProjectEntry>& Entries() const { return entries_; }
  // The value of `Name=` without its quotes; empty when absent.
  const std::string& Name() const { return name_; }
  const std::vector<SourceLine>& Lines() const { return lines_; }

  // The entry's component takes a new name. A Module= or Class= entry's line changes, and in it
  // only the name (the path keeps its spelling, blanks stay where they were); a line that gave
  // only the file gets a name part in front of it. The Startup= and IconForm= lines that named
  // the component by its old name (as VB compares names) name it by the new one.
  void RenameEntry(std::size_t entry, std::string_view oldName, std::string_view name);
  // Puts an entry back as it was when the file was last read or saved (its component's changes
  // were dropped); every entry, without one given (writing the file failed).
  void RestoreEntry(std::size_t entry);
  void RestoreEntries();

  bool IsDirty() const { return dirty_; }
  std::string Render() const;
  const std::string& DiskBytes() const { return disk_; }
  void MarkSaved(std::string written);

 private:
  ProjectFile() = default;

  const platform::CodePage* codePage_ = nullptr;
  std::string original_;                  // as read, without its byte-order mark
  std::unique_ptr<std::string> decoded_;  // its text, when not the bytes themselves (lines view it)
  std::string byteOrderMark_;             // the UTF-8 byte-order mark the file began with, if any
  std::string disk_;
  std::vector<SourceLine> lines_;
  std::vector<ProjectEntry> entries_;
  std::string name_;
  // The entries renamed since the file was last read or saved, as they were before, with their
  // lines.
  struct Before {
    ProjectEntry entry;
    SourceLine line;
    std::vector<std::pair<std::size_t, SourceLine>> naming;  // Startup=, IconForm= lines
  };
  // The Startup= and IconForm= lines that name the component of this name, each with where its
  // value starts.
  std::vector<std::pair<std::size_t, std::size_t>> LinesNaming(std::string_view name) const;
  std::map<std::size_t, Before> before_;
  LineEnd dominant_ = LineEnd::kCrLf;
  bool finalBreak_ = true;
  std::size_t tailOffset_ = 0;
  bool dirty_ = false;
};

}  // namespace ide
