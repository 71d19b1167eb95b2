// The form description as a tree: what it holds, the bytes it saves, and edits that change
// only their own lines, in the order and layout VB6 writes.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "fixture_copy.h"
#include "ide/form/description.h"
#include "ide/model/component_file.h"
#include "module_text.h"
#include "support/errors.h"

namespace {

using ide::ComponentFile;
using ide::FileKind;
using ide::form::Description;
using ide::form::DescriptionNode;
using ide::form::FontValues;
using namespace ide::form;

struct Loaded {
  std::string bytes;
  std::unique_ptr<ComponentFile> file;
  Description& description() { return *file->Description(); }
  DescriptionNode& object(std::string_view name, int32_t index = -1) {
    DescriptionNode* node = description().FindObject(name, index);
    EXPECT_NE(node, nullptr) << name;
    return *node;
  }
};

Loaded Load(const std::string& relative, FileKind kind, int codePage = 1252) {
  Loaded loaded;
  loaded.bytes = idetest::ReadBytes(std::string(QX_FIXTURES) + "/ide/" + relative);
  loaded.file = idetest::Module(loaded.bytes, kind, codePage);
  return loaded;
}

Loaded Orders() {
  return Load("orders/frmOrders.frm", FileKind::kForm);
}

// The original with one piece of text replaced; fails the test when it is not there once.
std::string Replaced(const std::string& original, const std::string& from, const std::string& to) {
  const std::size_t at = original.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  EXPECT_EQ(original.find(from, at + 1), std::string::npos) << "not unique: " << from;
  if (at == std::string::npos) return original;
  std::string out = original;
  out.replace(at, from.size(), to);
  return out;
}

TEST(Description, ObjectsGroupsAndPropertiesAreReadInStoredOrder) {
  Loaded orders = Orders();
  Description& d = orders.description();
  ASSERT_EQ(d.Prelude().size(), 2u);
  EXPECT_EQ(d.ObjectLines(),
            (std::vector<std::string_view>{
                "\"{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.0#0\"; \"MSCOMCTL.OCX\""}));

  const DescriptionNode& root = d.Root();
  EXPECT_EQ(root.Type(), "VB.Form");
  EXPECT_TRUE(root.IsIntrinsic());
  EXPECT_EQ(root.Index(), -1);
  const PropertyEntry* caption = root.FindProperty("caption");
  ASSERT_NE(caption, nullptr);
  EXPECT_EQ(caption->Value(), "\"Orders \"\"open\"\"\"");
  EXPECT_EQ(UnquoteString(caption->Value()), "Orders \"open\"");
  const PropertyEntry* position = root.FindProperty("StartUpPosition");
  EXPECT_EQ(position->Value(), "1");
  EXPECT_EQ(position->Comment(), "CenterOwner");
  EXPECT_EQ(position->ValueText(), "1  'CenterOwner");

  // Controls depth first, menus last as stored, nested menus inside their menu.
  std::vector<std::string> names;
  for (const DescriptionNode* control : d.Controls()) {
    names.push_back(control->Name() +
                    (control->Index() >= 0 ? "(" + std::to_string(control->Index()) + ")" : ""));
  }
  EXPECT_EQ(names,
            (std::vector<std::string>{"fraFilter", "optStatus(0)", "optStatus(1)", "txtNotes",
                                      "lblHelp", "lvwOrders", "mnuOrder", "mnuOrderNew",
                                      "mnuOrderSep", "mnuOrderRecent", "mnuRecent(0)"}));
  EXPECT_EQ(d.FindObject("OPTSTATUS", 1)->FindProperty("Caption")->Value(), "\"Closed\"");
  EXPECT_EQ(d.FindObject("optStatus"), nullptr);  // an array element needs its index
  EXPECT_EQ(d.FindObject("mnuRecent", 0)->Parent()->Name(), "mnuOrderRecent");
  EXPECT_EQ(root.Children().front()->Name(), "fraFilter");

  // Groups: the form's Font without a class identifier, the ListView's with StdFont's, and
  // indexed column headers with their own; the other library's entries stay in their order.
  EXPECT_EQ(root.FindGroup("Font")->ClassId(), "");
  const DescriptionNode& list = *d.FindObject("lvwOrders");
  EXPECT_FALSE(list.IsIntrinsic());
  EXPECT_EQ(list.FindGroup("Font")->ClassId(), kStdFontClassId);
  const auto groups = list.Groups();
  ASSERT_EQ(groups.size(), 3u);
  EXPECT_EQ(groups[2]->Name(), "ColumnHeader(2)");
  EXPECT_EQ(groups[2]->FindProperty("Object.Width")->Value(), "4410");
  std::vector<std::string> own;
  for (const PropertyEntry* p : list.Properties())
    own.emplace_back(p->Name());
  EXPECT_EQ(own,
            (std::vector<std::string>{"Height", "Left", "TabIndex", "Top", "Width", "_ExtentX",
                                      "_ExtentY", "View", "LabelEdit", "FullRowSelect", "_Version",
                                      "ForeColor", "BackColor", "Appearance", "NumItems"}));

  // Companion references in description order, `$` or not, with their offsets.
  const auto references = d.CompanionReferences();
  ASSERT_EQ(references.size(), 3u);
  EXPECT_EQ(references[0].property->Name(), "Icon");
  EXPECT_EQ(references[1].reference, (CompanionReference{false, "frmOrders.frx", 0x0C}));
  EXPECT_EQ(references[1].property->Owner()->Name(), "txtNotes");
  EXPECT_EQ(references[2].reference, (CompanionReference{true, "frmOrders.frx", 0x2E}));
}

TEST(Description, EveryFormLikeFixtureComesBackByteForByte) {
  struct Case {
    const char* file;
    FileKind kind;
    int codePage;
  };
  const Case cases[] = {
      {"orders/frmOrders.frm", FileKind::kForm, 1252},
      {"orders/deOrders.Dsr", FileKind::kDesigner, 1252},
      {"ledger/frmMain.frm", FileKind::kForm, 1252},
      {"ledger/frmShell.frm", FileKind::kForm, 1252},
      {"ledger/ctlGauge.ctl", FileKind::kUserControl, 1252},
      {"ledger/ppgGauge.pag", FileKind::kPropertyPage, 1252},
      {"ledger/docHome.dob", FileKind::kUserDocument, 1252},
      {"ledger/dhtMain.Dsr", FileKind::kDesigner, 1252},
      {"gbk/\xE7\xAA\x97\xE4\xBD\x93/\xE4\xB8\xBB\xE7\xAA\x97\xE4\xBD\x93.frm", FileKind::kForm,
       936},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    Loaded loaded = Load(c.file, c.kind, c.codePage);
    EXPECT_FALSE(loaded.file->IsDirty());
    EXPECT_EQ(idetest::RenderThroughLines(*loaded.file), loaded.bytes);
    // Writing every property with the value text it has changes nothing either.
    Description& d = loaded.description();
    std::vector<DescriptionNode*> nodes = d.Controls();
    nodes.push_back(&d.Root());
    for (DescriptionNode* node : nodes) {
      for (PropertyEntry* p : node->Properties())
        node->SetProperty(p->Name(), p->ValueText());
    }
    EXPECT_FALSE(d.IsDirty());
  }
}

TEST(Description, EditsRewriteOnlyTheirLinesInVb6sOrderAndLayout) {
  const FontValues arial{"Arial", 9.75, 0, 700, false, false, false};
  struct Case {
    const char* what;
    std::function<void(Loaded&)> edit;
    std::string from;  // the original text the edit replaces
    std::string to;
  };
  const Case cases[] = {
      {"a changed caption rewrites its line",
       [](Loaded& l) { l.object("optStatus", 1).SetProperty("Caption", FormatString("Shut")); },
       "\"Closed\"", "\"Shut\""},
      {"a boolean set to its default disappears",
       [](Loaded& l) { l.description().Root().RemoveProperty("MaxButton"); },
       "   MaxButton       =   0   'False\r\n", ""},
      {"MDIChild sorts between MaxButton and MinButton",
       [](Loaded& l) { l.description().Root().SetProperty("MDIChild", FormatBoolean(true)); },
       "'False\r\n   MinButton", "'False\r\n   MDIChild        =   -1  'True\r\n   MinButton"},
      {"a property before F goes before the Font group",
       [](Loaded& l) { l.description().Root().SetProperty("Enabled", FormatBoolean(false)); },
       "   ClientWidth     =   7200\r\n",
       "   ClientWidth     =   7200\r\n   Enabled         =   0   'False\r\n"},
      {"ForeColor sorts after the Font group",
       [](Loaded& l) { l.description().Root().SetProperty("ForeColor", FormatColour(0xFF)); },
       "   EndProperty\r\n   Icon",
       "   EndProperty\r\n   ForeColor       =   &H000000FF&\r\n   Icon"},
      {"a property after every other one goes before the children",
       [](Loaded& l) { l.description().Root().SetProperty("WindowState", "2  'Maximized"); },
       "'CenterOwner\r\n", "'CenterOwner\r\n   WindowState     =   2  'Maximized\r\n"},
      {"an enumeration keeps two spaces before its comment",
       [](Loaded& l) {
         l.object("txtNotes").SetProperty("ScrollBars", FormatEnumeration(3, "Both"));
       },
       "2  'Vertical", "3  'Both"},
      {"an extender property of another library's control sorts before its own entries",
       [](Loaded& l) { l.object("lvwOrders").SetProperty("ToolTipText", FormatString("Orders")); },
       "      Top             =   1440\r\n",
       "      ToolTipText     =   \"Orders\"\r\n      Top             =   1440\r\n"},
      {"Visible sorts among the extender properties too",
       [](Loaded& l) { l.object("lvwOrders").SetProperty("Visible", FormatBoolean(false)); },
       "      Width           =   6975\r\n      _ExtentX",
       "      Visible         =   0   'False\r\n      Width           =   6975\r\n      _ExtentX"},
      {"a menu's properties sort like any intrinsic control's",
       [](Loaded& l) { l.object("mnuOrderNew").SetProperty("Checked", FormatBoolean(true)); },
       "\"&New\"\r\n", "\"&New\"\r\n         Checked         =   -1  'True\r\n"},
      {"a dotted property in a group keeps its padding",
       [](Loaded& l) {
         l.object("lvwOrders").FindGroup("ColumnHeader(1)")->SetProperty("Object.Tag", "\"id\"");
       },
       "2540\r\n", "2540\r\n         Object.Tag             =   \"id\"\r\n"},
      {"an Index makes a control an array element",
       [](Loaded& l) { l.object("txtNotes").SetIndex(0); }, "      Height          =   975\r\n",
       "      Height          =   975\r\n      Index           =   0\r\n"},
      {"Index -1 takes it out of the array",
       [](Loaded& l) { l.object("mnuRecent", 0).SetIndex(-1); },
       "            Index           =   0\r\n", ""},
      {"a rename changes the Begin line only",
       [](Loaded& l) { l.object("optStatus", 0).Rename("optState"); },
       "      Begin VB.OptionButton optStatus \r\n         Caption         =   \"Open\"",
       "      Begin VB.OptionButton optState \r\n         Caption         =   \"Open\""},
      {"a font on an intrinsic control is a group without class, sorted under F",
       [arial](Loaded& l) { l.object("lblHelp").SetFont(arial); },
       "      Caption         =   $\"frmOrders.frx\":002E\r\n",
       "      Caption         =   $\"frmOrders.frx\":002E\r\n"
       "      BeginProperty Font \r\n"
       "         Name            =   \"Arial\"\r\n"
       "         Size            =   9.75\r\n"
       "         Charset         =   0\r\n"
       "         Weight          =   700\r\n"
       "         Underline       =   0   'False\r\n"
       "         Italic          =   0   'False\r\n"
       "         Strikethrough   =   0   'False\r\n"
       "      EndProperty\r\n"},
      {"a changed font rewrites only the lines that differ",
       [](Loaded& l) {
         FontValues courier{"Courier New", 9.75, 0, 400, false, true, false};
         l.object("txtNotes").SetFont(courier);
       },
       "         Weight          =   700\r\n", "         Weight          =   400\r\n"},
      {"a reference gets its new offset with its `$` and file name as written",
       [](Loaded& l) {
         auto references = l.description().CompanionReferences();
         l.description().SetReferenceOffset(*references[2].property, 0x1268C);
         l.description().SetReferenceOffset(*references[1].property, 0x0C);  // the same
       },
       "$\"frmOrders.frx\":002E", "$\"frmOrders.frx\":1268C"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Loaded orders = Orders();
    c.edit(orders);
    EXPECT_EQ(orders.file->Render(), Replaced(orders.bytes, c.from, c.to));
  }
}

// Another library's control writes its object-valued properties among its own entries, in an
// order we cannot know: a new group goes after them, with StdFont's class identifier.
TEST(Description, ANewFontGroupOfAnotherLibrarysControlGoesLastWithStdFontsClass) {
  Loaded orders = Orders();
  DescriptionNode& list = orders.object("lvwOrders");
  const std::string block =
      "      BeginProperty Font {0BE35203-8F91-11CE-9DE3-00AA004BB851} \r\n"
      "         Name            =   \"Tahoma\"\r\n"
      "         Size            =   8.25\r\n"
      "         Charset         =   0\r\n"
      "         Weight          =   400\r\n"
      "         Underline       =   0   'False\r\n"
      "         Italic          =   0   'False\r\n"
      "         Strikethrough   =   0   'False\r\n"
      "      EndProperty\r\n";
  EXPECT_TRUE(list.RemoveGroup("font"));
  EXPECT_FALSE(list.RemoveGroup("Font"));
  list.SetFont({"Tahoma", 8.25, 0, 400, false, false, false});
  const std::string moved =
      Replaced(Replaced(orders.bytes, block, ""), "4410\r\n      EndProperty\r\n",
               "4410\r\n      EndProperty\r\n" + block);
  EXPECT_EQ(orders.file->Render(), moved);
}

TEST(Description, ALocalisedEnumerationCommentStaysUntilItsValueChanges) {
  Loaded gbk = Load("gbk/\xE7\xAA\x97\xE4\xBD\x93/\xE4\xB8\xBB\xE7\xAA\x97\xE4\xBD\x93.frm",
                    FileKind::kForm, 936);
  DescriptionNode& root = gbk.description().Root();
  root.SetProperty("StartUpPosition", FormatEnumeration(3, "Windows Default"));
  EXPECT_FALSE(gbk.file->IsDirty());
  root.SetProperty("StartUpPosition", FormatEnumeration(2, "CenterScreen"));
  // "窗口缺省" in GBK gives way to the caller's text.
  EXPECT_EQ(gbk.file->Render(),
            Replaced(gbk.bytes, "3  '\xB4\xB0\xBF\xDA\xC8\xB1\xCA\xA1", "2  'CenterScreen"));
}

TEST(Description, TheRootRenameKeepsTheNameAttributeAndTheBeginLineTogether) {
  Loaded dsr = Load("orders/deOrders.Dsr", FileKind::kDesigner);
  dsr.file->SetName("deSales");
  std::string want = Replaced(dsr.bytes, "} deOrders \r\n", "} deSales \r\n");
  want = Replaced(want, "VB_Name = \"deOrders\"", "VB_Name = \"deSales\"");
  EXPECT_EQ(dsr.file->Render(), want);
  EXPECT_EQ(dsr.description().Root().Name(), "deSales");
  // The designer's own properties: a new one goes after the stored ones and their groups.
  dsr.description().Root().SetProperty("Alpha", "1");
  EXPECT_NE(dsr.file->Render().find("   EndProperty\r\n   Alpha           =   1\r\nEnd\r\n"),
            std::string::npos);
}

TEST(Description, MalformedDescriptionsRaiseInvalidFileFormatNamingTheLine) {
  struct Case {
    const char* what;
    std::string text;
    const char* line;
  };
  const Case cases[] = {
      {"a Begin without a name", "Begin VB.Form F \r\n   Begin VB.Label \r\n   End\r\nEnd\r\n",
       "line 3:"},
      {"a property line without =", "Begin VB.Form F \r\n   Caption \"x\"\r\nEnd\r\n", "line 3:"},
      {"End for EndProperty",
       "Begin VB.Form F \r\n   BeginProperty Font \r\n      Size = 9\r\n   End\r\nEnd\r\n",
       "line 5:"},
      {"EndProperty for End",
       "Begin VB.Form F \r\n   Begin VB.Label L \r\n   EndProperty\r\nEnd\r\n", "line 4:"},
      {"a BeginProperty without a name", "Begin VB.Form F \r\n   BeginProperty \r\nEnd\r\n",
       "line 3:"},
      {"a missing End", "Begin VB.Form F \r\n   Begin VB.Label L \r\n   End\r\n",
       "line 5: the form description ends before its End"},
      {"a root that is a group", "BeginProperty Font \r\nEndProperty\r\n", ""},
      {"a root that is a property called Begin", "Begin   =   255\r\nEnd\r\n", "line 2:"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string bytes = "VERSION 5.00\r\n" + c.text + "Attribute VB_Name = \"F\"\r\n";
    const auto e = qxtest::Caught([&] { idetest::Module(bytes, FileKind::kForm); });
    EXPECT_EQ(e.Number(), 321);
    EXPECT_NE(e.Description().find("test.bas"), std::string::npos) << e.Description();
    EXPECT_NE(e.Description().find(c.line), std::string::npos) << e.Description();
  }
  // Nesting is bounded: a form of 100 levels is read, written and walked whole; one level more,
  // or 70,000 (which once overflowed the stack), is refused at the first line too deep.
  const auto nested = [](int depth) {
    std::string text = "VERSION 5.00\r\nBegin VB.Form F \r\n";
    for (int level = 1; level < depth; ++level)
      text += "Begin VB.Frame Frame" + std::to_string(level) + " \r\n";
    for (int level = 0; level < depth; ++level)
      text += "End\r\n";
    return text + "Attribute VB_Name = \"F\"\r\n";
  };
  const std::string deepest = nested(100);
  auto deep = idetest::Module(deepest, FileKind::kForm);
  EXPECT_EQ(deep->Description()->Controls().size(), 99u);
  EXPECT_EQ(deep->Description()->Lines().size(), 201u);
  EXPECT_NE(deep->Description()->FindObject("Frame99"), nullptr);
  EXPECT_EQ(deep->Render(), deepest);
  for (const int depth : {101, 70'000}) {
    const auto e = qxtest::Caught([&] { idetest::Module(nested(depth), FileKind::kForm); });
    EXPECT_EQ(e.Number(), 321);
    EXPECT_NE(e.Description().find("line 102: objects and property groups nested more than 100"),
              std::string::npos)
        << e.Description();
  }

  // Blank lines inside are kept where they are; a property called Begin is a property.
  const std::string odd = idetest::Crlf({"VERSION 5.00", "Begin VB.Form F ", "", "   Begin = 1",
                                         "   End = 2", "End", "Attribute VB_Name = \"F\""});
  auto file = idetest::Module(odd, FileKind::kForm);
  EXPECT_EQ(file->Description()->Root().Properties().size(), 2u);
  file->Description()->Root().SetProperty("Caption", "\"c\"");
  EXPECT_EQ(file->Render(),
            Replaced(odd, "   Begin = 1\r\n", "   Begin = 1\r\n   Caption         =   \"c\"\r\n"));
}

}  // namespace
