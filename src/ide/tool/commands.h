#pragma once
// The headless IDE's own command line (qxvb6.exe): what it can show of a project and the
// round-trip check that proves it writes files back as it read them.

#include <iosfwd>
#include <string>

namespace ide::tool {

// Exit statuses: 0 all went well, 1 a component could not be loaded or a file did not come back
// as it was, 2 the project itself could not be used.
inline constexpr int kExitOk = 0;
inline constexpr int kExitComponentProblem = 1;
inline constexpr int kExitError = 2;

struct DumpOptions {
  std::string projectFile;
  std::string component;    // empty: every component
  bool properties = false;  // the properties instead of the code (RunDumpProperties)
};

// Prints the model: per component its line (name, type, designer, file, dirty), then its code
// module's size and one line per procedure in module order.
int RunDump(const DumpOptions& options, std::ostream& out, std::ostream& err);

// Prints, for each form-like component and designer (or the one named, whatever its kind), one
// JSON object a line: {"component", "type" (vbext_ComponentType), "properties", "controls": [{
// "name" ("Text1(3)" for an array member), "progId", "properties"}]}, every property as the
// Properties collection answers it: Booleans as booleans, numbers (colours, enumerations) as
// numbers, strings as UTF-8, fonts as {"Name", "Size", "Bold", "Italic", "Underline",
// "Strikethrough", "Weight", "Charset"}, lists as arrays (List of strings, ItemData of numbers),
// a picture or another object kept in the companion as {"picture": bytes of its data}, no
// picture and other objects as null. A component that cannot be loaded: its error on err, status
// 1, the others still printed.
int RunDumpProperties(const DumpOptions& options, std::ostream& out, std::ostream& err);

struct SetOptions {
  std::string projectFile;
  std::string target;    // "COMPONENT" or "COMPONENT.CONTROL", CONTROL "Name(3)" in an array
  std::string property;  // as the Properties window names it, or a live control's (FontBold)
  std::string value;     // JSON: a string, a number, a boolean, or an array of strings (List)
};

// Writes one property through the component's or the control's Properties collection (the
// live control for what only it has; List given as an array is replaced through Clear and
// AddItem, which empties ItemData), then saves the component as the IDE saves it. Any error
// (no such component, control or property, a value VB6 refuses, VALUE not JSON) is printed
// with its VB error number, status 2, and nothing is written.
int RunSet(const SetOptions& options, std::ostream& err);

struct ResaveOptions {
  std::string projectFile;
};

// Loads every component and saves it through the line writer (as after an edit), then reads
// each file back and reports any whose bytes changed.
int RunResave(const ResaveOptions& options, std::ostream& out, std::ostream& err);

}  // namespace ide::tool
