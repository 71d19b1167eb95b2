// The driver's IDE side inside the headless IDE: the add-in loaded from vbaddin.ini, one
// dispatcher per project registered under the project file's path, the enumeration strings
// answered from the IDE, and the collections of a host-side project that finds the IDE.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "automation/object.h"
#include "automation/process.h"
#include "contracts/driver_interfaces.h"
#include "contracts/host_classes.h"
#include "foundation/globals.h"
#include "ide/model/project.h"
#include "ide/vbide/add_in.h"
#include "ide/vbide/events.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbproject.h"
#include "ide/vbide/vbprojects.h"
#include "platform/registry.h"
#include "project/connection.h"
#include "support/driver_ide.h"
#include "support/errors.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;
using qxtest::Caught;

// A project as the IDE shows it: one it never saved (an empty path), one under a path written
// otherwise than when it was added, or one whose IDE has gone away.
class StubProject : public automation::Object {
 public:
  explicit StubProject(std::string fileName, bool gone = false)
      : fileName_(std::move(fileName)), gone_(gone) {}
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info = automation::ClassBuilder<StubProject>("VBProject")
                                                  .Get("FileName", &StubProject::FileName)
                                                  .Build();
    return info;
  }
  std::string FileName() {
    if (gone_) automation::Raise(automation::err::kServerUnavailable);
    return fileName_;
  }

 private:
  std::string fileName_;
  bool gone_;
};

// The root of an IDE of another version, with an event source that takes any sink.
class OtherVbe : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info = automation::ClassBuilder<OtherVbe>("VBE")
                                                  .Get("Version", &OtherVbe::Version)
                                                  .Get("Events", &OtherVbe::Self)
                                                  .Get("VBProjectsEvents", &OtherVbe::Self)
                                                  .Method("Advise", &OtherVbe::Advise, {"Sink"})
                                                  .Build();
    return info;
  }
  std::string Version() { return "5.00"; }
  ObjectRef Self() { return shared_from_this(); }
  int32_t Advise(const ObjectRef&) { return 1; }
};

// "yyyymmddhhnnss" of a local time that a test gives a file.
constexpr const char* kStamp = "20210304050607";

void Stamp(const std::filesystem::path& file) {
  std::tm local{};
  ::strptime(kStamp, "%Y%m%d%H%M%S", &local);
  local.tm_isdst = -1;
  const auto when = std::chrono::system_clock::from_time_t(std::mktime(&local));
  std::filesystem::last_write_time(file, std::chrono::file_clock::from_sys(when));
}

std::string Entry(const std::string& name, int bitmap, const std::string& version, bool flag,
                  bool writable) {
  return name + "\t" + std::to_string(bitmap) + "\t" + version + "\t" + (flag ? "1" : "0") + "\t" +
         (writable ? "1" : "0") + "\t1\t0";
}

class IdeSide : public qxtest::DriverIde {
 protected:
  IdeSide() : DriverIde("basic", "Basic.vbp", false) {
    for (const auto& file : std::filesystem::directory_iterator(folder_))
      Stamp(file.path());
  }

  void StartIde() {
    DriverIde::StartIde();
    ASSERT_TRUE(ide_->Problems().empty()) << ide_->Problems().front().Text();
    ASSERT_EQ(ide_->AddIns().size(), 1u);
    connection_ = automation::As<project::Connection>(ide_->AddIns().front()->Instance());
  }

  // Opens another project in the running IDE, which raises ItemAdded for it.
  std::shared_ptr<ide::vbide::VBProject> OpenInIde(const std::string& path) {
    automation::Process::Scope scope(ide_->Process());
    auto project = ide_->VBE()->VBProjects()->Add(ide::Project::Open(path));
    ide_->VBE()->Events()->VBProjectsEvents()->Fire("ItemAdded", project);
    return project;
  }
  void Raise(const char* event, const ObjectRef& project) {
    automation::Process::Scope scope(ide_->Process());
    ide_->VBE()->Events()->VBProjectsEvents()->Fire(event, project);
  }

  std::vector<std::string> TablePaths() const {
    std::vector<std::string> paths;
    for (const auto& entry : connection_->Entries())
      paths.push_back(entry.fileName);
    return paths;
  }

  // The problems in a problem log, as "number: description".
  static std::vector<std::string> Problems(const ObjectRef& log) {
    std::vector<std::string> problems;
    const Dispatch d(log);
    for (int32_t i = 1; i <= d.Get("Count").ToLong(); ++i) {
      const Dispatch problem(d.Call("Item", i).ToObject());
      problems.push_back(std::to_string(problem.Get("Number").ToLong()) + ": " +
                         problem.Get("Description").ToString());
    }
    return problems;
  }

