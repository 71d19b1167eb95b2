#include "host/problem_log_link.h"

namespace host {

const automation::ClassInfo& ProblemLogLink::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<ProblemLogLink>("ProblemLogLink")
          .Method("Link", &ProblemLogLink::Link, {"ProblemLog"})
          .Get("ProblemLog", &ProblemLogLink::ProblemLog)
          .Build();
  return info;
}

}  // namespace host
