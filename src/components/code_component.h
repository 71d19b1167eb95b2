#pragma once
// Module and ClassModule: the component objects of standard modules and class modules, which
// carry nothing but a name and procedures. One class serves both; they differ only in their kind
// (class name, collection name, refusal sentence).

#include "components/component_object.h"

namespace components {

class CodeComponent : public ComponentObject {
 public:
  using ComponentObject::ComponentObject;
  const automation::ClassInfo& Class() const override;
};

}  // namespace components
