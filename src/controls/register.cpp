#include "controls/register.h"

#include <memory>

#include "automation/type_library.h"
#include "components/designed_component.h"
#include "controls/controls.h"
#include "controls/designed_classes.h"
#include "controls/enumerations.h"
#include "project/dispatcher.h"

namespace controls {

void RegisterControlClasses() {
  components::SetControlsFactory([] { return std::make_shared<Controls>(); });
  for (const components::DesignedClass* designed :
       {&UserControlClass(), &UserDocumentClass(), &PropertyPageClass()}) {
    project::RegisterComponentClass(std::string(designed->className), [designed] {
      return std::make_shared<components::DesignedComponent>(*designed);
    });
  }
  automation::PublishEnumerations(kTypeLibrary, PublicEnumerations());
}

}  // namespace controls
