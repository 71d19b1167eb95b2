#pragma once
// The IDE as a process: what qxvb6.exe does when VB6's file association starts it with a
// project ("qxvb6.exe" "PROJECT.vbp", the command line the driver builds), or with a project
// group ("qxvb6.exe" "GROUP.vbg"), whose projects it opens together, as VB6 does: qx starts one
// such IDE for many projects of a folder, so that they do not each start an IDE of their own. A
// group's IDE registers its control object under the group file's name too, once every project
// is open (or has failed to open), so that its starter knows when it is ready.
//
// It starts the headless IDE (which loads the add-ins of vbaddin.ini, the driver's Connection
// among them, opens the project and raises its events), registers its control object
// (host/ide_control.h), and serves calls from its event loop until it is ended:
// - when asked (the control object's Quit: `qx ide stop`); it saves nothing it was not asked to
//   save, raises ItemRemoved and OnDisconnection, and exits;
// - by itself once it has been quiet for the idle period: no call into it and no object of it
//   held by another process. Never while a project holds unsaved changes. An idle period of 0
//   ends it as soon as the last host lets go (an IDE that no host ever reached waits
//   kUnclaimedGrace for its first).
// Between calls, and before it answers a look-up in the object table (with which every host's
// use of it begins), it reopens a project whose project file changed on disk (and that holds no
// unsaved change), as VB6 does on a close and re-open; a component file that changed is read
// again by the project model before it is next read.
//
// Its standard output and error go to the log file (LogPath) with what it cannot report to a
// caller: the problems the IDE records, a project it cannot open.

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/ide_control.h"

namespace ide::server {

// The default idle period, and the environment variable that sets it in seconds.
// How long an IDE with an idle period of 0 waits for a host that never came.
inline constexpr std::chrono::seconds kUnclaimedGrace{30};

// $QX_HOME/qxvb6.log, shared by the IDE processes of the home; each line says its process.
std::filesystem::path LogPath();

struct ServeOptions {
  std::string projectFile;
  std::chrono::seconds idle = host::kDefaultIdle;
};

// Sends standard output and standard error to the log file (appending).
void RedirectOutputToLog();

// Runs the IDE for the project until it ends. Returns 0 when it ended as asked or idle, 2 when
// the project could not be opened (at once, so that a waiting host learns it without waiting out
// its time-out).
int Serve(const ServeOptions& options);

}  // namespace ide::server
