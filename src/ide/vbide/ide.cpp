#include "ide/vbide/ide.h"

#include <filesystem>
#include <set>
#include <utility>

#include "automation/casefold.h"
#include "ide/model/project.h"
#include "ide/vbide/add_in.h"
#include "ide/vbide/events.h"
#include "ide/vbide/make.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbproject.h"
#include "ide/vbide/vbprojects.h"
#include "ide/vbide/vbprojects_events.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/profile.h"
#include "platform/project_lines.h"

namespace ide {
namespace {

using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;

// IDTExtensibility's ext_ConnectMode and ext_DisconnectMode values.
constexpr int32_t kConnectAtStartup = 1;
constexpr int32_t kDisconnectHostShutdown = 0;

constexpr const char* kExtensibility = "IDTExtensibility";

// Runs an action when the scope is left, also by an exception.
template <class F>
class ScopeExit {
 public:
  explicit ScopeExit(F action) : action_(std::move(action)) {}
  ~ScopeExit() { action_(); }
  ScopeExit(const ScopeExit&) = delete;
  ScopeExit& operator=(const ScopeExit&) = delete;

 private:
  F action_;
};

// The class name of an event sink for a problem's context. A sink in a process that has gone
// cannot tell its class; that must not turn one failed handler into a failed IDE.
std::string SinkName(const ObjectRef& sink) {
  try {
    return sink->Class().name;
  } catch (...) {
    return "an event sink";
  }
}

}  // namespace

std::string IdeProblem::Text() const {
  return context + ": " + error.Description() + " (error " + std::to_string(error.Number()) + ")";
}

std::unique_ptr<Ide> Ide::Start(std::string_view projectPath, AddInLoading addIns) {
  std::unique_ptr<Ide> ide(new Ide());
  ide->process_ = automation::Process::Create("vb6");
  automation::Process::Scope scope(ide->process_);
  ide->vbe_ = vbide::VBE::Create();
  // End drops the handler with the sinks; until then add-ins can reach the event source, and
  // the handler writes into the problem list only while the list is still there.
  ide->vbe_->Events()->VBProjectsEvents()->SetFailureHandler(
      [problems = std::weak_ptr(ide->problems_)](const ObjectRef& sink, std::string_view event,
                                                 const automation::Error& error) {
        if (const auto list = problems.lock()) {
          list->push_back({"the " + std::string(event) + " handler of " + SinkName(sink), error});
        }
      });
  if (addIns == AddInLoading::kLoad) ide->LoadAddIns();
  if (platform::IsGroupFile(projectPath)) {
    ide->OpenGroup(projectPath);
  } else if (!projectPath.empty()) {
    ide->project_ = ide->OpenProject(projectPath);
  }
  ide->Notify("OnStartupComplete", {Variant()});
  return ide;
}

Ide::~Ide() {
  try {
    End();
  } catch (...) {
    // Ending records what fails; nothing may escape a destructor.
  }
}

void Ide::Record(std::string context) {
  problems_->push_back({std::move(context), automation::CurrentError()});
}

void Ide::LoadAddIns() {
  std::vector<std::pair<std::string, std::string>> entries;
  try {
    entries = platform::ReadProfileSection("Add-Ins32", "vbaddin.ini");
  } catch (...) {
    Record("reading the add-ins of vbaddin.ini");
    return;
  }
  std::set<std::string> seen;  // an add-in named twice loads once
  for (const auto& [progId, value] : entries) {
    if (value != "1" || !seen.insert(automation::VbNameKey(progId)).second) continue;
    ObjectRef instance;
    try {
      instance = automation::CreateObject(progId);
    } catch (...) {
      Record("loading the add-in " + progId);
      continue;
    }
    auto addIn = vbide::MakeBeside<vbide::AddIn>(*vbe_, vbe_, progId, instance);
    addIns_.push_back(addIn);
    // Connected while it connects, as VB6's add-in manager has it; unless it fails.
    addIn->SetConnected(true);
    try {
      Dispatch(instance, kExtensibility)
          .Call("OnConnection", vbe_, kConnectAtStartup, addIn, Variant());
    } catch (...) {
      addIn->SetConnected(false);
      Record("connecting the add-in " + progId);
    }
  }
}

std::shared_ptr<vbide::VBProject> Ide::OpenProject(std::string_view path) {
  std::shared_ptr<ide::Project> model;
  try {
    model = ide::Project::Open(path);
  } catch (...) {
    Record("opening the project " + std::string(path));
    return nullptr;
  }
  auto project = vbe_->VBProjects()->Add(std::move(model));
  vbe_->Events()->VBProjectsEvents()->Fire("ItemAdded", project);
  return project;
}

void Ide::OpenGroup(std::string_view path) {
  const std::string file = platform::ToNative(path).string();
  std::vector<platform::GroupMember> members;
  try {
    members =
        platform::ReadGroupMembers(platform::ReadFile(file), platform::CurrentCodePage(), file);
  } catch (...) {
    Record("opening the project group " + std::string(path));
    return;
  }
  const std::string folder = std::filesystem::path(file).parent_path().string();
  for (const platform::GroupMember& member : members) {
    auto project = OpenProject(ResolvePath(folder, member.file));
    if (project && (!project_ || member.startup)) project_ = std::move(project);
  }
}

size_t Ide::ReopenChangedProjects(std::string_view only) {
  if (ended_ || !vbe_) return 0;
  automation::Process::Scope scope(process_);
  std::vector<std::shared_ptr<vbide::VBProject>> changed;
  for (const auto& project : vbe_->VBProjects()->Items()) {
    if (!only.empty() && project->Model().FileName() != only) continue;
    if (project->Model().ChangedOnDisk() && !project->IsDirty()) changed.push_back(project);
  }
  for (const auto& project : changed) {
    const std::string path = project->FileName();
    vbe_->Events()->VBProjectsEvents()->Fire("ItemRemoved", project);
    vbe_->VBProjects()->Remove(project);
    project->TearDown();
    auto reopened = OpenProject(path);
    if (project == project_) project_ = std::move(reopened);
  }
  return changed.size();
}

void Ide::UseCodePageOf(std::string_view fileName) {
  if (ended_ || !vbe_) return;
  for (const auto& project : vbe_->VBProjects()->Items()) {
    if (project->Model().FileName() != fileName) continue;
    platform::SetDetectedCodePage(project->Model().CodePage().Number());
    return;
  }
}

void Ide::Notify(std::string_view member, automation::Args arguments) {
  for (const auto& addIn : addIns_) {
    if (!addIn->Connect()) continue;
    automation::Args args = arguments;
    try {
      Dispatch(addIn->Instance(), kExtensibility).CallArgs(member, args);
    } catch (...) {
      Record("calling " + std::string(member) + " of the add-in " + addIn->ProgId());
    }
  }
}

void Ide::End() {
  if (ended_ || !process_) return;
  ended_ = true;
  std::vector<std::shared_ptr<vbide::VBProject>> removed;
  // Whatever fails below, the process ends and the references among the IDE's objects are
  // broken: projects, add-ins, the root with its events (and their failure handler).
  const ScopeExit finish([&] {
    process_->End();
    for (const auto& project : removed)
      project->TearDown();
    for (const auto& addIn : addIns_)
      addIn->TearDown();
    if (vbe_) vbe_->TearDown();
  });
  if (!vbe_) return;  // the start failed before the IDE had its root
  automation::Process::Scope scope(process_);
  const auto& projects = vbe_->VBProjects();
  while (!projects->Items().empty()) {
    std::shared_ptr<vbide::VBProject> project = projects->Items().front();
    removed.push_back(project);
    vbe_->Events()->VBProjectsEvents()->Fire("ItemRemoved", project);
    projects->Remove(project);
  }
  Notify("OnDisconnection", {Variant::Long(kDisconnectHostShutdown), Variant()});
  for (const auto& addIn : addIns_)
    addIn->SetConnected(false);
}

}  // namespace ide
