#pragma once
// The running headless VB6 IDE: a process of its own with the extensibility model's root (VBE),
// the add-ins named in vbaddin.ini and the project it was started for.
//
//   auto ide = ide::Ide::Start("/work/Ledger/Ledger.vbp");
//   automation::Dispatch vbe(ide->VBE());          // VBE.Version, VBE.VBProjects, ...
//   automation::Dispatch project(ide->VBProject()); // VBProject.FileName, .VBComponents, ...
//   ide->End();                                    // every object of the IDE now raises 462
//
// Starting: the IDE's process is created and made current for the start; the VBE is created;
// every key of section [Add-Ins32] of vbaddin.ini (in c:\windows) whose value is "1" names an
// add-in, which is created by programmatic identifier (automation::CreateObject, in the IDE's
// process) and connected through its IDTExtensibility interface with
// OnConnection(VBE, 1 = at start-up, AddInInst, Empty); then the project is opened and
// VBProjectsEvents raises ItemAdded with it; then each connected add-in gets
// OnStartupComplete(Empty).
//
// Like VB6, the IDE does not stop for a broken add-in or project: an add-in that cannot be
// created or fails in one of its calls, a project that cannot be opened and an event handler that
// fails are recorded in Problems() (VB6 shows them in message boxes), and the IDE goes on
// without them.
//
// Ending: ItemRemoved for each project (which then leaves the IDE), OnDisconnection(0 = host
// shutdown, Empty) for each connected add-in, then the process ends: every later call into any
// object of the IDE, kept by whomever, fails with 462 "The remote server machine does not exist
// or is unavailable", and the references among the IDE's objects are broken so that they are
// freed once their last holder lets go. The destructor ends an IDE that is still running.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "automation/error.h"
#include "automation/object.h"
#include "automation/process.h"

namespace ide {

namespace vbide {
class AddIn;
class VBE;
class VBProject;
}  // namespace vbide

// Something that went wrong in the IDE without stopping it.
struct IdeProblem {
  std::string context;  // what was being done, e.g. "loading the add-in qxvb60.Connection"
  automation::Error error;

  // One line for a tool to print: context, error text and number.
  std::string Text() const;
};

class Ide {
 public:
  // Starts an IDE for the project file (an empty path starts it without a project), or for the
  // projects of a project group file (.vbg), opened in the group's order. Raises only
  // when the IDE itself cannot be set up; add-in and project failures become Problems(). The
  // IDE's own commands (qxvb6.exe dump, set) start it without add-ins: they read and write the
  // project through the extensibility objects and have no use for what vbaddin.ini names.
  enum class AddInLoading : uint8_t { kLoad, kNone };
  static std::unique_ptr<Ide> Start(std::string_view projectPath,
                                    AddInLoading addIns = AddInLoading::kLoad);
  ~Ide();
  Ide(const Ide&) = delete;
  Ide& operator=(const Ide&) = delete;

  // Closes and opens again, as VB6 does on a close and re-open, every project whose project file
  // changed on disk since it was read and that holds no unsaved change: ItemRemoved for the old
  // project, ItemAdded for the new one. Returns how many were reopened; a project that cannot be
  // opened again is recorded in Problems() and stays closed. Given a project file name, just that
  // project.
  size_t ReopenChangedProjects(std::string_view only = {});

  // Makes the code page of the project of that file name the process's current one, for what
  // reads a project's files in the current code page (a DHTML page's HTML): with several projects
  // open (a group), the one a host is using.
  void UseCodePageOf(std::string_view fileName);

  // Ends the IDE (see above). Ending twice does nothing.
  void End();
  bool Ended() const { return ended_; }

  const std::shared_ptr<automation::Process>& Process() const { return process_; }
  const std::shared_ptr<vbide::VBE>& VBE() const { return vbe_; }

  // The project opened at start (of a group: its start-up project, else the first that opened);
  // null when none was given or none could be opened.
  const std::shared_ptr<vbide::VBProject>& VBProject() const { return project_; }
  // The add-ins created at start, connected or not (AddIn.Connect tells).
  const std::vector<std::shared_ptr<vbide::AddIn>>& AddIns() const { return addIns_; }
  const std::vector<IdeProblem>& Problems() const { return *problems_; }

 private:
  Ide() = default;

  void LoadAddIns();
  // Opens the project and raises ItemAdded; null (and a problem) when it cannot be opened.
  std::shared_ptr<vbide::VBProject> OpenProject(std::string_view path);
  // Opens each project of the group in its order; failures are problems, as for one project.
  void OpenGroup(std::string_view path);
  // Calls a member of IDTExtensibility on every connected add-in; failures become problems.
  void Notify(std::string_view member, automation::Args arguments);
  void Record(std::string context);

  std::shared_ptr<automation::Process> process_;
  std::shared_ptr<vbide::VBE> vbe_;
  std::shared_ptr<vbide::VBProject> project_;
  std::vector<std::shared_ptr<vbide::AddIn>> addIns_;
  // Shared with the failure handler of the project events, which holds it weakly: the event
  // source is reachable by add-ins and may outlive this object.
  std::shared_ptr<std::vector<IdeProblem>> problems_ = std::make_shared<std::vector<IdeProblem>>();
  bool ended_ = false;
};

}  // namespace ide
