// Properties of a form and its controls over the model: values as VB6 answers them, writes with
// VB6's refusals, and what saving writes to the form and its companion.

#include "ide/form/object_properties.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fixture_copy.h"
#include "ide/model/component_file.h"
#include "ide/model/project.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "support/errors.h"

namespace {

using automation::Variant;
using ide::form::FontAttribute;
using ide::form::ObjectProperties;
using idetest::FixtureCopy;
using idetest::ReadBytes;
using qxtest::ErrorOf;

// The fixture's companion records, in the order of its references.
const std::string kLongCaption =
    "This label holds a caption that is far too long to stay on its line, so VB6 keeps it in the "
    "binary companion file of the form instead.";

using qxtest::Le32;

// The lines of a file that differ from another's, as "-old" and "+new" (same line count).
std::vector<std::string> ChangedLines(const std::string& before, const std::string& after) {
  auto split = [](const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2) {
      lines.push_back(text.substr(start, end - start));
    }
    lines.push_back(text.substr(start));
    return lines;
  };
  const auto a = split(before);
  const auto b = split(after);
  std::vector<std::string> changes;
  if (a.size() != b.size())
    return {"line count " + std::to_string(a.size()) + " -> " + std::to_string(b.size())};
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i]) {
      changes.push_back("-" + a[i]);
      changes.push_back("+" + b[i]);
    }
  }
  return changes;
}

class ObjectPropertiesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    copy_ = std::make_unique<FixtureCopy>("props");
    Reopen();
    frm_ = ReadBytes(copy_->Path("frmProps.frm"));
    frx_ = ReadBytes(copy_->Path("frmProps.frx"));
  }
  void Reopen() {
    project_ = ide::Project::Open(copy_->Path("Props.vbp"), platform::GetCodePage(1252));
    component_ = &project_->Item("frmProps");
  }
  ObjectProperties Object(const std::string& name = {}) {
    ide::form::FormContext context = component_->Form();
    ide::form::DescriptionNode* node =
        name.empty() ? &context.description->Root() : context.description->FindObject(name);
    EXPECT_NE(node, nullptr) << name;
    return ObjectProperties(context, *node);
  }
  std::string Frm() const { return ReadBytes(copy_->Path("frmProps.frm")); }
  std::string Frx() const { return ReadBytes(copy_->Path("frmProps.frx")); }

  std::unique_ptr<FixtureCopy> copy_;
  std::unique_ptr<ide::Project> project_;
  ide::Component* component_ = nullptr;
  std::string frm_;
  std::string frx_;
};

TEST_F(ObjectPropertiesTest, ValuesHaveTheirTypesAndAbsentLinesTheirDefaults) {
  ObjectProperties form = Object();
  EXPECT_EQ(form.Get("BackColor"), Variant::Long(0xC0C0C0));
  EXPECT_EQ(form.Get("caption"), Variant("Properties"));
  EXPECT_EQ(form.Get("StartUpPosition"), Variant::Long(3));
  EXPECT_EQ(form.Get("ClientWidth"), Variant::Single(4680));
  EXPECT_EQ(form.Get("Name"), Variant("frmProps"));
  // Absent lines: the omission defaults, in their types.
  EXPECT_EQ(form.Get("Enabled"), Variant(true));
  EXPECT_EQ(form.Get("DrawWidth"), Variant::Integer(1));
  EXPECT_EQ(form.Get("Tag"), Variant(""));
  // The collection is the catalog's, in its order.
  EXPECT_EQ(form.Count(), form.Class()->Count());
  EXPECT_EQ(form.NameAt(0), "Name");
  EXPECT_EQ(form.Spelling("backcolor"), "BackColor");
  EXPECT_EQ(ErrorOf([&] { form.NameAt(form.Count()); }), 9);
  EXPECT_EQ(ErrorOf([&] { form.Get("Colour"); }), 438);

  ObjectProperties ok = Object("cmdOk");
  EXPECT_EQ(ok.Get("Default"), Variant(true));
  EXPECT_EQ(ok.Get("Width"), Variant::Single(975));
  EXPECT_EQ(ok.Get("Index"), Variant::Integer(-1));
  // Strings kept in the companion: a `$` caption and a MultiLine box's text.
  EXPECT_EQ(Object("lblLong").Get("Caption"), Variant(kLongCaption));
  EXPECT_EQ(Object("txtNotes").Get("Text"), Variant("First line\r\nSecond line"));
}

