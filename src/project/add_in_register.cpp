#include "project/add_in_register.h"

#include <memory>

#include "foundation/globals.h"
#include "project/connection.h"
#include "project/dispatcher.h"

namespace project {

void RegisterAddInClasses() {
  foundation::RegisterCreatable("Connection", [] { return std::make_shared<Connection>(); });
  foundation::RegisterCreatable("Dispatcher", [] { return std::make_shared<Dispatcher>(); });
}

}  // namespace project