  std::shared_ptr<project::Connection> connection_;
};

TEST_F(IdeSide, TheAddInRegistersEachSavedProjectInOrderUnderItsFileUntilItIsRemoved) {
  EXPECT_EQ(contracts::HostUtility::Get().GetRegisteredObject(vbp_), nullptr);
  StartIde();
  EXPECT_EQ(connection_->Owner(), ide_->Process());
  // Listed in vbaddin.ini only, the add-in is described by its class's type information.
  EXPECT_EQ(ide_->AddIns().front()->Description(), "Quarrix VB AddIn");
  ASSERT_EQ(TablePaths(), (std::vector<std::string>{vbp_}));
  const project::Connection::Entry entry = connection_->Entries().front();
  EXPECT_NE(entry.cookie, 0);
  // The host finds the dispatcher under the path it knows (in whatever letter case: the object
  // table's names).
  const contracts::HostUtility host = contracts::HostUtility::Get();
  EXPECT_EQ(host.GetRegisteredObject(vbp_), entry.dispatcher);
  EXPECT_EQ(Dispatch(entry.dispatcher).Get("VBProject").ToObject(), ide_->VBProject());

  // The table keeps its order and removes every entry of a path in any case.
  for (const char* name : {"A", "B", "C", "D"})
    qxtest::WriteBytes(env_.work() / (std::string(name) + ".vbp"), "Type=Exe\r\n");
  const auto path = [&](const char* name) { return (env_.work() / name).string(); };
  OpenInIde(path("A.vbp"));
  OpenInIde(path("B.vbp"));
  OpenInIde(path("C.vbp"));
  OpenInIde(path("B.vbp"));  // the same file twice
  const auto d = [&] {
    automation::Process::Scope scope(ide_->Process());
    return ide_->VBE()->VBProjects()->Add(ide::Project::Open(path("D.vbp")));
  }();  // open, but never announced
  EXPECT_EQ(TablePaths(), (std::vector<std::string>{vbp_, path("A.vbp"), path("B.vbp"),
                                                    path("C.vbp"), path("B.vbp")}));
  const ObjectRef dispatcherB = connection_->Entries()[2].dispatcher;
  // Each dispatcher answers for its own project; A has no component of any kind.
  const Dispatch dispatcherA(connection_->Entries()[1].dispatcher);
  EXPECT_EQ(dispatcherA.Call("EnumClassModules").ToString(), "");
  EXPECT_EQ(dispatcherA.Call("EnumModules").ToString(), "");

  // Removing B, reported under its path in other letters, removes both of its entries.
  std::string shoutedB = path("B.vbp");
  shoutedB.replace(shoutedB.size() - 5, 5, "b.VBP");
  Raise("ItemRemoved", std::make_shared<StubProject>(shoutedB));
  EXPECT_EQ(TablePaths(), (std::vector<std::string>{vbp_, path("A.vbp"), path("C.vbp")}));
  EXPECT_EQ(Dispatch(dispatcherB).Get("VBProject").ToObject(), nullptr);  // torn down
  EXPECT_EQ(host.GetRegisteredObject(path("B.vbp")), nullptr);
  EXPECT_NE(host.GetRegisteredObject(path("C.vbp")), nullptr);

  Raise("ItemRemoved", d);  // no entry: nothing changes
  EXPECT_EQ(TablePaths().size(), 3u);
  // A project never saved gets no dispatcher.
  Raise("ItemAdded", std::make_shared<StubProject>(""));
  EXPECT_EQ(TablePaths().size(), 3u);

  // Ending the IDE removes every project: the dispatchers are torn down and withdrawn.
  ide_->End();
  EXPECT_TRUE(connection_->Entries().empty());
  EXPECT_EQ(host.GetRegisteredObject(vbp_), nullptr);
  EXPECT_EQ(host.GetRegisteredObject(path("C.vbp")), nullptr);
}