TEST_F(ObjectPropertiesTest, WritesAreCoercedOrRefusedWithVbErrors) {
  ObjectProperties form = Object();
  // What each type takes is the value rules' (PropertyValue); a refusal changes nothing.
  EXPECT_EQ(ErrorOf([&] { form.Set("DrawWidth", Variant(0)); }), 380);
  EXPECT_EQ(ErrorOf([&] { form.Set("Name", Variant("frmOther")); }), 383);
  EXPECT_EQ(ErrorOf([&] { form.Set("NoSuchThing", Variant(1)); }), 438);
  EXPECT_FALSE(component_->IsDirty());

  // Coerced as VB does (PropertyValue tests): text to a number, a colour as the file writes it.
  form.Set("DrawWidth", Variant("3"));
  form.Set("FillColor", Variant("&H000000FF&"));
  EXPECT_EQ(form.Get("DrawWidth"), Variant::Integer(3));
  EXPECT_EQ(form.Get("FillColor"), Variant::Long(0xFF));
  EXPECT_TRUE(component_->IsDirty());
  component_->Save();
  EXPECT_FALSE(component_->IsDirty());
  // Two new lines; where VB6 writes them is the description's (Description tests).
  const std::vector<std::string> expected = {"line count 77 -> 79"};
  EXPECT_EQ(ChangedLines(frm_, Frm()), expected);
  EXPECT_EQ(Frx(), frx_);

  // The MDI form's ScaleHeight is read-only.
  FixtureCopy ledger("ledger");
  auto project = ide::Project::Open(ledger.Path("Ledger.vbp"), platform::GetCodePage(1252));
  ide::form::FormContext context = project->Item("frmShell").Form();
  ObjectProperties shell(context, context.description->Root());
  EXPECT_EQ(ErrorOf([&] { shell.Set("ScaleHeight", Variant(10)); }), 383);
}

TEST_F(ObjectPropertiesTest, AnUnchangedSaveIsByteForByteAndLeavesTheCompanionAlone) {
  const auto frxStamp = platform::StampOf(copy_->Path("frmProps.frx"));
  component_->Save();
  EXPECT_EQ(Frm(), frm_);
  // A caption set and set back: the same bytes. (A line set to its default and back: the
  // Description tests and the extender's below.)
  ObjectProperties ok = Object("cmdOk");
  ok.Set("Caption", Variant("Cancel"));
  ok.Set("Caption", Variant("OK"));
  ObjectProperties label = Object("lblLong");
  label.Set("Caption", Variant(kLongCaption));
  component_->Save();
  EXPECT_EQ(Frm(), frm_);
  EXPECT_EQ(Frx(), frx_);
  EXPECT_EQ(platform::StampOf(copy_->Path("frmProps.frx")), frxStamp);
}

