#pragma once
// A Scanner run in this process, as the host makes one: a scan buffer registered under a name in
// a fresh qx home, the request put in it, ScanObject called on a stand-in component, and the one
// result document read back.

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "automation/object.h"
#include "host/host_utility.h"
#include "host/register.h"
#include "host/scan/scan_buffer.h"
#include "support/temp_home.h"

namespace qxtest {

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
    const nlohmann::json results = nlohmann::json::parse(buffer->Results());
    EXPECT_EQ(results.size(), 1u);
    return results.at(0);
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
