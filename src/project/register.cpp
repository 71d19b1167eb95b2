#include "project/register.h"

#include "project/driver.h"

namespace project {

void RegisterProjectClasses() {
  automation::RegisterClass("qxvb60.Driver", [] { return std::make_shared<Driver>(); });
}

}  // namespace project
