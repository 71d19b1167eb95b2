#include "cli/scan_results.h"

#include <nlohmann/json.hpp>
#include <optional>

#include "automation/error.h"

namespace cli {
namespace {

using json = nlohmann::json;

ScanError ErrorOf(const json& value) {
  return {value.at("number").get<int32_t>(), value.at("description").get<std::string>(),
          value.value("place", std::string())};
}

ScanPlace PlaceOf(const json& value) {
  ScanPlace place;
  place.id = value.value("id", std::string());
  place.kind = value.at("kind").get<std::string>();
  place.name = value.at("name").get<std::string>();
  if (value.contains("control") && value["control"].is_string())
    place.control = value["control"].get<std::string>();
  if (value.contains("property") && value["property"].is_string())
    place.property = value["property"].get<std::string>();
  place.text = value.value("text", std::string());
  for (const json& m : value.at("matches")) {
    ScanMatch& match = place.matches.emplace_back();
    match.line = m.at("line").get<size_t>();
    match.start = m.at("start").get<size_t>();
    match.end = m.at("end").get<size_t>();
    match.text = m.value("text", std::string());
    if (auto it = m.find("replacement"); it != m.end() && it->is_string())
      match.replacement = it->get<std::string>();
  }
  if (value.contains("replacement") && !value["replacement"].is_null())
    place.replacement = value["replacement"].get<std::string>();
  place.written = value.value("written", false);
  place.resets = value.value("resets", std::string());
  if (value.contains("error") && !value["error"].is_null()) place.error = ErrorOf(value["error"]);
  return place;
}

std::vector<ComponentScan> ScansOf(const json& documents) {
  std::vector<ComponentScan> scans;
  for (const json& d : documents) {
    ComponentScan scan;
    scan.project = d.value("project", std::string());
    scan.collection = d.at("collection").get<std::string>();
    scan.component = d.at("component").get<std::string>();
    scan.updatable = d.value("updatable", false);
    for (const json& place : d.at("places"))
      scan.places.push_back(PlaceOf(place));
    if (d.contains("problems")) {
      for (const json& problem : d["problems"])
        scan.problems.push_back(ErrorOf(problem));
    }
    scans.push_back(std::move(scan));
  }
  return scans;
}

[[noreturn]] void Unreadable(const json::exception& e) {
  throw automation::Error(5, "qx", std::string("The scan results are not readable: ") + e.what());
}

}  // namespace

std::vector<ComponentScan> ParseScanResults(std::string_view text) {
  try {
    return ScansOf(json::parse(text));
  } catch (const json::exception& e) {
    Unreadable(e);
  }
}

std::vector<AgentOutcome> ParseAgentOutcomes(std::string_view text) {
  try {
    std::vector<AgentOutcome> outcomes;
    for (const json& element : json::parse(text)) {
      AgentOutcome& outcome = outcomes.emplace_back();
      if (const auto results = element.find("results"); results != element.end()) {
        outcome.scans = ScansOf(*results);
        continue;
      }
      const ScanError error = ErrorOf(element.at("error"));
      outcome.error = automation::Error(error.number, "", error.description);
      outcome.atFactory = element.at("at").get<std::string>() == "factory";
    }
    return outcomes;
  } catch (const json::exception& e) {
    Unreadable(e);
  }
}

}  // namespace cli
