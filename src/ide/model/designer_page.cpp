#include "ide/model/designer_page.h"

#include <atomic>
#include <string>
#include <system_error>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/form/object_properties.h"
#include "ide/form/page_document.h"
#include "ide/form/property_catalog.h"
#include "ide/model/project.h"
#include "platform/files.h"

namespace ide {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kDocument = "HTMLDocument";

// The .dsr's description when the component is a DHTML page designer, else null.
form::Description* PageDescription(Component& component) {
  if (component.Kind() != FileKind::kDesigner) return nullptr;
  if (!automation::SameVbName(component.DesignerID(), form::kDhtmlPageDesignerId)) return nullptr;
  return component.File().Description();
}

std::string FolderOf(const std::string& fileName) {
  return fs::path(fileName).parent_path().string();
}

// The HTMLDocument line when it references the companion, else null.
form::PropertyEntry* DocumentEntry(form::Description& description) {
  form::PropertyEntry* entry = description.Root().FindProperty(kDocument);
  return entry != nullptr && entry->Reference() ? entry : nullptr;
}

}  // namespace

DesignerPage::~DesignerPage() {
  if (file_.empty()) return;
  try {
    TakeChanges();
    std::error_code ignored;
    fs::remove(file_, ignored);
  } catch (...) {
    // The change stays in the file, where it can still be found.
  }
}

std::string DesignerPage::RecordText() {
  form::Description* description = PageDescription(component_);
  form::PropertyEntry* entry = description != nullptr ? DocumentEntry(*description) : nullptr;
  if (entry == nullptr) return {};
  const form::CompanionRecord record =
      component_.Companion()->Read(*entry, form::RecordKindOf(*entry));
  return std::string(form::SplitPageDocument(record.Bytes()).text);
}

std::string DesignerPage::Path() {
  form::Description* description = PageDescription(component_);
  if (description == nullptr) return {};
  if (form::PropertyEntry* source = description->Root().FindProperty("SourceFile")) {
    const std::string sourceFile = form::UnquoteString(source->Value()).value_or("");
    if (!sourceFile.empty()) {
      return fs::path(ResolvePath(FolderOf(component_.FileName()), sourceFile))
          .lexically_normal()
          .string();
    }
  }
  // A designer that keeps no page names no file.
  if (DocumentEntry(*description) == nullptr) return {};
  TakeChanges();
  std::string text = RecordText();
  if (file_.empty()) {
    // Named after the .dsr, numbered: two pages of the project may share a file name.
    static std::atomic<unsigned> made{0};
    file_ = component_.Parent().PageFolder() / (fs::path(component_.FileName()).stem().string() +
                                                "-" + std::to_string(++made) + ".htm");
  }
  if (text != written_ || !fs::exists(file_)) {
    platform::WriteFileAtomic(file_.string(), text);
    written_ = std::move(text);
  }
  return file_.string();
}

void DesignerPage::TakeChanges() {
  if (file_.empty() || !fs::exists(file_)) return;
  std::string page = platform::ReadFile(file_.string());
  if (page == written_) return;
  form::Description* description = PageDescription(component_);
  if (description == nullptr) return;
  form::PropertyEntry* entry = DocumentEntry(*description);
  if (entry == nullptr) {
    if (!page.empty()) {
      automation::Raise(automation::err::kInvalidCall,
                        "the DHTML page " + component_.Name() +
                            " keeps no HTMLDocument record in its .dsx to hold the page written "
                            "to " +
                            file_.string());
    }
    written_ = std::move(page);
    return;
  }
  form::CompanionStore& companion = *component_.Companion();
  const form::CompanionRecord record = companion.Read(*entry, form::RecordKindOf(*entry));
  const bool wasDirty = component_.IsDirty();
  companion.Put(*entry, form::CompanionRecord::Opaque(form::ReplacePageText(record.Bytes(), page)));
  written_ = std::move(page);
  // The page is the component's own change, saved now (the .dsx, and the .dsr when its offsets
  // move) unless the component holds changes of its own, which its next save writes with it.
  if (!wasDirty) component_.Save();
}

}  // namespace ide
