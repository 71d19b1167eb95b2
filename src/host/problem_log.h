#pragma once
// ProblemLog: the host's record of every problem the driver reports instead of failing a call
// (the errors of entry points, such as the IDE's event handlers, that no caller could receive).
//
// Problems arrive through AddProblem (a Problem the driver filled in) and ReportRuntimeError
// (the eight fields directly). Contexts bracket the work of an entry point: OpenContext gives a
// cookie, CloseContext ends the context, and every problem that arrives in between is tagged
// with the most recent context still open. qx reads the problems back with Count and Item.
// A problem recorded while a ProblemLogLink of the log's process holds another log is reported
// into that log too (see problem_log_link.h).

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "automation/object.h"
#include "host/problem.h"

namespace host {

class ProblemLog : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.ProblemLog";

  const automation::ClassInfo& Class() const override;

  // Opens a context for an entry point and returns its cookie (never 0). The two flags are
  // accepted for compatibility; they change nothing here.
  int32_t OpenContext(const std::string& projectName, const std::string& className,
                      std::string& procName, bool flag1, bool flag2);
  // Records a problem under a site name. The problem is kept as given when it is one of ours;
  // any other object (for instance one reached through another process) is copied field by
  // field. Result receives the problem's index in the log. Nothing raises 91.
  void AddProblem(automation::ObjectRef& problem, const std::string& siteName, int32_t reserved,
                  automation::Variant& result);
  // Records a problem made from the arguments; its site is "project.class.procedure".
  void ReportRuntimeError(int32_t number, const std::string& description,
                          const std::string& helpFile, int32_t helpContext,
                          const std::string& projectName, const std::string& className,
                          const std::string& procName, int32_t line);
  int32_t Count() const { return static_cast<int32_t>(problems_.size()); }
  // The problem at a 1-based index, as VB's collections count; another index raises 9.
  automation::ObjectRef Item(int32_t index) const;
  // Ends a context. A cookie that is not open (already closed, or never given) is ignored, so
  // that closing twice is harmless.
  void CloseContext(int32_t cookie);

  const std::vector<std::shared_ptr<Problem>>& Problems() const { return problems_; }
  int32_t OpenContextCount() const { return static_cast<int32_t>(contexts_.size()); }

 private:
  struct OpenedContext {
    int32_t cookie;
    std::string site;
  };

  void Record(std::shared_ptr<Problem> problem, std::string siteName);
  // Reports the problem into the log that a ProblemLogLink of this log's process links to.
  void Forward(const Problem& problem) const;

  std::vector<std::shared_ptr<Problem>> problems_;
  std::vector<OpenedContext> contexts_;  // the open contexts, the most recent last
  int32_t nextCookie_ = 1;
};

}  // namespace host