TEST_F(ObjectPropertiesTest, ALongCaptionGoesToTheCompanionAndComesBackWhenShort) {
  const std::string longCaption(150, 'x');
  Object("cmdOk").Set("Caption", Variant(longCaption));
  component_->Save();
  // The new record follows the label's, the last one: nothing before it moves.
  std::vector<std::string> expected = {"-      Caption         =   \"OK\"",
                                       "+      Caption         =   $\"frmProps.frx\":00CC"};
  EXPECT_EQ(ChangedLines(frm_, Frm()), expected);
  EXPECT_EQ(Frx(), frx_ + Le32(150) + longCaption);

  // The label's caption made short: it comes inline, the button's record moves up.
  Object("lblLong").Set("Caption", Variant("Short"));
  component_->Save();
  expected = {"-      Caption         =   $\"frmProps.frx\":0042",
              "+      Caption         =   \"Short\"", "-      Caption         =   \"OK\"",
              "+      Caption         =   $\"frmProps.frx\":0042"};
  EXPECT_EQ(ChangedLines(frm_, Frm()), expected);
  EXPECT_EQ(Frx(), frx_.substr(0, 0x42) + Le32(150) + longCaption);

  // Read again from disk, as another session would.
  Reopen();
  EXPECT_EQ(Object("cmdOk").Get("Caption"), Variant(longCaption));
  EXPECT_EQ(Object("lblLong").Get("Caption"), Variant("Short"));
  // Short again: the companion ends where the text box's record does.
  Object("cmdOk").Set("Caption", Variant("OK"));
  Object("lblLong").Set("Caption", Variant(kLongCaption));
  component_->Save();
  EXPECT_EQ(Frm(), frm_);
  EXPECT_EQ(Frx(), frx_);
}

TEST_F(ObjectPropertiesTest, AMultiLineTextBoxKeepsItsTextInTheCompanion) {
  ObjectProperties notes = Object("txtNotes");
  notes.Set("Text", Variant("One\r\nTwo\r\nThree"));
  EXPECT_EQ(notes.Get("Text"), Variant("One\r\nTwo\r\nThree"));
  component_->Save();
  // The text's record is shorter: the label's record, after it, moves up.
  const std::vector<std::string> expected = {"-      Caption         =   $\"frmProps.frx\":0042",
                                             "+      Caption         =   $\"frmProps.frx\":003A"};
  EXPECT_EQ(ChangedLines(frm_, Frm()), expected);
  const std::string text = "One\r\nTwo\r\nThree";
  EXPECT_EQ(Frx(), frx_.substr(0, 0x2A) + std::string(1, static_cast<char>(text.size())) + text +
                       frx_.substr(0x42));
  // Not MultiLine any more: a text without a line break is written on its line.
  notes.Set("Text", Variant("single"));
  notes.Set("MultiLine", Variant(false));
  component_->Save();
  const std::string saved = Frm();
  EXPECT_NE(saved.find("      TabIndex        =   1\r\n      Text            =   \"single\"\r\n"),
            std::string::npos);
  EXPECT_EQ(saved.find("MultiLine"), std::string::npos);
  EXPECT_EQ(Frx(), frx_.substr(0, 0x2A) + frx_.substr(0x42));
  // An empty text has no line at all.
  notes.Set("Text", Variant(""));
  component_->Save();
  EXPECT_EQ(Frm().find("\"single\""), std::string::npos);
}

TEST_F(ObjectPropertiesTest, FontsAreAmbientAndOwnGroupsComeAndGo) {
  // The form's font; a control without a group shows it; one with its own shows that.
  EXPECT_EQ(Object().Font().name, "Tahoma");
  EXPECT_EQ(Object("cmdOk").Font().name, "Tahoma");
  EXPECT_DOUBLE_EQ(Object("cmdOk").Font().size, 9.75);
  EXPECT_FALSE(Object("cmdOk").HasOwnFont());
  EXPECT_EQ(Object("lblLong").Font().name, "Arial");
  EXPECT_EQ(Object("lblLong").FontAttributeValue(FontAttribute::kBold), Variant(true));
  EXPECT_EQ(Object("cmdOk").Get("FontBold"), Variant(false));

  // A control's own group appears, with the form's font and the change.
  Object("cmdOk").Set("FontBold", Variant(true));
  EXPECT_TRUE(Object("cmdOk").HasOwnFont());
  EXPECT_EQ(Object("cmdOk").Font().name, "Tahoma");
  EXPECT_DOUBLE_EQ(Object("cmdOk").Font().size, 9.75);
  // ... and goes when the font is the form's again.
  Object("cmdOk").Set("FontBold", Variant(false));
  EXPECT_FALSE(Object("cmdOk").HasOwnFont());
  // The label made like the form: its group goes too.
  ObjectProperties label = Object("lblLong");
  label.SetFontAttribute(FontAttribute::kName, Variant("Tahoma"));
  label.SetFontAttribute(FontAttribute::kSize, Variant(9.75));
  label.SetFontAttribute(FontAttribute::kBold, Variant(false));
  EXPECT_FALSE(label.HasOwnFont());
  component_->Save();
  EXPECT_EQ(ChangedLines(frm_, Frm()), std::vector<std::string>{"line count 77 -> 68"});

  // The form's font changes: the controls that showed it keep theirs (their groups appear).
  Object().SetFontAttribute(FontAttribute::kSize, Variant(12));
  EXPECT_DOUBLE_EQ(Object().Font().size, 12);
  for (const char* name : {"lstItems", "txtNotes", "lblLong", "cmdOk"}) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(Object(name).HasOwnFont());
    EXPECT_DOUBLE_EQ(Object(name).Font().size, 9.75);
  }
}

