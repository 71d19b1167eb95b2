#include "ide/vbide/ide.h"

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
#include "platform/profile.h"

namespace ide {
namespace {

using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;

// IDTExtensibility's ext_ConnectMode and ext_DisconnectMode values.
constexpr int32_t kConnectAtStartup = 1;
constexpr int32_t kDisconnectHostShutdown = 0;

constexpr const char* kExtensibility = "IDTExtensibility";

}  // namespace

std::string IdeProblem::Text() const {
  return context + ": " + error.Description() + " (error " + std::to_string(error.Number()) + ")";
}

std::unique_ptr<Ide> Ide::Start(std::string_view projectPath) {
  std::unique_ptr<Ide> ide(new Ide());
  ide->process_ = automation::Process::Create("vb6");
  automation::Process::Scope scope(ide->process_);
  ide->vbe_ = vbide::VBE::Create();
  // The event source lives no longer than this IDE: End drops the handler with the sinks.
  ide->vbe_->Events()->VBProjectsEvents()->SetFailureHandler(
      [raw = ide.get()](const ObjectRef& sink, std::string_view event,
                        const automation::Error& error) {
        raw->problems_.push_back(
            {"the " + std::string(event) + " handler of " + sink->Class().name, error});
      });
  ide->LoadAddIns();
  if (!projectPath.empty()) ide->OpenProject(projectPath);
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
  problems_.push_back({std::move(context), automation::CurrentError()});
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

void Ide::OpenProject(std::string_view path) {
  std::shared_ptr<ide::Project> model;
  try {
    model = ide::Project::Open(path);
  } catch (...) {
    Record("opening the project " + std::string(path));
    return;
  }
  project_ = vbe_->VBProjects()->Add(std::move(model));
  vbe_->Events()->VBProjectsEvents()->Fire("ItemAdded", project_);
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
  if (!vbe_) {  // the start failed before the IDE had its root
    process_->End();
    return;
  }
  std::vector<std::shared_ptr<vbide::VBProject>> removed;
  {
    automation::Process::Scope scope(process_);
    const auto& projects = vbe_->VBProjects();
    while (!projects->Items().empty()) {
      std::shared_ptr<vbide::VBProject> project = projects->Items().front();
      vbe_->Events()->VBProjectsEvents()->Fire("ItemRemoved", project);
      projects->Remove(project);
      removed.push_back(std::move(project));
    }
    Notify("OnDisconnection", {Variant::Long(kDisconnectHostShutdown), Variant()});
    for (const auto& addIn : addIns_)
      addIn->SetConnected(false);
  }
  process_->End();
  for (const auto& project : removed)
    project->TearDown();
  for (const auto& addIn : addIns_)
    addIn->TearDown();
  vbe_->TearDown();
}

}  // namespace ide
