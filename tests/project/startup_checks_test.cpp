#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <iterator>

#include "platform/files.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "project/ide_settings.h"
#include "project/project_file_check.h"
#include "project/utility.h"
#include "support/driver_env.h"
#include "support/errors.h"

namespace {

using qxtest::Caught;
using qxtest::DriverEnv;

constexpr const char* kVbKey = "HKEY_CURRENT_USER\\Software\\Microsoft\\Visual Basic\\6.0";
constexpr const char* kOpenCommand = "HKEY_CLASSES_ROOT\\VisualBasic.Project\\shell\\open\\command";

class StartupChecks : public ::testing::Test {
 protected:
  std::string Project(const std::string& bytes) {
    const auto path = env_.work() / "P.vbp";
    qxtest::WriteBytes(path, bytes);
    return path.string();
  }
  std::string MissingMessage(const std::string& bytes) {
    return Caught([&] { project::CheckProjectFile(Project(bytes)); }).Description();
  }
  DriverEnv env_;
};

TEST_F(StartupChecks, BackgroundLoadingMustBeOff) {
  project::CheckBackgroundLoading();  // a fresh machine has it off
  platform::Registry::Instance().WriteValue(kVbKey, "BackgroundProjectLoad", "1");
  const auto e = Caught([] { project::CheckBackgroundLoading(); });
  EXPECT_EQ(e.Number(), -32767);
  EXPECT_EQ(e.Description(),
            "Background project loading must be disabled (turned off) in VB6. To adjust this "
            "property, go to the Advanced tab of the Tools/Options dialog in VB6 and un-check "
            "the box labeled Background Project Load.");
  platform::Registry::Instance().WriteValue(kVbKey, "BackgroundProjectLoad", "0");
  project::CheckBackgroundLoading();
}

TEST_F(StartupChecks, ProjectFileCheckFindsEveryPieceOrReportsTheFirstMissingLine) {
  qxtest::WriteBytes(env_.work() / "Form1.frm", "x");
  qxtest::WriteBytes(env_.work() / "Res.res", "x");
  qxtest::WriteBytes(env_.work() / "MSCOMCTL.OCX", "x");
  // Components relative to the project folder whatever the current folder; quoted resource
  // files; control libraries in the project folder or registered; keys in any case.
  EXPECT_EQ(MissingMessage("Type=Exe\r\nFORM=Form1.frm\r\nResFile32=\"Res.res\"\r\n"
                           "Object={11111111-2222-3333-4444-555555555555}#2.0#0; MSCOMCTL.OCX\r\n"
                           "Object={831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.0#0; gone.ocx\r\n"
                           "Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#"
                           "..\\..\\WINDOWS\\system32\\stdole2.tlb#OLE Automation\r\n"
                           "Title=\"no = check\"\r\nno equals sign here\r\n"),
            "");

  // The first missing line is reported.
  const std::string lines =
      "Type=Exe\r\n"
      "Form=Form1.frm\r\n"
      "Module=Gone; Gone.bas\r\n"
      "Module=AlsoGone; AlsoGone.bas\r\n";
  EXPECT_EQ(MissingMessage(lines),
            "One of the components used in the project (or referenced by the project) is "
            "missing. The component is referenced on line 3 of the Visual Basic Project (VBP) "
            "file.\r\nLine 3: Module=Gone; Gone.bas");
  // A project reference, a reference with too few parts, an unregistered library.
  EXPECT_NE(MissingMessage("Reference=*\\A..\\Other\\Other.vbp\r\n").find("Line 1: Reference"),
            std::string::npos);
  EXPECT_NE(MissingMessage("Reference=*\\G{00020430-0000-0000-C000-000000000046}#2.0\r\n")
                .find("line 1 "),
            std::string::npos);
  EXPECT_NE(MissingMessage("\r\n\r\nObject={99999999-2222-3333-4444-555555555555}#1.0#0; x.ocx")
                .find("Line 3: Object={9999"),
            std::string::npos);
  // A library named without an identifier is looked for in the Windows system folder too.
  qxtest::WriteBytes(env_.home() / "drive_c" / "windows" / "system32" / "mylib.dll", "x");
  EXPECT_EQ(MissingMessage("Object=mylib.dll; nowhere\\mylib.dll\r\n"), "");
}

TEST_F(StartupChecks, WindowStateMarksWindowsClosedOrStaysWhole) {
  const std::string vbp = Project("Type=Exe\r\n");
  const auto vbw = env_.work() / "P.vbw";
  project::AdjustWindowState(vbp);  // no window-state file: none is created
  EXPECT_FALSE(std::filesystem::exists(vbw));
  qxtest::WriteBytes(vbw,
                     "\r\n\r\nForm1 = 88, 116, 794, 604, , 22, 22, 600, 500, \r\n\r\n"
                     "Module1 = 0, 0, 0, 0, C\nClass1 = 1, 2, 3, 4, Z");
  project::AdjustWindowState(vbp);
  EXPECT_EQ(qxtest::ReadBytes(vbw),
            "Form1 = 88, 116, 794, 604, , 22, 22, 600, 500, C\r\n\r\n"
            "Module1 = 0, 0, 0, 0, C\r\nClass1 = 1, 2, 3, 4, Z\r\n");

  // On a full disk the file stays whole.
  const std::string before = "Form1 = 88, 116, 794, 604, \r\nModule1 = 0, 0, 0, 0, C\r\n";
  qxtest::WriteBytes(vbw, before);
  platform::SetWriteFaultHook(
      [](platform::WriteStep step) { return step == platform::WriteStep::kWrite ? ENOSPC : 0; });
  project::AdjustWindowState(vbp);  // the failure is not the caller's concern
  platform::SetWriteFaultHook({});
  EXPECT_EQ(qxtest::ReadBytes(vbw), before);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(env_.work()),
                          std::filesystem::directory_iterator()),
            2);  // P.vbp and P.vbw: no temporary file left
}

