#pragma once
// Turning an operating-system error number into the VB runtime error a Windows program would see.

#include <cstdint>
#include <string_view>

namespace platform {

// The VB error number for errno value err: 70 permission denied (also a read-only file
// system), 75 for a folder where a file was meant, 61 disk full, 57 device I/O error, and
// notFound for a missing file or folder (53 when reading a file, 76 when its folder is missing).
int32_t VbErrorFor(int err, int32_t notFound);

// Raises VbErrorFor(err, notFound) naming the path and the system's own reason.
[[noreturn]] void RaiseOsError(int err, std::string_view path, int32_t notFound);

}  // namespace platform