TEST_F(ObjectPropertiesTest, ListsAndItemDataLiveInTheCompanion) {
  ObjectProperties list = Object("lstItems");
  EXPECT_EQ(list.ListCount("List"), 3);
  EXPECT_EQ(list.ListItem("List", 1), Variant("Pears"));
  EXPECT_EQ(list.ListItem("ItemData", 2), Variant::Long(30));
  EXPECT_EQ(list.ListItem("List", 5), Variant(""));
  EXPECT_EQ(list.ListItem("ItemData", 5), Variant::Long(0));
  EXPECT_EQ(ErrorOf([&] { list.Get("List"); }), 380);
  EXPECT_EQ(ErrorOf([&] { list.SetListItem("List", 3, Variant("x")); }), 381);
  EXPECT_EQ(ErrorOf([&] { list.SetListItem("ItemData", 0, Variant("x")); }), 13);

  // An item made longer: the records after it move, their references are renumbered.
  list.SetListItem("List", 1, Variant("Quinces"));
  list.SetListItem("ItemData", 1, Variant(25));
  component_->Save();
  std::vector<std::string> expected = {"-      Text            =   \"frmProps.frx\":002A",
                                       "+      Text            =   \"frmProps.frx\":002C",
                                       "-      Caption         =   $\"frmProps.frx\":0042",
                                       "+      Caption         =   $\"frmProps.frx\":0044"};
  EXPECT_EQ(ChangedLines(frm_, Frm()), expected);
  Reopen();
  list = Object("lstItems");
  EXPECT_EQ(list.ListItem("List", 1), Variant("Quinces"));
  EXPECT_EQ(list.ListItem("ItemData", 1), Variant::Long(25));
  EXPECT_EQ(Object("lblLong").Get("Caption"), Variant(kLongCaption));

  // AddItem grows ItemData with it; Clear empties both.
  list.AddItem(Variant("Figs"), 0);
  EXPECT_EQ(list.ListCount("List"), 4);
  EXPECT_EQ(list.ListItem("List", 0), Variant("Figs"));
  EXPECT_EQ(list.ListItem("ItemData", 0), Variant::Long(0));
  EXPECT_EQ(list.ListItem("ItemData", 1), Variant::Long(10));
  list.ClearList();
  EXPECT_EQ(list.ListCount("List"), 0);
  component_->Save();
  EXPECT_EQ(Frm().find("ItemData"), std::string::npos);
  Reopen();
  EXPECT_EQ(Object("txtNotes").Get("Text"), Variant("First line\r\nSecond line"));
  EXPECT_EQ(Object("lblLong").Get("Caption"), Variant(kLongCaption));
}

