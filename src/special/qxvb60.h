#pragma once
// The component qxvb60 as a whole: what loading it into a process does.

namespace special {

// Registers the driver's creatable classes and runs its start routine (Main: the current
// problem log and the trace flag). The host library's classes must be registered first, as a
// host process has them before it loads a driver.
void LoadDriver();

// What the IDE's process registers at its start: the add-in's classes ("qxvb60.Connection",
// "qxvb60.Dispatcher"; creating the first of them loads the driver there) and the component
// objects that its dispatchers build.
void RegisterAddIn();

}  // namespace special
