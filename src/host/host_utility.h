#pragma once
// HostUtility: the host's file and object services, one object per process.
//
// The registered-object table works like Windows' running object table: an object registered
// under a name can be looked up by that name from any process of the program until its cookie
// is revoked. Names match as Windows paths match: "\" and "/" are the same and letter case does
// not matter; nothing else is resolved ("c:\p\a.vbp" and "p\a.vbp" are different names).

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "automation/object.h"

namespace host {

class HostUtility : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.HostUtility";

  // The utility of the current process, made on first use.
  static std::shared_ptr<HostUtility> Instance();

  const automation::ClassInfo& Class() const override;

  // True exactly when a file (not a folder) exists at the path; false for an empty path.
  bool FileExists(const std::string& path);
  // Starting the IDE is not available yet: raises -32767 saying so.
  automation::ObjectRef LaunchAndConnect(const std::string& commandLine, const std::string& name,
                                         const std::string& arg3, const std::string& arg4,
                                         int32_t arg5, int32_t arg6, int32_t timeout);
  // The object registered under the name (the latest one when several are), else Nothing.
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

  // How registered names compare: separators unified, letter case folded.
  static std::string NormalizeName(std::string_view name);
  // The number of registrations in the table (for tests).
  static size_t RegisteredCount();
};

}  // namespace host
