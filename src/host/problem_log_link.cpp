#include "host/problem_log_link.h"

namespace host {
namespace {

// The link of a process that was linked last (held weakly: releasing it ends the forwarding).
struct LinkValues {
  std::weak_ptr<ProblemLogLink> latest;
};

}  // namespace

const automation::ClassInfo& ProblemLogLink::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<ProblemLogLink>("ProblemLogLink")
          .Method("Link", &ProblemLogLink::Link, {"ProblemLog"})
          .Get("ProblemLog", &ProblemLogLink::ProblemLog)
          .Build();
  return info;
}

void ProblemLogLink::Link(automation::ObjectRef& problemLog) {
  log_ = problemLog;
  if (const auto owner = Owner()) {
    owner->Values<LinkValues>().latest =
        std::static_pointer_cast<ProblemLogLink>(shared_from_this());
  }
}

automation::ObjectRef ProblemLogLink::ForwardTarget(automation::Process& process) {
  const auto link = process.Values<LinkValues>().latest.lock();
  return link ? link->log_ : nullptr;
}

}  // namespace host
