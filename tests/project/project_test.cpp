#include "project/project.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "automation/object.h"
#include "contracts/driver_interfaces.h"
#include "foundation/globals.h"
#include "project/project_file_check.h"
#include "support/driver_env.h"
#include "support/errors.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using qxtest::Caught;
using qxtest::DriverEnv;

class ProjectTest : public ::testing::Test {
 protected:
  ObjectRef GetProject(const std::string& parameters) {
    return contracts::IDriver(driver_).GetProject("Test", 0, parameters);
  }
  ObjectRef Open(const std::filesystem::path& vbp) {
    return GetProject("FileName=\"" + vbp.string() + "\"");
  }
  // A project folder with these files (name -> bytes).
  std::filesystem::path Folder(std::initializer_list<std::pair<std::string, std::string>> files) {
    const auto folder = env_.work() / ("p" + std::to_string(++folders_));
    for (const auto& [name, bytes] : files)
      qxtest::WriteBytes(folder / name, bytes);
    return folder;
  }

  // GetObjectInfo's out-arguments, given "unchanged" and this writable flag: "<version>
  // writable|read-only", a file time shown as "stamp".
  static std::string Info(const Dispatch& p, const char* kind, const char* name, bool writable) {
    automation::Args args{kind, name, "unchanged", writable};
    p.CallArgs("GetObjectInfo", args);
    const std::string version = args[2].ToString();
    return (version.size() == 14 ? "stamp" : version) +
           (args[3].ToBool() ? " writable" : " read-only");
  }

  DriverEnv env_;
  ObjectRef driver_ = automation::CreateObject("qxvb60.Driver");
  int folders_ = 0;
};

TEST_F(ProjectTest, GetProjectCachesByParameterTextButNotAFailure) {
  const auto folder = Folder({{"A.vbp", "Type=Exe\r\n"}});
  const ObjectRef a = Open(folder / "A.vbp");
  EXPECT_EQ(Open(folder / "A.vbp"), a);
  // The same file under another parameter text is another project, also when the texts differ
  // only in letter case.
  const ObjectRef b = GetProject("FileName=" + (folder / "A.vbp").string());
  EXPECT_NE(b, a);
  const ObjectRef c = GetProject("filename=" + (folder / "A.vbp").string());
  EXPECT_NE(c, b);
  EXPECT_EQ(GetProject("filename=" + (folder / "A.vbp").string()), c);
  EXPECT_EQ(Dispatch(a).Get("FileName").ToString(), (folder / "A.vbp").string());

  // A missing project file fails with two trail lines and is not cached.
  const std::string path = (env_.work() / "Nope.vbp").string();
  const auto e = Caught([&] { GetProject("FileName=" + path); });
  EXPECT_EQ(e.Number(), -32767);
  EXPECT_EQ(e.Description(), "File not found: " + path +
                                 "\r\n\r\nPROGRAM CONTEXT:\r\n"
                                 "qxvb60.Project.Initialize.1  (4.1.475)\r\n"
                                 "qxvb60.Driver.IDriver_GetProject.1  (4.1.475)");
  qxtest::WriteBytes(path, "Type=Exe\r\n");
  EXPECT_NE(GetProject("FileName=" + path), nullptr);  // tried again, now found
  EXPECT_EQ(Caught([&] { GetProject(""); }).Description().rfind("File not found: \r\n", 0), 0u);
}

TEST_F(ProjectTest, CollectionsAreCreatedOnceInTableOrder) {
  const auto folder = Folder({{"A.vbp", "Type=Exe\r\n"}});
  const contracts::IProject project(Open(folder / "A.vbp"));
  const auto e = Caught([&] { Dispatch(project.object()).Get("Forms"); });
  EXPECT_EQ(e.Number(), 91);
  EXPECT_NE(e.Description().find("qxvb60.Project.Forms.1"), std::string::npos);
  const std::string names =
      "ClassModules\tDesigners\tDHTMLPages\tForms\tModules\tPropertyPages\tUserConnections\t"
      "UserControls\tUserDocuments";
  EXPECT_EQ(project.EnumCollections(), names);
  const ObjectRef forms = Dispatch(project.object()).Get("Forms").ToObject();
  EXPECT_EQ(project.EnumCollections(), names);
  EXPECT_EQ(project.GetCollection("Forms"), forms);
  EXPECT_EQ(forms->Class().name, "Forms");
  EXPECT_EQ(project.EnumCommands(), "");
  EXPECT_EQ(Caught([&] { project.GetCollection("Nope"); }).Number(), 9);
  // Deactivating a project without a dispatcher is harmless.
  project.Deactivate();
  EXPECT_FALSE(Dispatch(project.object()).Get("IsActive").ToBool());
  Dispatch(project.object()).Call("TearDown");  // breaks the project <-> collection cycle
}

