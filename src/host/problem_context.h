#pragma once
// ProblemContext: holds one open context of a problem log and closes it when it is destroyed,
// so an entry point brackets its work by keeping the object alive until it returns.

#include <cstdint>

#include "automation/object.h"

namespace host {

class ProblemContext : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.ProblemContext";

  ProblemContext() = default;
  ~ProblemContext() override;

  const automation::ClassInfo& Class() const override;

  // Takes charge of the context with this cookie in the log; a context held before is closed
  // first.
  void Attach(automation::ObjectRef& problemLog, int32_t cookie);

 private:
  void Close() noexcept;

  automation::ObjectRef log_;
  int32_t cookie_ = 0;
};

}  // namespace host
