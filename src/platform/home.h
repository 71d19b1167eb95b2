#pragma once
// The qx home folder: where the stand-in registry, the Windows folder (drive c:) and other
// machine-wide state live. $QX_HOME when set, else ~/.local/share/qx.

#include <filesystem>

namespace platform {

// The home folder, created (mode 0700) when missing. The environment is read on every call, so
// a test that points QX_HOME at a fresh folder gets a fresh machine without any reset. A home
// that another user owns or that others may write is refused (error 70, saying why).
std::filesystem::path QxHome();

// $QX_HOME/run, where the processes of the home meet (sockets, registrations, locks): created
// 0700 when missing and refused like the home.
std::filesystem::path RunFolder();

}  // namespace platform
