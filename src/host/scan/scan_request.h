#pragma once
// ScanRequest: what qx asks the Scanner to do. qx makes one and encodes it into its scan buffer;
// the Scanner parses it from there. As it stands in the buffer:
//
//   {"patterns": ["..."], "literal": false, "case": "sensitive" | "insensitive" | "smart",
//    "wordRegexp": false, "replacement": null | "text with $1 ${name} $$",
//    "write": false, "scope": ["code", "names"], "codeOnly": false, "control": null | "Option1",
//    "only": null | ["Module1/procedure/Foo", ...]}
//
// Only "patterns" is required. Left out, the options are off, the case is "sensitive", there is
// no replacement, nothing is written and every scope is searched (an empty "scope" searches
// none). The scopes "statements", "comments" and "strings" search the procedure texts too, but
// only those parts of them (code_parts.h); "code" is all of each text. "codeOnly" keeps every
// place's matches to the statements (what a rename changes).
// "control" narrows the places of the names, properties and html scopes to one control, every
// element of a control array of that name included: the component's own name, properties and
// HTML are left out, its code is not. "only" narrows the writes to the places of those ids
// (scanner.h): every place is still searched and shown with its replacement, but only the listed
// ones are written, so that a write does exactly what a scan before it accepted. A request that is
// not of this form raises 5 saying what is wrong with it.

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/scan/matcher.h"

namespace host::scan {

// The scopes a request may name: where in a component the Scanner looks.
inline constexpr std::string_view kScopeCode = "code";    // procedure texts
inline constexpr std::string_view kScopeNames = "names";  // the component's name
inline constexpr std::string_view kScopeProperties = "properties";
inline constexpr std::string_view kScopeHtml = "html";
inline constexpr std::string_view kScopeStatements = "statements";  // code outside the next two
inline constexpr std::string_view kScopeComments = "comments";
inline constexpr std::string_view kScopeStrings = "strings";  // string literals' contents
// Every scope, in the order that messages list them.
inline constexpr std::array<std::string_view, 7> kScopes = {
    kScopeCode,  kScopeStatements, kScopeComments, kScopeStrings,
    kScopeNames, kScopeProperties, kScopeHtml};

struct ScanRequest {
  std::vector<std::string> patterns;
  MatchOptions options;
  std::optional<std::string> replacement;
  bool write = false;
  std::optional<std::vector<std::string>> scopes;  // none given: every scope
  std::optional<std::string> control;              // none given: every control, and the component
  // none given: every place that changes is written
  std::optional<std::set<std::string, std::less<>>> only;

  static ScanRequest Parse(std::string_view json);
  // The request as a scan buffer holds it: Parse(Encode()) gives the same request.
  std::string Encode() const;

  // Whether the places of a scope are walked; the procedures ("code") are walked when any part
  // of them is asked for.
  bool Wants(std::string_view scope) const;
  // The parts of the procedure texts that are searched (a CodePart set).
  uint8_t CodeParts() const;
  // Whether the places of the control of this name ("Option1(2)") are walked.
  bool WantsControl(std::string_view name) const;
  // Whether the place of this id is written when its text changes.
  bool Selects(std::string_view id) const;
};

}  // namespace host::scan
