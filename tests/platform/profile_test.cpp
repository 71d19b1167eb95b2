#include "platform/profile.h"

#include <gtest/gtest.h>

#include "platform/codepage.h"
#include "support/temp_home.h"
#include "test_files.h"

namespace fs = std::filesystem;

namespace {

TEST(Profile, BareFileNamesLiveInTheWindowsFolder) {
  qxtest::TempHome home;
  const fs::path ini = home.path() / "drive_c/windows/vbaddin.ini";
  EXPECT_EQ(platform::ProfilePath("vbaddin.ini"), ini);
  EXPECT_TRUE(
      platform::WritePrivateProfileString("Add-Ins32", "qxvb60.Connection", "1", "vbaddin.ini"));
  EXPECT_EQ(platformtest::ReadBytes(ini), "[Add-Ins32]\r\nqxvb60.Connection=1\r\n");
  EXPECT_EQ(platform::GetPrivateProfileString("ADD-INS32", "QXVB60.connection", "0", "vbaddin.ini"),
            "1");
  EXPECT_EQ(platform::GetPrivateProfileString("Add-Ins32", "Other", "dflt", "vbaddin.ini"), "dflt");
  EXPECT_EQ(platform::GetPrivateProfileString("Add-Ins32", "x", "dflt", "missing.ini"), "dflt");
}

TEST(Profile, WritingKeepsEveryOtherLine) {
  qxtest::TempHome home;
  const fs::path ini = home.path() / "drive_c/windows/vbaddin.ini";
  const std::string original =
      "; add-ins of this machine\n"
      "[Other]\r\n"
      "Key=kept\r\n"
      "\r\n"
      "[add-ins32]\n"
      "  AppWizard.Wizard = 0\n"
      "VBSDIAddIn.Connect=\"3\"\n"
      "\n"
      "[Last]\r\n"
      "x=1";
  platformtest::WriteBytes(ini, original);

  // Same key in another case: only its line changes, and keeps the spelling it had.
  ASSERT_TRUE(
      platform::WritePrivateProfileString("Add-Ins32", "appwizard.wizard", "1", "VBADDIN.INI"));
  std::string expected = original;
  expected.replace(expected.find("  AppWizard.Wizard = 0"), 22, "AppWizard.Wizard=1");
  EXPECT_EQ(platformtest::ReadBytes(ini), expected);

  // A new key goes after the section's last entry; a new section at the end.
  ASSERT_TRUE(
      platform::WritePrivateProfileString("Add-Ins32", "qx.Connection", "1", "vbaddin.ini"));
  ASSERT_TRUE(platform::WritePrivateProfileString("New", "k", "v", "vbaddin.ini"));
  EXPECT_EQ(platformtest::ReadBytes(ini),
            "; add-ins of this machine\n[Other]\r\nKey=kept\r\n\r\n[add-ins32]\n"
            "AppWizard.Wizard=1\nVBSDIAddIn.Connect=\"3\"\nqx.Connection=1\r\n\n"
            "[Last]\r\nx=1\r\n[New]\r\nk=v\r\n");

  EXPECT_EQ(platform::GetPrivateProfileString("Add-Ins32", "VBSDIAddIn.Connect", "", "vbaddin.ini"),
            "3");
  using Entries = std::vector<std::pair<std::string, std::string>>;
  EXPECT_EQ(
      platform::ReadProfileSection("ADD-INS32", "vbaddin.ini"),
      (Entries{{"AppWizard.Wizard", "1"}, {"VBSDIAddIn.Connect", "3"}, {"qx.Connection", "1"}}));
}

TEST(Profile, FilesAreInTheCurrentCodePageAndFailuresReturnFalse) {
  qxtest::TempHome home;
  platform::ClearCurrentCodePage();
  const fs::path ini = home.path() / "sub/x.ini";
  ASSERT_TRUE(platform::WritePrivateProfileString("S", "Name", "Zoë", ini.string()));
  EXPECT_EQ(platformtest::ReadBytes(ini), "[S]\r\nName=Zo\xEB\r\n");
  EXPECT_EQ(platform::GetPrivateProfileString("s", "name", "", ini.string()), "Zoë");

  EXPECT_FALSE(platform::WritePrivateProfileString("S", "Name", "中", ini.string()));
  EXPECT_FALSE(platform::WritePrivateProfileString("", "Name", "x", ini.string()));
  EXPECT_FALSE(platform::WritePrivateProfileString("S", "a=b", "x", ini.string()));
  fs::permissions(ini, fs::perms::owner_read);
  EXPECT_FALSE(platform::WritePrivateProfileString("S", "Name", "Other", ini.string()));
  EXPECT_EQ(platformtest::ReadBytes(ini), "[S]\r\nName=Zo\xEB\r\n");
}

}  // namespace