TEST_F(IdeSide, AnotherIdeVersionAndFailingHandlersChangeNothingAndAreLogged) {
  StartIde();
  const ObjectRef ideLog = [&] {
    automation::Process::Scope scope(ide_->Process());
    return foundation::GetGlobals().problemLog;
  }();
  // A failure inside a handler goes into the IDE's problem log, and the handler returns.
  Raise("ItemRemoved", std::make_shared<StubProject>("", true));
  EXPECT_EQ(TablePaths().size(), 1u);
  const std::vector<std::string> logged = Problems(ideLog);
  ASSERT_EQ(logged.size(), 1u);
  EXPECT_NE(logged[0].find("462: "), std::string::npos);
  EXPECT_NE(logged[0].find("qxvb60.Connection.ProjectEvents_ItemRemoved.1  (4.1.475)"),
            std::string::npos);

  // An add-in connected to another version of the IDE ignores the project events.
  auto other = std::make_shared<project::Connection>();
  Dispatch(other, "IDTExtensibility")
      .Call("OnConnection", std::make_shared<OtherVbe>(), 1, ObjectRef(), Variant());
  other->ProjectEvents_ItemAdded(ide_->VBProject());
  EXPECT_TRUE(other->Entries().empty());
  EXPECT_EQ(Problems(ideLog).size(), 1u);
  Dispatch(other, "IDTExtensibility").Call("OnDisconnection", 0, Variant());
}

TEST_F(IdeSide, TheDispatcherListsEveryKindFromTheIde) {
  // A third designer of neither special kind.
  std::string dsr = qxtest::ReadBytes(folder_ / "DHTMLPage1.Dsr");
  dsr.replace(dsr.find("{90290CCD-F27D-11D0-8031-00C04FB6C701} DHTMLPage1"), 50,
              "{C0E45035-5775-11D0-B388-00A0C9055D8E} DataEnv1");
  dsr.replace(dsr.find("\"DHTMLPage1\"\r\nAttribute"), 12, "\"DataEnv1\"");
  qxtest::WriteBytes(folder_ / "DataEnv1.Dsr", dsr);
  Stamp(folder_ / "DataEnv1.Dsr");
  std::string vbpText = qxtest::ReadBytes(vbp_);
  vbpText.insert(vbpText.find("Startup="), "Designer=DataEnv1.Dsr\r\n");
  qxtest::WriteBytes(vbp_, vbpText);
  ::chmod((folder_ / "UserControl1.ctl").c_str(), 0444);

  StartIde();
  const Dispatch dispatcher(connection_->Entries().front().dispatcher);
  // Deleted after loading: no version, no flags.
  std::filesystem::remove(folder_ / "Module1.bas");

  EXPECT_EQ(dispatcher.Call("EnumClassModules").ToString(), Entry("CThing", 2, kStamp, 1, 1));
  EXPECT_EQ(dispatcher.Call("EnumDesigners").ToString(), Entry("DataEnv1", 3, kStamp, 1, 1));
  EXPECT_EQ(dispatcher.Call("EnumDHTMLPages").ToString(), Entry("DHTMLPage1", 3, kStamp, 1, 1));
  EXPECT_EQ(dispatcher.Call("EnumForms").ToString(),
            Entry("Form1", 4, kStamp, 1, 1) + "\r\n" + Entry("MDIForm1", 4, kStamp, 1, 1));
  EXPECT_EQ(dispatcher.Call("EnumModules").ToString(), Entry("Module1", 5, "", 0, 0));
  EXPECT_EQ(dispatcher.Call("EnumPropertyPages").ToString(),
            Entry("PropertyPage1", 6, kStamp, 1, 1));
  EXPECT_EQ(dispatcher.Call("EnumUserConnections").ToString(),
            Entry("UserConnection1", 3, kStamp, 1, 1));
  EXPECT_EQ(dispatcher.Call("EnumUserControls").ToString(), Entry("UserControl1", 7, kStamp, 1, 0));
  EXPECT_EQ(dispatcher.Call("EnumUserDocuments").ToString(), Entry("docMain", 8, kStamp, 1, 1));

  // Every kind is built, whatever the name: the object looks its component up later.
  for (const char* factory : {"GetForm", "GetDesigner", "GetDHTMLPage", "GetUserControl",
                              "GetUserDocument", "GetPropertyPage", "GetUserConnection"}) {
    const contracts::IObject object(dispatcher.Call(factory, ObjectRef(), "NoSuchOne").ToObject());
    EXPECT_EQ(object.Name(), "NoSuchOne") << factory;
  }
}

class ActiveProject : public IdeSide {
 protected:
  void OpenProject() {
    StartIde();
    project_ = contracts::IDriver(driver_).GetProject("Basic", 0, "FileName=\"" + vbp_ + "\"");
    contracts::IProject(project_).EnumCollections();
  }
  ~ActiveProject() override {
    if (project_) Dispatch(project_).Call("TearDown");
  }
  contracts::ICollection Collection(const std::string& name) const {
    return contracts::ICollection(contracts::IProject(project_).GetCollection(name));
  }
  ObjectRef MainWindow() const { return Dispatch(ide_->VBE()).Get("MainWindow").ToObject(); }

