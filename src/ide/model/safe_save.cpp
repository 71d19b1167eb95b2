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

// Whether the file still holds what was read; a file that has disappeared counts as unchanged
// (writing it anew loses nothing).
bool UnchangedOnDisk(std::string_view path, std::string_view asRead) {
  return !platform::FileExists(path) || platform::ReadFile(path) == asRead;
}

void RefuseChanged(std::string_view path, std::string_view asRead) {
  if (!UnchangedOnDisk(path, asRead)) {
    automation::Raise(
        automation::err::kPathFileAccess,
        std::string(path) + " changed on disk since it was loaded; it was not overwritten");
  }
}

}  // namespace

void SaveOver(std::string_view path, std::string_view asRead, std::string_view bytes) {
  RefuseReadOnly(path);
  // Refused early, before anything is written, when the change is already there.
  RefuseChanged(path, asRead);
  // The file already holds exactly these bytes (an unchanged component, or edits that came back
  // to the text as read): writing them again would only cost a flush to disk.
  if (bytes == asRead && platform::FileExists(path)) {
    platform::RemoveStaleTemporaries(path);  // what a killed save of it left
    return;
  }
  // Checked again once the new bytes are on disk, immediately before they replace the file and
  // under the lock that our other saves take, so that a change made while they were written is
  // not overwritten.
  platform::WriteFileAtomic(path, bytes, [&] { RefuseChanged(path, asRead); });
}

void CheckSaveOver(std::string_view path, std::string_view asRead) {
  RefuseReadOnly(path);
  RefuseChanged(path, asRead);
}

void SaveTo(std::string_view path, std::string_view bytes) {
  RefuseReadOnly(path);
  platform::WriteFileAtomic(path, bytes);
}

}  // namespace ide