// A save that fails leaves both files as they were and drops the edit, so that the model holds
// what the disk holds: a full disk at each step of writing the companion (written first), of
// writing the form, of putting the companion back; and a companion record that cannot be
// delimited, which is never copied into a new companion.
TEST_F(ObjectPropertiesTest, AFailedSaveLeavesBothFilesAsTheyWereAndTheModelAsTheDiskHasIt) {
  for (int failing = 1;; ++failing) {
    Object("lstItems").SetListItem("List", 0, Variant("Apricots"));
    int step = 0;
    platform::SetWriteFaultHook(
        [&](platform::WriteStep) { return ++step == failing ? ENOSPC : 0; });
    const int32_t number = ErrorOf([&] { component_->Save(); });
    platform::SetWriteFaultHook({});
    if (step < failing) {
      EXPECT_EQ(number, 0);
      EXPECT_EQ(failing - 1, 8) << "each step of both files failed";
      break;
    }
    EXPECT_EQ(number, 61) << "step " << failing;  // disk full
    EXPECT_EQ(Frm(), frm_) << "step " << failing;
    EXPECT_EQ(Frx(), frx_) << "step " << failing;
    EXPECT_FALSE(component_->IsDirty());
    EXPECT_EQ(Object("lstItems").ListItem("List", 0), Variant("Apples")) << "step " << failing;
  }
  Reopen();
  EXPECT_EQ(Object("lstItems").ListItem("List", 0), Variant("Apricots"));
  EXPECT_EQ(Object("lblLong").Get("Caption"), Variant(kLongCaption));

  std::string broken = Frx();
  // The long caption's record now says it runs past the end of the file.
  broken[broken.find(kLongCaption) - 3] = '\x02';
  idetest::WriteBytes(copy_->Path("frmProps.frx"), broken);
  Reopen();
  const std::string frm = Frm();
  Object("lstItems").SetListItem("List", 0, Variant("Figs"));
  EXPECT_EQ(ErrorOf([&] { component_->Save(); }), 321);
  EXPECT_EQ(Frm(), frm);
  EXPECT_EQ(Frx(), broken);
  EXPECT_FALSE(component_->IsDirty());
  EXPECT_EQ(Object("lstItems").ListItem("List", 0), Variant("Apricots"));
}

TEST_F(ObjectPropertiesTest, SaveAsWritesTheCompanionBesideTheNewFile) {
  Object("cmdOk").Set("Caption", Variant(std::string(140, 'y')));
  component_->SaveAs(copy_->Path("frmCopy.frm"));
  // The old pair is as it was; the new one names its own companion.
  EXPECT_EQ(Frm(), frm_);
  EXPECT_EQ(Frx(), frx_);
  const std::string copy = ReadBytes(copy_->Path("frmCopy.frm"));
  EXPECT_EQ(copy.find("frmProps.frx"), std::string::npos);
  EXPECT_NE(copy.find("      Caption         =   $\"frmCopy.frx\":0042\r\n"), std::string::npos);
  EXPECT_NE(copy.find("      Caption         =   $\"frmCopy.frx\":00CC\r\n"), std::string::npos);
  EXPECT_EQ(ReadBytes(copy_->Path("frmCopy.frx")), frx_ + Le32(140) + std::string(140, 'y'));
  // Later saves go to the new pair.
  Object("lstItems").SetListItem("List", 0, Variant("Apricots"));
  component_->Save();
  EXPECT_EQ(Frx(), frx_);
  EXPECT_EQ(Object("lblLong").Get("Caption"), Variant(kLongCaption));
  EXPECT_EQ(Object("lstItems").ListItem("List", 0), Variant("Apricots"));
  EXPECT_NE(ReadBytes(copy_->Path("frmCopy.frx")).find("Apricots"), std::string::npos);
}

TEST_F(ObjectPropertiesTest, AMissingCompanionIsReportedWhenARecordIsRead) {
  std::filesystem::remove(copy_->Path("frmProps.frx"));
  Reopen();
  EXPECT_EQ(Object("cmdOk").Get("Caption"), Variant("OK"));
  EXPECT_EQ(ErrorOf([&] { Object("lblLong").Get("Caption"); }), 53);
  // An edit that needs no record still saves, in its line, quoted as VB6 quotes.
  Object("cmdOk").Set("Caption", Variant("&Close \"now\""));
  component_->Save();
  const std::vector<std::string> expected = {"-      Caption         =   \"OK\"",
                                             "+      Caption         =   \"&Close \"\"now\"\"\""};
  EXPECT_EQ(ChangedLines(frm_, Frm()), expected);
}

