#pragma once
// The declared types of the properties that component objects and controls expose, and the
// standard automation coercions between a variant and each of them: what a read returns and
// what a write hands on.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "automation/object.h"
#include "automation/variant.h"

namespace components {

enum class DeclaredType : uint8_t {
  kBoolean,
  kInteger,  // 16-bit
  kLong,     // 32-bit; also the enumerations (declared with their name)
  kColour,   // the 32-bit OLE colour, "OLE_COLOR"
  kSingle,
  kString,
  kObject,
};

// The automation type that carries a value of the declared type.
automation::VarType CarrierType(DeclaredType type);

// The name a colour is declared with in type information.
inline constexpr std::string_view kColourTypeName = "OLE_COLOR";

// The value converted to the declared type (a 32-bit integer for Long and Colour, a 16-bit one
// for Integer, ...); raises the conversion's own error (13, 6) when it cannot be converted.
automation::Variant ToDeclared(const automation::Variant& value, DeclaredType type);

// The name a property's value is declared with in type information: its enumeration,
// "OLE_COLOR" for a colour, else empty (the automation type says it all).
std::string_view DeclaredTypeName(DeclaredType type, std::string_view enumeration);

// Adds each property of a table (rows with name, type, enumeration and readOnly), in its order, as
// a read and (unless read only) a write that call Read(self, row) and Write(self, row, value).
template <class C, class Row, class Read, class Write>
void AddPropertyMembers(automation::ClassBuilder<C>& builder, std::span<const Row> table, Read read,
                        Write write) {
  for (const Row& row : table) {
    const automation::VarType carrier = CarrierType(row.type);
    builder.Raw(std::string(row.name), automation::MemberKind::Get, carrier, {},
                [&row, read](C& self, automation::Args&) { return read(self, row); });
    builder.Declared(std::string(DeclaredTypeName(row.type, row.enumeration)));
    if (row.readOnly) continue;
    builder.Raw(std::string(row.name), automation::MemberKind::Put, carrier, {"RHS"},
                [&row, write](C& self, automation::Args& args) {
                  write(self, row, args.at(0));
                  return automation::Variant();
                });
    builder.Declared(std::string(DeclaredTypeName(row.type, row.enumeration)));
  }
}

}  // namespace components
