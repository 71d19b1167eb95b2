#include "host/problem_log.h"

#include <algorithm>
#include <limits>

#include "automation/error.h"
#include "host/problem_log_link.h"

namespace host {
namespace {

std::string Site(const std::string& projectName, const std::string& className,
                 const std::string& procName) {
  return projectName + "." + className + "." + procName;
}

}  // namespace

const automation::ClassInfo& ProblemLog::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<ProblemLog>("ProblemLog")
          .Method("OpenContext", &ProblemLog::OpenContext,
                  {"ProjectName", "ClassName", "ProcName", "Flag1", "Flag2"})
          .Method("AddProblem", &ProblemLog::AddProblem,
                  {"Problem", "SiteName", "Reserved", "Result"})
          .Method("ReportRuntimeError", &ProblemLog::ReportRuntimeError,
                  {"Number", "Description", "HelpFile", "HelpContext", "ProjectName", "ClassName",
                   "ProcName", "Line"})
          .Get("Count", &ProblemLog::Count)
          .Method("Item", &ProblemLog::Item, {"Index"})
          .Method("CloseContext", &ProblemLog::CloseContext, {"Cookie"})
          .Build();
  return info;
}

int32_t ProblemLog::OpenContext(const std::string& projectName, const std::string& className,
                                std::string& procName, bool /*flag1*/, bool /*flag2*/) {
  const int32_t cookie = nextCookie_;
  nextCookie_ = nextCookie_ == std::numeric_limits<int32_t>::max() ? 1 : nextCookie_ + 1;
  contexts_.push_back(OpenedContext{cookie, Site(projectName, className, procName)});
  return cookie;
}

void ProblemLog::AddProblem(automation::ObjectRef& problem, const std::string& siteName,
                            int32_t /*reserved*/, automation::Variant& result) {
  if (!problem) automation::Raise(automation::err::kObjectNotSet, "no problem to add");
  auto ours = std::dynamic_pointer_cast<Problem>(problem);
  if (!ours) {
    const automation::Dispatch d(problem);
    ours = std::make_shared<Problem>();
    ours->SetError(d.Get("Number").ToLong(), d.Get("Description").ToString(),
                   d.Get("HelpFile").ToString(), d.Get("HelpContext").ToLong(),
                   d.Get("ProjectName").ToString(), d.Get("ClassName").ToString(),
                   d.Get("ProcName").ToString(), d.Get("Line").ToLong());
  }
  Record(std::move(ours), siteName);
  result = automation::Variant::Long(Count());
}

void ProblemLog::ReportRuntimeError(int32_t number, const std::string& description,
                                    const std::string& helpFile, int32_t helpContext,
                                    const std::string& projectName, const std::string& className,
                                    const std::string& procName, int32_t line) {
  auto problem = std::make_shared<Problem>();
  problem->SetError(number, description, helpFile, helpContext, projectName, className, procName,
                    line);
  Record(std::move(problem), Site(projectName, className, procName));
}

automation::ObjectRef ProblemLog::Item(int32_t index) const {
  if (index < 1 || index > Count()) {
    automation::Raise(automation::err::kSubscript, "no problem at index " + std::to_string(index) +
                                                       " (the log holds " +
                                                       std::to_string(Count()) + ")");
  }
  return problems_[static_cast<size_t>(index - 1)];
}

void ProblemLog::CloseContext(int32_t cookie) {
  auto it = std::find_if(contexts_.begin(), contexts_.end(),
                         [cookie](const OpenedContext& c) { return c.cookie == cookie; });
  if (it != contexts_.end()) contexts_.erase(it);
}

void ProblemLog::Record(std::shared_ptr<Problem> problem, std::string siteName) {
  problem->SetSiteName(std::move(siteName));
  problem->SetContext(contexts_.empty() ? std::string() : contexts_.back().site);
  problems_.push_back(problem);
  Forward(*problem);
}

void ProblemLog::Forward(const Problem& problem) const {
  const auto owner = Owner();
  if (!owner) return;
  const automation::ObjectRef target = ProblemLogLink::ForwardTarget(*owner);
  if (!target || target.get() == this) return;
  // The linked log is called by name, as it lives in the host's process. Forwarding is best
  // effort: the problem stays recorded here when the host's log cannot be reached.
  try {
    automation::Dispatch(target).Call("ReportRuntimeError", problem.Number(), problem.Description(),
                                      problem.HelpFile(), problem.HelpContext(),
                                      problem.ProjectName(), problem.ClassName(),
                                      problem.ProcName(), problem.Line());
  } catch (...) {
  }
}

}  // namespace host
