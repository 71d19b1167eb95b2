#include "ide/model/project.h"

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "automation/casefold.h"
#include "ide/form/companion.h"
#include "ide/model/designer_id.h"
#include "ide/model/designer_page.h"
#include "ide/model/safe_save.h"
#include "platform/codepage.h"
#include "platform/codepage_detect.h"
#include "platform/files.h"
#include "platform/home.h"
#include "platform/paths.h"
#include "platform/private_folders.h"

namespace ide {
namespace {

namespace fs = std::filesystem;
namespace err = automation::err;

bool IsAbsoluteWindowsPath(std::string_view path) {
  if (!path.empty() && (path.front() == '\\' || path.front() == '/')) return true;
  return path.size() >= 2 && path[1] == ':' &&
         ((path[0] >= 'a' && path[0] <= 'z') || (path[0] >= 'A' && path[0] <= 'Z'));
}

// VB's rule for component names: a letter first, then letters, digits and underscores, at most
// 40 characters. Characters of other scripts count as letters (Chinese and Cyrillic names occur).
bool IsValidName(std::string_view name) {
  if (name.empty()) return false;
  auto first = static_cast<unsigned char>(name.front());
  bool letter = (first >= 'a' && first <= 'z') || (first >= 'A' && first <= 'Z') || first >= 0x80;
  if (!letter) return false;
  std::size_t characters = 0;
  for (char c : name) {
    auto u = static_cast<unsigned char>(c);
    if ((u & 0xC0) != 0x80) ++characters;  // count code points, not bytes
    bool ok = (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') ||
              u == '_' || u >= 0x80;
    if (!ok) return false;
  }
  return characters <= 40;
}

}  // namespace

std::string ResolvePath(std::string_view folder, std::string_view path) {
  std::string joined = IsAbsoluteWindowsPath(path) ? std::string(path)
                                                   : std::string(folder) + "/" + std::string(path);
  return platform::ToNative(joined).string();
}

namespace {
std::uint64_t servedCall = 0;  // 0: not serving a call
}  // namespace

void BeginServedCall() {
  ++servedCall;
}

Component::Component(Project& project, std::size_t entry, std::string fileName)
    : project_(project), entry_(entry), fileName_(std::move(fileName)) {}

Component::~Component() = default;

FileKind Component::Kind() const {
  return project_.file_->Entries()[entry_].kind;
}

ComponentFile& Component::File() {
  if (file_ || loadError_) {
    // The IDE never answers from a stale file: one changed on disk since it was read (or since
    // reading it failed) is read again, unless the IDE holds changes of its own for it.
    const bool looked = servedCall != 0 && lookedInCall_ == servedCall;
    if (looked || IsDirty() || UnchangedOnDisk()) {
      lookedInCall_ = servedCall;
      if (file_) return *file_;
      throw *loadError_;
    }
    file_.reset();
    companion_.reset();
    loadError_.reset();
  }
  lookedInCall_ = servedCall;
  try {
    NoteStamp();
    std::string bytes = platform::ReadFile(fileName_);
    file_ = ComponentFile::Parse(std::move(bytes), Kind(), *project_.codePage_, fileName_);
    ++reads_;
    if (file_->Description() != nullptr) {
      const std::string bareName = CompanionFileName(fileName_, Kind());
      const std::string path =
          platform::ToNative((fs::path(fileName_).parent_path() / bareName).string()).string();
      companion_ = std::make_unique<form::CompanionStore>(bareName, path, *file_->Description());
    }
  } catch (...) {
    file_.reset();
    loadError_ = automation::CurrentError();
    throw *loadError_;
  }
  return *file_;
}

void Component::NoteStamp() {
  loadedStamp_ = platform::StampOf(fileName_);
  stampSettled_ = !loadedStamp_ || platform::IsSettled(*loadedStamp_);
}

bool Component::UnchangedOnDisk() {
  const std::optional<platform::FileStamp> stamp = platform::StampOf(fileName_);
  if (stamp != loadedStamp_) return false;
  if (!stampSettled_) {
    // Changed moments before it was read: the stamp alone cannot tell, the bytes do.
    try {
      if (!file_ || platform::ReadFile(fileName_) != file_->DiskBytes()) return false;
    } catch (const automation::Error&) {
      return false;
    }
    stampSettled_ = !stamp || platform::IsSettled(*stamp);
  }
  return true;
}

std::string Component::Name() {
  try {
    const std::string& name = File().Name();
    if (!name.empty()) return name;
  } catch (const automation::Error&) {
    // Named from the project file below.
  }
  const ProjectEntry& entry = project_.file_->Entries()[entry_];
  if (!entry.name.empty()) return entry.name;
  return fs::path(fileName_).stem().string();
}

void Component::SetName(std::string_view name) {
  if (!IsValidName(name)) {
    automation::Raise(err::kInvalidPropertyValue,
                      "\"" + std::string(name) + "\" is not a valid component name");
  }
  Component* other = project_.Find(name);
  if (other != nullptr && other != this) {
    automation::Raise(err::kInvalidPropertyValue,
                      "another component is already named \"" + std::string(name) + "\"");
  }
  const std::string oldName = File().Name();
  File().SetName(name);
  project_.file_->RenameEntry(entry_, oldName, name);
}

ComponentType Component::Type() {
  // A form may be an MDI form, which only its file tells; one whose file cannot be read is what
  // its project file line says, a form.
  if (Kind() == FileKind::kForm) {
    try {
      return File().Type();
    } catch (const automation::Error&) {
      // Listed as a form; the load error comes where the file is needed.
    }
  }
  return ComponentFile::TypeOf(Kind());
}

std::string Component::DesignerID() {
  if (Kind() == FileKind::kModule || Kind() == FileKind::kClass) return {};
  try {
    return DesignerIdOf(File());
  } catch (const automation::Error&) {
    // Listing the components must not fail for one whose file cannot be read: it is listed by
    // its type (an ActiveX designer of unknown class), and reports its error where its file is
    // needed.
    return DesignerIdOf(Type());
  }
}

DesignerPage* Component::Page() {
  if (!page_ && Kind() == FileKind::kDesigner) page_ = std::make_unique<DesignerPage>(*this);
  return page_.get();
}

void Component::ClosePage() {
  page_.reset();
}

void Component::TakePageChanges() {
  if (page_) page_->TakeChanges();
}

form::CompanionStore* Component::Companion() {
  File();
  return companion_.get();
}

form::FormContext Component::Form() {
  ComponentFile& file = File();
  if (file.Description() == nullptr) {
    automation::Raise(err::kInvalidCall, Name() + " has no form description");
  }
  const form::ClassInfo* rootClass =
      Kind() == FileKind::kDesigner ? form::FindClass(DesignerIdOf(file)) : nullptr;
  return form::FormContext{file.Description(), project_.codePage_, companion_.get(), rootClass};
}

void Component::Save() {
  try {
    Write();
  } catch (...) {
    DropChanges();
    throw;
  }
}

void Component::SaveAs(std::string_view path) {
  try {
    WriteAs(path);
  } catch (...) {
    DropChanges();
    throw;
  }
}

void Component::DropChanges() {
  file_.reset();
  companion_.reset();
  loadError_.reset();
  loadedStamp_.reset();
  project_.file_->RestoreEntry(entry_);
}

void Component::Write() {
  TakePageChanges();
  ComponentFile& file = File();
  form::Description* description = file.Description();
  if (companion_ == nullptr || description == nullptr) {
    std::string bytes = file.Render();
    SaveOver(fileName_, file.DiskBytes(), bytes);
    file.MarkSaved(std::move(bytes));
    NoteStamp();
    return;
  }
  form::CompanionStore::Plan plan = companion_->Layout(*description);
  // The references get their new offsets; on any failure they get their old ones back, so that
  // the model still matches the files on disk.
  std::vector<uint32_t> before;
  for (const form::CompanionUse& use : plan.uses)
    before.push_back(use.reference.offset);
  auto renumber = [&](const std::vector<uint32_t>& offsets) {
    for (std::size_t i = 0; i < plan.uses.size(); ++i) {
      description->SetReferenceOffset(*plan.uses[i].property, offsets[i]);
    }
  };
  renumber(plan.offsets);
  try {
    std::string bytes = file.Render();
    if (plan.write) {
      const std::string& companionPath = companion_->Path();
      const std::string oldCompanion = companion_->DiskBytes();
      const bool existed = companion_->ExistsOnDisk();
      CheckSaveOver(companionPath, oldCompanion);
      CheckSaveOver(fileName_, file.DiskBytes());
      SaveOver(companionPath, oldCompanion, plan.bytes);
      try {
        SaveOver(fileName_, file.DiskBytes(), bytes);
      } catch (...) {
        // The file still references the old records: put them back.
        if (existed) {
          SaveOver(companionPath, plan.bytes, oldCompanion);
        } else {
          std::error_code ignored;
          fs::remove(companionPath, ignored);
        }
        throw;
      }
    } else {
      SaveOver(fileName_, file.DiskBytes(), bytes);
    }
    file.MarkSaved(std::move(bytes));
    companion_->Saved(plan);
  } catch (...) {
    renumber(before);
    throw;
  }
  NoteStamp();
}

void Component::WriteAs(std::string_view path) {
  ComponentFile& file = File();
  std::string target = platform::ToNative(path).string();
  if (target == fileName_) {
    Write();
    return;
  }
  TakePageChanges();
  form::Description* description = file.Description();
  if (companion_ == nullptr || description == nullptr) {
    std::string bytes = file.Render();
    SaveTo(target, bytes);
    file.MarkSaved(std::move(bytes));
    fileName_ = std::move(target);
    NoteStamp();
    return;
  }
  // VB6 writes the companion beside the new file under the new file's name, and the references
  // name it: the companion first, then the file, which is never left naming records that are
  // not there.
  form::CompanionStore::Plan plan = companion_->Layout(*description);
  const std::string bareName = CompanionFileName(target, Kind());
  const std::string companionPath =
      platform::ToNative((fs::path(target).parent_path() / bareName).string()).string();
  std::string companionBytes = plan.write ? plan.bytes : std::string();
  if (!plan.write && !plan.uses.empty()) companionBytes = companion_->DiskBytes();
  auto point = [&](bool renamed) {
    for (std::size_t i = 0; i < plan.uses.size(); ++i) {
      form::CompanionReference reference = plan.uses[i].reference;
      if (renamed) {
        reference.fileName = bareName;
        reference.offset = plan.offsets[i];
      }
      form::PropertyEntry& entry = *plan.uses[i].property;
      entry.Owner()->SetProperty(entry.Name(), form::FormatCompanionReference(reference));
    }
  };
  point(true);
  try {
    std::string bytes = file.Render();
    const bool companionExisted = platform::FileExists(companionPath);
    if (!companionBytes.empty()) SaveTo(companionPath, companionBytes);
    try {
      SaveTo(target, bytes);
    } catch (...) {
      std::error_code ignored;
      if (!companionBytes.empty() && !companionExisted) fs::remove(companionPath, ignored);
      throw;
    }
    file.MarkSaved(std::move(bytes));
  } catch (...) {
    point(false);
    throw;
  }
  companion_->MoveTo(bareName, companionPath, std::move(companionBytes), plan.offsets);
  fileName_ = std::move(target);
  NoteStamp();
}

std::unique_ptr<Project> Project::Open(std::string_view path) {
  // Without a code page given (--codepage, QX_CODEPAGE), the project's own files tell theirs,
  // as they do for the driver.
  return Open(path, platform::GetCodePage(platform::UseProjectCodePage(path).number));
}

std::unique_ptr<Project> Project::Open(std::string_view path, const platform::CodePage& codePage) {
  std::unique_ptr<Project> project(new Project());
  project->codePage_ = &codePage;
  fs::path native = fs::absolute(platform::ToNative(path));
  project->fileName_ = native.string();
  project->NoteStamp();
  project->file_ =
      ProjectFile::Parse(platform::ReadFile(project->fileName_), codePage, project->fileName_);
  std::string folder = native.parent_path().string();
  const auto& entries = project->file_->Entries();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    project->components_.push_back(
        std::make_unique<Component>(*project, i, ResolvePath(folder, entries[i].path)));
  }
  return project;
}

Project::~Project() {
  ClosePages();
}

void Project::ClosePages() {
  for (auto& component : components_)
    component->ClosePage();
  if (!pageFolder_.empty()) {
    std::error_code ignored;
    fs::remove(pageFolder_, ignored);  // only when empty: a page not taken in stays
    pageFolder_.clear();
  }
}

const fs::path& Project::PageFolder() {
  if (pageFolder_.empty()) {
    const fs::path pages = platform::QxHome() / "pages";
    platform::CreatePrivateFolders(pages);
    pageFolder_ = platform::MakeTempFolder(pages, std::to_string(::getpid()) + "-");
  }
  return pageFolder_;
}

Component* Project::Find(std::string_view name) {
  const std::string key = automation::VbNameKey(name);
  const auto hint = nameHints_.find(key);
  if (hint != nameHints_.end()) {
    Component& component = *components_[hint->second];
    if (automation::SameVbName(component.Name(), name)) return &component;
  }
  // Reads names from `from` on, remembering where each is first seen, up to the first match.
  const auto readFrom = [&](std::size_t from) -> Component* {
    for (namesRead_ = from; namesRead_ < components_.size();) {
      Component& component = *components_[namesRead_];
      const std::string current = component.Name();
      nameHints_.emplace(automation::VbNameKey(current), namesRead_++);
      if (automation::SameVbName(current, name)) return &component;
    }
    return nullptr;
  };
  // A name not seen yet is looked for where the last look-up stopped reading, so that looking
  // up every component reads each name once; otherwise (a name that moved, or none found that
  // way) every name is read again from the first.
  if (hint == nameHints_.end()) {
    if (Component* found = readFrom(namesRead_)) return found;
  }
  nameHints_.clear();
  return readFrom(0);
}

Component& Project::Item(std::string_view name) {
  Component* component = Find(name);
  if (component == nullptr) {
    automation::Raise(err::kSubscript, "no component named \"" + std::string(name) + "\"");
  }
  return *component;
}

bool Project::ChangedOnDisk() {
  const std::optional<platform::FileStamp> stamp = platform::StampOf(fileName_);
  if (stamp != stamp_) return true;
  if (!stampSettled_) {
    // Changed moments before it was read or saved: the bytes tell.
    try {
      if (platform::ReadFile(fileName_) != file_->DiskBytes()) return true;
    } catch (const automation::Error&) {
      return true;
    }
    stampSettled_ = !stamp || platform::IsSettled(*stamp);
  }
  return false;
}

void Project::NoteStamp() {
  stamp_ = platform::StampOf(fileName_);
  stampSettled_ = !stamp_ || platform::IsSettled(*stamp_);
}

void Project::Save() {
  if (!file_->IsDirty()) return;
  try {
    std::string bytes = file_->Render();
    SaveOver(fileName_, file_->DiskBytes(), bytes);
    file_->MarkSaved(std::move(bytes));
  } catch (...) {
    file_->RestoreEntries();
    throw;
  }
  NoteStamp();
}

}  // namespace ide
