#include "host/registry_key.h"

#include <gtest/gtest.h>

#include <fstream>

#include "automation/object.h"
#include "host/register.h"
#include "host/run_view.h"
#include "platform/files.h"
#include "support/errors.h"
#include "support/temp_home.h"

namespace {

using automation::Dispatch;
using qxtest::Caught;

TEST(RegistryKey, ReadsValuesAndKeysOfTheHomeRegistry) {
  host::RegisterClasses();
  qxtest::TempHome home;
  std::ofstream(home.path() / "registry.reg")
      << "REGEDIT4\r\n\r\n"
         "[HKEY_CURRENT_USER\\Software\\Microsoft\\Visual Basic\\6.0]\r\n"
         "\"BackgroundProjectLoad\"=\"0\"\r\n\r\n"
         "[HKEY_CLASSES_ROOT\\TypeLib\\{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}\\2.0]\r\n"
         "@=\"Microsoft Windows Common Controls 6.0\"\r\n";

  Dispatch key(automation::CreateObject("qxlib41.RegistryKey"));
  EXPECT_FALSE(key.Get("Exists").ToBool());  // no path yet
  key.Put("Path", "HKEY_CURRENT_USER\\Software\\Microsoft\\Visual Basic\\6.0");
  EXPECT_EQ(key.Get("Path").ToString(),
            "HKEY_CURRENT_USER\\Software\\Microsoft\\Visual Basic\\6.0");
  key.Call("Open", 1);
  EXPECT_EQ(key.Call("ReadValue", "BackgroundProjectLoad", "1").ToString(), "0");
  EXPECT_EQ(key.Call("ReadValue", "NoSuchValue", "dflt").ToString(), "dflt");
  EXPECT_EQ(key.Call("ReadValue", "", "no default value").ToString(), "no default value");
  key.Call("Open", 0);

  // Exists needs no Open; a key exists when it or a key below it has an entry.
  key.Put("Path", "HKEY_CLASSES_ROOT\\TypeLib\\{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}");
  EXPECT_TRUE(key.Get("Exists").ToBool());
  key.Put("Path", "hkey_classes_root\\typelib\\{831fdd16-0c5c-11d2-a9fc-0000f8754da1}\\2.0");
  key.Call("Open", 1);
  EXPECT_EQ(key.Call("ReadValue", "", "").ToString(), "Microsoft Windows Common Controls 6.0");
  key.Call("Open", 0);
  key.Put("Path", "HKEY_CLASSES_ROOT\\TypeLib\\{00000000-0000-0000-0000-000000000000}");
  EXPECT_FALSE(key.Get("Exists").ToBool());

  // A key that does not exist opens, and its values read as their defaults.
  key.Call("Open", 1);
  EXPECT_EQ(key.Call("ReadValue", "x", "1").ToString(), "1");
  EXPECT_EQ(Caught([&] { key.Call("Open", 2); }).Number(), 5);
}

// A run's view answers the driver's two questions for exactly what it names, as Windows compares
// keys and paths, and nothing of it reaches the registry file or the platform's own file tests.
TEST(RegistryKey, TheRunViewAnswersExistsForWhatItNamesAndWritesNothing) {
  host::RegisterClasses();
  qxtest::TempHome home;
  Dispatch key(automation::CreateObject("qxlib41.RegistryKey"));
  const Dispatch utility(automation::CreateObject("qxlib41.HostUtility"));
  const std::string library = "HKEY_CLASSES_ROOT\\TypeLib\\{6C3A0C1E-4B2D-4E8A-9A51-2F7D3B1C0E91}";
  const std::string missing = (home.path() / "Shared" / "modShared.bas").string();
  key.Put("Path", library);
  EXPECT_FALSE(key.Get("Exists").ToBool());
  const std::string registry = platform::ReadFile((home.path() / "registry.reg").string());
  {
    const host::RunView::Scope scope;
    host::RunView::Current().AddKey(library);
    host::RunView::Current().AddFile(missing);
    key.Put("Path", "hkcr\\typelib\\{6c3a0c1e-4b2d-4e8a-9a51-2f7d3b1c0e91}");
    EXPECT_TRUE(key.Get("Exists").ToBool());
    key.Put("Path", "HKEY_CLASSES_ROOT\\TypeLib\\{00000000-0000-0000-0000-000000000000}");
    EXPECT_FALSE(key.Get("Exists").ToBool());
    // Named as the driver's check names it: the project folder, a backslash, the value in
    // lower case.
    const std::string asChecked = home.path().string() + "\\shared\\MODSHARED.BAS";
    EXPECT_TRUE(utility.Call("FileExists", asChecked).ToBool());
    EXPECT_FALSE(utility.Call("FileExists", home.path().string() + "\\Shared\\other.bas").ToBool());
    EXPECT_FALSE(platform::FileExists(missing));
  }
  EXPECT_FALSE(utility.Call("FileExists", missing).ToBool());
  key.Put("Path", library);
  EXPECT_FALSE(key.Get("Exists").ToBool());
  EXPECT_EQ(platform::ReadFile((home.path() / "registry.reg").string()), registry);
}

}  // namespace
