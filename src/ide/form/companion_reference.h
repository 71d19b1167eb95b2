#pragma once
// How a form description points into its binary companion: `"Form1.frx":00A6` for a record
// read by the property's own type, `$"Form1.frx":00A6` for a long string. The file name is the
// companion's bare name, quoted; the offset is the record's first byte, in upper-case
// hexadecimal with at least four digits.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ide/model/component_file.h"

namespace ide {

struct CompanionReference {
  std::string fileName;     // as written between the quotes
  uint32_t offset = 0;      // the record's first byte in the companion
  bool longString = false;  // written with `$`: the record is a long string
  bool operator==(const CompanionReference&) const = default;
};

// A property value that is a companion reference, read; nullopt for any other value. Blanks
// after the offset are allowed; hexadecimal digits of either case are read.
std::optional<CompanionReference> ParseCompanionReference(std::string_view value);

// The value as VB6 writes it: `$"Form1.frx":00A6`.
std::string FormatCompanionReference(const CompanionReference& reference);

// An offset as VB6 writes it: upper-case hexadecimal, at least four digits ("00A6", "1268C").
std::string FormatCompanionOffset(uint32_t offset);

// The extension of the companion of a component file of this kind: ".frx" for forms, ".ctx",
// ".pgx", ".dox", ".dsx"; empty for modules and classes, which have none.
std::string_view CompanionExtension(FileKind kind);

// The companion's bare name for a component file: the component's file name (a folder before
// it, with either slash, is dropped) with the extension of its kind in place of its own,
// "Form1.frm" giving "Form1.frx". Empty for modules and classes.
std::string CompanionFileName(std::string_view componentFileName, FileKind kind);

}  // namespace ide