TEST_F(ProjectTest, EnumObjectsReadsNamesFromTheProjectFileOrTheComponent) {
  const auto folder = Folder({
      {"P.vbp",
       "Type=Exe\r\nModule=Module1; Module1.bas\r\nmodule = Tools ;  ..\\shared\\Tools.bas \r\n"
       "Form=frmMain.frm\nform=gone.frm\rForm=plain.frm\r\nClass=C; C.cls\r\n"},
      {"Module1.bas", "Attribute VB_Name = \"Module1\"\r\n"},
      {"frmMain.frm",
       "VERSION 5.00\r\nBegin VB.Form frmMain \r\nEnd\r\n"
       "  attribute vb_name = \"frmMain\"  \r\n"},
      {"plain.frm", "VERSION 5.00\r\n"},
  });
  qxtest::WriteBytes(env_.work() / "shared" / "Tools.bas", "Attribute VB_Name = \"Tools\"\r\n");
  ::chmod((env_.work() / "shared" / "Tools.bas").c_str(), 0444);
  const ObjectRef project = Open(folder / "P.vbp");
  const Dispatch p(project);
  // Tools lies outside the project folder and is read-only; Module1 is writable.
  EXPECT_EQ(p.Call("EnumObjects", "Module", 5).ToString(),
            "Module1\t5\t\t0\t1\t1\t0\r\nTools\t5\t\t0\t0\t1\t0");
  // Names from the files; a missing file leaves the name empty and the entry not writable; a
  // file without a name line is still "named from its file".
  EXPECT_EQ(p.Call("EnumObjects", "Form", 4).ToString(),
            "frmMain\t4\t\t1\t1\t1\t0\r\n\t4\t\t0\t0\t1\t0\r\n\t4\t\t1\t1\t1\t0");
  EXPECT_EQ(p.Call("EnumObjects", "UserControl", 7).ToString(), "");
}

TEST_F(ProjectTest, GetObjectInfoChoosesTheComponentByName) {
  const auto folder = Folder({
      {"P.vbp", "Module=A; a.bas\r\nModule=B; sub\\b.bas\r\n"},
      {"a.bas", "x"},
      {"sub/b.bas", "y"},
  });
  ::chmod((folder / "sub" / "b.bas").c_str(), 0444);
  const Dispatch p(Open(folder / "P.vbp"));
  EXPECT_EQ(Info(p, "module", "b", true), "stamp read-only");
  EXPECT_EQ(Info(p, "Module", "A", false), "stamp writable");
  // No line of that kind or name: the caller's values stay.
  EXPECT_EQ(Info(p, "Class", "A", true), "unchanged writable");
  EXPECT_EQ(Info(p, "Class", "A", false), "unchanged read-only");
  std::filesystem::remove(folder / "a.bas");
  EXPECT_EQ(Info(p, "Module", "A", true), " read-only");
}

TEST_F(ProjectTest, AwkwardProjectFilesNeverCrash) {
  std::string huge = "Module=M; " + std::string(2'000'000, 'x') + ".bas\r\n";
  const auto folder = Folder({
      {"empty.vbp", ""},
      {"odd.vbp", "\xFE\xFF\x01\r\nModule=\xFE\xFF; \x01.bas"},
      {"huge.vbp", huge},
      {"truncated.vbp", "Type=Exe\r\nModule=Trunc"},
  });
  for (const char* name : {"empty.vbp", "odd.vbp", "huge.vbp", "truncated.vbp"}) {
    const Dispatch p(Open(folder / name));
    for (const char* key : {"Module", "Form", "Class"})
      p.Call("EnumObjects", key, 1);
  }
  EXPECT_EQ(Dispatch(Open(folder / "huge.vbp")).Call("EnumObjects", "Module", 1).ToString(),
            "M\t1\t\t0\t0\t1\t0");
  EXPECT_EQ(Dispatch(Open(folder / "truncated.vbp")).Call("EnumObjects", "Module", 5).ToString(),
            "\t5\t\t0\t0\t1\t0");
}

