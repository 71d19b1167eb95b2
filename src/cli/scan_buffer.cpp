#include "cli/scan_buffer.h"

#include <unistd.h>

#include "contracts/driver_interfaces.h"
#include "host/host_utility.h"

namespace cli {

ScanBufferView::ScanBufferView() : d_(automation::CreateObject("qxlib41.ScanBuffer")) {}

RegisteredBuffer::RegisteredBuffer(const ScanBufferView& buffer) {
  static int serial = 0;
  name_ = "qx-scan-" + std::to_string(::getpid()) + "-" + std::to_string(++serial);
  cookie_ = host::HostUtility::Instance()->RegisterObject(name_, buffer.object());
}

RegisteredBuffer::~RegisteredBuffer() {
  try {
    host::HostUtility::Instance()->RevokeObject(cookie_);
  } catch (...) {
    // Revoking only drops the table's entry; an entry of an ended process goes by itself.
  }
}

std::vector<ComponentScan> RunBuffer::Scan(const automation::ObjectRef& object,
                                           const std::string& project, const std::string& component,
                                           bool writable, const std::string& request) {
  if (!registration_) {
    buffer_.emplace();
    registration_.emplace(*buffer_);
  }
  if (request != request_) {
    buffer_->SetRequest(request);
    request_ = request;
  }
  buffer_->Clear();
  contracts::IObject(object).Scan(project, component, writable, registration_->name());
  const std::string results = buffer_->Results();
  buffer_->Clear();
  return host::scan::DecodeScans(results);
}

void RunBuffer::Release() {
  registration_.reset();
  buffer_.reset();
  request_.clear();
}

}  // namespace cli
