#include "components/register.h"

#include <memory>

#include "components/code_component.h"
#include "components/designer.h"
#include "components/form.h"
#include "contracts/component_kinds.h"
#include "project/dispatcher.h"

namespace components {

void RegisterComponentClasses() {
  for (const char* className : {"Module", "ClassModule"}) {
    project::RegisterComponentClass(className, [className]() -> automation::ObjectRef {
      return std::make_shared<CodeComponent>(*contracts::FindComponentKind(className));
    });
  }
  project::RegisterComponentClass("Form",
                                  [] { return std::make_shared<DesignedComponent>(FormClass()); });
  project::RegisterComponentClass("Designer", [] { return std::make_shared<Designer>(); });
}

}  // namespace components
