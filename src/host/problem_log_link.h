#pragma once
// ProblemLogLink: carries a reference to the host's problem log to the IDE's side, so that
// problems found there can be reported into the host's log. For now a plain holder.

#include "automation/object.h"

namespace host {

class ProblemLogLink : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.ProblemLogLink";

  const automation::ClassInfo& Class() const override;

  void Link(automation::ObjectRef& problemLog) { log_ = problemLog; }
  // The linked log; Nothing until Link is called.
  automation::ObjectRef ProblemLog() const { return log_; }

 private:
  automation::ObjectRef log_;
};

}  // namespace host