// A form file parsed on its own (no companion), for the objects of other libraries on it.
struct ParsedForm {
  explicit ParsedForm(std::string text)
      : bytes(std::move(text)),
        file(ide::ComponentFile::Parse(bytes, ide::FileKind::kForm, platform::GetCodePage(1252),
                                       "frmOther.frm")),
        context{file->Description(), &platform::GetCodePage(1252), nullptr} {}
  ObjectProperties Object(const char* name, int32_t index = -1) {
    ide::form::DescriptionNode* node = context.description->FindObject(name, index);
    EXPECT_NE(node, nullptr) << name;
    return ObjectProperties(context, *node);
  }

  std::string bytes;
  std::unique_ptr<ide::ComponentFile> file;
  ide::form::FormContext context;
};

TEST(ObjectPropertiesOfOtherLibraries, StoredValuesAnswerAsWritten) {
  ParsedForm form(ReadBytes(std::string(QX_FIXTURES) + "/ide/orders/frmOrders.frm"));
  ObjectProperties view = form.Object("lvwOrders");
  EXPECT_EQ(view.Class(), nullptr);
  // Name first, then what the file stores, in its order (the font and column groups included).
  EXPECT_EQ(view.NameAt(0), "Name");
  EXPECT_EQ(view.NameAt(1), "Height");
  EXPECT_EQ(view.NameAt(18), "ColumnHeader(2)");
  // Then the extender's properties that the file does not store, in the extender's order.
  EXPECT_EQ(view.Count(), 19 + 9);
  EXPECT_EQ(view.NameAt(19), "CausesValidation");
  EXPECT_EQ(view.NameAt(27), "WhatsThisHelpID");
  EXPECT_EQ(ErrorOf([&] { view.NameAt(28); }), 9);
  EXPECT_EQ(view.Get("Name"), Variant("lvwOrders"));
  EXPECT_EQ(view.Get("view"), Variant::Long(3));
  EXPECT_EQ(view.Get("FullRowSelect"), Variant(true));  // its line says 'True
  EXPECT_EQ(view.Get("ForeColor"), Variant::Long(-2147483640));
  EXPECT_EQ(view.Get("Index"), Variant::Integer(-1));
  EXPECT_TRUE(view.Has("Index"));
  EXPECT_EQ(view.Spelling("fullrowselect"), "FullRowSelect");
  EXPECT_EQ(ErrorOf([&] { view.Get("Sorted"); }), 438);
  EXPECT_EQ(ErrorOf([&] { view.Set("Name", Variant("lvwOther")); }), 383);
  EXPECT_EQ(ErrorOf([&] { view.Set("View", Variant("report")); }), 13);
  // A stored line takes a value of its kind, where it stands.
  view.Set("View", Variant(1));
  EXPECT_EQ(view.Get("View"), Variant::Long(1));
  EXPECT_NE(
      form.file->Render().find("      _ExtentY        =   4471\r\n      View            =   1\r\n"),
      std::string::npos);

  // Menus are VB's own: a caption and an unquoted shortcut.
  ObjectProperties menu = form.Object("mnuOrderNew");
  EXPECT_EQ(menu.Get("Caption"), Variant("&New"));
  EXPECT_EQ(menu.Get("Shortcut"), Variant("^N"));
  EXPECT_EQ(menu.Get("Checked"), Variant(false));
  EXPECT_EQ(form.Object("mnuRecent", 0).Get("Index"), Variant::Integer(0));
}

