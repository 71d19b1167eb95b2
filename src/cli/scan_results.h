#pragma once
// What the scanner found in a component, as qx reads it from a scan buffer: the result type the
// Scanner fills in the IDE's process (host/scan/scan_result.h). Where each match lies in the
// component's file is file_matches.h's.

#include "host/scan/scan_result.h"

namespace cli {

using host::scan::AgentOutcome;
using host::scan::ComponentScan;
using host::scan::ScanError;
using host::scan::ScanMatch;
using host::scan::ScanPlace;

}  // namespace cli
