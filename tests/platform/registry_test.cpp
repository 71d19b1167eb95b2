#include "platform/registry.h"

#include <gtest/gtest.h>

#include "platform/registry_file.h"
#include "support/errors.h"
#include "support/temp_home.h"
#include "test_files.h"

namespace fs = std::filesystem;
using platform::Registry;
using qxtest::Caught;
using qxtest::ErrorOf;

namespace {

TEST(Registry, AFreshHomeIsSeededAsAVb6Machine) {
  qxtest::TempHome home;
  ::setenv("QX_VB6_EXE", "/opt/qx/bin/qxvb6.exe", 1);
  Registry& registry = Registry::Instance();
  EXPECT_EQ(registry.ReadValue("HKEY_CURRENT_USER\\Software\\Microsoft\\Visual Basic\\6.0",
                               "BackgroundProjectLoad"),
            "0");
  ::unsetenv("QX_VB6_EXE");  // read once, when the home was seeded
  EXPECT_EQ(registry.ReadValue("HKEY_CLASSES_ROOT\\VisualBasic.Project\\shell\\open\\command", ""),
            "\"z:\\opt\\qx\\bin\\qxvb6.exe\" \"%1\"");
  // Identifiers as projects write them, in either case, with or without a trailing separator.
  EXPECT_TRUE(
      registry.KeyExists("HKEY_CLASSES_ROOT\\TypeLib\\{831FDD16-0C5C-11d2-A9FC-0000F8754DA1}"));
  EXPECT_TRUE(registry.KeyExists("HKCR\\typelib\\{f9043c88-f6f2-101a-a3c9-08002b2f49fb}\\"));
  EXPECT_TRUE(registry.KeyExists("HKEY_CLASSES_ROOT\\TypeLib"));  // parent of seeded keys
  EXPECT_FALSE(
      registry.KeyExists("HKEY_CLASSES_ROOT\\TypeLib\\{00000000-0000-0000-0000-000000000000}"));
  EXPECT_FALSE(registry.KeyExists("HKEY_NOWHERE\\TypeLib"));
  EXPECT_TRUE(fs::is_directory(home.path() / "drive_c/windows"));

  const std::string text = platformtest::ReadBytes(home.path() / "registry.reg");
  EXPECT_EQ(text.substr(0, 10), "REGEDIT4\n\n");
  // The writer's output is stable: parsing and writing again gives the same text.
  EXPECT_EQ(platform::FormatRegistryFile(platform::ParseRegistryFile(text, "registry.reg")), text);
}

// The open command that qx wrote follows the running program (a build that moved, an installed
// qx); once the user writes another, it is theirs. A registry of a qx that kept no record of
// its command counts a qxvb6.exe command as its own.
TEST(Registry, TheOpenCommandFollowsTheRunningProgramUntilTheUserChangesIt) {
  qxtest::TempHome home;
  const std::string key = "HKEY_CLASSES_ROOT\\VisualBasic.Project\\shell\\open\\command";
  const fs::path file = home.path() / "registry.reg";
  Registry& registry = Registry::Instance();
  // Each run of a program reads the file anew: here, the file is touched.
  const auto run = [&](const char* ide) {
    ::setenv("QX_VB6_EXE", ide, 1);
    platformtest::WriteBytes(file, platformtest::ReadBytes(file));
    return registry.ReadValue(key, "").value_or("");
  };
  ::setenv("QX_VB6_EXE", "/build/bin/qxvb6.exe", 1);
  EXPECT_EQ(registry.ReadValue(key, ""), "\"z:\\build\\bin\\qxvb6.exe\" \"%1\"");
  EXPECT_EQ(run("/usr/local/bin/qxvb6.exe"), "\"z:\\usr\\local\\bin\\qxvb6.exe\" \"%1\"");

  std::string text = platformtest::ReadBytes(file);
  const size_t record = text.find("\"WrittenByQx\"");
  ASSERT_NE(record, std::string::npos) << text;
  text.erase(record, text.find('\n', record) + 1 - record);
  platformtest::WriteBytes(file, text);
  EXPECT_EQ(run("/moved/qxvb6.exe"), "\"z:\\moved\\qxvb6.exe\" \"%1\"");

  registry.WriteValue(key, "", "\"z:\\opt\\mine.exe\" \"%1\"");
  EXPECT_EQ(run("/elsewhere/qxvb6.exe"), "\"z:\\opt\\mine.exe\" \"%1\"");
  ::unsetenv("QX_VB6_EXE");
}

TEST(Registry, HandEditedFilesAreReadAndKeptWhenWriting) {
  qxtest::TempHome home;
  platformtest::WriteBytes(home.path() / "registry.reg",
                           "REGEDIT4\r\n"
                           "\r\n"
                           "; my own type library\r\n"
                           "[HKCR\\TypeLib\\{11111111-2222-3333-4444-555555555555}]\r\n"
                           "@=\"My \\\"Controls\\\"\"\r\n"
                           "\"Path\"=\"c:\\\\libs\\\\my.ocx\"\r\n"
                           "\"Loose\"=\"c:\\tools\"\r\n"
                           "\"Count\"=dword:0000001f\r\n"
                           "\"Blob\"=hex:01,02,\\\r\n"
                           "  03\r\n");
  Registry& registry = Registry::Instance();
  const std::string key = "HKEY_CLASSES_ROOT\\TypeLib\\{11111111-2222-3333-4444-555555555555}";
  EXPECT_TRUE(registry.KeyExists(key));
  EXPECT_EQ(registry.ReadValue(key, ""), "My \"Controls\"");
  EXPECT_EQ(registry.ReadValue(key, "PATH"), "c:\\libs\\my.ocx");
  EXPECT_EQ(registry.ReadValue(key, "Loose"), "c:\\tools");
  EXPECT_EQ(registry.ReadValue(key, "count"), "31");
  EXPECT_EQ(registry.ReadValue(key, "Blob"), std::nullopt);
  EXPECT_EQ(registry.ReadValue(key, "Missing"), std::nullopt);

  registry.WriteValue("hkcu\\Software\\qx", "Last", "a\\b \"c\"");
  registry.CreateKey("HKLM\\Software\\Empty");
  EXPECT_EQ(registry.ReadValue("HKEY_CURRENT_USER\\SOFTWARE\\QX", "last"), "a\\b \"c\"");
  EXPECT_TRUE(registry.KeyExists("HKEY_LOCAL_MACHINE\\Software\\Empty"));
  EXPECT_EQ(platformtest::ReadBytes(home.path() / "registry.reg"),
            "REGEDIT4\n\n"
            "; my own type library\n"
            "[HKEY_CLASSES_ROOT\\TypeLib\\{11111111-2222-3333-4444-555555555555}]\n"
            "@=\"My \\\"Controls\\\"\"\n"
            "\"Path\"=\"c:\\\\libs\\\\my.ocx\"\n"
            "\"Loose\"=\"c:\\\\tools\"\n"
            "\"Count\"=dword:0000001f\n"
            "\"Blob\"=hex:01,02,03\n"
            "\n"
            "[HKEY_CURRENT_USER\\Software\\qx]\n"
            "\"Last\"=\"a\\\\b \\\"c\\\"\"\n"
            "\n"
            "[HKEY_LOCAL_MACHINE\\Software\\Empty]\n"
            "\n");
  EXPECT_EQ(ErrorOf([&] { registry.WriteValue("HKEY_NOWHERE\\x", "v", "t"); }), 5);
  EXPECT_EQ(ErrorOf([&] { registry.WriteValue("HKCU\\x", "v", "two\nlines"); }), 5);
}

TEST(Registry, FollowsTheHomeFolderAndEditsOnDisk) {
  std::string first;
  {
    qxtest::TempHome home;
    Registry::Instance().WriteValue("HKCU\\Software\\qx", "Home", "first");
    EXPECT_EQ(Registry::Instance().ReadValue("HKCU\\Software\\qx", "Home"), "first");
    // A user edits the file while qx runs.
    platformtest::WriteBytes(home.path() / "registry.reg",
                             "REGEDIT4\n\n[HKCU\\Software\\qx]\n\"Home\"=\"edited by hand\"\n");
    EXPECT_EQ(Registry::Instance().ReadValue("HKCU\\Software\\qx", "Home"), "edited by hand");
  }
  qxtest::TempHome other;
  EXPECT_EQ(Registry::Instance().ReadValue("HKCU\\Software\\qx", "Home"), std::nullopt);
}

TEST(Registry, MalformedFilesNameTheFileAndLine) {
  qxtest::TempHome home;
  const fs::path file = home.path() / "registry.reg";
  const auto errorFor = [&](const std::string& text) {
    platformtest::WriteBytes(file, text);
    return Caught([] { Registry::Instance().KeyExists("HKCR\\TypeLib"); }).Description();
  };
  const std::string name = file.string();
  EXPECT_EQ(errorFor("[HKCR\\x]\n"), "Invalid procedure call or argument: " + name +
                                         ", line 1: the first line must be REGEDIT4");
  EXPECT_NE(errorFor("REGEDIT4\n\n\"a\"=\"b\"\n").find(name + ", line 3: a value comes before"),
            std::string::npos);
  EXPECT_NE(errorFor("REGEDIT4\n[HKCR\\x]\n\"a\"=\"b\n").find(", line 3: a string has no closing"),
            std::string::npos);
  EXPECT_NE(errorFor("REGEDIT4\n[HKXX\\x]\n").find(", line 2: unknown root key"),
            std::string::npos);
  EXPECT_NE(errorFor("REGEDIT4\n[HKCR\\x]\n\"a\"=dword:xyz\n").find(", line 3: a dword value"),
            std::string::npos);
  EXPECT_NE(errorFor("REGEDIT4\n[HKCR\\x]\nname=1\n").find(", line 3:"), std::string::npos);
  // Fixing the file makes the registry usable again.
  EXPECT_EQ(errorFor("REGEDIT4\n; nothing yet\n"), "");
}

}  // namespace
