#include "cli/project_scope.h"

#include <string>

#include "cli/ide_processes.h"
#include "contracts/driver_interfaces.h"
#include "host/object_table.h"

namespace cli {
namespace {

// Keeps the IDE that the pass started warm, or ends it; leaves one that was running alone.
struct EndStartedIde {
  std::string project;
  bool wasRunning;
  WarmIdes* warm;  // null: end it
  ~EndStartedIde() {
    if (wasRunning) return;
    try {
      if (warm != nullptr) {
        warm->Done(project);
      } else {
        StopIdesOf(project);
      }
    } catch (...) {
      // An IDE that will not end ends by itself once idle.
    }
  }
};

struct Deactivate {
  const automation::ObjectRef& project;
  ~Deactivate() {
    try {
      contracts::IProject(project).Deactivate();
    } catch (...) {
      // Deactivating only drops the link to the IDE.
    }
  }
};

}  // namespace

void WithProject(Session& session, const std::filesystem::path& projectFile, WarmIdes* warm,
                 const std::function<void(const automation::ObjectRef& project)>& body) {
  const EndStartedIde endStartedIde{
      projectFile.string(), host::ObjectTable::Get().Registered(projectFile.string()), warm};
  const automation::ObjectRef project = session.OpenProject(projectFile.string());
  const Deactivate deactivate{project};
  body(project);
}

automation::ObjectRef ReachIde(const automation::ObjectRef& project) {
  return automation::Dispatch(project).Get("Dispatcher").ToObject();
}

}  // namespace cli
