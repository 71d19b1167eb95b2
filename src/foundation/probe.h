#pragma once
// The call-tracing probe: its life spans one traced operation. Initialize reports the entry to
// the tracer; destruction reports the exit.

#include <string>

#include "automation/object.h"

namespace foundation {

class Probe : public automation::Object {
 public:
  ~Probe() override;
  const automation::ClassInfo& Class() const override;

  void Initialize(std::string& siteName);

 private:
  bool entered_ = false;
};

}  // namespace foundation
