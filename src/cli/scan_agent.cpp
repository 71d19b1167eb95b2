#include "cli/scan_agent.h"

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string_view>

#include "automation/error.h"
#include "automation/remote.h"
#include "contracts/component_kinds.h"
#include "host/host_utility.h"
#include "host/ide_control.h"

namespace cli {
namespace {

constexpr const char* kAgentClass = "qxlib41.ScanAgent";

// The agent, made by the control object of the IDE process that serves the dispatcher.
automation::ObjectRef MakeAgent(const automation::ObjectRef& dispatcher) {
  const std::optional<long> ide = automation::ServingProcess(dispatcher);
  if (!ide) return automation::CreateObject(kAgentClass);
  const automation::ObjectRef control =
      host::HostUtility::Instance()->GetRegisteredObject(host::ControlName(*ide));
  if (!control) automation::Raise(automation::err::kServerUnavailable);
  return automation::Dispatch(control).Call("CreateObject", kAgentClass).ToObject();
}

std::string Key(const std::string& collection, const std::string& name) {
  return collection + "/" + name;
}

std::string ItemsJson(const std::vector<AgentItem>& items) {
  nlohmann::json list = nlohmann::json::array();
  for (size_t i = 0; i < items.size(); ++i) {
    nlohmann::json& item = list.emplace_back(nlohmann::json{
        {"factory", items[i].factory}, {"name", items[i].name}, {"updatable", items[i].updatable}});
    if (!items[i].request.empty()) item["request"] = items[i].request;
  }
  return list.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

ScanAgentView::ScanAgentView(automation::ObjectRef dispatcher, automation::ObjectRef project,
                             std::string projectName)
    : dispatcher_(std::move(dispatcher)),
      project_(std::move(project)),
      projectName_(std::move(projectName)),
      agent_(MakeAgent(dispatcher_)) {}

bool ScanAgentView::Enabled() {
  const char* off = std::getenv("QX_NO_BATCH");
  return off == nullptr || std::string_view(off) != "1";
}

std::vector<AgentOutcome> ScanAgentView::Next(const std::vector<AgentItem>& items,
                                              const std::string& request) const {
  std::vector<AgentOutcome> done = host::scan::DecodeOutcomes(
      agent_.Call("ScanComponents", dispatcher_, project_, projectName_, ItemsJson(items), request)
          .ToString());
  if (done.empty()) automation::Raise(automation::err::kInternal, "the scan agent did nothing");
  if (done.size() > items.size()) done.resize(items.size());
  return done;
}

void ScanAgentView::Queue(const std::vector<AgentItem>& items, const std::string& request) const {
  agent_.Call("QueueComponents", dispatcher_, project_, projectName_, ItemsJson(items), request);
}

void ScanBatches::Start(const automation::ObjectRef& dispatcher,
                        const automation::ObjectRef& project, const std::string& projectName) {
  agent_.reset();
  Forget();
  try {
    agent_.emplace(dispatcher, project, projectName);
  } catch (const automation::Error&) {
    // One by one then.
  }
}

void ScanBatches::Scan(const std::vector<Item>& components) {
  if (!agent_) return;
  for (const Item& component : components) {
    const contracts::ComponentKind* kind = contracts::FindCollectionKind(component.collection);
    if (kind == nullptr) continue;
    pending_.push_back(
        {std::string(kind->factory), component.name, component.writable, component.request});
    pendingKeys_.push_back(Key(component.collection, component.name));
  }
  if (pending_.empty()) return;
  try {
    agent_->Queue(pending_, request_);
  } catch (const automation::Error&) {
    LetAgentGo();
  }
}

void ScanBatches::LetAgentGo() {
  agent_.reset();
  pending_.clear();
  pendingKeys_.clear();
}

void ScanBatches::Advance() {
  try {
    std::vector<AgentOutcome> outcomes = agent_->Next(pending_, request_);
    for (size_t i = 0; i < outcomes.size(); ++i) {
      found_[pendingKeys_[i]] = {pending_[i].request.empty() ? request_ : pending_[i].request,
                                 std::move(outcomes[i])};
    }
    pending_.erase(pending_.begin(),
                   pending_.begin() + static_cast<std::ptrdiff_t>(outcomes.size()));
    pendingKeys_.erase(pendingKeys_.begin(),
                       pendingKeys_.begin() + static_cast<std::ptrdiff_t>(outcomes.size()));
  } catch (const automation::Error&) {
    LetAgentGo();
  }
}

std::optional<std::vector<ComponentScan>> ScanBatches::Take(const std::string& collection,
                                                            const std::string& name,
                                                            const std::string& request) {
  const std::string key = Key(collection, name);
  while (agent_ && !found_.contains(key) &&
         std::find(pendingKeys_.begin(), pendingKeys_.end(), key) != pendingKeys_.end()) {
    Advance();
  }
  const auto it = found_.find(key);
  if (it == found_.end() || request != it->second.first) return std::nullopt;
  AgentOutcome outcome = std::move(it->second.second);
  found_.erase(it);
  if (outcome.error && outcome.atFactory) return std::nullopt;
  if (outcome.error) throw *outcome.error;
  return std::move(outcome.scans);
}

void ScanBatches::Forget() {
  found_.clear();
  pending_.clear();
  pendingKeys_.clear();
}

}  // namespace cli
