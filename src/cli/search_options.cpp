#include "cli/search_options.h"

#include <fnmatch.h>

#include <algorithm>

#include "automation/casefold.h"
#include "automation/error.h"
#include "contracts/component_kinds.h"
#include "host/scan/matcher.h"
#include "host/scan/replacement.h"
#include "host/scan/scan_request.h"

namespace cli {
namespace {

// Error 5, as VB raises it for an argument it cannot take.
[[noreturn]] void InvalidArgument(const std::string& description) {
  throw automation::Error(5, "qx", description);
}

std::string KnownKinds() {
  std::string names;
  for (const auto& kind : contracts::kComponentKinds)
    names += (names.empty() ? "" : ", ") + std::string(kind.collection);
  return names;
}

}  // namespace

const std::vector<std::string>& ScopeNames() {
  static const std::vector<std::string> names(host::scan::kScopes.begin(),
                                              host::scan::kScopes.end());
  return names;
}

void ValidateSearchOptions(SearchOptions& options) {
  std::string places;
  for (const std::string& name : ScopeNames())
    places.append(places.empty() ? "" : ", ").append(name);
  if (options.scope.empty()) InvalidArgument("--in needs at least one of: " + places);
  for (const std::string& scope : options.scope) {
    if (std::find(ScopeNames().begin(), ScopeNames().end(), scope) == ScopeNames().end())
      InvalidArgument("--in: unknown place \"" + scope + "\"; the places are " + places);
  }
  for (std::string& kind : options.kinds) {
    bool known = false;
    for (const auto& k : contracts::kComponentKinds) {
      if (automation::EqualsAsciiNoCase(kind, k.collection)) {
        kind = std::string(k.collection);
        known = true;
      }
    }
    if (!known)
      InvalidArgument("--kind: unknown kind \"" + kind + "\"; the kinds are " + KnownKinds());
  }
  const host::scan::Matcher matcher(options.patterns, MatchOptionsOf(options));
  if (options.replacement) host::scan::Replacement replacement(*options.replacement, matcher);
}

host::scan::MatchOptions MatchOptionsOf(const SearchOptions& options) {
  host::scan::MatchOptions match;
  match.literal = options.literal;
  match.wholeWord = options.wordRegexp;
  match.caseMode = options.caseChoice == CaseChoice::Insensitive
                       ? host::scan::CaseMode::kInsensitive
                   : options.caseChoice == CaseChoice::Smart ? host::scan::CaseMode::kSmart
                                                             : host::scan::CaseMode::kSensitive;
  return match;
}

std::string BuildRequest(const SearchOptions& options) {
  host::scan::ScanRequest request;
  request.patterns = options.patterns;
  request.options = MatchOptionsOf(options);
  request.replacement = options.replacement;
  // A replace always writes: with --write into the project, otherwise into the scratch copy that
  // the preview is made from.
  request.write = options.replacement.has_value();
  request.scopes = options.scope;
  if (!options.only.empty()) request.only.emplace(options.only.begin(), options.only.end());
  return request.Encode();
}

bool ComponentSelected(const SearchOptions& options, const std::string& name) {
  if (options.componentGlob.empty()) return true;
  return ::fnmatch(options.componentGlob.c_str(), name.c_str(), FNM_CASEFOLD) == 0;
}

}  // namespace cli
