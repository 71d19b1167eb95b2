// The IDE's objects over a real project: collections, components, code modules, windows, and
// the files that saving through them writes.

#include <gtest/gtest.h>

#include <string>

#include "fixture_copy.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbproject.h"
#include "platform/windows.h"
#include "vbide_support.h"

namespace {

using automation::Args;
using automation::Dispatch;
using automation::MemberKind;
using idetest::ReadBytes;
using vbidetest::ErrorOf;

class VbideObjects : public vbidetest::IdeOnCopy {
 protected:
  void Open(const std::string& fixture, const std::string& projectFile) {
    IdeOnCopy::Open(fixture, projectFile);
    ASSERT_TRUE(ide_->Problems().empty());  // no vbaddin.ini: no add-ins, nothing to note
    ASSERT_TRUE(ide_->AddIns().empty());
  }
};

TEST_F(VbideObjects, ComponentsComeInProjectOrderByNumberOrName) {
  Open("ledger", "Ledger.vbp");
  const struct {
    const char* name;
    int32_t type;
    const char* designer;
    const char* file;
  } expected[] = {
      {"frmMain", 5, "VB.Form", "frmMain.frm"},
      {"frmShell", 6, "VB.MDIForm", "frmShell.frm"},
      {"modUtil", 1, "", "ModUtil.BAS"},  // found whatever the case of its file name
      {"CAccount", 2, "", "CAccount.cls"},
      {"ctlGauge", 8, "VB.UserControl", "ctlGauge.ctl"},
      {"ppgGauge", 7, "VB.PropertyPage", "ppgGauge.pag"},
      {"docHome", 9, "VB.UserDocument", "docHome.dob"},
      {"dhtMain", 11, "DHTMLPageDesigner.DHTMLPage", "dhtMain.Dsr"},
  };
  ASSERT_EQ(components_.Get("Count").ToLong(), static_cast<int32_t>(std::size(expected)));
  for (int32_t i = 1; i <= components_.Get("Count").ToLong(); ++i) {
    SCOPED_TRACE(expected[i - 1].name);
    Dispatch component = Component(i);
    EXPECT_EQ(component.Get("Name").ToString(), expected[i - 1].name);
    EXPECT_EQ(component.Get("Type").ToLong(), expected[i - 1].type);
    EXPECT_EQ(component.Get("DesignerID").ToString(), expected[i - 1].designer);
    EXPECT_EQ(component.GetAt("FileNames", 1).ToString(), Path(expected[i - 1].file));
    EXPECT_FALSE(component.Get("IsDirty").ToBool());
    // The same object however it is reached.
    EXPECT_EQ(Component(expected[i - 1].name).object(), component.object());
  }
  EXPECT_EQ(Component("MODUTIL").object(), Component(3).object());
  EXPECT_EQ(ErrorOf([&] { Component("frmNowhere"); }), 9);
  EXPECT_EQ(ErrorOf([&] { Component(0); }), 9);
  EXPECT_EQ(ErrorOf([&] { Component(9); }), 9);
  EXPECT_EQ(ErrorOf([&] { Component(1).GetAt("FileNames", 2); }), 9);
  EXPECT_EQ(Component(1).Get("FileCount").ToLong(), 1);

  // The way back up: component, collection, project, IDE.
  Dispatch vbe(ide_->VBE());
  Dispatch account = Component("CAccount");
  EXPECT_EQ(account.Get("Collection").ToObject(), components_.object());
  EXPECT_EQ(components_.Get("Parent").ToObject(), ide_->VBProject());
  EXPECT_EQ(account.Get("VBE").ToObject(), vbe.object());
  EXPECT_EQ(Dispatch(account.Get("CodeModule").ToObject()).Get("Parent").ToObject(),
            account.object());
  Dispatch projects(vbe.Get("VBProjects").ToObject());
  EXPECT_EQ(projects.Get("Count").ToLong(), 1);
  EXPECT_EQ(vbe.Get("ActiveVBProject").ToObject(), ide_->VBProject());
  EXPECT_EQ(Dispatch(ide_->VBProject()).Get("Name").ToString(), "Ledger");
  EXPECT_EQ(projects.Call("Item", 1).ToObject(), ide_->VBProject());
  EXPECT_EQ(projects.Call("Item", "ledger").ToObject(), ide_->VBProject());
  EXPECT_EQ(ErrorOf([&] { projects.Call("Item", 2); }), 9);
  EXPECT_EQ(Dispatch(ide_->VBProject()).Get("Collection").ToObject(), projects.object());
}

TEST_F(VbideObjects, RenameThenSaveAsChangesTheNameLineAndTheProjectEntryOnly) {
  Open("ledger", "Ledger.vbp");
  const std::string vbp = ReadBytes(Path("Ledger.vbp"));
  const std::string bas = ReadBytes(Path("ModUtil.BAS"));
  Dispatch project(ide_->VBProject());
  Dispatch util = Component("modUtil");
  EXPECT_EQ(ErrorOf([&] { util.Put("Name", "CAccount"); }), 380);  // taken
  EXPECT_EQ(ErrorOf([&] { util.Put("Name", "9lives"); }), 380);
  EXPECT_FALSE(project.Get("IsDirty").ToBool());

  util.Put("Name", "modTools");
  EXPECT_TRUE(util.Get("IsDirty").ToBool());
  EXPECT_TRUE(project.Get("IsDirty").ToBool());
  EXPECT_EQ(Component("modtools").object(), util.object());
  EXPECT_EQ(ErrorOf([&] { Component("modUtil"); }), 9);
  EXPECT_TRUE(util.Call("SaveAs", util.GetAt("FileNames", 1)).ToBool());

  std::string expectedVbp = vbp;
  expectedVbp.replace(expectedVbp.find("Module=modUtil;"), 15, "Module=modTools;");
  EXPECT_EQ(ReadBytes(Path("Ledger.vbp")), expectedVbp);
  std::string expectedBas = bas;
  expectedBas.replace(expectedBas.find("\"modUtil\""), 9, "\"modTools\"");
  EXPECT_EQ(ReadBytes(Path("ModUtil.BAS")), expectedBas);
  EXPECT_FALSE(util.Get("IsDirty").ToBool());
  EXPECT_FALSE(project.Get("IsDirty").ToBool());
}

// What the edits save is the model's (ComponentFile, RoundTrip); the object forwards them.
TEST_F(VbideObjects, CodeModuleEditsThroughDispatch) {
  Open("ledger", "Ledger.vbp");
  const std::string vbp = ReadBytes(Path("Ledger.vbp"));
  Dispatch account = Component("CAccount");
  Dispatch code(account.Get("CodeModule").ToObject());
  EXPECT_EQ(code.Get("CountOfLines").ToLong(), 23);
  EXPECT_EQ(code.Get("CountOfDeclarationLines").ToLong(), 6);
  EXPECT_EQ(code.Get("Name").ToString(), "CAccount");
  EXPECT_EQ(code.GetAt("ProcBodyLine", "Balance", 3).ToLong(), 8);
  EXPECT_EQ(code.GetAt("ProcStartLine", "Balance", 3).ToLong(), 7);
  EXPECT_EQ(code.GetAt("ProcCountLines", "Balance", 1).ToLong(), 5);

  code.Call("DeleteLines", 7);  // Count defaults to 1: the blank line above Property Get
  EXPECT_EQ(code.GetAt("Lines", 7, 1).ToString(), "Public Property Get Balance() As Currency");
  code.Call("ReplaceLine", 7, "Public Property Get Balance() As Currency ' never negative");
  EXPECT_EQ(code.GetAt("Lines", 7, 1).ToString(),
            "Public Property Get Balance() As Currency ' never negative");
  const int32_t heading = code.GetAt("ProcBodyLine", "Owner", 3).ToLong();
  code.Call("InsertLines", heading, "' Who holds the account.");

  Args args{automation::Variant(heading), automation::Variant::Long(0)};
  EXPECT_EQ(automation::Invoke(code.object(), "", "ProcOfLine", MemberKind::Get, args).ToString(),
            "Owner");
  EXPECT_EQ(args[1].ToLong(), 3);  // the by-reference kind: Property Get
  EXPECT_EQ(ErrorOf([&] { code.Call("DeleteLines", 0); }), 9);
  EXPECT_EQ(ErrorOf([&] { code.GetAt("ProcBodyLine", "Nothing", 0); }), 35);
  EXPECT_EQ(ErrorOf([&] { code.Call("ReplaceLine", 99, "x"); }), 9);
  EXPECT_TRUE(account.Get("IsDirty").ToBool());

  account.Call("SaveAs", Path("CAccount.cls"));
  const std::string saved = ReadBytes(Path("CAccount.cls"));
  EXPECT_NE(saved.find("\r\n' Who holds the account.\r\n"), std::string::npos);
  // A heading replaced by one of the same member keeps its hidden attribute lines.
  EXPECT_NE(saved.find("' never negative\r\nAttribute Balance.VB_Description"), std::string::npos);
  EXPECT_EQ(ReadBytes(Path("Ledger.vbp")), vbp);  // no rename, no project file write
  EXPECT_FALSE(account.Get("IsDirty").ToBool());
}

TEST_F(VbideObjects, IsDirtyCanBeSetAndChangesSurviveSettingItFalse) {
  Open("ledger", "Ledger.vbp");
  const std::string bas = ReadBytes(Path("ModUtil.BAS"));
  Dispatch util = Component("modUtil");
  Dispatch code(util.Get("CodeModule").ToObject());
  util.Put("IsDirty", true);  // nothing changed, but marked so
  EXPECT_TRUE(util.Get("IsDirty").ToBool());
  util.Put("IsDirty", false);
  EXPECT_FALSE(util.Get("IsDirty").ToBool());
  code.Call("InsertLines", 1, "' first");
  EXPECT_TRUE(util.Get("IsDirty").ToBool());
  util.Put("IsDirty", false);  // marked saved; the change itself is kept
  EXPECT_FALSE(util.Get("IsDirty").ToBool());
  EXPECT_EQ(code.GetAt("Lines", 1, 1).ToString(), "' first");
  code.Call("DeleteLines", 1);  // the next change shows again
  EXPECT_TRUE(util.Get("IsDirty").ToBool());
  util.Call("SaveAs", util.GetAt("FileNames", 1));
  EXPECT_FALSE(util.Get("IsDirty").ToBool());
  EXPECT_EQ(ReadBytes(Path("ModUtil.BAS")), bas);  // the edits cancelled out
}

TEST_F(VbideObjects, WindowsFollowStateCommandsAndDesignersOpenAndClose) {
  Open("ledger", "Ledger.vbp");
  Dispatch main(Dispatch(ide_->VBE()).Get("MainWindow").ToObject());
  EXPECT_EQ(main.Get("Caption").ToString(), "Ledger - Microsoft Visual Basic [design]");
  EXPECT_EQ(main.Get("Type").ToLong(), 12);
  EXPECT_EQ(main.Get("WindowState").ToLong(), 0);
  main.Put("WindowState", 2);
  main.Put("WindowState", 1);  // what the driver does after starting the IDE
  EXPECT_EQ(ErrorOf([&] { main.Put("WindowState", 3); }), 380);
  EXPECT_EQ(main.Get("WindowState").ToLong(), 1);
  const int32_t hWnd = main.Get("hWnd").ToLong();
  ASSERT_NE(hWnd, 0);
  EXPECT_TRUE(platform::ShowWindow(hWnd, platform::kSwRestore));
  EXPECT_EQ(main.Get("WindowState").ToLong(), 2);  // back to maximized, as Windows restores
  EXPECT_TRUE(platform::ShowWindow(hWnd, platform::kSwRestore));
  EXPECT_EQ(main.Get("WindowState").ToLong(), 0);
  EXPECT_TRUE(platform::ShowWindow(hWnd, platform::kSwHide));
  EXPECT_FALSE(main.Get("Visible").ToBool());
  EXPECT_EQ(ErrorOf([&] { main.Call("Close"); }), 5);

  Dispatch form = Component("frmMain");
  EXPECT_FALSE(form.Get("HasOpenDesigner").ToBool());
  form.Call("Activate");
  EXPECT_TRUE(form.Get("HasOpenDesigner").ToBool());
  Dispatch designer(form.Call("DesignerWindow").ToObject());
  EXPECT_TRUE(designer.Get("Visible").ToBool());
  EXPECT_EQ(designer.Get("Caption").ToString(), "Ledger - frmMain (Form)");
  EXPECT_EQ(designer.Get("Type").ToLong(), 1);
  EXPECT_NE(designer.Get("hWnd").ToLong(), hWnd);
  designer.Call("Close");
  EXPECT_FALSE(form.Get("HasOpenDesigner").ToBool());
  designer.Call("Close");  // closing twice does nothing
  // Asking for the window opens the designer again, hidden.
  Dispatch again(form.Call("DesignerWindow").ToObject());
  EXPECT_NE(again.object(), designer.object());
  EXPECT_TRUE(form.Get("HasOpenDesigner").ToBool());
  EXPECT_FALSE(again.Get("Visible").ToBool());

  Dispatch util = Component("modUtil");
  util.Call("Activate");  // no designer to open
  EXPECT_FALSE(util.Get("HasOpenDesigner").ToBool());
  EXPECT_EQ(ErrorOf([&] { util.Call("DesignerWindow"); }), 5);
}

TEST_F(VbideObjects, UnreadableComponentsRaiseTheirLoadErrorOnlyWhereTheFileIsNeeded) {
  Open("broken", "Broken.vbp");
  ASSERT_EQ(components_.Get("Count").ToLong(), 5);
  Dispatch missing = Component("Missing");
  EXPECT_EQ(missing.Get("Type").ToLong(), 1);
  EXPECT_EQ(missing.GetAt("FileNames", 1).ToString(), Path("Shared/Missing.bas"));
  EXPECT_FALSE(missing.Get("IsDirty").ToBool());
  EXPECT_EQ(ErrorOf([&] { missing.Get("CodeModule"); }), 53);
  EXPECT_EQ(ErrorOf([&] { missing.Call("SaveAs", Path("Elsewhere.bas")); }), 53);
  EXPECT_EQ(ErrorOf([&] { missing.Put("Name", "Found"); }), 53);

  Dispatch table = Component(2);  // a database table saved as .frm
  EXPECT_EQ(table.Get("Name").ToString(), "Table");
  EXPECT_FALSE(table.Get("HasOpenDesigner").ToBool());
  // Listed as what the project file says, so that listing the components never fails.
  EXPECT_EQ(table.Get("Type").ToLong(), 5);
  EXPECT_EQ(table.Get("DesignerID").ToString(), "VB.Form");
  const automation::Error error = qxtest::Caught([&] { table.Call("Activate"); });
  EXPECT_EQ(error.Number(), 321);
  EXPECT_NE(error.Description().find("Table.frm"), std::string::npos) << error.Description();
  EXPECT_FALSE(table.Get("HasOpenDesigner").ToBool());
  EXPECT_EQ(ErrorOf([&] { Component(3).Get("CodeModule"); }), 321);  // header cut short
  EXPECT_EQ(ErrorOf([&] { Component(5).Get("CodeModule"); }), 321);  // binary data

  // The others are not taken down with them.
  EXPECT_EQ(Dispatch(Component("Good").Get("CodeModule").ToObject()).Get("CountOfLines").ToLong(),
            2);
}

}  // namespace
