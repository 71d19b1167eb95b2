#pragma once
// The text of Windows-style files (registry exports, ini files, VB's project and component
// files): spaces and tabs are the blanks around keys, values and keywords, and are trimmed with
// automation's helper (automation/text.h). Keywords match with automation::EqualsAsciiNoCase
// (automation/casefold.h).

#include "automation/text.h"

namespace platform {

using automation::IsBlank;
using automation::TrimBlanks;

}  // namespace platform
