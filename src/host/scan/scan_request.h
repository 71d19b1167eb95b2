#pragma once
// ScanRequest: what qx asks the Scanner to do, as it stands in a scan buffer:
//
//   {"patterns": ["..."], "literal": false, "case": "sensitive" | "insensitive" | "smart",
//    "wordRegexp": false, "replacement": null | "text with $1 ${name} $$",
//    "write": false, "scope": ["code", "names"], "codeOnly": false, "control": null | "Option1",
//    "only": null | ["Module1/procedure/Foo", ...]}
//
// Only "patterns" is required. Left out, the options are off, the case is "sensitive", there is
// no replacement, nothing is written and every scope is searched (an empty "scope" searches
// none). "codeOnly" matches outside string literals and comments only (MatchOptions::codeOnly).
// "control" narrows the places of the names, properties and html scopes to one control, every
// element of a control array of that name included: the component's own name, properties and
// HTML are left out, its code is not. "only" narrows the writes to the places of those ids
// (scanner.h): every place is still searched and shown with its replacement, but only the listed
// ones are written, so that a write does exactly what a scan before it accepted. A request that is
// not of this form raises 5 saying what is wrong with it.

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

  bool Wants(std::string_view scope) const;
  // Whether the places of the control of this name ("Option1(2)") are walked.
  bool WantsControl(std::string_view name) const;
  // Whether the place of this id is written when its text changes.
  bool Selects(std::string_view id) const;
};

}  // namespace host::scan
