#include "host/scan/scan_buffer.h"

#include "automation/error.h"

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
  // Results is built by joining the documents, so each must be one object: its first and last
  // characters are braces. Its inside is not parsed here (a scan of every procedure of a large
  // project hands over megabytes); the reader of Results parses the whole once and says when a
  // document is not well-formed.
  const std::size_t first = result.find_first_not_of(" \t\r\n");
  const std::size_t last = result.find_last_not_of(" \t\r\n");
  if (first == std::string::npos || result[first] != '{' || result[last] != '}' || first == last) {
    automation::Raise(automation::err::kInvalidCall, "a scan result must be one JSON object");
  }
  results_.push_back(result);
}

std::string ScanBuffer::Results() const {
  std::size_t size = 2;
  for (const auto& result : results_)
    size += result.size() + 1;
  std::string out;
  out.reserve(size);
  out += '[';
  for (std::size_t i = 0; i < results_.size(); ++i) {
    if (i) out += ',';
    out += results_[i];
  }
  out += ']';
  return out;
}

}  // namespace host::scan
