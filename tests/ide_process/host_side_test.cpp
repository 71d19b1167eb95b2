// The driver's host side against a real IDE process, as a host loads it: the project's
// collections answer from the IDE once it has the project, the design command reaches it (its
// main window too, by handle), and
// IProject.Deactivate on a project that started its IDE itself ignores 462 and raises any other
// error again with an empty source.

#include <signal.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "automation/error.h"
#include "automation/object.h"
#include "automation/process.h"
#include "contracts/driver_interfaces.h"
#include "contracts/enumeration.h"
#include "host/register.h"
#include "ide_process/ide_processes.h"
#include "special/qxvb60.h"
#include "support/errors.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using qxtest::Caught;

class HostSide : public qxtest::IdeProcesses {
 protected:
  HostSide() : process_(automation::Process::Create("host")), scope_(process_) {
    host::RegisterClasses();
    special::LoadDriver();
    log_ = automation::CreateObject("qxlib41.ProblemLog");
    driver_ = automation::CreateObject("qxvb60.Driver");
    contracts::IDriver(driver_).Initialize(log_);
    const Dispatch parameters(automation::CreateObject("qxlib41.ParameterList"));
    parameters.Call("Add", "FileName", vbp_);
    project_ = contracts::IDriver(driver_).GetProject("", 0, parameters.Get("Text").ToString());
  }
  ~HostSide() override {
    try {
      Dispatch(project_).Call("TearDown");
      contracts::IDriver(driver_).Shutdown();
    } catch (...) {
    }
    process_->End();
  }

  contracts::ICollection Collection(const std::string& name) const {
    return contracts::ICollection(contracts::IProject(project_).GetCollection(name));
  }
  // The process id of the IDE that has the project open.
  long IdePid() {
    const auto list = Qx({"ide", "list"});
    return list.out.empty() ? 0 : std::stol(list.out);
  }

  std::shared_ptr<automation::Process> process_;
  automation::Process::Scope scope_;
  ObjectRef log_;
  ObjectRef driver_;
  ObjectRef project_;
};

TEST_F(HostSide, TheCollectionsAnswerFromTheIdeOnceItHasTheProject) {
  const Dispatch project(project_);
  EXPECT_FALSE(project.Get("IsActive").ToBool());
  Collection("Forms").EnumObjects();
  EXPECT_EQ(IdePid(), 0);  // listing from the file starts nothing

  project.Get("Dispatcher");
  EXPECT_TRUE(project.Get("IsActive").ToBool());
  EXPECT_EQ(contracts::ParseEnumeration(Collection("Forms").EnumObjects())[0].version.size(), 14u);

  // The design command goes into the IDE: its main window, minimized at start-up, is restored
  // by its handle from this process, and the component is found there by name.
  const Dispatch mainWindow(
      Dispatch(Dispatch(Dispatch(project.Get("Dispatcher").ToObject()).Get("VBProject").ToObject())
                   .Get("VBE")
                   .ToObject())
          .Get("MainWindow")
          .ToObject());
  EXPECT_EQ(mainWindow.Get("WindowState").ToLong(), 1);
  Collection("Forms").ExecuteObjectCommand("frmMain", 0);
  EXPECT_EQ(mainWindow.Get("WindowState").ToLong(), 0);
  EXPECT_EQ(Caught([&] { Collection("Forms").ExecuteObjectCommand("Nope", 0); }).Number(), 9);

  // Deactivating leaves the IDE running with the project.
  const long pid = IdePid();
  contracts::IProject(project_).Deactivate();
  EXPECT_TRUE(project.Get("IsActive").ToBool());
  EXPECT_FALSE(qxtest::ProcessGone(pid));
}

TEST_F(HostSide, DeactivateIgnores462FromTheIdeItStarted) {
  Dispatch(project_).Get("Dispatcher");
  const long pid = IdePid();
  ASSERT_GT(pid, 0);
  ::kill(static_cast<pid_t>(pid), SIGKILL);
  ASSERT_TRUE(qxtest::WaitGone(pid, std::chrono::seconds(10)));
  EXPECT_EQ(Caught([&] { contracts::IProject(project_).Deactivate(); }).Number(), 0);
  EXPECT_FALSE(Dispatch(project_).Get("IsActive").ToBool());
}

TEST_F(HostSide, DeactivateRaisesAnyOtherErrorAgainWithAnEmptySource) {
  Dispatch(project_).Get("Dispatcher");
  // A changed project file is reopened by the IDE: the dispatcher the project holds is torn
  // down and has no IDE project any more.
  std::ofstream(vbp_, std::ios::app) << "VersionComments=\"changed\"\r\n";
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (qxtest::ReadBytes(home() / "qxvb6.log").find("reopened") == std::string::npos &&
         std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  const automation::Error e = Caught([&] { contracts::IProject(project_).Deactivate(); });
  EXPECT_EQ(e.Number(), automation::err::kObjectNotSet) << e.Description();
  EXPECT_EQ(e.Source(), "");
  EXPECT_NE(e.Description().find("qxvb60.Project.IProject_Deactivate.1"), std::string::npos);
  // The reopened project is registered again: the next read connects to the same IDE.
  const long pid = IdePid();
  Dispatch(project_).Get("Dispatcher");
  EXPECT_EQ(IdePid(), pid);
  EXPECT_TRUE(Dispatch(project_).Get("IsActive").ToBool());
}

}  // namespace
