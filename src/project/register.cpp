#include "project/register.h"

#include "foundation/globals.h"
#include "project/driver.h"

namespace project {

void RegisterProjectClasses() {
  foundation::RegisterCreatable("Driver", [] { return std::make_shared<Driver>(); });
}

}  // namespace project
