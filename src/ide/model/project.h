#pragma once
// A VB6 project over its files: the project file and its components, in the project file's
// order. Opening reads only the project file; a component's file is read when something first
// needs it, and a component whose file is missing or is not a VB file reports that error for
// itself alone.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "automation/error.h"
#include "ide/form/object_properties.h"
#include "ide/model/component_file.h"
#include "ide/model/project_file.h"
#include "platform/files.h"

namespace platform {
class CodePage;
}

namespace ide {

class DesignerPage;
class Project;

// A path as a project or component file names it (Windows-style, relative or absolute),
// resolved against a folder: the Linux path of the file.
std::string ResolvePath(std::string_view folder, std::string_view path);

// Looking whether a component's file changed on disk costs a call to the file system, and one
// call that the IDE serves (a scan) uses a component's file thousands of times. The server
// starts every call it serves from another process with BeginServedCall; within one, each file
// is looked at once, on its first use. Outside served calls every use looks.
void BeginServedCall();

class Component {
 public:
  Component(Project& project, std::size_t entry, std::string fileName);
  ~Component();
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  Project& Parent() { return project_; }
  FileKind Kind() const;

  // FileNames(1): the full path of the component's file, found whatever its letter case.
  const std::string& FileName() const { return fileName_; }

  // The component's name: the file's VB_Name; when the file has none or cannot be read, the
  // project file's name for modules and classes, else the file's base name. Never raises.
  std::string Name();
  // Renames (VB's naming rules; 380 for an invalid name or one another component has). The new
  // name goes into the file's VB_Name (and form description) and, for modules and classes, into
  // the project file's entry; both are written when saved.
  void SetName(std::string_view name);

  // Type and DesignerID; they read the file where the project file does not tell (an MDI form,
  // a designer's class). A file that cannot be read leaves them with what the project file tells
  // (a form; an ActiveX designer of no known class, DesignerID ""), so that listing a project's
  // components never fails for one of them: its load error comes where its file is needed.
  ComponentType Type();
  std::string DesignerID();

  bool IsLoaded() const { return file_ != nullptr; }
  // The error that reading the file gave, if it was tried and failed.
  const std::optional<automation::Error>& LoadError() const { return loadError_; }
  // The file's model, read on first use and read again when the file changed on disk since and
  // the component holds no unsaved change. Raises the load error (53 missing, 321 not a VB file
  // of that kind, ...) now and on every later call until the file changes.
  ComponentFile& File();
  // How many times the file was read: objects that point into the file's model tell by it
  // that it was read again since (and their pointers are no longer good).
  uint64_t Reads() const { return reads_; }
  CodeModule& Code() { return File().Code(); }

  // The binary companion (.frx, .ctx, .pgx, .dox, .dsx) of a form-like file or designer, beside
  // its file; null for modules and classes. Read on first use of a record.
  form::CompanionStore* Companion();
  // What the properties of an object of the description need: its description, the project's
  // code page, the companion. Raises the load error; a module or class has no description (5).
  form::FormContext Form();

  // The file that holds a DHTML page designer's page (designer_page.h); null for the other
  // components.
  DesignerPage* Page();
  // Takes into the .dsx a change made to the file of a DHTML page kept inside its designer
  // (nothing for the other components).
  void TakePageChanges();

  // Lets the page file go (see ~DesignerPage).
  void ClosePage();

  bool IsDirty() const {
    return file_ && (file_->IsDirty() || (companion_ && companion_->HasChanges()));
  }
  // Writes the file (see SaveOver for what is refused), a DHTML page's changed page taken in
  // first, and, when one of its records changed, the companion, its references in the file
  // renumbered. Both files are checked (read-only, changed on disk) before either is written; the
  // companion is written first, then the file, and when writing the file fails the companion is put
  // back as it was, so that the file on disk never references records that are not there.
  //
  // A save that fails or is refused, at whatever step (a full disk, a file changed on disk, a
  // character the code page cannot hold, a companion record that cannot be laid out), leaves
  // nothing behind: the component's changes are dropped, its project-file entry included, and
  // its file is read again on next use. What the IDE holds is then what the disk holds, so no
  // later save writes the refused change, and the component is never left with changes that
  // nobody can save.
  void Save();
  // Writes the file under another name, which becomes the component's file. A file with a
  // companion gets one beside it under its new name ("Copy.frm" and "Copy.frx"), written first,
  // and its references name it; the old files stay as they are. A failure drops the changes as
  // Save's does.
  void SaveAs(std::string_view path);

