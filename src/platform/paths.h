#pragma once
// Windows-style paths on Linux. The driver builds paths as folder & "\" & file; every file-system
// call of the shim takes such a path and maps it here.

#include <filesystem>
#include <string>
#include <string_view>

namespace platform {

// The Linux path for a Windows-style or Linux path:
// - "\" and "/" both separate parts; repeated separators count as one;
// - drive letters map as Wine maps them: z: is "/", c: is QxHome()/drive_c, any other letter x:
//   is QxHome()/drive_x;
// - a relative path counts from the process's current folder;
// - when the path does not exist as written, each part is looked up case-insensitively in its
//   folder (an exact match wins, else the first case-insensitive match in byte order); parts
//   that exist nowhere are kept as written, so the result names where a new file would go.
std::filesystem::path ToNative(std::string_view path);

// Position of the last separator ("\" or "/"), npos when there is none. "Up to the last
// backslash" in the driver means up to this.
std::string::size_type LastSeparator(std::string_view path);

// An absolute Linux path in Windows form on drive z: ("/opt/qx/bin" -> "z:\opt\qx\bin"). A
// relative path is made absolute first.
std::string ToWindows(const std::filesystem::path& path);

}  // namespace platform
