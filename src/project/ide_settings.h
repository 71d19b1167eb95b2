#pragma once
// The IDE's settings that the driver checks and prepares before it starts the IDE for a
// project: background project loading, the project's window-state file, and the entry that
// makes the IDE load the driver's add-in.

#include <string>

namespace project {

// Fails (-32767) unless background project loading is switched off in VB6's options.
void CheckBackgroundLoading();

// Marks every window of the project's window-state file (.vbw) as closed, so that the IDE opens
// the project without windows. Never fails visibly when the file cannot be rewritten.
void AdjustWindowState(const std::string& projectFile);

// Writes the add-in's start-up entry into vbaddin.ini; its result is not looked at.
void WriteAddInEntry();

}  // namespace project
