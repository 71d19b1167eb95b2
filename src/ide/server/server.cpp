#include "ide/server/server.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "automation/apartment.h"
#include "automation/error.h"
#include "automation/object.h"
#include "automation/process.h"
#include "automation/remote.h"
#include "automation/remote_object.h"
#include "host/host_utility.h"
#include "host/ide_control.h"
#include "host/object_table.h"
#include "ide/model/project.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbproject.h"
#include "ide/vbide/vbprojects.h"
#include "platform/files.h"
#include "platform/home.h"
#include "platform/project_lines.h"
#include "platform/windows.h"

namespace ide::server {
namespace {

using Clock = std::chrono::steady_clock;
using host::ControlName;
using host::kControlClass;

// How often the loop looks for what no call tells it: an idle period run out, a project file
// changed on disk. A request to end is answered at once, not at the tick.
constexpr std::chrono::milliseconds kTick{200};

// One line of the log: local time, process, text.
void Log(std::string_view text) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);
  std::cerr << stamp << " qxvb6[" << ::getpid() << "] " << text << std::endl;
}

// What the loop and the control object share.
struct Activity {
  Clock::time_point started = Clock::now();
  Clock::time_point lastCall = started;  // the last call into the IDE from another process
  Clock::time_point lastHeld = started;  // the last time another process held one of its objects
  bool reached = false;                  // a host has called or held something
  bool quit = false;
};

class IdeControl : public automation::Object {
 public:
  IdeControl(Ide& ide, Activity& activity) : ide_(ide), activity_(activity) {}

  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info = automation::ClassBuilder<IdeControl>(kControlClass)
                                                  .Get("ProcessId", &IdeControl::ProcessId)
                                                  .Get("Projects", &IdeControl::Projects)
                                                  .Get("IdleSeconds", &IdeControl::IdleSeconds)
                                                  .Method("Quit", &IdeControl::Quit)
                                                  .Method("ShowWindow", &IdeControl::ShowWindow)
                                                  .Method("CreateObject", &IdeControl::Create)
                                                  .Build();
    return info;
  }

  int32_t ProcessId() { return static_cast<int32_t>(::getpid()); }
  std::string Projects() {
    std::string names;
    if (ide_.Ended()) return names;
    for (const auto& project : ide_.VBE()->VBProjects()->Items())
      names += (names.empty() ? "" : "\t") + project->FileName();
    return names;
  }
  int32_t IdleSeconds() {
    return static_cast<int32_t>(
        std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - activity_.lastCall)
            .count());
  }
  void Quit() { activity_.quit = true; }
  bool ShowWindow(int32_t hWnd, int32_t command) { return platform::ShowWindow(hWnd, command); }
  automation::ObjectRef Create(const std::string& progId) {
    automation::Process::Scope scope(ide_.Process());
    return automation::CreateObject(progId);
  }

 private:
  Ide& ide_;
  Activity& activity_;
};

bool HoldsUnsavedChanges(Ide& ide) {
  automation::Process::Scope scope(ide.Process());
  for (const auto& project : ide.VBE()->VBProjects()->Items()) {
    if (project->IsDirty()) return true;
  }
  return false;
}

bool QuietLongEnough(const Activity& activity, std::chrono::seconds idle) {
  const Clock::time_point now = Clock::now();
  if (automation::ExportedObjectCount() > 0) return false;
  if (!activity.reached && idle == std::chrono::seconds(0)) {
    return now - activity.started >= kUnclaimedGrace;
  }
  return now - std::max(activity.lastCall, activity.lastHeld) >= idle;
}

void LogNewProblems(const Ide& ide, size_t& logged) {
  const auto& problems = ide.Problems();
  for (; logged < problems.size(); ++logged)
    Log(problems[logged].Text());
}

void ReopenChangedProjects(Ide& ide, std::string_view only = {}) {
  if (const size_t reopened = ide.ReopenChangedProjects(only); reopened > 0) {
    Log("reopened " + std::to_string(reopened) + " project(s) changed on disk");
  }
}

}  // namespace

std::filesystem::path LogPath() {
  return platform::QxHome() / "qxvb6.log";
}

