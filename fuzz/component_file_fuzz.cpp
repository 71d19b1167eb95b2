// The component-file reader: any bytes, read as any kind of component, either read or raise a
// VB error; a file read gives back its bytes exactly, unchanged and after an edit and its undo
// (which makes it go through the line writer). Edits of a form description give a file that
// reads again with the edits in it.

#include <cstddef>
#include <cstdint>
#include <string>

#include "automation/error.h"
#include "fuzz_support.h"
#include "ide/form/description.h"
#include "ide/form/property_line.h"
#include "ide/model/component_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto kind = static_cast<ide::FileKind>((data[0] & 0x7f) % 7);
  const platform::CodePage& codePage = qxfuzz::CodePageFor(data[0]);
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::unique_ptr<ide::ComponentFile> file;
  try {
    file = ide::ComponentFile::Parse(bytes, kind, codePage, "fuzz");
  } catch (const automation::Error&) {
    return 0;
  }
  QX_FUZZ_CHECK(file->Render() == bytes);
  (void)file->Type();
  (void)file->DesignerClsid();
  ide::CodeModule& code = file->Code();
  const int32_t lines = code.CountOfLines();
  code.InsertLines(1, "' fuzz");
  code.DeleteLines(1);
  QX_FUZZ_CHECK(code.CountOfLines() == lines);
  QX_FUZZ_CHECK(file->Render() == bytes);
  try {
    file->SetName("Renamed");
  } catch (const automation::Error&) {
    return 0;
  }
  QX_FUZZ_CHECK(file->Name() == "Renamed");
  (void)file->Render();

  if (ide::form::Description* description = file->Description()) {
    ide::form::DescriptionNode& root = description->Root();
    root.SetProperty("Caption", ide::form::FormatString("fuzz \"caption\""));
    root.SetFont({});
    for (ide::form::DescriptionNode* control : description->Controls()) {
      control->SetIndex(control->Index() + 1);
      control->RemoveProperty("Tag");
    }
    uint32_t offset = 0;
    for (const auto& use : description->CompanionReferences())
      description->SetReferenceOffset(*use.property, offset += 0x10);
    const std::string edited = file->Render();
    std::unique_ptr<ide::ComponentFile> again;
    try {
      again = ide::ComponentFile::Parse(edited, kind, codePage, "fuzz");
    } catch (const automation::Error&) {
      QX_FUZZ_CHECK(false);  // edits must keep the description well formed
    }
    QX_FUZZ_CHECK(again->Render() == edited);
    const auto* caption = again->Description()->Root().FindProperty("Caption");
    QX_FUZZ_CHECK(caption && caption->Value() == "\"fuzz \"\"caption\"\"\"");
  }
  return 0;
}
