#pragma once
// Error context and problem reporting. Every failure either returns to the caller of the
// failing operation, with one more line in the "PROGRAM CONTEXT:" trail of its description, or
// is written into the current problem log when no caller could receive it (event handlers).

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/error.h"
#include "automation/object.h"

namespace foundation {

// The record that carries a failure across the undo steps of an operation.
struct SavedError {
  int32_t number = 0;
  std::string source;
  std::string description;
  std::string helpFile;
  int32_t helpContext = 0;
  bool isEntryPoint = false;
  std::string className;
  std::string procedureName;
  int32_t line = 0;
  bool rollbackFailed = false;
};

// The trail line of one context: qxvb60.Class.Operation.Line  (4.1.475); line 0 prints as 1.
std::string TrailLine(std::string_view className, std::string_view procedureName, int32_t line);

// The description with the trail line added (and the heading, the first time).
std::string AddTrailLine(std::string_view description, std::string_view className,
                         std::string_view procedureName, int32_t line);

// Whether failures of the operation of that name go to the problem log: event handlers such as
// ProjectEvents_ItemAdded do; interface members (IObject_Scan) and plain names do not.
bool IsEntryPoint(std::string_view procedureName);

// Hands the pending error of a failing operation on: raises it to the caller with the trail
// line added, an empty source and no help data, or, for an entry point, logs it and returns.
void Promote(const automation::Error& pending, std::string_view className,
             std::string_view procedureName);

// Moves the pending error into the record and adds the trail line.
void SaveError(SavedError& record, const automation::Error& pending, std::string_view className,
               std::string_view procedureName);

// After the undo steps: raises the saved error with all its fields, or logs it.
void ReportSavedError(const SavedError& record);

// Opens a problem context in the current problem log for an entry point that the IDE calls;
// the caller keeps the returned object until it returns. Failures are ignored (null result).
automation::ObjectRef CreateContext(const std::string& projectName, const std::string& className,
                                    const std::string& procedureName, bool flag1, bool flag2);

// Hands one failure to the current problem log; a failure of the log is ignored.
void LogRuntimeError(int32_t number, const std::string& description, const std::string& helpFile,
                     int32_t helpContext, const std::string& projectName,
                     const std::string& className, const std::string& procedureName, int32_t line);

// The fixed errors of the driver.
inline constexpr int32_t kUserError = automation::err::kUserError;
inline constexpr int32_t kInvalidCaseSelector = -32753;
inline constexpr int32_t kUndefinedProperty = -32749;

// Raises a refusal or user-level problem: number -32767, empty source, the sentence given.
[[noreturn]] void RaiseUserError(std::string message);
[[noreturn]] void RaiseInvalidCaseSelector(const automation::Variant& selector);
[[noreturn]] void RaiseUndefinedProperty();

}  // namespace foundation
