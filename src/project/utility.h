#pragma once
// The Utility module: finding the VB6 IDE's executable, and the version text of a file.

#include <cstdint>
#include <string>

#include "automation/object.h"
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

// The control name of an IDE control (a VBControl): the IDE property Name, followed for a member
// of a control array (Index other than -1) by "(", the index in decimal and ")": Text1(3).
std::string GetControlName(const automation::ObjectRef& vbControl);

// Sets the IDE properties Name and then Index from a control name: a bare name takes Index -1;
// "Text1(3)" takes Name Text1 and Index 3. A "(" without a ")" that ends the name fails with
// "Invalid control name syntax." and changes nothing; an index that is not a number fails with
// the conversion's error after Name has been set.
void SetControlName(const automation::ObjectRef& vbControl, const std::string& newName);

}  // namespace project
