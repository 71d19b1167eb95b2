#pragma once
// HostUtility: the host's file and object services, one object per process.
//
// The registered-object table works like Windows' running object table: an object registered
// under a name can be looked up by that name from any process of the same qx home folder until
// its cookie is revoked or its process ends (object_table.h). Names match as Windows paths
// match: "\" and "/" are the same, letter case does not matter, drive letters map to their
// folders ("z:\p\a.vbp" is "/p/a.vbp") and ".." parts are resolved; a relative name is not
// made absolute ("c:\p\a.vbp" and "p\a.vbp" are different names).

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "automation/object.h"

namespace host {

inline constexpr const char* kStartTimeoutVariable = "QX_START_TIMEOUT_SECONDS";

class HostUtility : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.HostUtility";

  // The utility of the current process, made on first use.
  static std::shared_ptr<HostUtility> Instance();

  const automation::ClassInfo& Class() const override;

  // True exactly when a file (not a folder) exists at the path, or the run's view takes it as
  // there (run_view.h); false for an empty path.
  bool FileExists(const std::string& path);
  // Starts the Windows command line detached (see launch.h) and waits, serving calls into this
  // process, until an object is registered under the name (returned, as a proxy), the started
  // process ends or `timeout` milliseconds pass (Nothing for both), or the start fails (Nothing).
  // QX_START_TIMEOUT_SECONDS, when set, stands in for `timeout`.
  // One process of the qx home launches a name at a time: a caller that finds another one
  // launching it waits its turn within the time-out and then gets the object that launch
  // registered, without starting a second program.
  // The two string and two number arguments are accepted and not used.
  automation::ObjectRef LaunchAndConnect(const std::string& commandLine, const std::string& name,
                                         const std::string& arg3, const std::string& arg4,
                                         int32_t arg5, int32_t arg6, int32_t timeout);
  // The object registered under the name (the latest one when several are), else Nothing. An
  // object of another process comes as a proxy.
  automation::ObjectRef GetRegisteredObject(const std::string& name);
  // Registers an object under a name and returns the cookie (never 0) that revokes it. Nothing
  // raises 91.
  int32_t RegisterObject(const std::string& name, const automation::ObjectRef& object);
  // Drops the registration and the table's reference; an unknown cookie raises 5.
  void RevokeObject(int32_t cookie);
  // The path with the extension of its file name replaced: the text after the last "." of the
  // name (the part after the last "\" or "/") becomes the extension; a name without "." gets
  // "." and the extension appended. A leading "." of the extension is ignored; an empty
  // extension removes the old one with its dot.
  std::string ChangeExtension(const std::string& path, const std::string& extension);
  // A full path to try for a library known only by its file name: the first of
  // c:\windows\system32, c:\windows\system and c:\windows that holds the file (letter case not
  // mattering), else the path in c:\windows\system32.
  std::string ResolvePath(const std::string& name);

  // How registered names compare (ObjectTable::NormalizeName).
  static std::string NormalizeName(std::string_view name);
  // The number of registrations this process holds (for tests).
  static size_t RegisteredCount();
};

}  // namespace host
