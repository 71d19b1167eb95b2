#pragma once
// What a search or replace run has said so far: its totals, and each problem, reported through
// the printer and counted with the project it belongs to (the project being searched).

#include <cstddef>
#include <string>
#include <utility>

#include "automation/error.h"
#include "cli/printer.h"
#include "cli/results.h"

namespace cli {

class RunAccount {
 public:
  explicit RunAccount(Printer& printer) : printer_(printer) {}

  // The project whose problems come next, as shown ("" for the run's own).
  void BeginProject(std::string project) {
    project_ = std::move(project);
    projectReported_ = false;
  }
  const std::string& project() const { return project_; }

  // Prints the problem and counts it; nothing once the run is interrupted.
  void Report(const RunProblem& problem);
  // An error of one component of the project being searched, with the project file's line that
  // names the component (0: none).
  void ComponentFailed(const std::string& component, size_t line, const automation::Error& e);

  SearchTotals& totals() { return totals_; }
  // The problems reported that are errors, not notes.
  size_t errors() const { return errors_; }

 private:
  Printer& printer_;
  SearchTotals totals_;
  size_t errors_ = 0;
  std::string project_;
  bool projectReported_ = false;  // a problem of the project has been reported
};

}  // namespace cli
