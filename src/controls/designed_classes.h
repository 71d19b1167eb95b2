#pragma once
// The designed component kinds of this layer: UserControl and PropertyPage, which carry
// controls, and UserDocument, which offers none. Each is its property table over the designed
// component object of the components' layer.

#include "components/designed_component.h"

namespace controls {

const components::DesignedClass& UserControlClass();
const components::DesignedClass& UserDocumentClass();
const components::DesignedClass& PropertyPageClass();

}  // namespace controls
