#pragma once
// A Scanner run in this process, as the host makes one: a scan buffer registered under a name in
// a fresh qx home, the request put in it, ScanObject called on a stand-in component, and the one
// result read back, shown as JSON so that a case can name any field of it in one expression.

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "automation/object.h"
#include "host/host_utility.h"
#include "host/register.h"
#include "host/scan/scan_buffer.h"
#include "host/scan/scan_result.h"
#include "support/temp_home.h"

namespace qxtest {

inline nlohmann::json AsJson(const host::scan::ScanError& error) {
  nlohmann::json out{{"number", error.number}, {"description", error.description}};
  if (!error.place.empty()) out["place"] = error.place;
  return out;
}

// A scan's result with its fields as named in the result type; a field left out is null, but a
// match's replacement, which is there only when the scan replaces.
inline nlohmann::json AsJson(const host::scan::ComponentScan& scan) {
  using nlohmann::json;
  const auto optional = [](const auto& value) { return value ? json(*value) : json(nullptr); };
  json places = json::array();
  for (const host::scan::ScanPlace& place : scan.places) {
    json matches = json::array();
    for (const host::scan::ScanMatch& match : place.matches) {
      json& m = matches.emplace_back(
          json{{"line", match.line}, {"start", match.start}, {"end", match.end}});
      m["text"] = match.text;
      if (match.replacement) m["replacement"] = *match.replacement;
    }
    places.push_back({{"id", place.id},
                      {"kind", place.kind},
                      {"name", place.name},
                      {"control", place.control.empty() ? json(nullptr) : json(place.control)},
                      {"property", place.property},
                      {"text", place.text},
                      {"matches", std::move(matches)},
                      {"replacement", optional(place.replacement)},
                      {"written", place.written},
                      {"error", place.error ? AsJson(*place.error) : json(nullptr)}});
  }
  json problems = json::array();
  for (const host::scan::ScanError& problem : scan.problems)
    problems.push_back(AsJson(problem));
  return {{"collection", scan.collection},
          {"component", scan.component},
          {"places", std::move(places)},
          {"problems", std::move(problems)}};
}

class ScanHarness {
 public:
  explicit ScanHarness(std::string bufferName) : bufferName_(std::move(bufferName)) {
    host::RegisterClasses();
    cookie_ = utility_->RegisterObject(bufferName_, buffer);
  }
  ~ScanHarness() { utility_->RevokeObject(cookie_); }
  ScanHarness(const ScanHarness&) = delete;
  ScanHarness& operator=(const ScanHarness&) = delete;

  // Scans the object as component `component` of collection `collection` of project
  // "Inventory", under the buffer's name or another.
  void Call(const automation::ObjectRef& object, const std::string& collection,
            const std::string& component, bool updatable = true,
            const std::string& bufferName = {}) const {
    automation::Dispatch(automation::CreateObject("qxlib41.Scanner"))
        .Call("ScanObject", "Inventory", collection, component, updatable, object,
              bufferName.empty() ? bufferName_ : bufferName);
  }

  // The one result document of a scan with this request.
  nlohmann::json Scan(const nlohmann::json& request, const automation::ObjectRef& object,
                      const std::string& collection, const std::string& component,
                      bool updatable = true) const {
    buffer->SetRequest(request.dump());
    buffer->Clear();
    Call(object, collection, component, updatable);
    const std::vector<host::scan::ComponentScan> results =
        host::scan::DecodeScans(buffer->Results());
    EXPECT_EQ(results.size(), 1u);
    return AsJson(results.at(0));
  }

  const std::string& bufferName() const { return bufferName_; }

  std::shared_ptr<host::scan::ScanBuffer> buffer = std::make_shared<host::scan::ScanBuffer>();

 private:
  TempHome home_;
  std::shared_ptr<host::HostUtility> utility_ = host::HostUtility::Instance();
  std::string bufferName_;
  int32_t cookie_ = 0;
};

}  // namespace qxtest
