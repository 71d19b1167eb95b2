// The start-up sequence of a project that no IDE has open: what it checks and prepares, in
// which order, and the messages it fails with.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "automation/object.h"
#include "contracts/driver_interfaces.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "support/driver_env.h"
#include "support/errors.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using qxtest::Caught;
using qxtest::DriverEnv;

constexpr const char* kOpenCommand = "HKEY_CLASSES_ROOT\\VisualBasic.Project\\shell\\open\\command";
constexpr const char* kTrail =
    "\r\n\r\nPROGRAM CONTEXT:\r\nqxvb60.Project.Activate.1  (4.1.475)\r\n"
    "qxvb60.Project.Dispatcher.1  (4.1.475)";

class Activate : public ::testing::Test {
 protected:
  Activate() {
    vbp_ = (env_.work() / "P.vbp").string();
    qxtest::WriteBytes(vbp_, "Type=Exe\r\n");
    qxtest::WriteBytes(env_.work() / "P.vbw", "Form1 = 1, 2, 3, 4, \r\n");
    project_ = contracts::IDriver(driver_).GetProject("P", 0, "FileName=\"" + vbp_ + "\"");
  }

  automation::Error ReadDispatcher() const {
    return Caught([&] { Dispatch(project_).Get("Dispatcher"); });
  }
  bool AddInEntryWritten() const {
    return platform::GetPrivateProfileString("Add-Ins32", "qxvb60.Connection", "", "vbaddin.ini") ==
           "1";
  }

  DriverEnv env_;
  ObjectRef driver_ = automation::CreateObject("qxvb60.Driver");
  std::string vbp_;
  ObjectRef project_;
};

TEST_F(Activate, NoOpenCommandAndNoExecutableFailsWithAnEmptyPath) {
  platform::Registry::Instance().WriteValue(kOpenCommand, "", "");
  const automation::Error e = ReadDispatcher();
  EXPECT_EQ(e.Number(), -32767);
  EXPECT_EQ(e.Description(), std::string("File '' not found.") + kTrail);
  // The window-state file was prepared before the executable was looked for; the add-in entry
  // is written only once there is an executable to start.
  EXPECT_EQ(qxtest::ReadBytes(env_.work() / "P.vbw"), "Form1 = 1, 2, 3, 4, C\r\n");
  EXPECT_FALSE(AddInEntryWritten());
}

// The project file is looked for first, then the executable. A failed start leaves no
// dispatcher: the next read runs the sequence again.
TEST_F(Activate, AMissingProjectFileOrExecutableIsNamed) {
  platform::Registry::Instance().WriteValue(kOpenCommand, "", "\"c:\\VB98\\vb6.exe\" \"%1\"");
  std::filesystem::remove(vbp_);
  EXPECT_EQ(ReadDispatcher().Description(), "File '" + vbp_ + "' not found." + kTrail);

  qxtest::WriteBytes(vbp_, "Type=Exe\r\n");
  const automation::Error e = ReadDispatcher();
  EXPECT_EQ(e.Number(), -32767);
  EXPECT_EQ(e.Description(), std::string("File 'c:\\VB98\\vb6.exe' not found.") + kTrail);
  EXPECT_FALSE(AddInEntryWritten());
  EXPECT_EQ(ReadDispatcher().Description(), e.Description());
}

}  // namespace
