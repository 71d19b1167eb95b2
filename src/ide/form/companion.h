#pragma once
// A binary companion file (.frx, .ctx, .pgx, .dox, .dsx) and its rewriting. The file has no
// header: its records lie one after another, and each reference of the form description
// (`"Form1.frx":00A6`, `$"Form1.frx":00A6`) points at a record's first byte. What a record
// holds depends on the property that points at it (companion_record.h).
//
// Reading: make a CompanionFile from the bytes and every offset the description references
// (so that a record of unknown layout can end where the next one begins), then read each record
// by the kind of its property. A broken record raises for that record alone.
//
// Saving: VB6 writes the companion anew whenever it saves, the records packed in the order of
// the description's property lines. A CompanionWriter takes the description's references in
// that order and gives each its new offset; when every reference still points at the record it
// was read from, nothing changed, and neither the companion nor the description's offsets are
// touched, however the old file was laid out (gaps, records out of order, an offset referenced
// twice). Once a changed companion is written, CompanionFile(name, layout.bytes,
// layout.offsets) is what the next save starts from.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ide/form/companion_record.h"

namespace ide::form {

class CompanionFile {
 public:
  // fileName is the companion's bare name, for messages. references are the offsets of the
  // description's references to this file, in the order of its property lines (an offset may
  // come twice); bytes are the file as read (empty for a component without a companion).
  CompanionFile(std::string fileName, std::string bytes, std::vector<uint32_t> references);

  const std::string& FileName() const { return fileName_; }
  const std::string& Bytes() const { return bytes_; }
  const std::vector<uint32_t>& References() const { return references_; }

  // The record at offset, read as kind. A record that is not there raises 321 "Invalid file
  // format" naming the file, the offset as the description writes it and what is wrong: an
  // offset past the end of the file, a length running past it or into the next referenced
  // record, a list count that cannot fit, a picture without its mark. Nothing is read outside
  // the file's bytes.
  CompanionRecord Read(uint32_t offset, CompanionRecordKind kind) const;

  // Where the record at offset must end: the next referenced offset after it, else the end of
  // the file. A record of unknown layout ends exactly there.
  std::size_t LimitAfter(uint32_t offset) const;

 private:
  std::string fileName_;
  std::string bytes_;
  std::vector<uint32_t> references_;
  std::vector<uint32_t> sortedOffsets_;  // references_ sorted, each once
};

// What saving gives: the companion to write, and the offset each reference now has.
struct CompanionLayout {
  // Whether the companion must be written and the description's references renumbered; false
  // when every reference still points at the record it was read from in the file as it is.
  bool changed = false;
  // The new companion when changed; empty otherwise. Also empty when no reference is left: the
  // caller then has no companion to write, and leaving the old file loses nothing.
  std::string bytes;
  // Each reference's offset, in the order they were added: the new ones when changed, the
  // offsets they were read from otherwise.
  std::vector<uint32_t> offsets;
};

class CompanionWriter {
 public:
  // original: the companion as it was read (or as last saved), with the references the
  // description held then.
  explicit CompanionWriter(const CompanionFile& original) : original_(original) {}

  // The next reference of the description, in the order of its property lines: the record it
  // holds now, and the offset it held when read (nullopt for a reference that is new). An empty
  // record (only an opaque one can be) raises 5: nothing would tell where it ends.
  void Add(const CompanionRecord& record, std::optional<uint32_t> readFrom);
  // A reference that still holds the record it was read from: copies that record, read as kind.
  // A broken record raises as CompanionFile::Read does: a companion is never rewritten with a
  // record it cannot delimit.
  void Keep(uint32_t readFrom, CompanionRecordKind kind);

  CompanionLayout Finish();

 private:
  void Append(std::string_view recordBytes, CompanionRecordKind kind,
              std::optional<uint32_t> readFrom);

  const CompanionFile& original_;
  std::string bytes_;
  std::vector<uint32_t> newOffsets_;
  std::vector<uint32_t> readFrom_;
  bool unchanged_ = true;
};

}  // namespace ide::form
