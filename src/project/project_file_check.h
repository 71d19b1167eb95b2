#pragma once
// The check that every component file, control library and type library a project file names
// can be found, run before the IDE is started for the project.

#include <string>

namespace project {

// Finishes silently, or fails (-32767) with a message naming the project file's first line
// whose piece is missing. Reads the file and changes nothing.
void CheckProjectFile(const std::string& projectFile);

}  // namespace project
