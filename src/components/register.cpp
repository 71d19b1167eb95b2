#include "components/register.h"

#include <memory>

#include "components/code_component.h"
#include "components/component_kinds.h"
#include "project/dispatcher.h"

namespace components {

void RegisterComponentClasses() {
  project::SetComponentFactory([](std::string_view className) -> automation::ObjectRef {
    if (className == "Module" || className == "ClassModule") {
      return std::make_shared<CodeComponent>(*FindComponentKind(className));
    }
    return nullptr;  // a class of a later version of the driver
  });
}

}  // namespace components
