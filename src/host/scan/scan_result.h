#pragma once
// What the Scanner found in a component: one result type for both processes. The Scanner fills
// a ComponentScan in the IDE's process and encodes it for the scan buffer; qx decodes the
// buffer's results into the same type. The encoding is a Cap'n Proto message per component
// (scan_result.capnp), so that a result of megabytes is copied, never parsed as text.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/error.h"

namespace host::scan {

struct ScanError {
  int32_t number = 0;
  std::string description;
  std::string place;  // of a problem: the place it concerns ("Option1.Caption"), when known

  static ScanError Of(const automation::Error& error) {
    return {error.Number(), error.Description(), {}};
  }
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
  std::string collection;
  std::string component;
  std::vector<ScanPlace> places;
  std::vector<ScanError> problems;
};

// One component's result as the scan buffer keeps it.
std::string EncodeScan(const ComponentScan& scan);

// Every result of a buffer's Results (the encoded results one after another). Raises 5 naming
// what is wrong when the bytes are not such results.
std::vector<ComponentScan> DecodeScans(std::string_view bytes);

// Whether the bytes are exactly one encoded result (the buffer's check of what it is handed).
bool IsOneScan(std::string_view bytes);

// What the scan agent did with one component of a batch: the results of its scan, or the error
// that stopped it and whether making the component object raised it.
struct AgentOutcome {
  std::vector<ComponentScan> scans;
  std::optional<automation::Error> error;
  bool atFactory = false;
};

// One outcome of the agent's answer: the scan buffer's results for the component, or the error.
std::string EncodeScannedOutcome(std::string_view results);
std::string EncodeFailedOutcome(const automation::Error& error, bool atFactory);

// The agent's answer (the outcomes one after another). Raises 5 when it is not one.
std::vector<AgentOutcome> DecodeOutcomes(std::string_view bytes);

}  // namespace host::scan
