#pragma once
// A property's values as VB6 handles them: a Variant coerced to the property's type (or refused
// with VB6's error), its defaults as typed Variants, and how the value is written to the form
// file and its binary companion.

#include <cstddef>
#include <string_view>

#include "automation/variant.h"
#include "ide/form/property_catalog.h"
#include "ide/form/property_line.h"

namespace ide::form {

// The value converted to the property's type, as Property.Value's write converts it. The
// conversions are VB's own (automation::Variant), so a value that does not convert raises
// 13 "Type mismatch" and one that does not fit the type 6 "Overflow". On top of them VB6's
// property checks refuse with 380 "Invalid property value":
//  - an enumeration value that is not one of its members;
//  - a number outside the property's range (a DrawWidth of 0, a Timer interval over 65,535);
//  - an OLE colour that is not one: a system colour past the last system colour index, or a
//    high byte other than 0x00, 0x01, 0x02 or 0x80;
//  - a Name that is not a VB name (automation/vb_name.h).
// A colour may also be given as the form file writes it, "&H8000000F&". Object-valued
// properties (Font, Picture...) take an object (Nothing included) and raise 424 "Object
// required" for anything else; lists take their items one at a time (CoerceItem), so a value
// for a whole list raises 380. A read-only property raises 383 before any conversion.
automation::Variant CoerceValue(const PropertyInfo& property, const automation::Variant& value);

// One item of a list property: List items are strings, ItemData items Longs.
automation::Variant CoerceItem(const PropertyInfo& list, const automation::Variant& value);

// The omission default as a Variant of the property's type; Empty for objects, lists and
// properties without one. A default that is the object's name gives `objectName`.
automation::Variant DefaultOf(const PropertyInfo& property, std::string_view objectName = {});
// The value a new object gets (the creation value where there is one, else the default).
automation::Variant CreationValueOf(const PropertyInfo& property, std::string_view objectName);
// Whether a value of the property's type equals its omission default, so that VB6 leaves the
// line out (never true for an always-written property or one without a default).
bool IsOmitted(const PropertyInfo& property, const automation::Variant& value);

// How a property's value is written after `Name = ` in a form file.
enum class ValueForm : uint8_t {
  kString,       // "text", quotes doubled; or a companion reference (see PlaceString)
  kInteger,      // decimal: Integer and Long
  kSingle,       // shortest decimal form: 8.25, 9
  kColour,       // &H8000000F&
  kBoolean,      // -1  'True, 0   'False
  kEnumeration,  // 3  'Windows Default: the number, two blanks, the member's description
  kShortcut,     // unquoted SendKeys text: ^X
  kFontBlock,    // a BeginProperty Font ... EndProperty block
  kObjectBlock,  // a BeginProperty block with its class identifier (DataFormat)
  kCompanion,    // a reference into the companion: "Form1.frx":0000 (pictures, lists, blobs)
  kNone,         // never written (the name, derived and runtime-only properties)
};
ValueForm FormOf(const PropertyInfo& property);

// Where a string value is saved.
enum class StringStorage : uint8_t {
  kInline,         // on the line, quoted
  kCompanion,      // a companion record, referenced without `$` (a MultiLine TextBox's Text)
  kLongCompanion,  // a `$` companion record
};
// A string longer than kLongestInlineString bytes (property_line.h), or one with a line break,
// goes to the companion.
// `multiLine` is the object's MultiLine setting (only a TextBox's Text heeds it).
StringStorage PlaceString(const PropertyInfo& property, std::string_view value, bool multiLine);

}  // namespace ide::form
