#pragma once
// The control object of an IDE process (qxvb6.exe serving a project): the one object through
// which the other processes of a qx home ask an IDE how it is and tell it what to do. It is
// registered in the registered-object table under ControlName(the IDE's process id).
//
// Its members (class "IdeControl"): ProcessId (Long), Projects (the open projects' file names,
// joined by tab characters), IdleSeconds (Long, since the last call into the IDE from another
// process, calls to the control object not counted), Quit (ends the IDE once the current call
// has returned), ShowWindow(hWnd, nCmdShow) (Boolean: ShowWindow on a window of the IDE),
// CreateObject(ProgId) (an object of a class registered in the IDE's process, made there, as
// Windows makes an object in the server process that registered its class: the scan agent).

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace host {

inline constexpr const char* kControlClass = "IdeControl";

// How long an IDE stays without calls before it ends by itself, and the variable that sets it.
inline constexpr std::chrono::seconds kDefaultIdle{600};
inline constexpr const char* kIdleVariable = "QX_IDE_IDLE_SECONDS";

// The idle period from QX_IDE_IDLE_SECONDS (a whole number of seconds, 0 or more); the default
// when it is not set; nullopt with a message when it cannot be read.
std::optional<std::chrono::seconds> IdleFromEnvironment(std::string& message);

// The name of an IDE process's control object, and the process id in a (normalized) registered
// name that is one; nullopt for other names.
std::string ControlName(long pid);
std::optional<long> ControlProcess(std::string_view registeredName);

// Lets ShowWindow in this process reach the windows of the home's IDE processes, through their
// control objects, as Windows' ShowWindow reaches a window of any process.
void RouteWindowsToIdes();

}  // namespace host
