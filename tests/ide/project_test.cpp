// Projects over their files: the project file's entries, components found and read lazily,
// saving that never changes a byte it need not and never loses work.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "fixture_copy.h"
#include "ide/model/project.h"
#include "platform/codepage.h"
#include "support/errors.h"

namespace {

using qxtest::ErrorOf;

namespace fs = std::filesystem;
using ide::ProcKind;
using ide::Project;
using idetest::FixtureCopy;
using idetest::ReadBytes;
using idetest::Snapshot;
using idetest::WriteBytes;

TEST(Project, SavingNeverOverwritesWorkItShouldNot) {
  FixtureCopy copy("ledger");
  auto project = Project::Open(copy.Path("Ledger.vbp"));
  ide::Component& account = project->Item("CAccount");
  account.Code().InsertLines(1, "' audited");

  // Changed on disk since it was loaded: refused, and the refused change dropped, so that the
  // model holds what the disk holds.
  std::string path = account.FileName();
  std::string theirs = ReadBytes(path);
  theirs.replace(theirs.find("Option Explicit"), 15, "Option Explicit ' edited elsewhere");
  WriteBytes(path, theirs);
  EXPECT_EQ(ErrorOf([&] { account.Save(); }), 75);
  EXPECT_EQ(ReadBytes(path), theirs);
  EXPECT_FALSE(account.IsDirty());
  EXPECT_EQ(account.Code().Lines(1, 1), "Option Explicit ' edited elsewhere");

  // (A read-only file is checked through resave, which reports it.)
  ide::Component& util = project->Item("modUtil");
  util.Code().InsertLines(1, "' audited");
  std::string utilBytes = ReadBytes(util.FileName());

  // SaveAs writes elsewhere, and the component's file is the new one from then on; a folder
  // that does not exist is VB's 76.
  EXPECT_EQ(ErrorOf([&] { util.SaveAs(copy.Path("Nowhere/modUtil.bas")); }), 76);
  EXPECT_FALSE(util.IsDirty());
  util.Code().InsertLines(1, "' audited");
  fs::create_directory(copy.dir() / "Saved");
  util.SaveAs(copy.Path("Saved/modUtil.bas"));
  EXPECT_EQ(util.FileName(), copy.Path("Saved/modUtil.bas"));
  std::string header = "Attribute VB_Name = \"modUtil\"\r\n";
  EXPECT_EQ(ReadBytes(util.FileName()), header + "' audited\r\n" + utilBytes.substr(header.size()));
  EXPECT_FALSE(util.IsDirty());
  util.Code().InsertLines(1, "' again");
  util.Save();
  EXPECT_EQ(ReadBytes(util.FileName()).substr(header.size(), 20), "' again\r\n' audited\r\n");
  EXPECT_EQ(ReadBytes(copy.Path("ModUtil.BAS")), utilBytes);
}

// Saving writes the files that changed and nothing else: untouched files, and files whose edits
// came back to the text as read, keep their inode; a changed file is replaced whole (atomically)
// and keeps its permissions.
TEST(Project, SavingWritesOnlyWhatChanged) {
  FixtureCopy copy("ledger");
  auto inode = [&](const std::string& file) {
    struct stat st {};
    EXPECT_EQ(::stat(copy.Path(file).c_str(), &st), 0);
    return st.st_ino;
  };
  ASSERT_EQ(::chmod(copy.Path("CAccount.cls").c_str(), 0640), 0);
  const auto before = Snapshot(copy.dir());
  const auto vbpInode = inode("Ledger.vbp");
  const auto utilInode = inode("ModUtil.BAS");
  const auto accountInode = inode("CAccount.cls");

  auto project = Project::Open(copy.Path("Ledger.vbp"));
  project->Item("CAccount").Code().InsertLines(1, "' audited");
  ide::CodeModule& util = project->Item("modUtil").Code();
  util.InsertLines(2, "' scratch");
  util.DeleteLines(2);
  for (std::size_t i = 0; i < project->Count(); ++i)
    project->At(i).Save();
  project->Save();

  EXPECT_EQ(inode("Ledger.vbp"), vbpInode);
  EXPECT_EQ(inode("ModUtil.BAS"), utilInode);
  EXPECT_NE(inode("CAccount.cls"), accountInode);
  struct stat st {};
  ASSERT_EQ(::stat(copy.Path("CAccount.cls").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0640u);
  auto after = Snapshot(copy.dir());
  std::size_t changed = 0;
  for (const auto& [path, bytes] : after)
    changed += before.at(path) != bytes ? 1 : 0;
  EXPECT_EQ(changed, 1u);
  EXPECT_NE(after.at("CAccount.cls").find("\r\n' audited\r\n"), std::string::npos);
}

// A project file in LF with no final line break, other tools' sections and keys we do not know:
// renaming a class changes that one line and keeps everything else, line ends included. A
// project file that needs no writing is left alone even when it changed on disk meanwhile.
TEST(Project, ProjectFileKeepsForeignSectionsAndLineEnds) {
  FixtureCopy copy("ledger");
  const std::string vbp =
      "Type=Exe\nClass=CAccount; CAccount.cls\nFutureKey=\"x\"\nName=\"Tools\"\n\n"
      "[MS Transaction Server]\nAutoRefresh=1\n\n[CodeSMART]\nTask_UID=7\nModule=Not; A.bas";
  WriteBytes(copy.Path("Tools.vbp"), vbp);
  auto project = Project::Open(copy.Path("Tools.vbp"));
  ASSERT_EQ(project->Count(), 1u);  // entries of other tools' sections are theirs
  project->Save();
  EXPECT_EQ(ReadBytes(copy.Path("Tools.vbp")), vbp);

  project->At(0).SetName("CBalance");
  project->Save();
  std::string expected = vbp;
  expected.replace(expected.find("CAccount;"), 8, "CBalance");
  EXPECT_EQ(ReadBytes(copy.Path("Tools.vbp")), expected);

  WriteBytes(copy.Path("Tools.vbp"), "edited elsewhere");
  project->Save();  // nothing to write: not written, no error
  EXPECT_EQ(ReadBytes(copy.Path("Tools.vbp")), "edited elsewhere");
}

TEST(Project, NamesAndPathsAreDecodedBeforeTheyAreSplit) {
  FixtureCopy copy("gbk");
  auto project = Project::Open(copy.Path("库存.vbp"), platform::GetCodePage(936));
  EXPECT_EQ(project->Name(), "库存");
  ASSERT_EQ(project->Count(), 2u);
  EXPECT_EQ(project->At(0).FileName(), copy.Path("窗体/主窗体.frm"));
  EXPECT_EQ(project->At(0).Name(), "主窗体");
  EXPECT_EQ(project->Item("工具").Code().Lines(3, 1), "' 计算合计");

  // Shift-JIS: 表 is 0x95 0x5C, whose second byte is the backslash. The folder 表 holds the
  // module; split before decoding, the path would name a folder "\x95".
  fs::create_directory(copy.dir() / "表");
  WriteBytes(copy.dir() / "表" / "Mod.bas",
             "Attribute VB_Name = \"Mod\"\r\nSub A()\r\nEnd Sub\r\n");
  WriteBytes(copy.dir() / "sjis.vbp", "Type=Exe\r\nModule=Mod; \x95\x5C\\mod.BAS\r\n");
  auto sjis = Project::Open(copy.Path("sjis.vbp"), platform::GetCodePage(932));
  ASSERT_EQ(sjis->Count(), 1u);
  EXPECT_EQ(sjis->At(0).FileName(), copy.Path("表/Mod.bas"));
  EXPECT_EQ(sjis->At(0).Code().ProcBodyLine("A", ProcKind::kProc), 1);

  // Folders and files in another letter case, and paths that leave the folder and come back.
  WriteBytes(copy.dir() / "case.vbp",
             "Type=Exe\r\nForm=\xB4\xB0\xCC\xE5\\\xD6\xF7\xB4\xB0\xCC\xE5.FRM\r\n"
             "Module=M; ..\\gbk\\.\\\xB1\xED\\MOD.bas\r\n");
  auto cased = Project::Open(copy.Path("case.vbp"), platform::GetCodePage(936));
  ASSERT_EQ(cased->Count(), 2u);
  EXPECT_EQ(cased->At(0).Name(), "主窗体");
  EXPECT_EQ(cased->At(1).Code().ProcBodyLine("A", ProcKind::kProc), 1);
}

TEST(Project, ProjectLinesReadAsTheDriverReadsThem) {
  FixtureCopy copy("ledger");
  WriteBytes(copy.Path("m.Bas"), "Attribute VB_Name = \"Helpers\"\r\nSub A()\r\nEnd Sub\r\n");
  WriteBytes(copy.Path("q.frm"), ReadBytes(copy.Path("ModUtil.BAS")));
  const std::string vbp =
      "\xEF\xBB\xBFModule=m.Bas\r\nModule=Util;\t\"ModUtil.BAS\"\r\nName=\"Lines\"\r\n";
  WriteBytes(copy.Path("Lines.vbp"), vbp);
  auto project = Project::Open(copy.Path("Lines.vbp"));
  // The first line counts past the byte-order mark; a module line without a name part names
  // the file, and its component takes the name its file gives.
  ASSERT_EQ(project->Count(), 2u);
  EXPECT_EQ(project->At(0).FileName(), copy.Path("m.Bas"));
  EXPECT_EQ(project->At(0).Name(), "Helpers");
  // Quotes and a tab around a path are not part of it.
  EXPECT_EQ(project->At(1).FileName(), copy.Path("ModUtil.BAS"));
  // Renaming writes the name part in front of the file; the byte-order mark stays.
  project->At(0).SetName("Tools");
  project->At(0).Save();
  project->Save();
  EXPECT_EQ(
      ReadBytes(copy.Path("Lines.vbp")),
      "\xEF\xBB\xBFModule=Tools; m.Bas\r\nModule=Util;\t\"ModUtil.BAS\"\r\nName=\"Lines\"\r\n");
  // Stray blanks and another case of the key are read, and kept when the entry changes.
  WriteBytes(copy.Path("Odd.vbp"),
             "Type=Exe\r\n  module =  Odd ;  ModUtil.bas \r\nName=\"Odd\"\r\n");
  auto odd = Project::Open(copy.Path("Odd.vbp"));
  ASSERT_EQ(odd->Count(), 1u);
  EXPECT_EQ(odd->File().Entries()[0].name, "Odd");
  EXPECT_EQ(odd->At(0).FileName(), copy.Path("ModUtil.BAS"));
  odd->At(0).SetName("Even");
  odd->Save();
  EXPECT_EQ(ReadBytes(copy.Path("Odd.vbp")),
            "Type=Exe\r\n  module =  Even ;  ModUtil.bas \r\nName=\"Odd\"\r\n");
  // A form's name is in no entry, but Startup= and IconForm= name it: renaming it renames them,
  // and a rename dropped puts them back.
  WriteBytes(copy.Path("Forms.vbp"),
             "Type=Exe\r\nForm=frmMain.frm\r\nIconForm=\"frmMain\"\r\n"
             "Startup = \"FRMMAIN\"\r\nName=\"Forms\"\r\n");
  auto forms = Project::Open(copy.Path("Forms.vbp"));
  ASSERT_EQ(forms->Count(), 1u);
  forms->At(0).SetName("frmStart");
  EXPECT_EQ(forms->File().Render(),
            "Type=Exe\r\nForm=frmMain.frm\r\nIconForm=\"frmStart\"\r\n"
            "Startup = \"frmStart\"\r\nName=\"Forms\"\r\n");
  // (The form's file changed on disk since it was read: its save is refused and dropped.)
  WriteBytes(copy.Path("frmMain.frm"), ReadBytes(copy.Path("frmMain.frm")) + "\r\n");
  EXPECT_EQ(ErrorOf([&] { forms->At(0).Save(); }), 75);
  EXPECT_EQ(forms->File().Render(), ReadBytes(copy.Path("Forms.vbp")));
  // A binary file is not a project file.
  WriteBytes(copy.Path("Binary.vbp"), std::string("Type=Exe\r\n\0\x01\x02\r\nName=\"B\"\r\n", 25));
  EXPECT_EQ(ErrorOf([&] { Project::Open(copy.Path("Binary.vbp")); }), 321);
}

}  // namespace

// The IDE never answers from a stale file: a component whose file changed on disk is read
// again before it is next read, unless it holds unsaved changes; the project file tells that it
// changed.
TEST(Project, AChangedFileIsReadAgainUnlessTheComponentHoldsChanges) {
  FixtureCopy copy("ledger");
  auto project = Project::Open(copy.Path("Ledger.vbp"));
  EXPECT_FALSE(project->ChangedOnDisk());
  ide::Component& util = project->Item("modUtil");
  const int32_t lines = util.Code().CountOfLines();
  WriteBytes(util.FileName(), ReadBytes(util.FileName()) + "' added elsewhere\r\n");
  EXPECT_EQ(util.Code().CountOfLines(), lines + 1);
  // An edit of the same size with the old modification time put back (touch -r) is seen too.
  const auto sameSizeEdit = [](const std::string& path, const std::string& from,
                               const std::string& to) {
    struct stat before {};
    ASSERT_EQ(::stat(path.c_str(), &before), 0);
    std::string bytes = ReadBytes(path);
    bytes.replace(bytes.find(from), from.size(), to);
    WriteBytes(path, bytes);
    const timespec times[2] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  };
  sameSizeEdit(util.FileName(), "' added elsewhere", "' edited anywhere");
  EXPECT_EQ(util.Code().Lines(lines + 1, 1), "' edited anywhere");

  ide::Component& account = project->Item("CAccount");
  account.Code().InsertLines(1, "' mine");
  const int32_t mine = account.Code().CountOfLines();
  WriteBytes(account.FileName(), ReadBytes(account.FileName()) + "' theirs\r\n");
  EXPECT_EQ(account.Code().CountOfLines(), mine);  // the unsaved change is kept

  sameSizeEdit(copy.Path("Ledger.vbp"), "Name=", "name=");
  EXPECT_TRUE(project->ChangedOnDisk());
}
