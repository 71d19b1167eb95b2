#include "special/qxvb60.h"

#include "collections/component_collection.h"
#include "components/register.h"
#include "controls/register.h"
#include "foundation/globals.h"
#include "project/add_in_register.h"
#include "project/register.h"

namespace special {

void LoadDriver() {
  project::RegisterProjectClasses();
  collections::RegisterCollectionClasses();
  components::RegisterComponentClasses();
  controls::RegisterControlClasses();
  foundation::Main();
}

void RegisterAddIn() {
  project::RegisterAddInClasses();
  components::RegisterComponentClasses();
  controls::RegisterControlClasses();
}

}  // namespace special