 private:
  void Write();
  void WriteAs(std::string_view path);
  // Forgets the file's model, with every change made to it: the next use reads the file.
  void DropChanges();
  // The file's stamp, taken before it is read or just after it was written.
  void NoteStamp();
  // Whether the file is still the one read or written last (see platform::IsSettled).
  bool UnchangedOnDisk();

  Project& project_;
  std::size_t entry_;
  std::string fileName_;
  std::unique_ptr<ComponentFile> file_;
  std::unique_ptr<form::CompanionStore> companion_;  // with file_, for kinds that have one
  std::optional<automation::Error> loadError_;
  std::optional<platform::FileStamp> loadedStamp_;  // of the file when it was last read
  bool stampSettled_ = false;
  uint64_t reads_ = 0;
  std::uint64_t lookedInCall_ = 0;      // the served call in which the file was last looked at
  std::unique_ptr<DesignerPage> page_;  // last: it takes its changes in while the rest is alive
};

class Project {
 public:
  // Reads the project file (53 when missing). Component paths are decoded and resolved with the
  // code page given; by default the one given to the run, else the one detected from the
  // project's files (platform::UseProjectCodePage).
  static std::unique_ptr<Project> Open(std::string_view path);
  static std::unique_ptr<Project> Open(std::string_view path, const platform::CodePage& codePage);
  ~Project();
  Project(const Project&) = delete;
  Project& operator=(const Project&) = delete;

  // The project file's full path.
  const std::string& FileName() const { return fileName_; }
  // The `Name=` of the project file.
  const std::string& Name() const { return file_->Name(); }
  const platform::CodePage& CodePage() const { return *codePage_; }

  std::size_t Count() const { return components_.size(); }
  Component& At(std::size_t index) { return *components_.at(index); }
  // The component of that name (compared as VB compares names), or null.
  Component* Find(std::string_view name);
  // VBComponents.Item: raises 9 "Subscript out of range" when there is none.
  Component& Item(std::string_view name);

  const ProjectFile& File() const { return *file_; }
  // The project file changed on disk since it was read or last saved.
  bool ChangedOnDisk();
  // The project file needs writing (a module or class was renamed).
  bool IsDirty() const { return file_->IsDirty(); }
  // Writes the project file when it needs writing; otherwise leaves it untouched. When writing
  // it fails, the renamed entries go back to what the file on disk says.
  void Save();

  // The folder of this process for the files that hold the pages of the project's DHTML pages
  // kept inside their designers: under the qx home, made on first use, removed (when empty)
  // with the project.
  const std::filesystem::path& PageFolder();
  // Lets every page file go, a change still in one taken in first, and removes the folder when
  // nothing is left in it: the project leaves the IDE. A page asked for later is written anew.
  void ClosePages();

 private:
  friend class Component;
  Project() = default;
  void NoteStamp();

  std::string fileName_;
  const platform::CodePage* codePage_ = nullptr;
  std::unique_ptr<ProjectFile> file_;
  std::optional<platform::FileStamp> stamp_;  // of the project file when read or saved
  bool stampSettled_ = false;
  std::filesystem::path pageFolder_;
  std::vector<std::unique_ptr<Component>> components_;
  // Where Find saw each name (VbNameKey), so that a look-up does not read every name before
  // it; a hint is used only after checking that the component still has that name. Find has
  // read the names of the components before `namesRead_`.
  std::unordered_map<std::string, std::size_t> nameHints_;
  std::size_t namesRead_ = 0;
};

}  // namespace ide
