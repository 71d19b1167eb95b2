#pragma once
// Driver: the host's entry into the driver. It hands out one Project per parameter string and
// keeps them until the host shuts it down.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace project {

class Driver : public automation::Object {
 public:
  Driver();
  const automation::ClassInfo& Class() const override;

  void IDriver_Initialize(automation::ObjectRef& problemLog);
  void IDriver_Shutdown();
  automation::ObjectRef IDriver_GetProject(const std::string& projectName, int32_t projectType,
                                           const std::string& parameters);

 private:
  automation::ObjectRef projects_;  // a KeyedList of Project keyed by the parameter string
};

}  // namespace project
