#pragma once
// The component qxvb60 as a whole: what loading it into a process does.

namespace special {

// Registers the driver's creatable classes and runs its start routine (Main: the current
// problem log and the trace flag). The host library's classes must be registered first, as a
// host process has them before it loads a driver.
void LoadDriver();

}  // namespace special
