#include "host/scan/scan_agent.h"

#include <unistd.h>

#include <nlohmann/json.hpp>

#include "automation/error.h"
#include "host/object_table.h"
#include "host/scan/scan_buffer.h"
#include "host/scan/scan_result.h"

namespace host::scan {
namespace {

using automation::Dispatch;
using automation::ObjectRef;
using json = nlohmann::json;
using Clock = std::chrono::steady_clock;

}  // namespace

ScanAgent::ScanAgent() : buffer_(std::make_shared<ScanBuffer>()) {}

ScanAgent::~ScanAgent() {
  if (cookie_ != 0) ObjectTable::Get().Remove(cookie_);
}

const automation::ClassInfo& ScanAgent::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<ScanAgent>("ScanAgent")
          .Method("ScanComponents", &ScanAgent::ScanComponents,
                  {"Dispatcher", "Project", "ProjectName", "Components", "Request"})
          .Build();
  return info;
}

void ScanAgent::Register() {
  if (cookie_ != 0) return;
  static int serial = 0;
  bufferName_ = "qx-agent-" + std::to_string(::getpid()) + "-" + std::to_string(++serial);
  // The buffer's Scanners run in this process, once per component: the name is private to it.
  cookie_ = ObjectTable::Get().AddPrivate(bufferName_, buffer_);
}

std::string ScanAgent::ScanComponents(const ObjectRef& dispatcher, const ObjectRef& project,
                                      const std::string& projectName, const std::string& components,
                                      const std::string& request) {
  if (!dispatcher) automation::Raise(automation::err::kObjectNotSet, "no project dispatcher");
  const json list = json::parse(components, nullptr, false);
  if (!list.is_array()) {
    automation::Raise(automation::err::kInvalidCall, "the components must be a JSON array");
  }
  Register();
  const Dispatch factories(dispatcher);
  const Clock::time_point started = Clock::now();
  std::string answer;
  for (size_t i = 0; i < list.size(); ++i) {
    if (i > 0 && Clock::now() - started >= kSlice) break;
    const json& item = list[i];
    const std::string name = item.value("name", "");
    // A component with a request of its own (the places a write may change) is scanned with it.
    buffer_->SetRequest(item.value("request", request));
    ObjectRef object;
    try {
      object = factories.Call(item.value("factory", ""), project, name).ToObject();
      if (!object) automation::Raise(automation::err::kObjectNotSet);
    } catch (const automation::Error& e) {
      answer += EncodeFailedOutcome(e, true);
      continue;
    }
    buffer_->Clear();
    try {
      Dispatch(object, "IObject")
          .Call("Scan", projectName, name, item.value("updatable", false), bufferName_);
      answer += EncodeScannedOutcome(buffer_->Results());
    } catch (const automation::Error& e) {
      answer += EncodeFailedOutcome(e, false);
    }
  }
  buffer_->Clear();
  return answer;
}

}  // namespace host::scan
