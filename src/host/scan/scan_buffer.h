#pragma once
// ScanBuffer: where qx and the Scanner meet. qx puts its request into a buffer, registers the
// buffer in the object table under a name and hands that name to the component object's Scan;
// the Scanner, in the IDE's process, finds the buffer by name, reads the request in one call and
// hands back its results for the component in one call. qx then reads every result from its own
// buffer object.
//
// The request is a JSON document (scan_request.h), each result one encoded ComponentScan
// (scan_result.h); the buffer keeps them as they came, checking that a result is one.

#include <string>
#include <vector>

#include "automation/object.h"

namespace host::scan {

class ScanBuffer : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.ScanBuffer";

  const automation::ClassInfo& Class() const override;

  const std::string& Request() const { return request_; }
  void SetRequest(std::string request) { request_ = std::move(request); }
  // Keeps the results of one ScanObject call. Bytes that are not one encoded result raise 5.
  void AddResult(const std::string& result);
  // Every result kept so far, one after another in the order they arrived (DecodeScans reads
  // them).
  std::string Results() const;
  int32_t ResultCount() const { return static_cast<int32_t>(results_.size()); }
  // Forgets the results (the request stays).
  void Clear() { results_.clear(); }

 private:
  std::string request_;
  std::vector<std::string> results_;
};

}  // namespace host::scan
