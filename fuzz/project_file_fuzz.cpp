// The project-file reader: any bytes either read or raise a VB error, and a file read and
// rendered without changes, or with a component renamed, keeps every other byte.

#include <cstddef>
#include <cstdint>
#include <string>

#include "automation/error.h"
#include "fuzz_support.h"
#include "ide/model/project_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const platform::CodePage& codePage = qxfuzz::CodePageFor(data[0]);
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::unique_ptr<ide::ProjectFile> file;
  try {
    file = ide::ProjectFile::Parse(bytes, codePage, "fuzz.vbp");
  } catch (const automation::Error&) {
    return 0;
  }
  QX_FUZZ_CHECK(file->Render() == bytes);
  for (std::size_t i = 0; i < file->Entries().size(); ++i) {
    if (file->Entries()[i].kind != ide::FileKind::kModule &&
        file->Entries()[i].kind != ide::FileKind::kClass) {
      continue;
    }
    try {
      file->RenameEntry(i, std::string(file->Entries()[i].name), "Renamed");
    } catch (const automation::Error&) {
      return 0;
    }
    const std::string renamed = file->Render();
    QX_FUZZ_CHECK(renamed.find("Renamed") != std::string::npos);
    break;
  }
  return 0;
}
