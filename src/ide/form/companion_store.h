#pragma once
// The binary companion of one component while the IDE edits it (.frx, .ctx, ...): read on first
// use, the records that edits gave to property lines since the last save, and the save's plan.

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "ide/form/companion.h"
#include "ide/form/companion_record.h"
#include "ide/form/description.h"

namespace ide::form {

// The binary companion of one component while the IDE edits it: the file as read (read on
// first use: a component whose references are never read never opens it) and the records that
// edits gave to property lines since the last save.
class CompanionStore {
 public:
  // bareName: the name references write ("Form1.frx"); path: where the file lies.
  CompanionStore(std::string bareName, std::string path, const Description& description);
  ~CompanionStore();

  const std::string& FileName() const { return bareName_; }
  const std::string& Path() const { return path_; }

  // The record a reference line holds now: the one an edit gave it, else the one in the file
  // at its offset, read as kind. A missing file raises 53 naming it; a broken record 321.
  CompanionRecord Read(const PropertyEntry& entry, CompanionRecordKind kind);
  // Gives a reference line a new record (the line's offset is a placeholder until saved).
  void Put(const PropertyEntry& entry, CompanionRecord record);
  // The line no longer references the companion (removed, or set inline).
  void Forget(const PropertyEntry& entry);
  // Whether an edit gave a line a record since the last save.
  bool HasChanges() const { return !pending_.empty(); }

  // Saving, in three steps so that the caller can write both files and undo on failure:
  // Plan lays the companion out anew for the description's references in order and gives each
  // its new offset (nothing to write when nothing moved); the caller renumbers the description
  // with SetReferenceOffset, writes the files, then calls Saved, or on failure puts the old
  // offsets back.
  struct Plan {
    bool write = false;              // the companion must be written
    std::string bytes;               // its new bytes (empty with write: no reference is left)
    std::vector<CompanionUse> uses;  // the description's references, in order
    std::vector<uint32_t> offsets;   // the offset each of them gets
  };
  Plan Layout(const Description& description);
  // The bytes the file held when read or last saved (empty when it did not exist).
  std::string DiskBytes();
  bool ExistsOnDisk();
  // After a successful save of the plan.
  void Saved(const Plan& plan);
  // After the component was saved under another name with its companion beside it: that file
  // (its bytes and the references' offsets) is the one from now on.
  void MoveTo(std::string bareName, std::string path, std::string bytes,
              std::vector<uint32_t> offsets);

 private:
  const CompanionFile& File();

  std::string bareName_;
  std::string path_;
  std::vector<uint32_t> references_;  // the description's offsets when read
  std::unique_ptr<CompanionFile> file_;
  bool exists_ = false;
  std::unordered_map<const PropertyEntry*, CompanionRecord> pending_;
};

}  // namespace ide::form
