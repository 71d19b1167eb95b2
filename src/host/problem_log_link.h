#pragma once
// ProblemLogLink: carries a reference to the host's problem log to the IDE's side, so that
// problems found there reach the host. While a link holds a log, every problem recorded in a
// problem log of the link's process is also reported into the linked log; when several links of
// one process hold logs, the one linked last is used, and a link that is released stops the
// forwarding.

#include <memory>

#include "automation/object.h"
#include "automation/process.h"

namespace host {

class ProblemLogLink : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.ProblemLogLink";

  const automation::ClassInfo& Class() const override;

  void Link(automation::ObjectRef& problemLog);
  // The linked log; Nothing until Link is called.
  automation::ObjectRef ProblemLog() const { return log_; }

  // The log that the problems recorded in that process are forwarded to; null when none is.
  static automation::ObjectRef ForwardTarget(automation::Process& process);

 private:
  automation::ObjectRef log_;
};

}  // namespace host
