#include "foundation/vxhandler.h"

#include "contracts/host_classes.h"
#include "foundation/globals.h"
#include "foundation/operation.h"

namespace foundation {
namespace {

constexpr std::string_view kHeading = "PROGRAM CONTEXT:";
constexpr std::string_view kCrLf = "\r\n";

}  // namespace

std::string TrailLine(std::string_view className, std::string_view procedureName, int32_t line) {
  std::string text = ProjectName();
  text += '.';
  text += className;
  text += '.';
  text += procedureName;
  text += '.';
  text += std::to_string(line == 0 ? 1 : line);
  text += "  (" + std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." +
          std::to_string(kVersionRevision) + ")";
  return text;
}

std::string AddTrailLine(std::string_view description, std::string_view className,
                         std::string_view procedureName, int32_t line) {
  std::string text(description);
  if (text.find(kHeading) == std::string::npos) {
    text += kCrLf;
    text += kCrLf;
    text += kHeading;
  }
  text += kCrLf;
  text += TrailLine(className, procedureName, line);
  return text;
}

bool IsEntryPoint(std::string_view name) {
  if (name.find('_') == std::string_view::npos) return false;
  if (name.size() < 2) return false;
  if (name[0] != 'I') return true;
  const auto second = static_cast<unsigned char>(name[1]);
  return second < 'A' || second > 'Z';
}

void Promote(const automation::Error& pending, std::string_view className,
             std::string_view procedureName) {
  // Promote is traced like any operation; a failure inside it reaches the caller as it is.
  TraceScope trace("vxhandler", "Promote");
  const int32_t line = pending.Line() == 0 ? 1 : pending.Line();
  const std::string description =
      AddTrailLine(pending.Description(), className, procedureName, line);
  if (!IsEntryPoint(procedureName)) {
    throw automation::Error(pending.Number(), {}, description);
  }
  LogRuntimeError(pending.Number(), description, {}, 0, ProjectName(), std::string(className),
                  std::string(procedureName), line);
}

void SaveError(SavedError& record, const automation::Error& pending, std::string_view className,
               std::string_view procedureName) {
  record.line = pending.Line();
  record.number = pending.Number();
  record.source = pending.Source();
  record.description = pending.Description();
  record.helpFile = pending.HelpFile();
  record.helpContext = pending.HelpContext();
  record.className = className;
  record.procedureName = procedureName;
  if (record.line == 0) record.line = 1;
  record.description = AddTrailLine(record.description, className, procedureName, record.line);
  const std::string_view cut = procedureName.substr(0, procedureName.find('('));
  record.isEntryPoint = procedureName == "Main" || IsEntryPoint(cut);
}

void ReportSavedError(const SavedError& record) {
  std::string description = record.description;
  if (record.rollbackFailed) {
    description += kCrLf;
    description +=
        "One or more additional problems were encountered while attempting to roll back the "
        "operation.";
  }
  if (!record.isEntryPoint) {
    throw automation::Error(record.number, record.source, description, record.helpFile,
                            record.helpContext);
  }
  contracts::Problem problem = contracts::Problem::New();
  problem.SetError(record.number, description, record.helpFile, record.helpContext, ProjectName(),
                   record.className, record.procedureName, record.line);
  automation::ObjectRef problemObject = problem.object();
  contracts::ProblemLog(GetGlobals().problemLog)
      .AddProblem(problemObject,
                  ProjectName() + "." + record.className + "." + record.procedureName);
}

automation::ObjectRef CreateContext(const std::string& projectName, const std::string& className,
                                    const std::string& procedureName, bool flag1, bool flag2) {
  automation::ObjectRef context;
  try {
    contracts::ProblemContext created = contracts::ProblemContext::New();
    context = created.object();
    std::string procName = procedureName;
    automation::ObjectRef log = GetGlobals().problemLog;
    const int32_t cookie =
        contracts::ProblemLog(log).OpenContext(projectName, className, procName, flag1, flag2);
    created.Attach(log, cookie);
  } catch (...) {
    // A context that could not be opened only costs the grouping of later reports.
  }
  return context;
}

void LogRuntimeError(int32_t number, const std::string& description, const std::string& helpFile,
                     int32_t helpContext, const std::string& projectName,
                     const std::string& className, const std::string& procedureName, int32_t line) {
  try {
    contracts::ProblemLog(GetGlobals().problemLog)
        .ReportRuntimeError(number, description, helpFile, helpContext, projectName, className,
                            procedureName, line);
  } catch (...) {
    // Losing one report is better than failing the operation that reports it.
  }
}

void RaiseUserError(std::string message) {
  throw automation::Error(kUserError, {}, std::move(message));
}

void RaiseInvalidCaseSelector(const automation::Variant& selector) {
  std::string shown = selector.ToString();
  if (selector.IsString()) shown = "\"" + shown + "\"";
  throw automation::Error(kInvalidCaseSelector, {}, "Invalid case selector (" + shown + ").");
}

void RaiseUndefinedProperty() {
  throw automation::Error(kUndefinedProperty, {}, "Undefined property.");
}

}  // namespace foundation