  ObjectRef driver_ = automation::CreateObject("qxvb60.Driver");
  ObjectRef project_;
};

TEST_F(ActiveProject, CollectionsAnswerFromTheIdeThatHasTheProjectOpen) {
  OpenProject();
  const Dispatch project(project_);
  EXPECT_TRUE(project.Get("IsActive").ToBool());
  EXPECT_EQ(Collection("Forms").EnumObjects(),
            Entry("Form1", 4, kStamp, 1, 1) + "\r\n" + Entry("MDIForm1", 4, kStamp, 1, 1));

  // The project connects to the registered dispatcher: no IDE started, no window minimized,
  // and a second read keeps the same dispatcher.
  const ObjectRef dispatcher = project.Get("Dispatcher").ToObject();
  EXPECT_EQ(dispatcher, connection_->Entries().front().dispatcher);
  EXPECT_EQ(project.Get("Dispatcher").ToObject(), dispatcher);
  EXPECT_EQ(Dispatch(MainWindow()).Get("WindowState").ToLong(), 0);

  // GetObject goes to the dispatcher's factory, which builds the component object by name.
  const contracts::IObject module(Collection("Modules").GetObject("Module1"));
  EXPECT_EQ(module.Name(), "Module1");
  module.SetMode(1);
  EXPECT_EQ(Dispatch(Dispatch(module.object()).Get("Procedures").ToObject()).Get("Count").ToLong(),
            3);
  module.SetMode(0);
  EXPECT_EQ(contracts::IObject(Collection("DHTMLPages").GetObject("DHTMLPage1")).Name(),
            "DHTMLPage1");
  EXPECT_EQ(contracts::IObject(Collection("Forms").GetObject("Form1")).Name(), "Form1");

  // The design command restores the IDE's window and opens the component's designer.
  Dispatch(MainWindow()).Put("WindowState", 1);
  const Dispatch form = IdeComponent("Form1");
  EXPECT_FALSE(form.Get("HasOpenDesigner").ToBool());
  Collection("Forms").ExecuteObjectCommand("Form1", 0);
  EXPECT_EQ(Dispatch(MainWindow()).Get("WindowState").ToLong(), 0);
  EXPECT_TRUE(form.Get("HasOpenDesigner").ToBool());

  // Deactivating drops the dispatcher only; once the IDE has ended, the project file answers.
  contracts::IProject(project_).Deactivate();
  EXPECT_TRUE(project.Get("IsActive").ToBool());
  ide_->End();
  EXPECT_FALSE(project.Get("IsActive").ToBool());
  EXPECT_EQ(Collection("Forms").EnumObjects(),
            Entry("Form1", 4, "", 1, 1) + "\r\n" + Entry("MDIForm1", 4, "", 1, 1));
}

// The start-up checks run before the registered dispatcher is used; once connected, problems in
// the IDE reach the host's log.
TEST_F(ActiveProject, StartUpChecksComeFirstAndProblemsReachTheHostsLogOnceConnected) {
  OpenProject();
  const char* const vbKey = "HKEY_CURRENT_USER\\Software\\Microsoft\\Visual Basic\\6.0";
  platform::Registry::Instance().WriteValue(vbKey, "BackgroundProjectLoad", "1");
  const auto e = Caught([&] { Collection("Forms").GetObject("Form1"); });
  EXPECT_EQ(e.Number(), -32767);
  EXPECT_EQ(e.Description().rfind("Background project loading must be disabled", 0), 0u);
  EXPECT_NE(e.Description().find("qxvb60.Project.Activate.1"), std::string::npos);
  platform::Registry::Instance().WriteValue(vbKey, "BackgroundProjectLoad", "0");

  const ObjectRef hostLog = foundation::GetGlobals().problemLog;
  Dispatch(project_).Get("Dispatcher");  // hands the host's log to the dispatcher
  Raise("ItemRemoved", std::make_shared<StubProject>("", true));
  const std::vector<std::string> forwarded = Problems(hostLog);
  ASSERT_EQ(forwarded.size(), 1u);
  EXPECT_NE(forwarded[0].find("qxvb60.Connection.ProjectEvents_ItemRemoved.1"), std::string::npos);
}

}  // namespace
