#include "host/host_utility.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "automation/object.h"
#include "automation/process.h"
#include "host/problem_log.h"
#include "host/register.h"
#include "support/errors.h"
#include "support/temp_home.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using qxtest::Caught;
namespace fs = std::filesystem;

class HostUtilityTest : public ::testing::Test {
 protected:
  static ObjectRef Make() {
    host::RegisterClasses();
    return automation::CreateObject("qxlib41.HostUtility");
  }

  Dispatch utility{Make()};
};

void Touch(const fs::path& file) {
  fs::create_directories(file.parent_path());
  std::ofstream(file) << "x";
}

TEST_F(HostUtilityTest, RegisteredObjectsAreSharedByTheProcessesAndHeldUntilRevoked) {
  qxtest::TempHome home;
  auto dispatcher = std::make_shared<host::ProblemLog>();  // any object will do
  std::weak_ptr<host::ProblemLog> watch = dispatcher;
  const size_t before = host::HostUtility::RegisteredCount();

  const int32_t cookie = utility.Call("RegisterObject", "C:\\Proj\\A.vbp", dispatcher).ToLong();
  EXPECT_NE(cookie, 0);
  EXPECT_EQ(utility.Call("GetRegisteredObject", "c:/proj/a.VBP").ToObject(), dispatcher);

  // Another process of the program sees the same table (another utility object).
  auto ide = automation::Process::Create("ide");
  {
    automation::Process::Scope scope(ide);
    Dispatch theirs(automation::CreateObject("qxlib41.HostUtility"));
    EXPECT_NE(theirs.object(), utility.object());
    EXPECT_EQ(theirs.Call("GetRegisteredObject", "c:\\proj\\a.vbp").ToObject(), dispatcher);
  }
  ide->End();

  // Revoking drops the table's reference.
  dispatcher.reset();
  EXPECT_FALSE(watch.expired());
  utility.Call("RevokeObject", cookie);
  EXPECT_TRUE(watch.expired());
  EXPECT_EQ(utility.Call("GetRegisteredObject", "C:\\Proj\\A.vbp").ToObject(), nullptr);
  EXPECT_EQ(host::HostUtility::RegisteredCount(), before);

  EXPECT_EQ(Caught([&] { utility.Call("RevokeObject", cookie); }).Number(), 5);
  EXPECT_EQ(Caught([&] { utility.Call("RegisterObject", "x", ObjectRef()); }).Number(), 91);
}

TEST_F(HostUtilityTest, ChangeExtensionReplacesOnlyInTheFileName) {
  auto change = [&](const char* path, const char* ext) {
    return utility.Call("ChangeExtension", path, ext).ToString();
  };
  EXPECT_EQ(change("c:\\Proj\\Billing.vbp", "vbw"), "c:\\Proj\\Billing.vbw");
  EXPECT_EQ(change("/home/ann/Billing.VBP", "vbw"), "/home/ann/Billing.vbw");
  EXPECT_EQ(change("c:\\a.b\\file", "vbw"), "c:\\a.b\\file.vbw");
  EXPECT_EQ(change("c:/a.b/file", "vbw"), "c:/a.b/file.vbw");
  EXPECT_EQ(change("c:\\x/a.b\\file", "vbw"), "c:\\x/a.b\\file.vbw");
  EXPECT_EQ(change("a.tar.gz", "vbw"), "a.tar.vbw");
  EXPECT_EQ(change("Billing", "vbw"), "Billing.vbw");
  EXPECT_EQ(change("Billing.", "vbw"), "Billing.vbw");
  EXPECT_EQ(change("Billing.vbp", ".vbw"), "Billing.vbw");
  EXPECT_EQ(change("Billing.vbp", ""), "Billing");
  EXPECT_EQ(change("", "vbw"), ".vbw");
}

TEST_F(HostUtilityTest, FilesAndSystemFolders) {
  qxtest::TempHome home;
  const fs::path windows = home.path() / "drive_c" / "windows";
  Touch(windows / "system32" / "MSCOMCTL.OCX");
  Touch(windows / "system" / "old.ocx");
  Touch(windows / "system32" / "Both.dll");
  Touch(windows / "Both.dll");
  Touch(windows / "Win.ini");
  fs::create_directories(home.path() / "drive_c" / "folder.vbp");

  EXPECT_TRUE(utility.Call("FileExists", "c:\\windows\\system32\\mscomctl.ocx").ToBool());
  EXPECT_TRUE(utility.Call("FileExists", (windows / "Win.ini").string()).ToBool());
  EXPECT_FALSE(utility.Call("FileExists", "c:\\windows\\system32\\nothere.ocx").ToBool());
  EXPECT_FALSE(utility.Call("FileExists", "c:\\folder.vbp").ToBool());  // a folder
  EXPECT_FALSE(utility.Call("FileExists", "").ToBool());

  auto resolve = [&](const char* name) { return utility.Call("ResolvePath", name).ToString(); };
  EXPECT_EQ(resolve("mscomctl.ocx"), "c:\\windows\\system32\\mscomctl.ocx");
  EXPECT_EQ(resolve("OLD.OCX"), "c:\\windows\\system\\OLD.OCX");
  EXPECT_EQ(resolve("both.dll"), "c:\\windows\\system32\\both.dll");
  EXPECT_EQ(resolve("win.ini"), "c:\\windows\\win.ini");
  EXPECT_EQ(resolve("missing.dll"), "c:\\windows\\system32\\missing.dll");
  EXPECT_EQ(resolve("c:\\elsewhere\\old.ocx"), "c:\\windows\\system\\old.ocx");
  EXPECT_TRUE(utility.Call("FileExists", resolve("OLD.OCX")).ToBool());
}

}  // namespace