// The listing and the start-up check read a project file's lines alike.
TEST_F(ProjectTest, ListingAndCheckReadProjectFileLinesAlike) {
  std::string binary = "Type=Exe\r\n";
  for (int i = 0; i < 256; ++i)
    binary += static_cast<char>(i);
  const auto folder = Folder({
      {"P.vbp",
       "\xEF\xBB\xBF"
       "Form=first.frm\r\nForm=\"quoted.frm\"\r\nForm=\ttabbed.frm\r\nModule=m.Bas\r\n"},
      {"first.frm", "Attribute VB_Name = \"First\"\r\n"},
      {"quoted.frm", "Attribute VB_Name = \"Quoted\"\r\n"},
      {"tabbed.frm", "Attribute VB_Name = \"Tabbed\"\r\n"},
      {"m.Bas", "Attribute VB_Name = \"M\"\r\n"},
      {"gone.vbp",
       "\xEF\xBB\xBF"
       "Form=gone.frm\r\n"},
      {"binary.vbp", binary + "\r\nForm=first.frm\r\n"},
  });
  const Dispatch p(Open(folder / "P.vbp"));
  // The first line counts past the byte-order mark; quotes and tabs around a file go.
  EXPECT_EQ(p.Call("EnumObjects", "Form", 4).ToString(),
            "First\t4\t\t1\t1\t1\t0\r\nQuoted\t4\t\t1\t1\t1\t0\r\nTabbed\t4\t\t1\t1\t1\t0");
  // A module line without a name part names its component from the file.
  EXPECT_EQ(p.Call("EnumObjects", "Module", 5).ToString(), "M\t5\t\t1\t1\t1\t0");
  EXPECT_EQ(Info(p, "Form", "Quoted", false), "stamp writable");
  project::CheckProjectFile((folder / "P.vbp").string());  // every file found
  EXPECT_NE(Caught([&] { project::CheckProjectFile((folder / "gone.vbp").string()); })
                .Description()
                .find("Line 1: Form=gone.frm"),
            std::string::npos);
  // A binary file is not a project file.
  const Dispatch binaryProject(Open(folder / "binary.vbp"));
  EXPECT_EQ(Caught([&] { binaryProject.Call("EnumObjects", "Form", 4); }).Number(), 321);
  EXPECT_EQ(Caught([&] { project::CheckProjectFile((folder / "binary.vbp").string()); }).Number(),
            321);
}

TEST_F(ProjectTest, ListingFollowsChangesOfTheProjectAndComponentFiles) {
  const auto folder = Folder({
      {"P.vbp", "Form=a.frm\r\n"},
      {"a.frm", "Attribute VB_Name = \"A\"\r\n"},
  });
  const Dispatch p(Open(folder / "P.vbp"));
  EXPECT_EQ(p.Call("EnumObjects", "Form", 4).ToString(), "A\t4\t\t1\t1\t1\t0");
  // A component file that renames its component (same size, another time).
  qxtest::WriteBytes(folder / "a.frm", "Attribute VB_Name = \"Bee\"\r\n");
  EXPECT_EQ(p.Call("EnumObjects", "Form", 4).ToString(), "Bee\t4\t\t1\t1\t1\t0");
  EXPECT_EQ(Info(p, "Form", "Bee", false), "stamp writable");
  // Renamed again without a listing in between: GetObjectInfo still finds it by its new name.
  qxtest::WriteBytes(folder / "a.frm", "Attribute VB_Name = \"CC\"\r\n");
  EXPECT_EQ(Info(p, "Form", "CC", false), "stamp writable");
  // A project file that changes is read again.
  qxtest::WriteBytes(folder / "P.vbp", "Form=a.frm\r\nModule=M; m.bas\r\n");
  EXPECT_EQ(p.Call("EnumObjects", "Module", 5).ToString(), "M\t5\t\t0\t0\t1\t0");
  // UpdateName keeps the new name and lists as before.
  contracts::IProject(p.object()).UpdateName("Renamed");
  EXPECT_EQ(std::static_pointer_cast<project::Project>(p.object())->ProjectName(), "Renamed");
  EXPECT_EQ(p.Call("EnumObjects", "Form", 4).ToString(), "CC\t4\t\t1\t1\t1\t0");
  // A project file that vanished cannot be listed.
  std::filesystem::remove(folder / "P.vbp");
  const auto e = Caught([&] { p.Call("EnumObjects", "Form", 4); });
  EXPECT_EQ(e.Number(), 53);
  EXPECT_NE(e.Description().find("qxvb60.Project.EnumObjects.1"), std::string::npos);
}

TEST_F(ProjectTest, ShutdownReleasesTheProjectsAndPutsANewLogInPlace) {
  const auto folder = Folder({{"A.vbp", "Type=Exe\r\n"}});
  ObjectRef hostLog = automation::CreateObject("qxlib41.ProblemLog");
  contracts::IDriver(driver_).Initialize(hostLog);
  EXPECT_EQ(foundation::GetGlobals().problemLog, hostLog);
  const ObjectRef before = Open(folder / "A.vbp");
  const std::weak_ptr<automation::Object> watched = before;
  contracts::IDriver(driver_).Shutdown();
  EXPECT_NE(foundation::GetGlobals().problemLog, nullptr);
  EXPECT_NE(foundation::GetGlobals().problemLog, hostLog);
  EXPECT_EQ(watched.use_count(), 1);  // only this test holds the project now
  // The driver goes on after a shutdown with an empty cache.
  EXPECT_NE(Open(folder / "A.vbp"), before);
}

}  // namespace
