#include "host/scan/scan_buffer.h"

#include "automation/error.h"
#include "host/scan/scan_result.h"

namespace host::scan {

const automation::ClassInfo& ScanBuffer::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<ScanBuffer>("ScanBuffer")
          .Get("Request", &ScanBuffer::Request)
          .Put("Request", &ScanBuffer::SetRequest)
          .Method("AddResult", &ScanBuffer::AddResult, {"Result"})
          .Get("Results", &ScanBuffer::Results)
          .Get("ResultCount", &ScanBuffer::ResultCount)
          .Method("Clear", &ScanBuffer::Clear)
          .Build();
  return info;
}

void ScanBuffer::AddResult(const std::string& result) {
  if (!IsOneScan(result))
    automation::Raise(automation::err::kInvalidCall, "a scan result must be one encoded result");
  results_.push_back(result);
}

std::string ScanBuffer::Results() const {
  std::size_t size = 0;
  for (const auto& result : results_)
    size += result.size();
  std::string out;
  out.reserve(size);
  for (const auto& result : results_)
    out += result;
  return out;
}

}  // namespace host::scan
