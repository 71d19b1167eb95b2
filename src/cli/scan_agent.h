#pragma once
// qx's side of the scan agent (host/scan/scan_agent.h): an agent made in the IDE that serves a
// project, to which a search hands its components many at a time instead of one by one.

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "automation/object.h"
#include "cli/scan_results.h"

namespace cli {

// One component for the agent: the dispatcher's factory for its kind, its name, whether its
// file can be written, and a request of its own, if it has one.
struct AgentItem {
  std::string factory;
  std::string name;
  bool updatable = false;
  std::string request = {};  // empty: the batch's
};

class ScanAgentView {
 public:
  // An agent in the process that serves the project's dispatcher (a proxy). Raises what making
  // it raises (462 when that process has gone).
  ScanAgentView(automation::ObjectRef dispatcher, automation::ObjectRef project,
                std::string projectName);

  // False when $QX_NO_BATCH is 1: every component is scanned on its own, as a reference run.
  static bool Enabled();

  // The items scanned with the request (or their own), one outcome per item in their order, for
  // as many as the agent did in one call (at least one): it answers for a time slice at a time,
  // or at once with what it scanned ahead while the caller was busy; the caller hands it the
  // rest when it needs them.
  std::vector<AgentOutcome> Next(const std::vector<AgentItem>& items,
                                 const std::string& request) const;
  // Hands the agent the items that Next will ask for, to scan ahead; answers at once.
  void Queue(const std::vector<AgentItem>& items, const std::string& request) const;

 private:
  automation::ObjectRef dispatcher_;
  automation::ObjectRef project_;
  std::string projectName_;
  automation::Dispatch agent_;
};

// A search's components scanned by the agent of the project's IDE a batch at a time, and what it
// found for each, kept until the component's turn to be shown takes it.
class ScanBatches {
 public:
  // The request of the components of the batches, but those with one of their own; empty: there
  // are no batches, each component is scanned on its own.
  explicit ScanBatches(std::string request) : request_(std::move(request)) {}

  bool Enabled() const { return !request_.empty(); }
  // Makes the agent for the project served by the dispatcher. Without one (the IDE cannot make
  // it) each component is scanned on its own: the first says what is wrong, if anything is.
  void Start(const automation::ObjectRef& dispatcher, const automation::ObjectRef& project,
             const std::string& projectName);
  // Lets the agent go (before the project's IDE is let go).
  void Stop() { agent_.reset(); }
  bool Running() const { return agent_.has_value(); }

  // Queues the components (collection and entry name) for the agent, which is asked for them
  // as Take needs them, many at a time; what it found for each is kept until taken. When the
  // agent fails (its IDE has ended, say) it is let go, and each component is scanned on its own,
  // which says what fails where. Between the calls, while qx shows what came back, the agent
  // scans the rest ahead.
  struct Item {
    std::string collection;
    std::string name;
    bool writable = false;
    std::string request = {};  // empty: the batches'
  };
  void Scan(const std::vector<Item>& items);
  // What the agent found for the component with this request, taken once; none when the
  // component must be scanned on its own: it was not in a batch, or making its object failed
  // there (made again on its own, that says exactly what a scan on its own says). The error of
  // its scan is raised.
  std::optional<std::vector<ComponentScan>> Take(const std::string& collection,
                                                 const std::string& name,
                                                 const std::string& request);
  // Forgets what was not taken, and what was not asked for.
  void Forget();

 private:
  // One call to the agent for the components queued; what it did is kept.
  void Advance();
  // After the agent failed: each component left is scanned on its own.
  void LetAgentGo();

  const std::string request_;
  std::optional<ScanAgentView> agent_;
  // By collection and name: the request it was scanned with, and what the agent found.
  std::map<std::string, std::pair<std::string, AgentOutcome>> found_;
  // The components queued and not yet scanned, in order, with their keys.
  std::vector<AgentItem> pending_;
  std::vector<std::string> pendingKeys_;
};

}  // namespace cli
