#include "ide/model/project_file.h"

#include <array>
#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/text/source_text.h"
#include "platform/codepage.h"
#include "platform/project_lines.h"
#include "platform/text.h"

namespace ide {
namespace {

using automation::EqualsAsciiNoCase;
using platform::TrimBlanks;

struct EntryKey {
  std::string_view key;
  FileKind kind;
};

constexpr std::array<EntryKey, 7> kEntryKeys{{
    {"Module", FileKind::kModule},
    {"Class", FileKind::kClass},
    {"Form", FileKind::kForm},
    {"UserControl", FileKind::kUserControl},
    {"UserDocument", FileKind::kUserDocument},
    {"PropertyPage", FileKind::kPropertyPage},
    {"Designer", FileKind::kDesigner},
}};

// A quoted value without its quotes ("" inside stands for one quote); other values as they are.
std::string Unquote(std::string_view value) {
  if (value.size() < 2 || value.front() != '"' || value.back() != '"') return std::string(value);
  std::string out;
  value = value.substr(1, value.size() - 2);
  for (std::size_t i = 0; i < value.size(); ++i) {
    out.push_back(value[i]);
    if (value[i] == '"' && i + 1 < value.size() && value[i + 1] == '"') ++i;
  }
  return out;
}

}  // namespace

std::unique_ptr<ProjectFile> ProjectFile::Parse(std::string bytes,
                                                const platform::CodePage& codePage,
                                                std::string_view fileName) {
  std::unique_ptr<ProjectFile> file(new ProjectFile());
  file->codePage_ = &codePage;
  file->original_ = std::move(bytes);
  // A byte-order mark is kept apart from the first line and written back in front of it.
  platform::RequireProjectText(file->original_, fileName);
  file->byteOrderMark_ = file->original_.substr(0, platform::ByteOrderMarkLength(file->original_));
  file->disk_ = file->original_;
  file->original_.erase(0, file->byteOrderMark_.size());
  SourceText text = SplitText(file->original_, codePage);
  file->lines_ = std::move(text.lines);
  file->decoded_ = std::move(text.decoded);
  file->dominant_ = text.dominant;
  file->finalBreak_ = text.finalBreak;
  file->tailOffset_ = text.tailOffset;

  bool mainSection = true;
  for (std::size_t i = 0; i < file->lines_.size(); ++i) {
    const std::string_view lineText = file->lines_[i].Text();
    const std::string_view trimmed = TrimBlanks(lineText);
    if (!trimmed.empty() && trimmed.front() == '[') {
      mainSection = false;  // a tool's section: its keys are that tool's business
      continue;
    }
    const platform::ProjectLine line = platform::SplitProjectLine(lineText);
    if (!mainSection || !line.hasKey) continue;
    if (EqualsAsciiNoCase(line.key, "Name")) {
      file->name_ = Unquote(line.value);
      continue;
    }
    for (const EntryKey& known : kEntryKeys) {
      if (!EqualsAsciiNoCase(line.key, known.key)) continue;
      const platform::ComponentValue value = platform::SplitComponentValue(line.value);
      ProjectEntry entry;
      entry.kind = known.kind;
      entry.line = i;
      entry.hasName = value.hasName;
      entry.name.assign(value.name);
      entry.nameOffset = line.valueOffset + value.nameOffset;
      entry.path.assign(value.file);
      file->entries_.push_back(std::move(entry));
      break;
    }
  }
  return file;
}

std::vector<std::pair<std::size_t, std::size_t>> ProjectFile::LinesNaming(
    std::string_view name) const {
  std::vector<std::pair<std::size_t, std::size_t>> found;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const std::string_view text = lines_[i].Text();
    const std::string_view trimmed = TrimBlanks(text);
    if (!trimmed.empty() && trimmed.front() == '[') break;  // a tool's section
    const platform::ProjectLine line = platform::SplitProjectLine(text);
    if (line.hasKey &&
        (EqualsAsciiNoCase(line.key, "Startup") || EqualsAsciiNoCase(line.key, "IconForm")) &&
        automation::SameVbName(Unquote(line.value), name)) {
      found.emplace_back(i, line.valueOffset);
    }
  }
  return found;
}

void ProjectFile::RenameEntry(std::size_t index, std::string_view oldName, std::string_view name) {
  ProjectEntry& entry = entries_.at(index);
  const std::vector<std::pair<std::size_t, std::size_t>> naming = LinesNaming(oldName);
  const bool named = entry.kind == FileKind::kModule || entry.kind == FileKind::kClass;
  if (!named && naming.empty()) return;
  Before& before = before_.try_emplace(index, Before{entry, lines_[entry.line], {}}).first->second;
  dirty_ = true;
  for (const auto& [i, start] : naming) {
    before.naming.emplace_back(i, lines_[i]);
    lines_[i].SetText(std::string(lines_[i].Text().substr(0, start)) + "\"" + std::string(name) +
                      "\"");
  }
  if (!named) return;
  SourceLine& line = lines_[entry.line];
  std::string text(line.Text());
  if (entry.hasName) {
    text.replace(entry.nameOffset, entry.name.size(), name);
  } else {
    // A line that gave only the file gets the name part VB writes: "name; file".
    text.insert(entry.nameOffset, std::string(name) + "; ");
    entry.hasName = true;
  }
  line.SetText(text);
  entry.name.assign(name);
  dirty_ = true;
}

std::string ProjectFile::Render() const {
  if (!dirty_) return disk_;
  TextWriter writer(original_, *codePage_, dominant_);
  for (const SourceLine& line : lines_)
    writer.Add(line);
  return byteOrderMark_ +
         writer.Finish(finalBreak_, std::string_view(original_).substr(tailOffset_));
}

void ProjectFile::RestoreEntry(std::size_t index) {
  const auto it = before_.find(index);
  if (it == before_.end()) return;
  entries_[index] = std::move(it->second.entry);
  lines_[entries_[index].line] = std::move(it->second.line);
  for (auto& [line, was] : it->second.naming)
    lines_[line] = std::move(was);
  before_.erase(it);
  dirty_ = !before_.empty();
}

void ProjectFile::RestoreEntries() {
  while (!before_.empty())
    RestoreEntry(before_.begin()->first);
}

void ProjectFile::MarkSaved(std::string written) {
  disk_ = std::move(written);
  before_.clear();
  dirty_ = false;
}

}  // namespace ide
