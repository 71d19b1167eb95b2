#pragma once
// The Utility module: finding the VB6 IDE's executable.

#include <cstdint>
#include <string>

namespace project {

// The full path of the IDE's executable, found once per process (also when nothing is found):
// from the file association of VB projects, else the default installation path, else a search
// of drive c: four folder levels deep.
std::string VB6EXEPath();

// Depth-limited search for a file name: Depth 1 looks only into Folder, each further level into
// the sub-folders below. Returns the full path of the first match, or "".
std::string FindFile(const std::string& folder, const std::string& fileName, int32_t depth);

}  // namespace project
