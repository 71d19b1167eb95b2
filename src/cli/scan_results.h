#pragma once
// What the scanner found in a component, as the scan buffer hands it back (one document per
// component scanned). Where each match lies in the component's file is file_matches.h's.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/error.h"

namespace cli {

struct ScanError {
  int32_t number = 0;
  std::string description;
  std::string place;  // of a problem: the place it concerns ("Option1.Caption"), when known
};

struct ScanMatch {
  size_t line = 1;   // 1-based, within the place's text
  size_t start = 0;  // bytes within that line
  size_t end = 0;
  std::string text;
  std::optional<std::string> replacement = std::nullopt;  // of a replace: what it becomes
};

struct ScanPlace {
  std::string id;        // "Module1/procedure/Foo": the same in every scan of the component
  std::string kind;      // "procedure", "name", "property", "list", "controlName" or "html"
  std::string name;      // "<declarations>", "Foo", "Value.Get"; for a name, the component's name
  std::string control;   // a control's place: the control ("Option1(2)"), else ""
  std::string property;  // a property's place: the member ("Caption", "List", "Name", "HTML")
  std::string text;      // as read, lines joined by CR LF
  std::vector<ScanMatch> matches;
  std::optional<std::string> replacement;  // the whole new text
  bool written = false;
  std::string
      resets;  // what writing it dropped that its text does not show ("ItemData (3 values)")
  std::optional<ScanError> error;
};

struct ComponentScan {
  std::string project;
  std::string collection;
  std::string component;
  bool updatable = false;
  std::vector<ScanPlace> places;
  std::vector<ScanError> problems;
};

// The buffer's Results: a JSON array of component documents. Raises 5 naming what is wrong when
// the document is not one.
std::vector<ComponentScan> ParseScanResults(std::string_view json);

// What the scan agent did with one component of a batch (host/scan/scan_agent.h): the result
// documents of its scan, or the error that stopped it and whether making the component object
// raised it.
struct AgentOutcome {
  std::vector<ComponentScan> scans;
  std::optional<automation::Error> error;
  bool atFactory = false;
};

// The agent's answer, one outcome per component it did. Raises 5 when it is not one.
std::vector<AgentOutcome> ParseAgentOutcomes(std::string_view json);

}  // namespace cli
