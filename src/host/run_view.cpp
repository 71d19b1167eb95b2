#include "host/run_view.h"

#include <filesystem>

#include "automation/casefold.h"
#include "platform/paths.h"
#include "platform/registry_file.h"

namespace host {

RunView& RunView::Current() {
  static RunView view;
  return view;
}

std::string RunView::KeyOf(std::string_view keyPath) {
  return automation::FoldCaseUnicode(platform::NormalizeKeyPath(keyPath));
}

std::string RunView::FileOf(std::string_view path) {
  // Folders that exist are found whatever their letter case; the part that does not exist is
  // compared without regard to case, as Windows compares it.
  const std::filesystem::path native =
      std::filesystem::absolute(platform::ToNative(path)).lexically_normal();
  return automation::FoldCaseUnicode(native.string());
}

void RunView::AddKey(std::string_view keyPath) {
  const std::string key = KeyOf(keyPath);
  if (!key.empty()) keys_.insert(key);
}

void RunView::AddFile(std::string_view path) {
  if (!path.empty()) files_.insert(FileOf(path));
}

void RunView::Clear() {
  keys_.clear();
  files_.clear();
}

bool RunView::HasKey(std::string_view keyPath) const {
  return !keys_.empty() && keys_.contains(KeyOf(keyPath));
}

bool RunView::HasFile(std::string_view path) const {
  return !files_.empty() && !path.empty() && files_.contains(FileOf(path));
}

}  // namespace host
