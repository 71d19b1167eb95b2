#pragma once
// The qx home folder: where the stand-in registry, the Windows folder (drive c:) and other
// machine-wide state live. $QX_HOME when set, else ~/.local/share/qx.

#include <filesystem>

namespace platform {

// The home folder, created when missing. The environment is read on every call, so a test that
// points QX_HOME at a fresh folder gets a fresh machine without any reset.
std::filesystem::path QxHome();

}  // namespace platform
