#include "ide/model/component_file.h"

#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/text/attribute_line.h"
#include "ide/text/source_text.h"
#include "platform/byte_order.h"
#include "platform/codepage.h"
#include "platform/text.h"

namespace ide {
namespace {

// VB's run-time error for a file whose contents are not what its kind requires.
using automation::err::kInvalidFileFormat;

[[noreturn]] void Invalid(std::string_view fileName, std::string_view problem) {
  std::string text = "Invalid file format: ";
  text += fileName;
  text += ": ";
  text += problem;
  automation::RaiseMessage(kInvalidFileFormat, std::move(text));
}

using automation::EqualsAsciiNoCase;
using platform::IsBlank;
using platform::TrimBlanks;

// The first word of a line (after blanks), up to a blank or "=".
std::string_view FirstWord(std::string_view line) {
  line = TrimBlanks(line);
  std::size_t end = 0;
  while (end < line.size() && !IsBlank(line[end]) && line[end] != '=')
    ++end;
  return line.substr(0, end);
}

bool IsFormLike(FileKind kind) {
  return kind != FileKind::kModule && kind != FileKind::kClass;
}

// The quoted value of `Attribute VB_Name = "X"`; npos positions when the line is not one.
bool NameAttribute(std::string_view line, std::size_t& open, std::size_t& close) {
  const auto attribute = ParseAttributeLine(line);
  if (!attribute || !EqualsAsciiNoCase(attribute->name, "VB_Name")) return false;
  open = line.find('"', attribute->valueStart);
  if (open == std::string_view::npos) return false;
  close = line.find('"', open + 1);
  if (close == std::string_view::npos) close = line.size();
  return true;
}

}  // namespace

ComponentFile::~ComponentFile() = default;

std::unique_ptr<ComponentFile> ComponentFile::Parse(std::string bytes, FileKind kind,
                                                    const platform::CodePage& codePage,
                                                    std::string_view fileName) {
  std::unique_ptr<ComponentFile> file(new ComponentFile());
  file->kind_ = kind;
  file->codePage_ = &codePage;
  file->original_ = std::move(bytes);
  file->code_ = std::make_unique<CodeModule>();
  const platform::Utf16 utf16 = platform::DetectUtf16(file->original_);
  if (utf16 != platform::Utf16::kNo) {
    Invalid(fileName, "it is " + std::string(platform::Utf16Name(utf16)) +
                          " text; VB reads source files in the ANSI code page (save it as ANSI)");
  }
  // A UTF-8 byte-order mark (editors add one) is read past and written back; the text after it
  // is UTF-8, whatever the project's code page.
  file->bomLength_ = platform::Utf8BomLength(file->original_);
  if (file->bomLength_ != 0) file->codePage_ = &platform::GetCodePage(65001);
  const std::string_view body = file->Body();
  SourceText text = SplitText(body, *file->codePage_);
  if (body.find('\0') < text.tailOffset) {
    Invalid(fileName, "it holds binary data (NUL bytes), not VB source text");
  }
  file->decoded_ = std::move(text.decoded);
  file->dominant_ = text.dominant;
  file->finalBreak_ = text.finalBreak;
  file->tailOffset_ = text.tailOffset;
  file->ParseHeader(text.lines, fileName);
  return file;
}

void ComponentFile::ParseHeader(std::vector<SourceLine>& lines, std::string_view fileName) {
  const std::size_t n = lines.size();
  std::size_t i = 0;
  auto startsWith = [&](std::size_t at, std::string_view word) {
    return at < n && EqualsAsciiNoCase(FirstWord(lines[at].Text()), word);
  };

  if (IsFormLike(kind_)) {
    if (!startsWith(0, "VERSION")) {
      Invalid(fileName, n == 0 ? "the file is empty" : "it does not start with a VERSION line");
    }
    i = 1;
    while (i < n && (startsWith(i, "Object") || TrimBlanks(lines[i].Text()).empty()))
      ++i;
    if (!startsWith(i, "Begin"))
      Invalid(fileName, "the form description (Begin ... End) is missing");
    description_ = form::Description::Parse(lines, 0, i, fileName);
    i = description_->Next();
  } else if (kind_ == FileKind::kClass && startsWith(0, "VERSION")) {
    i = 1;
    if (i < n && EqualsAsciiNoCase(TrimBlanks(lines[i].Text()), "BEGIN")) {
      while (i < n && !EqualsAsciiNoCase(TrimBlanks(lines[i].Text()), "END"))
        ++i;
      if (i == n) Invalid(fileName, "the class header BEGIN has no END (the file is cut short)");
      ++i;
    }
  }

  attributesStart_ = static_cast<int32_t>(i);
  while (i < n && ParseAttributeLine(lines[i].Text())) {
    std::size_t open = 0;
    std::size_t close = 0;
    if (nameLine_ < 0 && NameAttribute(lines[i].Text(), open, close)) {
      nameLine_ = static_cast<int32_t>(i);
      name_ = lines[i].Text().substr(open + 1, close - open - 1);
    }
    ++i;
  }
  // The description took its lines; the header holds the rest of the hidden part.
  const std::size_t headerStart = description_ ? description_->Next() : 0;
  attributesStart_ -= static_cast<int32_t>(headerStart);
  if (nameLine_ >= 0) nameLine_ -= static_cast<int32_t>(headerStart);
  header_.reserve(i - headerStart);
  for (std::size_t k = headerStart; k < i; ++k)
    header_.push_back(std::move(lines[k]));
  code_->ReserveLines(n - i);
  for (std::size_t k = i; k < n; ++k) {
    if (ParseAttributeLine(lines[k].Text()) && code_->AppendHiddenLine(lines[k])) continue;
    code_->AppendLoadedLine(std::move(lines[k]));
  }
}

ComponentType ComponentFile::Type() const {
  if (kind_ == FileKind::kForm && description_ &&
      EqualsAsciiNoCase(description_->Root().Type(), "VB.MDIForm")) {
    return ComponentType::kVBMDIForm;
  }
  return TypeOf(kind_);
}

ComponentType ComponentFile::TypeOf(FileKind kind) {
  switch (kind) {
    case FileKind::kModule:
      return ComponentType::kStdModule;
    case FileKind::kClass:
      return ComponentType::kClassModule;
    case FileKind::kForm:
      return ComponentType::kVBForm;
    case FileKind::kUserControl:
      return ComponentType::kUserControl;
    case FileKind::kPropertyPage:
      return ComponentType::kPropPage;
    case FileKind::kUserDocument:
      return ComponentType::kDocObject;
    case FileKind::kDesigner:
      return ComponentType::kActiveXDesigner;
  }
  return ComponentType::kStdModule;
}

std::string ComponentFile::DesignerClsid() const {
  if (kind_ != FileKind::kDesigner || !description_) return {};
  const std::string& type = description_->Root().Type();
  return !type.empty() && type.front() == '{' ? type : std::string{};
}

void ComponentFile::SetName(std::string_view name) {
  if (nameLine_ >= 0) {
    SourceLine& line = header_[nameLine_];
    std::size_t open = 0;
    std::size_t close = 0;
    const std::string_view text = line.Text();
    NameAttribute(text, open, close);
    std::string renamed(text.substr(0, open + 1));
    renamed.append(name).append("\"");
    if (close < text.size()) renamed.append(text.substr(close + 1));
    line.SetText(renamed);
  } else {
    // A file without the attribute gets one where VB6 writes it: first of the module's
    // attributes.
    SourceLine line = SourceLine::New("Attribute VB_Name = \"" + std::string(name) + "\"");
    header_.insert(header_.begin() + attributesStart_, std::move(line));
    nameLine_ = attributesStart_;
  }
  // VB6 writes the new name on the root object's `Begin` line too.
  if (description_) description_->Root().Rename(name);
  name_.assign(name);
  headerDirty_ = true;
}

std::string ComponentFile::Render() const {
  if (!IsDirty()) return DiskBytes();
  const std::string_view body = Body();
  TextWriter writer(body, *codePage_, dominant_);
  if (description_) {
    for (const SourceLine* line : description_->Lines())
      writer.Add(*line);
  }
  for (const SourceLine& line : header_)
    writer.Add(line);
  for (const CodeLine& code : code_->RawLines()) {
    writer.Add(code.line);
    if (code.hidden) {
      for (const SourceLine& hidden : *code.hidden)
        writer.Add(hidden);
    }
  }
  return original_.substr(0, bomLength_) + writer.Finish(finalBreak_, body.substr(tailOffset_));
}

void ComponentFile::MarkSaved(std::string written) {
  if (written == DiskBytes()) {
    // Nothing to remember beyond the bytes already held.
  } else {
    saved_ = std::move(written);
    savedIsOriginal_ = false;
  }
  headerDirty_ = false;
  if (description_) description_->ClearDirty();
  code_->ClearDirty();
}

std::string_view CompanionExtension(FileKind kind) {
  switch (kind) {
    case FileKind::kForm:
      return ".frx";
    case FileKind::kUserControl:
      return ".ctx";
    case FileKind::kPropertyPage:
      return ".pgx";
    case FileKind::kUserDocument:
      return ".dox";
    case FileKind::kDesigner:
      return ".dsx";
    case FileKind::kModule:
    case FileKind::kClass:
      break;
  }
  return {};
}

std::string CompanionFileName(std::string_view componentFileName, FileKind kind) {
  const std::string_view extension = CompanionExtension(kind);
  if (extension.empty()) return {};
  const std::size_t slash = componentFileName.find_last_of("\\/");
  std::string_view name =
      slash == std::string_view::npos ? componentFileName : componentFileName.substr(slash + 1);
  const std::size_t dot = name.rfind('.');
  if (dot != std::string_view::npos) name = name.substr(0, dot);
  std::string result(name);
  result += extension;
  return result;
}

}  // namespace ide
