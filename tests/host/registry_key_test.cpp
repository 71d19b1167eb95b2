#include "host/registry_key.h"

#include <gtest/gtest.h>

#include <fstream>

#include "automation/object.h"
#include "host/register.h"
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

}  // namespace