void RedirectOutputToLog() {
  const int fd = ::open(LogPath().c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (fd < 0) return;  // nowhere better to write: keep what was inherited
  ::fchmod(fd, 0600);  // a log of an older qx may have been readable by others
  ::dup2(fd, STDOUT_FILENO);
  ::dup2(fd, STDERR_FILENO);
  ::close(fd);
}

int Serve(const ServeOptions& options) {
  Log("starting for " + options.projectFile);
  // A replace saves every component it changes; qx flushes the disk once when the project is
  // done, and the IDE once more when it ends, rather than once per file.
  platform::SetDeferredFlush(true);
  std::unique_ptr<Ide> ide = Ide::Start(options.projectFile);
  size_t logged = 0;
  LogNewProblems(*ide, logged);
  if (!ide->VBProject()) {
    Log("ending: the project could not be opened");
    ide->End();
    return 2;
  }

  Activity activity;
  automation::SetIncomingCallObserver([&activity, &ide](const automation::Object& callee) {
    activity.reached = true;
    ide::BeginServedCall();
    const std::string& name = callee.Class().name;
    // Looking the IDE up and asking it how it is are no work for it.
    if (name == kControlClass || name == "Registrations") return;
    activity.lastCall = Clock::now();
  });
  // Every use of a project by a host begins with a look-up of its dispatcher in the object
  // table: a project file changed since the IDE last looked is opened again before the look-up
  // is answered, so that the host finds the dispatcher over the project as its file is now. Only
  // the project looked up is looked at: an IDE holding a group has hundreds.
  // The project's code page is made the process's then too, for the driver's code that reads its
  // files in the current code page.
  std::unordered_map<std::string, std::string> fileOfKey;  // "": no project's (the control's)
  host::ObjectTable::SetLookupObserver([&ide, &fileOfKey](const std::string& key) {
    auto known = fileOfKey.find(key);
    if (known == fileOfKey.end()) {
      std::string file;
      for (const auto& project : ide->VBE()->VBProjects()->Items()) {
        if (host::ObjectTable::Key(project->Model().FileName()) == key)
          file = project->Model().FileName();
      }
      known = fileOfKey.emplace(key, std::move(file)).first;
    }
    const std::string& file = known->second;
    if (file.empty()) return;
    ReopenChangedProjects(*ide, file);
    ide->UseCodePageOf(file);
  });
  const auto utility = host::HostUtility::Instance();
  const auto control = std::make_shared<IdeControl>(*ide, activity);
  std::vector<int32_t> cookies{utility->RegisterObject(ControlName(::getpid()), control)};
  // Started for a group, it registers under the group file's name too, once every project of the
  // group is open (or has failed to): what its starter waits for.
  if (platform::IsGroupFile(options.projectFile))
    cookies.push_back(utility->RegisterObject(options.projectFile, control));
  // The disk to flush at the end: the (start-up) project's, not a group file's.
  const std::string projectFile = ide->VBProject()->FileName();
  const size_t opened = ide->VBE()->VBProjects()->Items().size();
  Log("serving " + (opened == 1 ? ide->VBProject()->FileName()
                                : std::to_string(opened) + " projects of " + options.projectFile));

  std::string reason = "asked to end";
  automation::Apartment& apartment = automation::Apartment::Get();
  while (!activity.quit) {
    apartment.ServeFor(kTick, activity.quit);
    if (automation::ExportedObjectCount() > 0) {
      activity.lastHeld = Clock::now();
      activity.reached = true;
    }
    if (activity.quit) break;
    ReopenChangedProjects(*ide);
    LogNewProblems(*ide, logged);
    if (QuietLongEnough(activity, options.idle) && !HoldsUnsavedChanges(*ide)) {
      reason = "idle";
      break;
    }
  }

  Log("ending: " + reason);
  for (const int32_t cookie : cookies) {
    try {
      utility->RevokeObject(cookie);
    } catch (const automation::Error& e) {
      Log("revoking the control object: " + e.Description());
    }
  }
  ide->End();
  LogNewProblems(*ide, logged);
  automation::SetIncomingCallObserver({});
  host::ObjectTable::SetLookupObserver({});
  try {
    platform::FlushFileSystem(projectFile);
  } catch (const automation::Error& e) {
    Log("flushing the project's disk: " + e.Description());
  }
  return 0;
}

}  // namespace ide::server
