#include "host/host_utility.h"

#include <limits>
#include <mutex>
#include <vector>

#include "automation/casefold.h"
#include "automation/error.h"
#include "automation/process.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace host {
namespace {

struct HostUtilityValues {
  std::shared_ptr<HostUtility> utility;
};

// The registered objects of the whole program, shared by every automation process in it, as
// Windows shares its running object table between processes.
class ObjectTable {
 public:
  static ObjectTable& Get() {
    static ObjectTable table;
    return table;
  }

  int32_t Add(std::string key, automation::ObjectRef object) {
    std::lock_guard lock(mutex_);
    const int32_t cookie = next_;
    next_ = next_ == std::numeric_limits<int32_t>::max() ? 1 : next_ + 1;
    entries_.push_back(Entry{cookie, std::move(key), std::move(object)});
    return cookie;
  }

  automation::ObjectRef Find(const std::string& key) {
    std::lock_guard lock(mutex_);
    for (auto it = entries_.rbegin(); it != entries_.rend(); ++it) {
      if (it->key == key) return it->object;
    }
    return nullptr;
  }

  // Takes the registration out; its object is handed to the caller, which releases it outside
  // the lock (its destructor may call back into the table). False when the cookie is unknown.
  bool Remove(int32_t cookie, automation::ObjectRef& removed) {
    std::lock_guard lock(mutex_);
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
      if (it->cookie == cookie) {
        removed = std::move(it->object);
        entries_.erase(it);
        return true;
      }
    }
    return false;
  }

  size_t Size() {
    std::lock_guard lock(mutex_);
    return entries_.size();
  }

 private:
  struct Entry {
    int32_t cookie;
    std::string key;
    automation::ObjectRef object;
  };

  std::mutex mutex_;
  std::vector<Entry> entries_;
  int32_t next_ = 1;
};

}  // namespace

std::shared_ptr<HostUtility> HostUtility::Instance() {
  auto& values = automation::Process::Current().Values<HostUtilityValues>();
  if (!values.utility) values.utility = std::make_shared<HostUtility>();
  return values.utility;
}

const automation::ClassInfo& HostUtility::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<HostUtility>("HostUtility")
          .Method("FileExists", &HostUtility::FileExists, {"Path"})
          .Method("LaunchAndConnect", &HostUtility::LaunchAndConnect,
                  {"CommandLine", "Name", "Arg3", "Arg4", "Arg5", "Arg6", "Timeout"})
          .Method("GetRegisteredObject", &HostUtility::GetRegisteredObject, {"Name"})
          .Method("RegisterObject", &HostUtility::RegisterObject, {"Name", "Object"})
          .Method("RevokeObject", &HostUtility::RevokeObject, {"Cookie"})
          .Method("ChangeExtension", &HostUtility::ChangeExtension, {"Path", "Extension"})
          .Method("ResolvePath", &HostUtility::ResolvePath, {"Name"})
          .Build();
  return info;
}

bool HostUtility::FileExists(const std::string& path) {
  return !path.empty() && platform::FileExists(path);
}

automation::ObjectRef HostUtility::LaunchAndConnect(const std::string&, const std::string&,
                                                    const std::string&, const std::string&, int32_t,
                                                    int32_t, int32_t) {
  automation::RaiseMessage(automation::err::kUserError,
                           "No IDE connection is available: starting the VB6 IDE comes with a "
                           "later version of qx.");
}

automation::ObjectRef HostUtility::GetRegisteredObject(const std::string& name) {
  return ObjectTable::Get().Find(NormalizeName(name));
}

int32_t HostUtility::RegisterObject(const std::string& name, const automation::ObjectRef& object) {
  if (!object)
    automation::Raise(automation::err::kObjectNotSet, "no object to register as " + name);
  return ObjectTable::Get().Add(NormalizeName(name), object);
}

void HostUtility::RevokeObject(int32_t cookie) {
  automation::ObjectRef removed;
  if (!ObjectTable::Get().Remove(cookie, removed)) {
    automation::Raise(automation::err::kInvalidCall,
                      "no object is registered with the cookie " + std::to_string(cookie));
  }
}

std::string HostUtility::ChangeExtension(const std::string& path, const std::string& extension) {
  const size_t separator = platform::LastSeparator(path);
  const size_t nameStart = separator == std::string::npos ? 0 : separator + 1;
  const size_t dot = path.rfind('.');
  std::string out = dot != std::string::npos && dot >= nameStart ? path.substr(0, dot) : path;
  std::string_view ext(extension);
  if (!ext.empty() && ext.front() == '.') ext.remove_prefix(1);
  if (!ext.empty()) {
    out += '.';
    out += ext;
  }
  return out;
}

std::string HostUtility::ResolvePath(const std::string& name) {
  const size_t separator = platform::LastSeparator(name);
  const std::string fileName = separator == std::string::npos ? name : name.substr(separator + 1);
  static constexpr const char* kFolders[] = {"c:\\windows\\system32", "c:\\windows\\system",
                                             "c:\\windows"};
  for (const char* folder : kFolders) {
    std::string candidate = std::string(folder) + "\\" + fileName;
    if (FileExists(candidate)) return candidate;
  }
  return std::string(kFolders[0]) + "\\" + fileName;
}

std::string HostUtility::NormalizeName(std::string_view name) {
  std::string out = automation::FoldCaseUnicode(name);
  for (char& c : out) {
    if (c == '/') c = '\\';
  }
  return out;
}

size_t HostUtility::RegisteredCount() {
  return ObjectTable::Get().Size();
}

}  // namespace host
