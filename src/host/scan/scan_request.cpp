#include "host/scan/scan_request.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "automation/casefold.h"
#include "automation/error.h"

namespace host::scan {
namespace {

using nlohmann::json;

std::string ScopeList() {
  std::string list;
  for (std::string_view scope : kScopes)
    list.append(list.empty() ? "" : ", ").append(scope);
  return list;
}

bool Named(const std::vector<std::string>& scopes, std::string_view scope) {
  return std::find(scopes.begin(), scopes.end(), scope) != scopes.end();
}

[[noreturn]] void Bad(const std::string& what) {
  automation::Raise(automation::err::kInvalidCall, "scan request: " + what);
}

bool Flag(const json& request, const char* key) {
  auto it = request.find(key);
  if (it == request.end() || it->is_null()) return false;
  if (!it->is_boolean()) Bad(std::string("\"") + key + "\" must be true or false");
  return it->get<bool>();
}

CaseMode ParseCase(const json& request) {
  auto it = request.find("case");
  if (it == request.end() || it->is_null()) return CaseMode::kSensitive;
  if (it->is_string()) {
    const auto& mode = it->get_ref<const std::string&>();
    if (mode == "sensitive") return CaseMode::kSensitive;
    if (mode == "insensitive") return CaseMode::kInsensitive;
    if (mode == "smart") return CaseMode::kSmart;
  }
  Bad("\"case\" must be \"sensitive\", \"insensitive\" or \"smart\", not " + it->dump());
}

std::vector<std::string> Strings(const json& request, const char* key) {
  std::vector<std::string> out;
  auto it = request.find(key);
  if (it == request.end() || it->is_null()) return out;
  if (!it->is_array()) Bad(std::string("\"") + key + "\" must be a list of strings");
  for (const auto& item : *it) {
    if (!item.is_string()) Bad(std::string("\"") + key + "\" must be a list of strings");
    out.push_back(item.get<std::string>());
  }
  return out;
}

}  // namespace

ScanRequest ScanRequest::Parse(std::string_view text) {
  const json request = json::parse(text, nullptr, false);
  if (request.is_discarded() || !request.is_object()) Bad("not a JSON object");

  ScanRequest out;
  out.patterns = Strings(request, "patterns");
  if (out.patterns.empty()) Bad("\"patterns\" must name at least one pattern");
  out.options.literal = Flag(request, "literal");
  out.options.caseMode = ParseCase(request);
  out.options.wholeWord = Flag(request, "wordRegexp");
  if (Flag(request, "codeOnly")) out.options.codeParts = kStatements;
  if (auto it = request.find("control"); it != request.end() && !it->is_null()) {
    if (!it->is_string() || it->get_ref<const std::string&>().empty())
      Bad("\"control\" must be a control's name or null");
    out.control = it->get<std::string>();
  }
  if (auto it = request.find("replacement"); it != request.end() && !it->is_null()) {
    if (!it->is_string()) Bad("\"replacement\" must be a string or null");
    out.replacement = it->get<std::string>();
  }
  out.write = Flag(request, "write");
  if (auto it = request.find("only"); it != request.end() && !it->is_null()) {
    const std::vector<std::string> ids = Strings(request, "only");
    out.only.emplace(ids.begin(), ids.end());
  }
  if (out.write && !out.replacement) Bad("writing needs a \"replacement\"");
  if (auto it = request.find("scope"); it == request.end() || it->is_null()) return out;
  out.scopes = Strings(request, "scope");
  for (const auto& scope : *out.scopes) {
    if (std::find(kScopes.begin(), kScopes.end(), scope) == kScopes.end()) {
      Bad("unknown scope \"" + scope + "\" (known: " + ScopeList() + ")");
    }
  }
  return out;
}

std::string ScanRequest::Encode() const {
  nlohmann::ordered_json request;
  request["patterns"] = patterns;
  request["literal"] = options.literal;
  request["case"] = options.caseMode == CaseMode::kInsensitive ? "insensitive"
                    : options.caseMode == CaseMode::kSmart     ? "smart"
                                                               : "sensitive";
  request["wordRegexp"] = options.wholeWord;
  request["replacement"] = replacement ? nlohmann::ordered_json(*replacement) : nullptr;
  request["write"] = write;
  if (scopes) request["scope"] = *scopes;
  if (options.codeParts != kEveryCodePart) request["codeOnly"] = true;
  if (control) request["control"] = *control;
  if (only) request["only"] = *only;
  // Patterns are UTF-8 by the time a request is made (the matcher compiles them so); should
  // a text not be, its bad bytes become U+FFFD rather than the request failing to encode.
  return request.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

bool ScanRequest::Wants(std::string_view scope) const {
  if (!scopes) return true;
  if (scope == kScopeCode) return CodeParts() != 0;
  return Named(*scopes, scope);
}

uint8_t ScanRequest::CodeParts() const {
  if (!scopes || Named(*scopes, kScopeCode)) return options.codeParts;
  uint8_t parts = 0;
  if (Named(*scopes, kScopeStatements)) parts |= kStatements;
  if (Named(*scopes, kScopeComments)) parts |= kComments;
  if (Named(*scopes, kScopeStrings)) parts |= kStrings;
  return parts & options.codeParts;
}

bool ScanRequest::WantsControl(std::string_view name) const {
  if (!control) return true;
  // An element of a control array is named with its index: Option1(2).
  return automation::SameVbName(name.substr(0, name.find('(')), *control);
}

bool ScanRequest::Selects(std::string_view id) const {
  return !only || only->contains(id);
}

}  // namespace host::scan
