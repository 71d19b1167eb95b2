#pragma once
// qx's side of the scan agent (host/scan/scan_agent.h): an agent made in the IDE that serves a
// project, to which a search hands its components many at a time instead of one by one.

#include <string>
#include <vector>

#include "automation/object.h"
#include "cli/scan_results.h"

namespace cli {

// One component for the agent: the dispatcher's factory for its kind, its name, and whether its
// file can be written.
struct AgentItem {
  std::string factory;
  std::string name;
  bool updatable = false;
};

class ScanAgentView {
 public:
  // An agent in the process that serves the project's dispatcher (a proxy). Raises what making
  // it raises (462 when that process has gone).
  ScanAgentView(automation::ObjectRef dispatcher, automation::ObjectRef project,
                std::string projectName);

  // False when $QX_NO_BATCH is 1: every component is scanned on its own, as a reference run.
  static bool Enabled();

  // Every item scanned with the request, one outcome per item in their order: the agent answers
  // for a time slice at a time, and is handed the rest until none is left.
  std::vector<AgentOutcome> Scan(const std::vector<AgentItem>& items,
                                 const std::string& request) const;

 private:
  automation::ObjectRef dispatcher_;
  automation::ObjectRef project_;
  std::string projectName_;
  automation::Dispatch agent_;
};

}  // namespace cli
