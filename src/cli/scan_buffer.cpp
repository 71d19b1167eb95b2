#include "cli/scan_buffer.h"

#include <unistd.h>

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

}  // namespace cli
