#pragma once
// Form: the component object of standard and MDI forms, with their controls and their
// design-time properties; a read that the table marks for one kind of form is refused on the
// other ("Undefined property.").

#include "components/designed_component.h"

namespace components {

const DesignedClass& FormClass();

}  // namespace components
