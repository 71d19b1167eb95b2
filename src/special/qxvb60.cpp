#include "special/qxvb60.h"

#include "collections/component_collection.h"
#include "foundation/globals.h"
#include "project/register.h"

namespace special {

void LoadDriver() {
  project::RegisterProjectClasses();
  collections::RegisterCollectionClasses();
  foundation::Main();
}

}  // namespace special
