#pragma once
// qx's side of the scan buffer: the object that carries a search request to the scanner in the
// IDE's process and brings its results back. Created in qx's process and called by name, so
// the host library's class serves it wherever it lives.

#include <optional>
#include <string>
#include <vector>

#include "automation/object.h"
#include "cli/scan_results.h"

namespace cli {

class ScanBufferView {
 public:
  // A new, empty buffer ("qxlib41.ScanBuffer").
  ScanBufferView();

  void SetRequest(const std::string& json) const { d_.Put("Request", json); }
  // Every result document so far, as a JSON array.
  std::string Results() const { return d_.Get("Results").ToString(); }
  void Clear() const { d_.Call("Clear"); }
  const automation::ObjectRef& object() const { return d_.object(); }

 private:
  automation::Dispatch d_;
};

// The buffer registered in the object table under a name of its own for as long as it lives,
// so that the scanner in another process finds it.
class RegisteredBuffer {
 public:
  explicit RegisteredBuffer(const ScanBufferView& buffer);
  ~RegisteredBuffer();
  RegisteredBuffer(const RegisteredBuffer&) = delete;
  RegisteredBuffer& operator=(const RegisteredBuffer&) = delete;
  const std::string& name() const { return name_; }

 private:
  std::string name_;
  int32_t cookie_ = 0;
};

// The run's one buffer, made and registered on first use (the session registers its class), which
// carries the requests to every component scanned on its own and brings their results back.
class RunBuffer {
 public:
  // Hands the component object to the scanner with the request and gives back what it found.
  std::vector<ComponentScan> Scan(const automation::ObjectRef& object, const std::string& project,
                                  const std::string& component, bool writable,
                                  const std::string& request);
  // Lets the buffer and its registration go (before the session ends).
  void Release();

 private:
  std::optional<ScanBufferView> buffer_;
  std::optional<RegisteredBuffer> registration_;
  std::string request_;  // the request the buffer holds
};

}  // namespace cli
