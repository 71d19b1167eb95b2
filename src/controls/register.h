#pragma once

namespace controls {

// Lets the dispatcher build this layer's component objects (UserControl, UserDocument,
// PropertyPage), lets designed components make their Controls, and publishes the driver's
// public enumerations.
void RegisterControlClasses();

}  // namespace controls
