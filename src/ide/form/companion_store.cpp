#include "ide/form/companion_store.h"

#include <utility>

#include "automation/error.h"
#include "ide/form/object_properties.h"
#include "ide/form/object_properties_detail.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace ide::form {

namespace err = automation::err;
using detail::Same;

CompanionStore::CompanionStore(std::string bareName, std::string path,
                               const Description& description)
    : bareName_(std::move(bareName)), path_(std::move(path)) {
  for (const CompanionUse& use : description.CompanionReferences()) {
    if (Same(use.reference.fileName, bareName_)) references_.push_back(use.reference.offset);
  }
}

CompanionStore::~CompanionStore() = default;

const CompanionFile& CompanionStore::File() {
  if (!file_) {
    std::string bytes;
    exists_ = platform::FileExists(path_);
    if (exists_) bytes = platform::ReadFile(path_);
    file_ = std::make_unique<CompanionFile>(bareName_, std::move(bytes), references_);
  }
  return *file_;
}

CompanionRecord CompanionStore::Read(const PropertyEntry& entry, CompanionRecordKind kind) {
  if (auto found = pending_.find(&entry); found != pending_.end()) return found->second;
  const std::optional<CompanionReference>& reference = entry.Reference();
  if (!reference) automation::Raise(err::kInvalidCall, "the property is not in the companion");
  if (!Same(reference->fileName, bareName_)) {
    // A reference into another component's companion (two forms sharing one): read there.
    std::filesystem::path other = std::filesystem::path(path_).parent_path() / reference->fileName;
    std::string otherPath = platform::ToNative(other.string()).string();
    CompanionFile shared(reference->fileName, platform::ReadFile(otherPath), {reference->offset});
    return shared.Read(reference->offset, kind);
  }
  const CompanionFile& file = File();
  if (!exists_) {
    automation::Raise(err::kFileNotFound, path_ + " (the companion of the form) is missing");
  }
  return file.Read(reference->offset, kind);
}

void CompanionStore::Put(const PropertyEntry& entry, CompanionRecord record) {
  pending_.insert_or_assign(&entry, std::move(record));
}

void CompanionStore::Forget(const PropertyEntry& entry) {
  pending_.erase(&entry);
}

CompanionStore::Plan CompanionStore::Layout(const Description& description) {
  Plan plan;
  for (const CompanionUse& use : description.CompanionReferences()) {
    if (Same(use.reference.fileName, bareName_)) plan.uses.push_back(use);
  }
  bool touched = false;
  for (const CompanionUse& use : plan.uses)
    touched |= pending_.count(use.property) > 0;
  if (!touched && plan.uses.size() == references_.size()) {
    // Nothing new: every reference still points where it did; the file is not even read.
    bool same = true;
    for (std::size_t i = 0; i < plan.uses.size(); ++i) {
      same &= plan.uses[i].reference.offset == references_[i];
    }
    if (same) {
      for (const CompanionUse& use : plan.uses)
        plan.offsets.push_back(use.reference.offset);
      return plan;
    }
  }
  const CompanionFile& file = File();
  CompanionWriter writer(file);
  for (const CompanionUse& use : plan.uses) {
    if (auto found = pending_.find(use.property); found != pending_.end()) {
      writer.Add(found->second, std::nullopt);
    } else {
      if (!exists_) {
        automation::Raise(err::kFileNotFound, path_ + " (the companion of the form) is missing");
      }
      writer.Keep(use.reference.offset, RecordKindOf(*use.property));
    }
  }
  CompanionLayout layout = writer.Finish();
  plan.write = layout.changed && !layout.bytes.empty();
  plan.bytes = std::move(layout.bytes);
  plan.offsets = std::move(layout.offsets);
  return plan;
}

std::string CompanionStore::DiskBytes() {
  return File().Bytes();
}

bool CompanionStore::ExistsOnDisk() {
  File();
  return exists_;
}

void CompanionStore::Saved(const Plan& plan) {
  references_ = plan.offsets;
  if (plan.write) {
    file_ = std::make_unique<CompanionFile>(bareName_, plan.bytes, references_);
    exists_ = true;
  } else if (file_) {
    file_ = std::make_unique<CompanionFile>(bareName_, file_->Bytes(), references_);
  }
  pending_.clear();
}

void CompanionStore::MoveTo(std::string bareName, std::string path, std::string bytes,
                            std::vector<uint32_t> offsets) {
  bareName_ = std::move(bareName);
  path_ = std::move(path);
  references_ = std::move(offsets);
  exists_ = !bytes.empty();
  file_ = std::make_unique<CompanionFile>(bareName_, std::move(bytes), references_);
  pending_.clear();
}

}  // namespace ide::form
