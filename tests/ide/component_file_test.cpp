// Component files: what is hidden, what is code, and the bytes that saving writes.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fixture_copy.h"
#include "ide/model/component_file.h"
#include "module_text.h"
#include "platform/codepage.h"
#include "support/errors.h"

namespace {

using ide::ComponentFile;
using ide::FileKind;
using ide::ProcKind;
using idetest::Crlf;
using idetest::Fixture;
using idetest::Module;
using idetest::ReadBytes;
using idetest::RenderThroughLines;

int LoadError(const std::string& bytes, FileKind kind) {
  return qxtest::ErrorOf([&] { Module(bytes, kind); });
}

TEST(ComponentFile, HeaderIsHiddenAndDescribedAsBlocks) {
  auto form = Fixture("ledger/frmMain.frm", FileKind::kForm);
  EXPECT_EQ(form->Name(), "frmMain");
  EXPECT_EQ(form->Type(), ide::ComponentType::kVBForm);
  EXPECT_EQ(form->Code().Lines(1, 1), "Option Explicit");
  EXPECT_EQ(form->Code().CountOfDeclarationLines(), 3);  // the WithEvents line's attribute hides
  // The description's tree is the Description tests'.
  EXPECT_EQ(form->Description()->Root().EndLine().Text(), "End");
  EXPECT_EQ(form->HeaderLines()[0].Text(), "Attribute VB_Name = \"frmMain\"");

  EXPECT_EQ(Fixture("ledger/frmShell.frm", FileKind::kForm)->Type(),
            ide::ComponentType::kVBMDIForm);
  auto dsr = Fixture("ledger/dhtMain.Dsr", FileKind::kDesigner);
  EXPECT_EQ(dsr->DesignerClsid(), "{90290CCD-F27D-11D0-8031-00C04FB6C701}");
  EXPECT_EQ(dsr->Code().ProcBodyLine("btnGo_onclick", ProcKind::kProc), 1);
}

TEST(ComponentFile, FilesThatAreNotVbSourceGiveInvalidFileFormat) {
  std::string table = "\xFE\x01\x33";
  table += std::string(4, '\0') + "CUSTOMER";
  EXPECT_EQ(LoadError(table, FileKind::kForm), 321);  // a database table named .frm
  EXPECT_EQ(LoadError("", FileKind::kForm), 321);     // empty
  EXPECT_EQ(
      LoadError("VERSION 5.00\r\nBegin VB.Form F \r\n   Caption = \"x\"\r\n", FileKind::kForm),
      321);  // cut short inside the header
  EXPECT_EQ(LoadError("VERSION 5.00\r\nAttribute VB_Name = \"F\"\r\n", FileKind::kForm), 321);
  EXPECT_EQ(LoadError("VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1\r\n", FileKind::kClass), 321);
  EXPECT_EQ(LoadError(std::string("Sub A()\r\n\0\x01\x02\r\nEnd Sub\r\n", 23), FileKind::kModule),
            321);  // binary data among the lines
  // A module without any header is plain code, and NULs after the last line are a tail.
  EXPECT_EQ(LoadError(std::string("Sub A()\r\nEnd Sub\r\n\0\0\0", 21), FileKind::kModule), 0);
}

TEST(ComponentFile, EditsRewriteOnlyTheLinesThatChanged) {
  // CR LF file: new lines get CR LF; the header and untouched lines keep their bytes, including
  // a line with bytes that Windows-1252 leaves undefined.
  std::string crlf =
      Crlf({"Attribute VB_Name = \"M\"", "Const K = \"\x81\x8d\"", "Sub A()", "End Sub"});
  auto file = Module(crlf, FileKind::kModule);
  file->Code().InsertLines(2, "' caf\xC3\xA9");  // UTF-8 inside, 1252 outside
  EXPECT_EQ(file->Render(), Crlf({"Attribute VB_Name = \"M\"", "Const K = \"\x81\x8d\"",
                                  "' caf\xE9", "Sub A()", "End Sub"}));

  // LF file without a final line break: appended lines use LF and the end stays unbroken.
  auto lf = Module("Attribute VB_Name = \"M\"\nSub A()\nEnd Sub", FileKind::kModule);
  lf->Code().InsertLines(3, "Sub B()\r\nEnd Sub");
  EXPECT_EQ(lf->Render(), "Attribute VB_Name = \"M\"\nSub A()\nEnd Sub\nSub B()\nEnd Sub");
  lf->Code().DeleteLines(1, 2);
  EXPECT_EQ(lf->Render(), "Attribute VB_Name = \"M\"\nSub B()\nEnd Sub");

  // Mixed ends: untouched lines keep theirs, new ones take the most common; the NUL tail stays.
  constexpr char kMixed[] = "Sub A()\r\nEnd Sub\r\n\nSub B()\nEnd Sub\r\n\0\0";
  std::string mixed(kMixed, sizeof kMixed - 1);
  auto m = Module(mixed, FileKind::kModule);
  m->Code().DeleteLines(4, 2);
  m->Code().InsertLines(4, "Sub C()\nEnd Sub");
  constexpr char kEdited[] = "Sub A()\r\nEnd Sub\r\n\nSub C()\r\nEnd Sub\r\n\0\0";
  EXPECT_EQ(m->Render(), std::string(kEdited, sizeof kEdited - 1));
  // A procedure written back whole the way the driver does (its lines deleted, CR LF and its
  // text inserted): the lines it writes again unchanged keep their LF and CR ends, the changed
  // line takes the most common end.
  auto lines = Module("Sub A()\r\n  x = 1\n  y = 2\r  z = 3\nEnd Sub\r\n\r\nSub B()\r\nEnd Sub\r\n",
                      FileKind::kModule);
  std::string text = lines->Code().Lines(1, 5);
  text.replace(text.find("y = 2"), 5, "y = 4");
  lines->Code().DeleteLines(1, 5);
  lines->Code().InsertLines(1, text);
  EXPECT_EQ(lines->Render(),
            "Sub A()\r\n  x = 1\n  y = 4\r\n  z = 3\nEnd Sub\r\n\r\nSub B()\r\nEnd Sub\r\n");

  // Deleting everything after the header leaves the header with its own line end.
  auto all = Module(Crlf({"Attribute VB_Name = \"M\"", "Sub A()", "End Sub"}), FileKind::kModule);
  all->Code().DeleteLines(1, 2);
  EXPECT_EQ(all->Render(), Crlf({"Attribute VB_Name = \"M\""}));
}

TEST(ComponentFile, MemberAttributesStayWithTheirMember) {
  auto cls = Fixture("ledger/CAccount.cls", FileKind::kClass);
  ide::CodeModule& code = cls->Code();
  // Write the property's text back the way the driver does: delete its region, insert CR LF and
  // the text. The two attribute lines come back right after the heading.
  int start = code.ProcStartLine("Balance", ProcKind::kGet);
  int count = code.ProcCountLines("Balance", ProcKind::kGet);
  std::string text = code.Lines(start, count);
  code.DeleteLines(start, count);
  code.InsertLines(start, "\r\n" + text);
  std::string saved = cls->Render();
  EXPECT_NE(saved.find("Private mOwner As String\r\n\r\n\r\nPublic Property Get Balance() As "
                       "Currency\r\nAttribute Balance.VB_Description = \"The balance in the "
                       "account's currency.\"\r\nAttribute Balance.VB_UserMemId = 0\r\n    "
                       "Balance = mBalance\r\n"),
            std::string::npos);
  // One more empty line precedes the heading: the inserted CR LF.
  EXPECT_EQ(code.ProcBodyLine("Balance", ProcKind::kGet), start + 2);

  // A heading continued onto a second line gets them back after its last line.
  auto wide = Module(Crlf({"Attribute VB_Name = \"modSums\"", "Public Function Total( _",
                           "    ByVal a As Long) As Long",
                           "Attribute Total.VB_Description = \"The sum.\"", "End Function"}));
  ide::CodeModule& sums = wide->Code();
  const std::string whole = sums.Lines(1, sums.CountOfLines());
  sums.DeleteLines(1, sums.CountOfLines());
  sums.InsertLines(1, whole);
  EXPECT_NE(wide->Render().find("As Long\r\nAttribute Total.VB_Description"), std::string::npos)
      << wide->Render();
  // So does a heading on the module's last line, with nothing after it.
  auto cut = Module(Crlf({"Attribute VB_Name = \"modCut\"", "Sub Last()",
                          "Attribute Last.VB_Description = \"Cut.\""}));
  cut->Code().DeleteLines(1);
  cut->Code().InsertLines(1, "Sub Last()");
  EXPECT_NE(cut->Render().find("Sub Last()\r\nAttribute Last.VB_Description"), std::string::npos)
      << cut->Render();

  // A member that is deleted for good takes its attributes with it, as in VB6.
  start = code.ProcStartLine("Balance", ProcKind::kGet);
  code.DeleteLines(start, code.ProcCountLines("Balance", ProcKind::kGet));
  saved = cls->Render();
  EXPECT_EQ(saved.find("Balance.VB_"), std::string::npos);
  EXPECT_NE(saved.find("Attribute VB_Ext_KEY"), std::string::npos);  // module attributes stay
}

TEST(ComponentFile, CodePagesAreDecodedAndEncodedLosslessly) {
  auto gbk = Fixture("gbk/工具.bas", FileKind::kModule, 936);
  EXPECT_EQ(gbk->Name(), "工具");
  EXPECT_EQ(gbk->Code().ProcStartLine("合计", ProcKind::kProc), 2);
  EXPECT_EQ(gbk->Code().Lines(3, 1), "' 计算合计");
  gbk->Code().InsertLines(1, "' 新增");
  std::string saved = gbk->Render();
  EXPECT_EQ(saved.substr(saved.find("' "), 8), "' \xD0\xC2\xD4\xF6\r\n");

  // A character the code page cannot hold is refused at save time, naming it.
  auto latin = Module("Sub A()\r\nEnd Sub\r\n", FileKind::kModule);
  latin->Code().InsertLines(1, "' 中");
  EXPECT_EQ(qxtest::ErrorOf([&] { latin->Render(); }), 5);

  // Bytes the code page does not define (and a character cut in two at a line end) stay as they
  // are, in lines left alone and in lines that are edited.
  std::string bytes = Crlf({"Attribute VB_Name = \"M\"", "Const A = \"\x80\xFF\"",
                            "Const B = \"\xB9\xA4\" ' \xB9", "Sub S()", "End Sub"});
  auto file = Module(bytes, FileKind::kModule, 936);
  EXPECT_EQ(RenderThroughLines(*file), bytes);
  ide::CodeModule& code = file->Code();
  std::string line = code.Lines(2, 1);
  EXPECT_EQ(line.substr(0, 15), "Const B = \"工\"");  // 0xB9 0xA4 is GBK for 工
  line[6] = 'C';                                      // B becomes C
  code.DeleteLines(2);
  code.InsertLines(2, line);
  EXPECT_EQ(file->Render(), Crlf({"Attribute VB_Name = \"M\"", "Const A = \"\x80\xFF\"",
                                  "Const C = \"\xB9\xA4\" ' \xB9", "Sub S()", "End Sub"}));
}

// Every line of a file as the IDE keeps it: the description's, the header's and the code's.
std::vector<const ide::SourceLine*> AllLines(const ComponentFile& file) {
  std::vector<const ide::SourceLine*> lines;
  if (file.Description() != nullptr) lines = file.Description()->Lines();
  for (const ide::SourceLine& line : file.HeaderLines())
    lines.push_back(&line);
  for (const ide::CodeLine& line : file.Code().RawLines())
    lines.push_back(&line.line);
  return lines;
}

// Lines read from a file own no text: each views the file's text (its bytes, or for text beyond
// ASCII the file's text decoded once), and only a line that an edit writes owns its own.
TEST(ComponentFile, LinesViewTheFileUntilAnEditGivesThemTextOfTheirOwn) {
  for (const int codePage : {1252, 936}) {
    SCOPED_TRACE(codePage);
    const std::string accent = codePage == 1252 ? "\xE9" : "\xB9\xA4";
    const std::string decoded = codePage == 1252 ? "\xC3\xA9" : "\xE5\xB7\xA5";
    const std::string bytes = "VERSION 5.00\r\nBegin VB.Form F \r\n   Caption         =   \"A" +
                              accent + "\"\r\n   Begin VB.Label L \n      Caption         =   " +
                              "\"x\"\r   End\r\nEnd\r\nAttribute VB_Name = \"F\"\r\nOption " +
                              "Explicit\r\n' " + accent + "\r\nSub A()\r\nEnd Sub";
    auto file = Module(bytes, FileKind::kForm, codePage);
    for (const ide::SourceLine* line : AllLines(*file)) {
      EXPECT_FALSE(line->OwnsText()) << line->Text();
      EXPECT_TRUE(line->original) << line->Text();
    }
    EXPECT_EQ(file->Description()->Root().FindProperty("Caption")->Value(), "\"A" + decoded + "\"");
    EXPECT_EQ(file->Code().Lines(2, 1), "' " + decoded);

    // Edits: a line inserted, one deleted, one replaced, a rename (the VB_Name line and the
    // root's Begin line), a property of a control.
    ide::CodeModule& code = file->Code();
    code.InsertLines(1, "' new");
    code.DeleteLines(3);
    code.DeleteLines(3);
    code.InsertLines(3, "Public Sub B()");
    file->SetName("G");
    file->Description()->FindObject("L")->SetProperty("Caption", "\"y\"");
    std::size_t owned = 0;
    for (const ide::SourceLine* line : AllLines(*file)) {
      EXPECT_NE(line->OwnsText(), line->original) << line->Text();
      owned += line->OwnsText() ? 1 : 0;
    }
    EXPECT_EQ(owned, 5u);
    EXPECT_EQ(file->Render(), "VERSION 5.00\r\nBegin VB.Form G \r\n   Caption         =   \"A" +
                                  accent + "\"\r\n   Begin VB.Label L \n      Caption         " +
                                  "=   \"y\"\r\n   End\r\nEnd\r\nAttribute VB_Name = \"G\"\r\n' " +
                                  "new\r\nOption Explicit\r\nPublic Sub B()\r\nEnd Sub");
  }

  // A copy of a line that owns its text owns a copy; a new text may be a view of the old one.
  ide::SourceLine line = ide::SourceLine::New("Dim total As Long");
  ide::SourceLine copy = line;
  copy.SetText(copy.Text().substr(4));
  EXPECT_EQ(copy.Text(), "total As Long");
  EXPECT_EQ(line.Text(), "Dim total As Long");
  line = std::move(copy);
  EXPECT_EQ(line.Text(), "total As Long");
}

// Headers with keys, blocks and versions we do not know are kept as they are; the code after
// them is found all the same, and a rename changes only the name.
TEST(ComponentFile, UnknownHeaderContentIsKeptAndARenameChangesOnlyTheName) {
  const std::string cls = ReadBytes(std::string(QX_FIXTURES) + "/ide/components/CFuture.cls");
  auto c = Module(cls, FileKind::kClass);
  EXPECT_EQ(c->Name(), "CFuture");
  EXPECT_EQ(c->Code().Lines(1, 1), "Option Explicit");
  EXPECT_EQ(RenderThroughLines(*c), cls);

  const std::string frm = ReadBytes(std::string(QX_FIXTURES) + "/ide/components/frmOdd.frm");
  auto f = Module(frm, FileKind::kForm);
  EXPECT_EQ(f->Name(), "frmOdd");
  const auto widget = f->Description()->Root().Children();
  ASSERT_EQ(widget.size(), 1u);
  EXPECT_EQ(widget[0]->Type(), "Vendor.Widget");
  EXPECT_EQ(widget[0]->Groups()[0]->Groups()[0]->Name(), "Item(1)");
  EXPECT_EQ(f->Code().ProcBodyLine("Form_Load", ProcKind::kProc), 1);
  EXPECT_EQ(RenderThroughLines(*f), frm);
  f->SetName("frmEven");
  std::string renamed = f->Render();
  EXPECT_NE(renamed.find("Begin VB.Form frmEven \r\n"), std::string::npos);
  EXPECT_NE(renamed.find("Attribute VB_Name = \"frmEven\"\r\n"), std::string::npos);
  EXPECT_EQ(renamed.size(), frm.size() + 2);  // only the two names changed
  EXPECT_EQ(f->Name(), "frmEven");

  // A module without a name line gets one.
  auto bare = Module("Sub A()\r\nEnd Sub\r\n", FileKind::kModule);
  bare->SetName("Helpers");
  EXPECT_EQ(bare->Render(), "Attribute VB_Name = \"Helpers\"\r\nSub A()\r\nEnd Sub\r\n");
}

// Statements as long as real code has them: a code line of a megabyte, a heading continued over
// 24 lines, a comment continued over 20,000 lines, a property line of a megabyte in the form
// description.
TEST(ComponentFile, VeryLongStatementsAndLinesAreRead) {
  std::string code = "Attribute VB_Name = \"M\"\r\nConst S = \"" + std::string(1 << 20, 'x') +
                     "\"\r\nPublic Function Wide( _\r\n";
  for (int i = 0; i < 23; ++i)
    code.append("    ByVal a").append(std::to_string(i)).append(" As Long, _\r\n");
  code += "    ByVal z As Long) As Long\r\nEnd Function\r\n' note _\r\n";
  for (int i = 0; i < 20000; ++i)
    code += "Sub NotAHeading() _\r\n";
  code += "End Sub\r\nSub After()\r\nEnd Sub\r\n";
  auto m = Module(code, FileKind::kModule);
  EXPECT_EQ(m->Code().CountOfDeclarationLines(), 1);
  EXPECT_EQ(m->Code().ProcCountLines("Wide", ProcKind::kProc), 26);
  EXPECT_EQ(m->Code().ProcBodyLine("After", ProcKind::kProc), 20030);
  EXPECT_EQ(m->Code().ProcStartLine("After", ProcKind::kProc), 28);
  EXPECT_EQ(RenderThroughLines(*m), code);

  std::string frm = "VERSION 5.00\r\nBegin VB.Form F \r\n   Tag             =   \"";
  frm.append(1 << 20, 'x').append("\"\r\nEnd\r\nAttribute VB_Name = \"F\"\r\n");
  auto f = Module(frm, FileKind::kForm);
  EXPECT_EQ(f->Name(), "F");
  EXPECT_EQ(f->Code().CountOfLines(), 0);
  EXPECT_EQ(RenderThroughLines(*f), frm);
}

}  // namespace
