#pragma once
// One property line of a form description, `   Caption         =   "Hello"`, as VB6 writes it:
// its parts when reading, and VB6's layout and value forms when writing.
//
// Layout: the indent (3 spaces a level), the name padded with blanks to 16 columns (a dotted
// `Object.X` pads as if its prefix were not there; a longer name gets no padding), `=`, three
// spaces, the value text. The value text of a boolean or an enumeration carries its comment:
// `-1  'True`, `0   'False`, `2  'Center`.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {
class CodePage;
}

namespace ide::form {

// A reference into the binary companion: `"Form1.frx":00A6`, or `$"Form1.frx":00A6` for a
// string VB6 keeps there because it is long or has line breaks.
struct CompanionReference {
  bool isString = false;  // the `$` form
  std::string fileName;   // between the quotes, as written (VB6 writes the bare file name)
  uint32_t offset = 0;

  friend bool operator==(const CompanionReference&, const CompanionReference&) = default;
};

// The reference a value text holds, or none when it is not exactly one.
std::optional<CompanionReference> ParseCompanionReference(std::string_view value);
// `"X.frx":00A6`: the offset in upper-case hexadecimal, at least four digits.
std::string FormatCompanionReference(const CompanionReference& reference);

// The parts of a property line; the views point into the line.
struct PropertyLineParts {
  std::size_t indent = 0;      // blanks before the name
  std::string_view name;       // "Caption", "Object.Width", "_ExtentX"
  std::string_view value;      // after `=` and its blanks, up to the comment, blanks trimmed
  std::string_view comment;    // after the `'`, as written (may be localised); empty if none
  bool hasComment = false;     // an `'` outside quotes ends the value
  std::string_view valueText;  // everything after `=` and its blanks (value and comment)
};

// Splits `Name = value 'comment`. None when the line has no `=` or no name before it.
std::optional<PropertyLineParts> SplitPropertyLine(std::string_view line);

// The whole line for a property at `indent` blanks, laid out as VB6 lays it out.
std::string FormatPropertyLine(std::size_t indent, std::string_view name,
                               std::string_view valueText);

// Value forms. Each gives the value text VB6 writes after `=   `.
std::string FormatString(std::string_view text);  // quoted, `"` doubled
std::string FormatNumber(int64_t value);          // Integer and Long: plain decimal
std::string FormatSingle(float value);            // shortest form, `.`, no exponent
std::string FormatColour(uint32_t value);         // `&H8000000F&`
std::string FormatBoolean(bool value);            // `-1  'True`, `0   'False`
// `2  'Center`; the description is written as given (the caller's language).
std::string FormatEnumeration(int32_t value, std::string_view description);

// The text of a quoted value (`"a ""b"""` gives `a "b"`); none when the value is not one
// quoted string.
std::optional<std::string> UnquoteString(std::string_view value);

// Whether VB6 keeps this string in the binary companion (as a `$` reference) rather than on
// the line: it has a line break, or it is longer than kLongestInlineString bytes in the file's
// code page. (A MultiLine TextBox's Text always goes there, without `$`: that is the caller's
// rule, since it depends on another property.)
bool StringNeedsCompanion(std::string_view text, const platform::CodePage& codePage);

// The longest string VB6 writes on the line. VB6's own files show strings of up to 126 bytes
// inline and strings from 131 bytes up in the companion; where the limit lies between is not
// known, so we take the middle: up to 128 bytes inline, 129 and longer in the companion.
inline constexpr std::size_t kLongestInlineString = 128;

}  // namespace ide::form
