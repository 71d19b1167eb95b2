#pragma once
// The failure path that every operation with one follows, written once:
//
//   std::string Project::EnumObjects(...) {
//     return Operation("Project", "EnumObjects", [&] { ...body... });
//   }
//
// With tracing on, a probe reports the entry before the body and the exit after the failure
// path. A failure of the body goes to Promote, which raises it to the caller with a trail line,
// or logs it (entry points), after which the operation returns a default result. An entry point
// whose result must survive a logged failure uses OperationSettingResult, whose body sets the
// result as it goes: what it had set when it failed is what the operation returns.
// OperationWithUndo runs undo steps, with their failures ignored, between SaveError and
// ReportSavedError.

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "automation/error.h"
#include "foundation/globals.h"
#include "foundation/probe.h"
#include "foundation/vxhandler.h"

namespace foundation {

// Holds the probe of one traced operation (nothing at all while tracing is off).
class TraceScope {
 public:
  TraceScope(std::string_view className, std::string_view operationName) {
    if (!TraceFlag()) return;
    probe_ = std::make_shared<Probe>();
    std::string site =
        ProjectName() + "." + std::string(className) + "." + std::string(operationName);
    probe_->Initialize(site);
  }
  TraceScope(const TraceScope&) = delete;
  TraceScope& operator=(const TraceScope&) = delete;

 private:
  std::shared_ptr<Probe> probe_;
};

template <class Body>
auto Operation(std::string_view className, std::string_view operationName, Body&& body)
    -> decltype(body()) {
  using Result = decltype(body());
  TraceScope trace(className, operationName);
  try {
    return body();
  } catch (...) {
    Promote(automation::CurrentError(), className, operationName);
    if constexpr (!std::is_void_v<Result>) return Result{};
  }
}

template <class Result, class Body>
Result OperationSettingResult(std::string_view className, std::string_view operationName,
                              Body&& body) {
  TraceScope trace(className, operationName);
  Result result{};
  try {
    body(result);
  } catch (...) {
    Promote(automation::CurrentError(), className, operationName);
  }
  return result;
}

template <class Body, class Undo>
auto OperationWithUndo(std::string_view className, std::string_view operationName, Body&& body,
                       Undo&& undo) -> decltype(body()) {
  using Result = decltype(body());
  TraceScope trace(className, operationName);
  try {
    return body();
  } catch (...) {
    SavedError record;
    SaveError(record, automation::CurrentError(), className, operationName);
    try {
      undo();
    } catch (...) {
      // Undo steps run with failures ignored, so the saved error stays the first one.
    }
    ReportSavedError(record);
    if constexpr (!std::is_void_v<Result>) return Result{};
  }
}

}  // namespace foundation
