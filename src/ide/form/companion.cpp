#include "ide/form/companion.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <utility>

#include "automation/error.h"

namespace ide::form {
namespace {

using automation::err::kInvalidFileFormat;

// An offset as the description writes it: upper-case hexadecimal, at least four digits.
std::string HexOffset(std::size_t offset) {
  char digits[24];
  const int length = std::snprintf(digits, sizeof digits, "%04zX", offset);
  return std::string(digits, static_cast<std::size_t>(length));
}

[[noreturn]] void Broken(std::string_view fileName, uint32_t offset, CompanionRecordKind kind,
                         std::string_view problem) {
  std::string text = "Invalid file format: ";
  text += fileName;
  text += ": the ";
  text += CompanionRecordKindName(kind);
  text += " record at ";
  text += HexOffset(offset);
  text += ' ';
  text += problem;
  automation::RaiseMessage(kInvalidFileFormat, std::move(text));
}

}  // namespace

CompanionFile::CompanionFile(std::string fileName, std::string bytes,
                             std::vector<uint32_t> references)
    : fileName_(std::move(fileName)),
      bytes_(std::move(bytes)),
      references_(std::move(references)),
      sortedOffsets_(references_) {
  std::sort(sortedOffsets_.begin(), sortedOffsets_.end());
  sortedOffsets_.erase(std::unique(sortedOffsets_.begin(), sortedOffsets_.end()),
                       sortedOffsets_.end());
}

std::size_t CompanionFile::LimitAfter(uint32_t offset) const {
  const auto next = std::upper_bound(sortedOffsets_.begin(), sortedOffsets_.end(), offset);
  if (next == sortedOffsets_.end()) return bytes_.size();
  return std::min<std::size_t>(*next, bytes_.size());
}

CompanionRecord CompanionFile::Read(uint32_t offset, CompanionRecordKind kind) const {
  // Every record holds at least one byte: one of unknown layout too, as an empty one could not
  // be told from the record after it once the companion is rewritten.
  if (offset >= bytes_.size()) {
    Broken(fileName_, offset, kind,
           "lies past the end of the file (" + std::to_string(bytes_.size()) + " bytes)");
  }
  const std::size_t limit = LimitAfter(offset);
  const std::string_view rest = std::string_view(bytes_).substr(offset);
  std::string problem;
  std::optional<CompanionRecord> record = CompanionRecord::Read(
      kind == CompanionRecordKind::kOpaque ? rest.substr(0, limit - offset) : rest, kind, &problem);
  if (!record) Broken(fileName_, offset, kind, problem);
  // VB6 packs its records: one that runs into the next referenced record has a length that lies
  // (or the description's offsets do).
  if (offset + record->Bytes().size() > limit) {
    Broken(fileName_, offset, kind, "runs into the record at " + HexOffset(limit));
  }
  return std::move(*record);
}

void CompanionWriter::Add(const CompanionRecord& record, std::optional<uint32_t> readFrom) {
  if (record.Bytes().empty()) {
    automation::RaiseMessage(automation::err::kInvalidCall,
                             "Invalid procedure call or argument: an empty record cannot be "
                             "written to " +
                                 original_.FileName());
  }
  Append(record.Bytes(), record.Kind(), readFrom);
}

void CompanionWriter::Keep(uint32_t readFrom, CompanionRecordKind kind) {
  Append(original_.Read(readFrom, kind).Bytes(), kind, readFrom);
}

void CompanionWriter::Append(std::string_view recordBytes, CompanionRecordKind kind,
                             std::optional<uint32_t> readFrom) {
  if (bytes_.size() > std::numeric_limits<uint32_t>::max()) {
    automation::RaiseMessage(kInvalidFileFormat, "Invalid file format: " + original_.FileName() +
                                                     ": the companion would exceed 4 GB");
  }
  const std::size_t index = newOffsets_.size();
  newOffsets_.push_back(static_cast<uint32_t>(bytes_.size()));
  bytes_ += recordBytes;
  if (!unchanged_) return;
  const std::vector<uint32_t>& before = original_.References();
  const std::string_view old = original_.Bytes();
  // The reference still reads as this record where it points: the same bytes there and, for a
  // record that only its neighbour delimits, the same end.
  unchanged_ = readFrom.has_value() && index < before.size() && before[index] == *readFrom &&
               *readFrom <= old.size() && old.substr(*readFrom).starts_with(recordBytes) &&
               (kind != CompanionRecordKind::kOpaque ||
                *readFrom + recordBytes.size() == original_.LimitAfter(*readFrom));
  if (unchanged_) readFrom_.push_back(*readFrom);
}

CompanionLayout CompanionWriter::Finish() {
  CompanionLayout layout;
  layout.changed = !unchanged_ || newOffsets_.size() != original_.References().size();
  if (layout.changed) {
    layout.bytes = std::move(bytes_);
    layout.offsets = std::move(newOffsets_);
  } else {
    layout.offsets = std::move(readFrom_);
  }
  bytes_.clear();
  newOffsets_.clear();
  readFrom_.clear();
  unchanged_ = true;
  return layout;
}

}  // namespace ide::form
