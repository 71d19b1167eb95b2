#include "cli/run_account.h"

#include "cli/interruption.h"

namespace cli {

void RunAccount::Report(const RunProblem& problem) {
  // Once interrupted, the run's IDEs are being ended: the calls in flight fail and the
  // components not reached look unsearched. None of that is an error of the project.
  if (Interrupted() != 0) return;
  printer_.Report(problem);
  ++totals_.problems;
  if (!problem.note) ++errors_;
  if (!problem.project.empty() && !projectReported_) {
    projectReported_ = true;
    ++totals_.projectsWithProblems;
  }
}

void RunAccount::ComponentFailed(const std::string& component, size_t line,
                                 const automation::Error& e) {
  Report({false, project_, component, line, e.Number(), e.Description()});
}

}  // namespace cli
