#pragma once
// A component's source file (.bas, .cls, .frm, .ctl, .pag, .dob, .dsr) as VB6 reads it: the
// hidden part at the top (the VERSION line, `Object = ` lines, the form description
// `Begin ... End` block, the class header `BEGIN ... END`, the module's `Attribute` lines) and
// the code after it, which becomes the CodeModule. Member `Attribute X.VB_...` lines among the
// code are hidden too and stay with the line they follow.
//
// The file keeps its bytes: saving an unchanged file gives them back exactly; saving a changed
// one writes the unchanged lines as they were read and encodes only the new or edited ones.
// The form description is a tree of its own (ide/form/description.h); binary companions (.frx
// and the like) are not part of this model.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ide/code/code_module.h"
#include "ide/form/description.h"
#include "ide/text/source_line.h"

namespace platform {
class CodePage;
}

namespace ide {

// The project-file key that named the component, which decides how its file is read.
enum class FileKind : uint8_t {
  kModule,        // Module=
  kClass,         // Class=
  kForm,          // Form= (forms and MDI forms)
  kUserControl,   // UserControl=
  kPropertyPage,  // PropertyPage=
  kUserDocument,  // UserDocument=
  kDesigner,      // Designer=
};

// VBComponent.Type.
enum class ComponentType : int32_t {
  kStdModule = 1,
  kClassModule = 2,
  kVBForm = 5,
  kVBMDIForm = 6,
  kPropPage = 7,
  kUserControl = 8,
  kDocObject = 9,
  kActiveXDesigner = 11,
};

class ComponentFile {
 public:
  // Reads the bytes of a component file. A file that is not a VB component of that kind (a
  // database table with the .frm extension, binary data, UTF-16 text, a header cut short)
  // raises 321 "Invalid file format" naming the file and what is wrong. A UTF-8 byte-order
  // mark is read past (the text is then UTF-8) and kept when saving.
  static std::unique_ptr<ComponentFile> Parse(std::string bytes, FileKind kind,
                                              const platform::CodePage& codePage,
                                              std::string_view fileName);
  ~ComponentFile();

  FileKind Kind() const { return kind_; }
  ComponentType Type() const;
  // The type a file of that kind has, a form being a plain form (only its file tells an MDI
  // form).
  static ComponentType TypeOf(FileKind kind);
  // The name in `Attribute VB_Name = "..."`; empty when the file has none.
  const std::string& Name() const { return name_; }
  // Renames: the VB_Name attribute and, for files with a form description, the root object's
  // `Begin` line (VB6 writes the new name in both).
  void SetName(std::string_view name);
  // `Begin {CLSID} Name` of a designer: the CLSID with its braces; empty for other files.
  std::string DesignerClsid() const;

  CodeModule& Code() { return *code_; }
  const CodeModule& Code() const { return *code_; }

  // The hidden lines that are not the form description: a class's header and the module's
  // `Attribute` lines.
  const std::vector<SourceLine>& HeaderLines() const { return header_; }
  // The form description (VERSION, `Object =` lines, the `Begin ... End` tree) of a form-like
  // file; null for modules and classes. Its edits are saved with the file.
  form::Description* Description() { return description_.get(); }
  const form::Description* Description() const { return description_.get(); }

  bool IsDirty() const {
    return headerDirty_ || code_->IsDirty() || (description_ && description_->IsDirty());
  }

  // The bytes to save: the bytes last read or saved when nothing changed.
  std::string Render() const;
  // The bytes as last read or saved, for telling whether the file changed on disk since.
  const std::string& DiskBytes() const { return savedIsOriginal_ ? original_ : saved_; }
  // After a successful save: the written bytes are what the disk holds now.
  void MarkSaved(std::string written);

 private:
  ComponentFile() = default;
  void ParseHeader(std::vector<SourceLine>& lines, std::string_view fileName);

  FileKind kind_ = FileKind::kModule;
  const platform::CodePage* codePage_ = nullptr;
  // The bytes as read after their byte-order mark, if any; unchanged lines point into them.
  std::string_view Body() const { return std::string_view(original_).substr(bomLength_); }

  std::string original_;  // the bytes as read
  // Their text decoded, when it is not the bytes themselves; lines read view one or the other.
  std::unique_ptr<std::string> decoded_;
  std::size_t bomLength_ = 0;  // the UTF-8 byte-order mark at their start, kept when saving
  std::string saved_;          // the bytes last saved, once they differ from the bytes read
  bool savedIsOriginal_ = true;
  std::vector<SourceLine> header_;
  std::unique_ptr<form::Description> description_;
  std::unique_ptr<CodeModule> code_;
  std::string name_;
  int32_t nameLine_ = -1;        // header index of the VB_Name line
  int32_t attributesStart_ = 0;  // header index where the module's Attribute lines begin
  LineEnd dominant_ = LineEnd::kCrLf;
  bool finalBreak_ = true;
  std::size_t tailOffset_ = 0;
  bool headerDirty_ = false;
};

// The extension of the companion of a component file of this kind: ".frx" for forms, ".ctx",
// ".pgx", ".dox", ".dsx"; empty for modules and classes, which have none.
std::string_view CompanionExtension(FileKind kind);

// The companion's bare name, as references write it, for a component file: the component's
// file name (a folder before it, with either slash, is dropped) with the extension of its kind
// in place of its own, "Form1.frm" giving "Form1.frx". Empty for modules and classes.
std::string CompanionFileName(std::string_view componentFileName, FileKind kind);

}  // namespace ide
