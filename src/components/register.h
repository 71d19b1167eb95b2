#pragma once

namespace components {

// Lets the dispatcher build the component objects of this layer (they are not creatable from
// outside): Module, ClassModule, Form and Designer.
void RegisterComponentClasses();

}  // namespace components