TEST_F(StartupChecks, AddInEntryIsWrittenEveryTime) {
  project::WriteAddInEntry();
  project::WriteAddInEntry();
  EXPECT_EQ(platform::GetPrivateProfileString("Add-Ins32", "qxvb60.Connection", "", "vbaddin.ini"),
            "1");
  const std::string ini = qxtest::ReadBytes(env_.home() / "drive_c" / "windows" / "vbaddin.ini");
  EXPECT_EQ(ini.find("qxvb60.Connection"), ini.rfind("qxvb60.Connection"));
}

TEST_F(StartupChecks, ExecutableComesFromTheFileAssociationOnce) {
  platform::Registry::Instance().WriteValue(kOpenCommand, "",
                                            "\"c:\\Tools\\VB98\\vb6.exe\" \"%1\"");
  EXPECT_EQ(project::VB6EXEPath(), "c:\\Tools\\VB98\\vb6.exe");
  platform::Registry::Instance().WriteValue(kOpenCommand, "", "other");
  EXPECT_EQ(project::VB6EXEPath(), "c:\\Tools\\VB98\\vb6.exe");  // resolved once per process
}

TEST_F(StartupChecks, CapitalisedAssociationFallsBackToTheSearchToItsDepth) {
  platform::Registry::Instance().WriteValue(kOpenCommand, "", "C:\\VB98\\VB6.EXE \"%1\"");
  qxtest::WriteBytes(env_.home() / "drive_c" / "x" / "y" / "vb6.exe", "x");
  EXPECT_EQ(project::VB6EXEPath(), "c:\\x\\y\\vb6.exe");
  // The search goes to its depth and no further, in any letter case.
  const auto root = env_.work() / "root";
  qxtest::WriteBytes(root / "a" / "b" / "vb6.exe", "x");
  const std::string folder = root.string();
  EXPECT_EQ(project::FindFile(folder, "vb6.exe", 2), "");
  EXPECT_EQ(project::FindFile(folder, "vb6.exe", 3), folder + "\\a\\b\\vb6.exe");
  EXPECT_EQ(project::FindFile(folder + "\\a\\b", "VB6.EXE", 1), folder + "\\a\\b\\vb6.exe");
}

}  // namespace
