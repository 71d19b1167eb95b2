#include "host/host_utility.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <vector>

#include "automation/apartment.h"
#include "automation/error.h"
#include "automation/process.h"
#include "host/launch.h"
#include "host/object_table.h"
#include "host/run_view.h"
#include "platform/descriptor.h"
#include "platform/files.h"
#include "platform/home.h"
#include "platform/paths.h"

namespace host {
namespace {

struct HostUtilityValues {
  std::shared_ptr<HostUtility> utility;
  std::vector<pid_t> launched;  // started by LaunchAndConnect and still running
};

// The launch of one name, held by one process of the qx home at a time: two hosts that start
// the IDE for the same project at once end with one IDE, the second finding the first's
// registration once it holds the lock. The lock is the file's flock, so it goes with its
// process, however that ends.
class LaunchLock {
 public:
  explicit LaunchLock(const std::string& name) {
    const std::filesystem::path run = platform::RunFolder();
    path_ = run / ("launch-" + ObjectTable::KeyTag(ObjectTable::Key(name)) + ".lock");
    Open();
  }
  // The holder removes the lock file before it lets go, so that a run over many projects
  // leaves no file per project behind.
  ~LaunchLock() {
    if (held_) ::unlink(path_.c_str());
    if (fd_ >= 0) ::close(fd_);  // releases the lock
  }
  LaunchLock(const LaunchLock&) = delete;
  LaunchLock& operator=(const LaunchLock&) = delete;

  // Takes the lock if no other process holds it. Without a lock file there is nothing to
  // wait for. A lock taken on a file that its holder removed meanwhile is no lock: the file is
  // opened again, and the next try takes the one that is there now.
  bool TryAcquire() {
    if (fd_ < 0) return true;
    if (::flock(fd_, LOCK_EX | LOCK_NB) != 0) return false;
    struct stat opened {};
    struct stat named {};
    if (::fstat(fd_, &opened) == 0 && ::stat(path_.c_str(), &named) == 0 &&
        opened.st_dev == named.st_dev && opened.st_ino == named.st_ino) {
      held_ = true;
      return true;
    }
    ::close(fd_);
    Open();
    return false;
  }

 private:
  void Open() { fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600); }

  std::filesystem::path path_;
  int fd_ = -1;
  bool held_ = false;
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
  return !path.empty() && (platform::FileExists(path) || RunView::Current().HasFile(path));
}

namespace {

// How long a launch waits for the started program to register: the caller's time-out, unless
// QX_START_TIMEOUT_SECONDS says otherwise (a slow machine may need longer; a script that would
// rather fail fast, shorter).
std::chrono::milliseconds StartTimeout(int32_t callersMs) {
  if (const char* value = std::getenv(kStartTimeoutVariable); value != nullptr && *value != 0) {
    char* end = nullptr;
    const double seconds = std::strtod(value, &end);
    if (end != value && *end == 0 && seconds >= 0 && seconds <= 86400) {
      return std::chrono::milliseconds(static_cast<int64_t>(seconds * 1000));
    }
  }
  return std::chrono::milliseconds(std::max(callersMs, 0));
}

}  // namespace

automation::ObjectRef HostUtility::LaunchAndConnect(const std::string& commandLine,
                                                    const std::string& name, const std::string&,
                                                    const std::string&, int32_t, int32_t,
                                                    int32_t timeout) {
  auto& launched = automation::Process::Current().Values<HostUtilityValues>().launched;
  // Reap the programs started earlier that have ended since.
  std::erase_if(launched, [](pid_t pid) { return ::waitpid(pid, nullptr, WNOHANG) != 0; });

  const auto deadline = std::chrono::steady_clock::now() + StartTimeout(timeout);
  // Calls into this process are served while it waits, for the lock as for the registration.
  LaunchLock lock(name);
  if (!automation::Apartment::Get().ServeUntil([&] { return lock.TryAcquire(); }, deadline)) {
    return nullptr;
  }
  // Started meanwhile by the host that held the lock.
  if (automation::ObjectRef running = ObjectTable::Get().Find(name)) return running;

  // A registration is an entry file renamed into the run folder: its arrival wakes the wait, which
  // otherwise looks again every 20 ms (and sees so whether the program ended without one).
  const platform::Descriptor arrivals(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  if (arrivals.get() >= 0) {
    ::inotify_add_watch(arrivals.get(), platform::RunFolder().c_str(), IN_MOVED_TO | IN_CREATE);
  }
  const pid_t pid = StartDetached(commandLine);
  if (pid <= 0) return nullptr;
  automation::ObjectRef found;
  bool ended = false;
  automation::Apartment::Get().ServeUntil(
      [&] {
        char events[4096];
        while (arrivals.get() >= 0 && ::read(arrivals.get(), events, sizeof events) > 0) {
        }
        found = ObjectTable::Get().Find(name);
        ended = !found && ::waitpid(pid, nullptr, WNOHANG) == pid;
        return found || ended;
      },
      deadline, std::chrono::milliseconds(20), arrivals.get());
  if (!ended) launched.push_back(pid);
  return found;
}

automation::ObjectRef HostUtility::GetRegisteredObject(const std::string& name) {
  return ObjectTable::Get().Find(name);
}

int32_t HostUtility::RegisterObject(const std::string& name, const automation::ObjectRef& object) {
  if (!object)
    automation::Raise(automation::err::kObjectNotSet, "no object to register as " + name);
  return ObjectTable::Get().Add(name, object);
}

void HostUtility::RevokeObject(int32_t cookie) {
  if (!ObjectTable::Get().Remove(cookie)) {
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
  return ObjectTable::NormalizeName(name);
}

size_t HostUtility::RegisteredCount() {
  return ObjectTable::Get().Size();
}

}  // namespace host
