#include "project/add_in_register.h"

#include <memory>

#include "foundation/globals.h"
#include "project/connection.h"
#include "project/dispatcher.h"

namespace project {
namespace {

// A new object of the class, in a process where the driver has been loaded: the start routine
// runs once per process, before its first object is made (it leaves a current problem log
// behind, so a process that has one has run it).
template <class T>
automation::ObjectRef CreateLoaded() {
  if (!foundation::GetGlobals().problemLog) foundation::Main();
  return std::make_shared<T>();
}

}  // namespace

void RegisterAddInClasses() {
  automation::RegisterClass(Connection::kProgId, CreateLoaded<Connection>);
  automation::RegisterClass(Dispatcher::kProgId, CreateLoaded<Dispatcher>);
}

}  // namespace project
