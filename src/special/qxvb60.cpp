#include "special/qxvb60.h"

#include <memory>

#include "collections/component_collection.h"
#include "components/register.h"
#include "controls/register.h"
#include "foundation/globals.h"
#include "project/add_in_register.h"
#include "project/dispatcher.h"
#include "project/register.h"
#include "special/dhtml_page.h"
#include "special/user_connection.h"

namespace special {
namespace {

// This layer's component objects, for the dispatcher.
void RegisterSpecialClasses() {
  project::RegisterComponentClass("DHTMLPage", [] { return std::make_shared<DHTMLPage>(); });
  project::RegisterComponentClass("UserConnection",
                                  [] { return std::make_shared<UserConnection>(); });
}

}  // namespace

void LoadDriver() {
  project::RegisterProjectClasses();
  collections::RegisterCollectionClasses();
  components::RegisterComponentClasses();
  controls::RegisterControlClasses();
  RegisterSpecialClasses();
  foundation::Main();
}

void RegisterAddIn() {
  project::RegisterAddInClasses();
  components::RegisterComponentClasses();
  controls::RegisterControlClasses();
  RegisterSpecialClasses();
}

}  // namespace special
