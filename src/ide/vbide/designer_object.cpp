#include "ide/vbide/designer_object.h"

#include "automation/casefold.h"
#include "ide/form/property_catalog.h"
#include "ide/model/project.h"
#include "ide/vbide/dhtml_page_designer.h"
#include "ide/vbide/make.h"
#include "ide/vbide/vbcomponent.h"

namespace ide::vbide {

std::shared_ptr<automation::Object> MakeActiveXDesigner(VBComponent& owner,
                                                        const std::shared_ptr<ide::Project>& model,
                                                        ide::Component& component) {
  switch (component.Kind()) {
    case FileKind::kModule:
    case FileKind::kClass:
      return nullptr;
    case FileKind::kDesigner:
      if (automation::SameVbName(component.DesignerID(), form::kDhtmlPageDesignerId)) {
        return MakeBeside<DHTMLPageDesigner>(owner, model, component);
      }
      return nullptr;
    default:
      return nullptr;
  }
}

}  // namespace ide::vbide