// The extender's properties of another library's control: typed, defaulted, and written as VB's
// own controls' are, among the extender lines before the control's own.
TEST(ObjectPropertiesOfOtherLibraries, TheExtendersPropertiesAreTypedAndDefaulted) {
  ParsedForm form(ReadBytes(std::string(QX_FIXTURES) + "/ide/orders/frmOrders.frm"));
  ObjectProperties view = form.Object("lvwOrders");
  EXPECT_EQ(view.Get("Visible"), Variant(true));
  EXPECT_EQ(view.Get("tag"), Variant(""));
  EXPECT_EQ(view.Get("TabIndex"), Variant::Integer(2));
  EXPECT_EQ(view.Get("Left"), Variant::Single(120));
  EXPECT_EQ(view.Get("DragMode"), Variant::Long(0));
  EXPECT_EQ(view.Get("DragIcon").ToObject(), nullptr);
  EXPECT_TRUE(view.Has("WhatsThisHelpID"));
  EXPECT_EQ(view.Spelling("tooltiptext"), "ToolTipText");
  ASSERT_NE(view.Find("CausesValidation"), nullptr);
  EXPECT_EQ(view.Find("CausesValidation")->type, ide::form::ValueType::kBoolean);

  EXPECT_EQ(ErrorOf([&] { view.Set("DragMode", Variant(5)); }), 380);
  EXPECT_EQ(ErrorOf([&] { view.Set("TabIndex", Variant(-1)); }), 380);  // the extender's own row
  EXPECT_EQ(ErrorOf([&] { view.Set("Visible", Variant("seldom")); }), 13);
  view.Set("Visible", Variant(false));
  view.Set("Tag", Variant("orders"));
  view.Set("Left", Variant(240));
  // Written in VB's own forms; where they go is the description's (Description tests).
  EXPECT_NE(form.file->Render().find("      Visible         =   0   'False\r\n"),
            std::string::npos);
  EXPECT_EQ(view.Get("Visible"), Variant(false));
  EXPECT_EQ(view.Count(), 28);  // two more lines stored, two fewer of the extender left
  // Back at their defaults the lines go again: the file is as it was.
  view.Set("Visible", Variant(true));
  view.Set("Tag", Variant(""));
  view.Set("Left", Variant(120));
  EXPECT_EQ(form.file->Render(), form.bytes);
}

// Another library's lines are typed by their comments: 'True and 'False make a Boolean that
// keeps VB6's form when written; an enumeration's description stays with its value.
TEST(ObjectPropertiesOfOtherLibraries, CommentsKeepTheirFormWhenWritten) {
  ParsedForm form(ReadBytes(std::string(QX_FIXTURES) + "/ide/components/frmBars.frm"));
  ObjectProperties slider = form.Object("sldA");
  EXPECT_EQ(slider.Get("Enabled"), Variant(false));
  EXPECT_EQ(slider.Get("TickStyle"), Variant::Long(1));
  EXPECT_EQ(ErrorOf([&] { slider.Set("Enabled", Variant("maybe")); }), 13);
  slider.Set("Enabled", Variant("True"));
  EXPECT_EQ(slider.Get("Enabled"), Variant(true));
  slider.Set("TickStyle", Variant(1));  // the same value: the line stays as written
  slider.Set("Max", Variant(2.5));
  EXPECT_NE(form.file->Render().find("      Enabled         =   -1  'True\r\n"
                                     "      TickStyle       =   1  'sldTopLeft\r\n"
                                     "      Max             =   2.5\r\n"),
            std::string::npos);
  // A value another slider of the form writes takes its description; one none writes, none.
  slider.Set("TickStyle", Variant(2));
  EXPECT_NE(form.file->Render().find("      TickStyle       =   2  'sldBoth\r\n"),
            std::string::npos);
  slider.Set("TickStyle", Variant(3));
  EXPECT_NE(form.file->Render().find("      TickStyle       =   3\r\n"), std::string::npos);
  EXPECT_EQ(slider.Get("TickStyle"), Variant::Long(3));
  slider.Set("Enabled", Variant(false));
  EXPECT_NE(form.file->Render().find("      Enabled         =   0   'False\r\n"),
            std::string::npos);
}

}  // namespace
