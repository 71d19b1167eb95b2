#pragma once
// Makes the host library's classes creatable by programmatic identifier ("qxlib41.KeyedList"),
// as the driver creates them, and lets ShowWindow reach the windows of the IDE processes
// (host/ide_control.h). Calling it again changes nothing.

namespace host {

void RegisterClasses();

}  // namespace host
