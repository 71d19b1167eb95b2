#pragma once
// The driver's process-wide values: one copy in every process that loads the driver (the
// host's and the IDE's), kept in that process's context.

#include <string>
#include <string_view>

#include "automation/object.h"
#include "automation/process.h"

namespace foundation {

// The driver's programmatic project name and its version, printed in every trail line.
inline constexpr const char* kProjectName = "qxvb60";
inline constexpr int kVersionMajor = 4;
inline constexpr int kVersionMinor = 1;
inline constexpr int kVersionRevision = 475;

struct Globals {
  automation::ObjectRef problemLog;  // the current problem log
  bool traceFlag = false;            // read once by Main
  std::string projectName;           // looked up on first need
};

inline Globals& GetGlobals() {
  return automation::Process::Current().Values<Globals>();
}

inline bool TraceFlag() {
  return GetGlobals().traceFlag;
}

// The driver's project name, looked up once per process.
const std::string& ProjectName();

// The module start routine, run in every process that loads the driver: a new problem log
// becomes the current one, and the tracer's state becomes the trace flag.
void Main();

// Makes one of the driver's classes creatable from outside under "qxvb60." and its name, as
// registering the component does on Windows. Creating the first object of the driver in a
// process loads the driver there: the start routine runs first, unless it ran already (it leaves
// a current problem log behind).
void RegisterCreatable(std::string_view className, automation::Factory make);

}  // namespace foundation
