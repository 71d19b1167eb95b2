#pragma once

namespace components {

// Lets the dispatcher build the component objects (they are not creatable from outside): Module
// and ClassModule so far.
void RegisterComponentClasses();

}  // namespace components
