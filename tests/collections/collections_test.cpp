#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "automation/object.h"
#include "contracts/driver_interfaces.h"
#include "special/qxvb60.h"
#include "support/driver_env.h"
#include "support/errors.h"

namespace {

using automation::ObjectRef;
using qxtest::Caught;
using qxtest::DriverEnv;

class Collections : public ::testing::Test {
 protected:
  Collections() {
    special::RegisterAddIn();  // what the IDE's process registers besides
    qxtest::WriteBytes(env_.work() / "P.vbp",
                       "Type=Exe\r\nForm=frmA.frm\r\nForm=frmB.frm\r\nModule=M; M.bas\r\n"
                       "Designer=Page.Dsr\r\n");
    qxtest::WriteBytes(env_.work() / "frmA.frm", "Attribute VB_Name = \"frmA\"\r\n");
    qxtest::WriteBytes(env_.work() / "frmB.frm", "Attribute VB_Name = \"frmB\"\r\n");
    qxtest::WriteBytes(env_.work() / "M.bas", "Attribute VB_Name = \"M\"\r\n");
    project_ = contracts::IDriver(driver_).GetProject(
        "P", 0, "FileName=" + (env_.work() / "P.vbp").string());
  }
  ~Collections() override { automation::Dispatch(project_).Call("TearDown"); }

  contracts::ICollection Get(const std::string& name) {
    return contracts::ICollection(contracts::IProject(project_).GetCollection(name));
  }

  DriverEnv env_;
  ObjectRef driver_ = automation::CreateObject("qxvb60.Driver");
  ObjectRef project_;
};

TEST_F(Collections, InactiveProjectsListFromTheProjectFile) {
  EXPECT_EQ(Get("Forms").EnumObjects(), "frmA\t4\t\t1\t1\t1\t0\r\nfrmB\t4\t\t1\t1\t1\t0");
  EXPECT_EQ(Get("Modules").EnumObjects(), "M\t5\t\t0\t1\t1\t0");
  EXPECT_EQ(Get("DHTMLPages").EnumObjects(), "");
  EXPECT_EQ(Get("Designers").EnumObjects(), "\t3\t\t0\t0\t1\t0");
  EXPECT_EQ(Get("ClassModules").EnumObjects(), "");
}

// The same commands everywhere; an invalid command index raises without touching the IDE.
TEST_F(Collections, CommandsAreTheSameForEveryCollectionAndName) {
  for (const std::string name :
       {"ClassModules", "Designers", "DHTMLPages", "Forms", "Modules", "PropertyPages",
        "UserConnections", "UserControls", "UserDocuments"}) {
    SCOPED_TRACE(name);
    const auto collection = Get(name);
    EXPECT_EQ(collection.EnumCommands(), "");
    collection.ExecuteCommand(-5);
    for (const char* object : {"", "frmA", "no such thing"}) {
      EXPECT_EQ(collection.EnumObjectCommands(object),
                "&Design\t9\tFalse\tOpen the designer in design view.");
    }
    for (int index : {1, -1}) {
      const auto e = Caught([&] { collection.ExecuteObjectCommand("frmA", index); });
      EXPECT_EQ(e.Number(), -32753);
      EXPECT_EQ(e.Description(), "Invalid case selector (" + std::to_string(index) +
                                     ").\r\n\r\nPROGRAM CONTEXT:\r\nqxvb60." + name +
                                     ".ICollection_ExecuteObjectCommand.1  (4.1.475)");
    }
  }
}

TEST_F(Collections, ComponentsNeedTheIde) {
  // Without an IDE, building a component object fails with the start-up's message and the
  // collection's trail line.
  const auto e = Caught([&] { Get("Forms").GetObject("frmA"); });
  EXPECT_EQ(e.Number(), -32767);
  EXPECT_NE(e.Description().find("qxvb60.Project.Dispatcher.1  (4.1.475)\r\n"
                                 "qxvb60.Forms.ICollection_GetObject.1  (4.1.475)"),
            std::string::npos);
  const auto open = Caught([&] { Get("Forms").ExecuteObjectCommand("frmA", 0); });
  EXPECT_NE(open.Description().find("qxvb60.Forms.ICollection_ExecuteObjectCommand.1"),
            std::string::npos);
}

// The host's interfaces, and the members made from the kinds' table.
TEST_F(Collections, MemberOrderFollowsTheInterfaces) {
  using Members = std::vector<std::string>;
  const std::tuple<ObjectRef, const char*, Members> objects[] = {
      {automation::CreateObject("qxvb60.Dispatcher"),
       "",
       {"Initialize",        "TearDown",          "Initialize2",         "VBProject",
        "EnumClassModules",  "EnumDesigners",     "EnumDHTMLPages",      "EnumForms",
        "EnumModules",       "EnumPropertyPages", "EnumUserConnections", "EnumUserControls",
        "EnumUserDocuments", "GetClassModule",    "GetDesigner",         "GetDHTMLPage",
        "GetForm",           "GetModule",         "GetPropertyPage",     "GetUserConnection",
        "GetUserControl",    "GetUserDocument"}},
      {project_,
       "",
       {"Initialize", "TearDown", "FileName", "ClassModules", "Designers", "DHTMLPages", "Forms",
        "Modules", "PropertyPages", "UserConnections", "UserControls", "UserDocuments", "IsActive",
        "Dispatcher", "EnumObjects", "GetObjectInfo"}},
      {automation::CreateObject("qxvb60.Connection"),
       "IDTExtensibility",
       {"OnConnection", "OnDisconnection", "OnStartupComplete", "OnAddInsUpdate"}},
      {driver_, "IDriver", {"Initialize", "Shutdown", "GetProject"}},
      {project_,
       "IProject",
       {"UpdateName", "EnumCollections", "GetCollection", "Deactivate", "ResetActivationFlags",
        "EnumCommands", "ExecuteCommand"}},
      {contracts::IProject(project_).GetCollection("Forms"),
       "ICollection",
       {"EnumObjects", "GetObject", "EnumCommands", "ExecuteCommand", "EnumObjectCommands",
        "ExecuteObjectCommand"}},
  };
  for (const auto& [object, interfaceName, expected] : objects) {
    const automation::Interface* info = object->Class().FindInterface(interfaceName);
    ASSERT_NE(info, nullptr) << interfaceName;
    Members members;
    for (const auto& member : info->members)
      members.push_back(member.name);
    EXPECT_EQ(members, expected) << interfaceName;
  }
}

TEST_F(Collections, TheCreatableClassesAreTheDriverTheAddInsAndTheSpecialKinds) {
  for (const char* name : {"Driver", "Connection", "Dispatcher", "DHTMLPage", "DHTMLPages",
                           "UserConnection", "UserConnections"}) {
    EXPECT_EQ(automation::CreateObject(std::string("qxvb60.") + name)->Class().name, name);
  }
  for (const char* progId : {"qxvb60.Project", "qxvb60.Forms", "qxvb60.Form", "qxvb60.Probe"})
    EXPECT_FALSE(automation::IsClassRegistered(progId)) << progId;
}

}  // namespace
