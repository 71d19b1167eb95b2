#include "host/scan/scan_agent.h"

#include <unistd.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <functional>

#include "automation/error.h"
#include "automation/remote.h"
#include "host/object_table.h"
#include "host/scan/scan_buffer.h"
#include "host/scan/scan_request.h"
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
          .Method("QueueComponents", &ScanAgent::QueueComponents,
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

ScanAgent::Item ScanAgent::ItemOf(const json& item, const std::string& request) {
  Item parsed;
  parsed.factory = item.value("factory", "");
  parsed.name = item.value("name", "");
  parsed.updatable = item.value("updatable", false);
  // A component with a request of its own (the places a write may change) is scanned with it.
  parsed.request = item.value("request", request);
  return parsed;
}

std::string ScanAgent::ScanOne(const Item& item) {
  buffer_->SetRequest(item.request);
  ObjectRef object;
  try {
    object = Dispatch(dispatcher_).Call(item.factory, project_, item.name).ToObject();
    if (!object) automation::Raise(automation::err::kObjectNotSet);
  } catch (const automation::Error& e) {
    return EncodeFailedOutcome(e, true);
  }
  buffer_->Clear();
  std::string outcome;
  try {
    Dispatch(object, "IObject").Call("Scan", projectName_, item.name, item.updatable, bufferName_);
    outcome = EncodeScannedOutcome(buffer_->Results());
  } catch (const automation::Error& e) {
    outcome = EncodeFailedOutcome(e, false);
  }
  buffer_->Clear();
  return outcome;
}

bool ScanAgent::ReadOnly(const std::string& request) {
  static std::string last;
  static bool lastReadOnly = false;
  if (request == last) return lastReadOnly;
  try {
    lastReadOnly = !ScanRequest::Parse(request).write;
  } catch (const automation::Error&) {
    lastReadOnly = false;  // the scan says what is wrong with it, in its turn
  }
  last = request;
  return lastReadOnly;
}

std::deque<ScanAgent::Item> ScanAgent::Align(const ObjectRef& dispatcher, const ObjectRef& project,
                                             const std::string& projectName,
                                             const std::string& components,
                                             const std::string& request) {
  if (!dispatcher) automation::Raise(automation::err::kObjectNotSet, "no project dispatcher");
  const json list = json::parse(components, nullptr, false);
  if (!list.is_array()) {
    automation::Raise(automation::err::kInvalidCall, "the components must be a JSON array");
  }
  Register();
  std::deque<Item> items;
  for (const json& item : list)
    items.push_back(ItemOf(item, request));
  // The dispatcher is the project's own object here; the project comes from the caller's
  // process, as a proxy made anew for each call.
  if (dispatcher != dispatcher_ || projectName != projectName_) {
    ahead_.clear();
    dispatcher_ = dispatcher;
    projectName_ = projectName;
  }
  project_ = project;
  size_t kept = 0;
  while (kept < ahead_.size() && kept < items.size() && ahead_[kept].first == items[kept])
    ++kept;
  ahead_.resize(kept);
  items.erase(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(kept));
  return items;
}

void ScanAgent::Wait(std::deque<Item> items) {
  // The rest is scanned ahead in the time the IDE has nothing else to do, as long as nothing is
  // written: a caller may stop before it asks for the rest, and a write must be its own.
  waiting_ = std::move(items);
  const bool readOnly = std::all_of(waiting_.begin(), waiting_.end(),
                                    [](const Item& item) { return ReadOnly(item.request); });
  automation::SetIdleWork(shared_from_this(), readOnly && !waiting_.empty()
                                                  ? [this] { return ScanAhead(); }
                                                  : std::function<bool()>());
}

std::string ScanAgent::ScanComponents(const ObjectRef& dispatcher, const ObjectRef& project,
                                      const std::string& projectName, const std::string& components,
                                      const std::string& request) {
  std::deque<Item> items = Align(dispatcher, project, projectName, components, request);
  // What was scanned ahead, while the caller was busy with the last answer, is answered at once.
  std::string answer;
  for (auto& [item, outcome] : ahead_)
    answer += outcome;
  ahead_.clear();
  if (answer.empty() && !items.empty()) {
    const Clock::time_point started = Clock::now();
    do {
      answer += ScanOne(items.front());
      items.pop_front();
    } while (!items.empty() && Clock::now() - started < kSlice);
  }
  Wait(std::move(items));
  return answer;
}

void ScanAgent::QueueComponents(const ObjectRef& dispatcher, const ObjectRef& project,
                                const std::string& projectName, const std::string& components,
                                const std::string& request) {
  Wait(Align(dispatcher, project, projectName, components, request));
}

bool ScanAgent::ScanAhead() {
  if (waiting_.empty()) return false;
  std::string outcome = ScanOne(waiting_.front());
  // A scan that needed the caller (a problem for its log, say) is left for the call, which
  // does it again as it would have without scanning ahead.
  if (automation::IdleStepCalledOut()) return false;
  ahead_.emplace_back(std::move(waiting_.front()), std::move(outcome));
  waiting_.pop_front();
  return !waiting_.empty();
}

}  // namespace host::scan
