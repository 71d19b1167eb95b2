#include "ide/model/designer_page.h"

#include <system_error>
#include <vector>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/form/companion.h"
#include "ide/form/page_document.h"
#include "ide/form/property_catalog.h"
#include "ide/model/project.h"
#include "ide/model/safe_save.h"
#include "platform/files.h"

namespace ide {
namespace fs = std::filesystem;
using form::CompanionRecordKind;

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

// The .dsx and the references of the description into it, in description order.
struct PageCompanion {
  std::string path;
  std::string bytes;
  std::vector<form::CompanionUse> uses;
  form::CompanionUse* document = nullptr;  // the HTMLDocument's reference, if any
};

PageCompanion ReadCompanion(Component& component, form::Description& description) {
  PageCompanion companion;
  form::PropertyEntry* entry = description.Root().FindProperty(kDocument);
  if (entry == nullptr || !entry->Reference()) return companion;
  const std::string& bareName = entry->Reference()->fileName;
  companion.path = ResolvePath(FolderOf(component.FileName()), bareName);
  companion.bytes = platform::ReadFile(companion.path);
  for (const form::CompanionUse& use : description.CompanionReferences()) {
    if (automation::SameVbName(use.reference.fileName, bareName)) companion.uses.push_back(use);
  }
  for (form::CompanionUse& use : companion.uses) {
    if (use.property == entry) companion.document = &use;
  }
  return companion;
}

std::vector<uint32_t> OffsetsOf(const PageCompanion& companion) {
  std::vector<uint32_t> offsets;
  offsets.reserve(companion.uses.size());
  for (const form::CompanionUse& use : companion.uses)
    offsets.push_back(use.reference.offset);
  return offsets;
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
  if (description == nullptr) return {};
  PageCompanion companion = ReadCompanion(component_, *description);
  if (companion.document == nullptr) return {};
  const form::CompanionFile file(companion.path, std::move(companion.bytes), OffsetsOf(companion));
  const form::CompanionRecord record =
      file.Read(companion.document->reference.offset, CompanionRecordKind::kOpaque);
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
  if (description->Root().FindProperty(kDocument) == nullptr) return {};
  TakeChanges();
  std::string text = RecordText();
  if (file_.empty()) {
    file_ = component_.Parent().PageFolder() /
            (fs::path(component_.FileName()).stem().string() + ".htm");
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
  PageCompanion companion = ReadCompanion(component_, *description);
  if (companion.document == nullptr) {
    if (page.empty()) {
      written_ = std::move(page);
      return;
    }
    automation::Raise(automation::err::kInvalidCall,
                      "the DHTML page " + component_.Name() +
                          " keeps no HTMLDocument record in its .dsx to hold the page written to " +
                          file_.string());
  }
  const form::CompanionFile original(companion.path, companion.bytes, OffsetsOf(companion));
  form::CompanionWriter writer(original);
  for (const form::CompanionUse& use : companion.uses) {
    if (&use == companion.document) {
      const form::CompanionRecord record =
          original.Read(use.reference.offset, CompanionRecordKind::kOpaque);
      writer.Add(form::CompanionRecord::Opaque(form::ReplacePageText(record.Bytes(), page)),
                 use.reference.offset);
    } else {
      writer.Keep(use.reference.offset, CompanionRecordKind::kOpaque);
    }
  }
  const form::CompanionLayout layout = writer.Finish();
  const bool wasDirty = component_.IsDirty();
  if (layout.changed) SaveOver(companion.path, companion.bytes, layout.bytes);
  written_ = std::move(page);
  if (!layout.changed) return;
  for (std::size_t i = 0; i < companion.uses.size(); ++i) {
    description->SetReferenceOffset(*companion.uses[i].property, layout.offsets[i]);
  }
  // A record before others changed length: the .dsr's offsets moved with it. They are saved
  // now unless the component holds changes of its own, which its next save writes with them.
  if (!wasDirty && component_.IsDirty()) component_.Save();
}

}  // namespace ide
