#pragma once
// The Utility module: finding the VB6 IDE's executable, and the version text of a file.

#include <cstdint>
#include <string>

#include "platform/files.h"

namespace project {

// The full path of the IDE's executable, found once per process (also when nothing is found):
// from the file association of VB projects, else the default installation path, else a search
// of drive c: four folder levels deep.
std::string VB6EXEPath();

// Depth-limited search for a file name: Depth 1 looks only into Folder, each further level into
// the sub-folders below. Returns the full path of the first match, or "".
std::string FindFile(const std::string& folder, const std::string& fileName, int32_t depth);

// A component file's version as the enumeration string shows it: its last-modified time as
// "yyyymmddhhnnss" (four-digit year, month, day, hour on the 24-hour clock, minute, second).
std::string VersionText(const platform::LocalTime& modified);

}  // namespace project
