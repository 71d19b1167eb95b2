#pragma once
// Designer: the component object of an ActiveX designer (other than DHTML pages and user
// connections). Beside the protocol it offers Object, the designer's live object as the IDE
// hands it out (mode 1 or 2), so that its own automation properties can be reached.

#include "components/component_object.h"

namespace components {

class Designer : public ComponentObject {
 public:
  Designer();
  const automation::ClassInfo& Class() const override;

  // The held component's Designer, as it is (fails with 91 in mode 0).
  automation::ObjectRef DesignerObject();
};

}  // namespace components
