#include "platform/os_error.h"

#include <cerrno>
#include <string>
#include <system_error>

#include "automation/error.h"

namespace platform {

int32_t VbErrorFor(int err, int32_t notFound) {
  namespace e = automation::err;
  switch (err) {
    case ENOENT:
      return notFound;
    case ENOTDIR:
      return e::kPathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case ETXTBSY:
      return e::kPermissionDenied;
    case EISDIR:
      return e::kPathFileAccess;
    case ENOSPC:
    case EDQUOT:
      return 61;  // Disk full
    case EIO:
      return e::kDeviceIo;
    default:
      return e::kPathFileAccess;
  }
}

void RaiseOsError(int err, std::string_view path, int32_t notFound) {
  std::string detail(path);
  detail += " (";
  detail += std::generic_category().message(err);
  detail += ")";
  automation::Raise(VbErrorFor(err, notFound), detail);
}

}  // namespace platform
