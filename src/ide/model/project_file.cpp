#include "ide/model/project_file.h"

#include <array>
#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/text/source_text.h"
#include "platform/codepage.h"
#include "platform/text.h"

namespace ide {
namespace {

using automation::err::kInvalidFileFormat;

using automation::EqualsAsciiNoCase;
using platform::IsBlank;
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
  SourceText text = SplitText(file->original_, codePage);
  if (file->original_.find('\0') < text.tailOffset) {
    automation::RaiseMessage(kInvalidFileFormat, "Invalid file format: " + std::string(fileName) +
                                                     ": a project file holds no NUL bytes");
  }
  file->lines_ = std::move(text.lines);
  file->dominant_ = text.dominant;
  file->finalBreak_ = text.finalBreak;
  file->tailOffset_ = text.tailOffset;
  file->disk_ = file->original_;

  bool mainSection = true;
  for (std::size_t i = 0; i < file->lines_.size(); ++i) {
    std::string_view line = file->lines_[i].text;
    std::string_view trimmed = TrimBlanks(line);
    if (!trimmed.empty() && trimmed.front() == '[') {
      mainSection = false;  // a tool's section: its keys are that tool's business
      continue;
    }
    std::size_t eq = line.find('=');
    if (!mainSection || eq == std::string_view::npos) continue;
    std::string_view key = TrimBlanks(line.substr(0, eq));
    std::string_view value = line.substr(eq + 1);
    if (EqualsAsciiNoCase(key, "Name")) {
      file->name_ = Unquote(TrimBlanks(value));
      continue;
    }
    for (const EntryKey& known : kEntryKeys) {
      if (!EqualsAsciiNoCase(key, known.key)) continue;
      ProjectEntry entry;
      entry.kind = known.kind;
      entry.line = i;
      if (known.kind == FileKind::kModule || known.kind == FileKind::kClass) {
        std::size_t semi = value.find(';');
        std::string_view name = value.substr(0, semi);
        std::size_t lead = name.find_first_not_of(" \t");
        entry.nameOffset = eq + 1 + (lead == std::string_view::npos ? name.size() : lead);
        entry.name.assign(TrimBlanks(name));
        if (semi != std::string_view::npos) entry.path.assign(TrimBlanks(value.substr(semi + 1)));
      } else {
        entry.path.assign(TrimBlanks(value));
      }
      file->entries_.push_back(std::move(entry));
      break;
    }
  }
  return file;
}

void ProjectFile::RenameEntry(std::size_t index, std::string_view name) {
  ProjectEntry& entry = entries_.at(index);
  if (entry.kind != FileKind::kModule && entry.kind != FileKind::kClass) return;
  SourceLine& line = lines_[entry.line];
  line.text.replace(entry.nameOffset, entry.name.size(), name);
  line.original = false;
  entry.name.assign(name);
  dirty_ = true;
}

std::string ProjectFile::Render() const {
  if (!dirty_) return disk_;
  TextWriter writer(original_, *codePage_, dominant_);
  for (const SourceLine& line : lines_)
    writer.Add(line);
  return writer.Finish(finalBreak_, std::string_view(original_).substr(tailOffset_));
}

void ProjectFile::MarkSaved(std::string written) {
  disk_ = std::move(written);
  dirty_ = false;
}

}  // namespace ide
