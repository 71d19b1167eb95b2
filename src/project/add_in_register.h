#pragma once

namespace project {

// Registers the classes that the IDE's process creates by programmatic identifier: the add-in
// ("qxvb60.Connection", which the IDE creates for vbaddin.ini's entry) and "qxvb60.Dispatcher".
// The IDE's process calls it at its start. Creating the first of these objects in a process
// loads the driver there, which runs its start routine in that process.
void RegisterAddInClasses();

}  // namespace project
