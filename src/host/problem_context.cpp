#include "host/problem_context.h"

namespace host {

ProblemContext::~ProblemContext() {
  Close();
}

const automation::ClassInfo& ProblemContext::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<ProblemContext>("ProblemContext")
          .Method("Attach", &ProblemContext::Attach, {"ProblemLog", "Cookie"})
          .Build();
  return info;
}

void ProblemContext::Attach(automation::ObjectRef& problemLog, int32_t cookie) {
  Close();
  log_ = problemLog;
  cookie_ = cookie;
}

void ProblemContext::Close() noexcept {
  auto log = std::move(log_);
  log_.reset();
  if (!log) return;
  // The log is called by name, as it may live in another process. Closing is best effort: a
  // log that can no longer be reached has nothing left to close.
  try {
    automation::Dispatch(std::move(log)).Call("CloseContext", automation::Variant::Long(cookie_));
  } catch (...) {
  }
}

}  // namespace host
