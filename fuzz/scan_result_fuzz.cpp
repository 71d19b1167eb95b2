// The scan results as qx reads them from the IDE's process: any bytes either decode or raise a
// VB error, never more; what decodes encodes anew to bytes that decode to the same.
//
// Input: edits of a valid answer of the agent (two outcomes, one holding a scan with every field
// set), so that the reader meets messages that are nearly right: a byte giving the length to
// keep (as a share of 255), then pairs of bytes, an offset (scaled to the answer) and the value
// to put there.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "automation/error.h"
#include "fuzz_support.h"
#include "host/scan/scan_result.h"

namespace {

using host::scan::ComponentScan;

std::string ValidAnswer() {
  ComponentScan scan;
  scan.collection = "Forms";
  scan.component = "frmMain";
  host::scan::ScanPlace place;
  place.id = "frmMain/procedure/Form_Load";
  place.kind = "procedure";
  place.name = "Form_Load";
  place.text = "Private Sub Form_Load()\r\n  Caption = \"Stock\"\r\nEnd Sub";
  place.matches = {{2, 13, 18, "Stock", "Store"}, {2, 2, 9, "Caption", std::nullopt}};
  place.replacement = "";
  place.written = true;
  place.resets = "ItemData (2 values)";
  place.error = host::scan::ScanError{5000, "refused", "Option1.Caption"};
  scan.places = {place, place};
  scan.problems = {{91, "no object", "procedures"}};
  return host::scan::EncodeScannedOutcome(host::scan::EncodeScan(scan) +
                                          host::scan::EncodeScan(ComponentScan{})) +
         host::scan::EncodeFailedOutcome(automation::Error(35, "", "not defined"), true);
}

bool Same(const ComponentScan& a, const ComponentScan& b) {
  if (a.collection != b.collection || a.component != b.component ||
      a.places.size() != b.places.size() || a.problems.size() != b.problems.size()) {
    return false;
  }
  for (size_t i = 0; i < a.places.size(); ++i) {
    const auto& p = a.places[i];
    const auto& q = b.places[i];
    if (p.id != q.id || p.text != q.text || p.matches.size() != q.matches.size() ||
        p.replacement != q.replacement || p.written != q.written || p.resets != q.resets ||
        p.error.has_value() != q.error.has_value()) {
      return false;
    }
    for (size_t m = 0; m < p.matches.size(); ++m) {
      if (p.matches[m].line != q.matches[m].line || p.matches[m].text != q.matches[m].text ||
          p.matches[m].replacement != q.matches[m].replacement) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string valid = ValidAnswer();
  if (size == 0) return 0;
  std::string answer = valid.substr(0, valid.size() * data[0] / 255);
  for (size_t i = 1; i + 1 < size && !answer.empty(); i += 2)
    answer[data[i] * answer.size() / 256] = static_cast<char>(data[i + 1]);
  std::vector<host::scan::AgentOutcome> outcomes;
  try {
    outcomes = host::scan::DecodeOutcomes(answer);
  } catch (const automation::Error& e) {
    QX_FUZZ_CHECK(e.Number() == 5);
    return 0;
  }
  for (const host::scan::AgentOutcome& outcome : outcomes) {
    for (const ComponentScan& scan : outcome.scans) {
      const std::vector<ComponentScan> again =
          host::scan::DecodeScans(host::scan::EncodeScan(scan));
      QX_FUZZ_CHECK(again.size() == 1 && Same(again[0], scan));
    }
  }
  return 0;
}
