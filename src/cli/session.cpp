#include "cli/session.h"

#include "contracts/driver_interfaces.h"
#include "host/register.h"
#include "special/qxvb60.h"

namespace cli {

using automation::Dispatch;

Session::Session() {
  host::RegisterClasses();
  special::LoadDriver();
  problemLog_ = automation::CreateObject("qxlib41.ProblemLog");
  driver_ = automation::CreateObject("qxvb60.Driver");
  automation::ObjectRef log = problemLog_;
  contracts::IDriver(driver_).Initialize(log);
}

Session::~Session() {
  // A project and its collections refer to each other until the project is torn down.
  for (const auto& project : projects_) {
    try {
      Dispatch(project).Call("TearDown");
    } catch (...) {
      // Tearing down only releases references; the run's result is already decided.
    }
  }
  try {
    contracts::IDriver(driver_).Shutdown();
  } catch (...) {
    // Shutting down only releases; nothing a user could act on can fail here.
  }
}

const platform::ProjectCodePage& Session::UseCodePageOf(const std::string& projectFile) {
  codePage_ = platform::UseProjectCodePage(projectFile);
  codePageOf_ = projectFile;
  return codePage_;
}

automation::ObjectRef Session::OpenProject(const std::string& projectFile) {
  if (projectFile != codePageOf_) UseCodePageOf(projectFile);
  const Dispatch parameters(automation::CreateObject("qxlib41.ParameterList"));
  parameters.Call("Add", "FileName", projectFile);
  const std::string text = parameters.Get("Text").ToString();
  automation::ObjectRef project = contracts::IDriver(driver_).GetProject("", 0, text);
  projects_.push_back(project);
  return project;
}

std::vector<Problem> Session::Problems() const {
  std::vector<Problem> problems;
  const Dispatch log(problemLog_);
  const int32_t count = log.Get("Count").ToLong();
  for (int32_t i = 1; i <= count; ++i) {
    const Dispatch problem(log.Call("Item", i).ToObject());
    problems.push_back({problem.Get("Number").ToLong(), problem.Get("Description").ToString()});
  }
  return problems;
}

}  // namespace cli
