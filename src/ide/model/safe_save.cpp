#include "ide/model/safe_save.h"

#include "automation/error.h"
#include "platform/files.h"

namespace ide {
namespace {

void RefuseReadOnly(std::string_view path) {
  if (platform::FileExists(path) && (platform::GetAttr(path) & platform::kAttrReadOnly) != 0) {
    automation::Raise(automation::err::kPathFileAccess,
                      std::string(path) + " is read-only; it was not saved");
  }
}

}  // namespace

void SaveOver(std::string_view path, std::string_view asRead, std::string_view bytes) {
  RefuseReadOnly(path);
  if (platform::FileExists(path)) {
    if (platform::ReadFile(path) != asRead) {
      automation::Raise(
          automation::err::kPathFileAccess,
          std::string(path) + " changed on disk since it was loaded; it was not overwritten");
    }
    // The file already holds exactly these bytes (an unchanged component, or edits that came
    // back to the text as read): writing them again would only cost a flush to disk.
    if (bytes == asRead) return;
  }
  platform::WriteFileAtomic(path, bytes);
}

void SaveTo(std::string_view path, std::string_view bytes) {
  RefuseReadOnly(path);
  platform::WriteFileAtomic(path, bytes);
}

}  // namespace ide
