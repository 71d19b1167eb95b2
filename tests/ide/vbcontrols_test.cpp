// A form's designer through the IDE's objects: VBForm, VBControls, VBControl and the live
// controls, over a fixture form with a container, a control array, a list box whose items are
// in the companion, a control of another library, a file list box and a menu with a submenu.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "fixture_copy.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/vbproject.h"
#include "vbide_support.h"

namespace {

using automation::Args;
using automation::Dispatch;
using automation::MemberKind;
using automation::Variant;
using idetest::FixtureCopy;
using idetest::ReadBytes;
using vbidetest::ErrorOf;

std::multiset<std::string> LinesOf(const std::string& bytes) {
  std::multiset<std::string> lines;
  std::istringstream in(bytes);
  for (std::string line; std::getline(in, line);)
    lines.insert(line);
  return lines;
}

// The lines of one version of a file that the other does not have (each line as often as it
// is missing): what a save removed, or what it added.
std::multiset<std::string> Missing(const std::string& from, const std::string& in) {
  std::multiset<std::string> missing = LinesOf(from);
  for (const std::string& line : LinesOf(in)) {
    auto it = missing.find(line);
    if (it != missing.end()) missing.erase(it);
  }
  return missing;
}

class VbControls : public vbidetest::IdeOnCopy {
 protected:
  void SetUp() override {
    Open("controls", "Controls.vbp");
    FindForm();
  }
  void Start() {
    Restart();
    FindForm();
  }
  void FindForm() {
    form_ = Component("frmControls");
    controls_ = Dispatch(Dispatch(form_.Get("Designer").ToObject()).Get("VBControls").ToObject());
  }

  Dispatch Control(const Variant& index, const Variant& controlIndex = Variant()) const {
    return Dispatch(controls_.Call("Item", index, controlIndex).ToObject());
  }
  Dispatch Live(const Variant& index, const Variant& controlIndex = Variant()) const {
    return Dispatch(Control(index, controlIndex).Get("ControlObject").ToObject());
  }
  static Dispatch Property(const Dispatch& control, const char* name) {
    return Dispatch(Dispatch(control.Get("Properties").ToObject()).Call("Item", name).ToObject());
  }
  // The driver's control name: the name, with the index in parentheses for array members.
  static std::string NameOf(const Dispatch& control) {
    const int32_t index = Property(control, "Index").Get("Value").ToLong();
    std::string name = Property(control, "Name").Get("Value").ToString();
    if (index != -1) name += "(" + std::to_string(index) + ")";
    return name;
  }
  static void Rename(const Dispatch& control, const Variant& name) {
    Property(control, "Name").Put("Value", name);
  }
  static void Reindex(const Dispatch& control, int32_t index) {
    Property(control, "Index").Put("Value", Variant::Long(index));
  }
  std::string FormBytes() const { return ReadBytes(Path("frmControls.frm")); }
  void Save() const { form_.Call("SaveAs", Path("frmControls.frm")); }

  Dispatch form_{nullptr};
  Dispatch controls_{nullptr};
};

TEST_F(VbControls, EveryControlInFileOrderByPositionNameOrArrayIndex) {
  const std::vector<std::string> expected = {"fraOuter",   "txtInner", "Option1(0)",  "Option1(1)",
                                             "Option1(2)", "lstItems", "barProgress", "lblNote",
                                             "filPick",    "mnuFile",  "mnuFileOpen"};
  ASSERT_EQ(controls_.Get("Count").ToLong(), static_cast<int32_t>(expected.size()));
  for (int32_t i = 1; i <= static_cast<int32_t>(expected.size()); ++i) {
    EXPECT_EQ(NameOf(Control(i)), expected[i - 1]);
  }
  // One object per control however it is reached.
  EXPECT_EQ(Control("TXTINNER").object(), Control(2).object());
  EXPECT_EQ(Control("Option1", 1).object(), Control(4).object());
  EXPECT_EQ(Control("option1(2)").object(), Control(5).object());
  EXPECT_EQ(Dispatch(form_.Get("Designer").ToObject()).object(),
            Dispatch(form_.Get("Designer").ToObject()).object());
  // Held by their users only: a control's objects go once nobody holds them (a form's controls
  // refer to each other, and kept by the IDE they would all stay for as long as it runs), and
  // the next use makes them again.
  std::weak_ptr<automation::Object> note = Control("lblNote").object();
  std::weak_ptr<automation::Object> live = Live("lblNote").object();
  EXPECT_TRUE(note.expired());
  EXPECT_TRUE(live.expired());
  EXPECT_EQ(NameOf(Control("lblNote")), "lblNote");
  EXPECT_EQ(Property(Control("fraOuter"), "Index").Get("Value").ToLong(), -1);
  EXPECT_EQ(Property(Control("Option1", 2), "Index").Get("Value").ToLong(), 2);

  EXPECT_EQ(ErrorOf([&] { Control(0); }), 9);
  EXPECT_EQ(ErrorOf([&] { Control(12); }), 9);
  EXPECT_EQ(ErrorOf([&] { Control("Option1"); }), 9);  // an array's name names several
  EXPECT_EQ(ErrorOf([&] { Control("Option1", 3); }), 9);
  EXPECT_EQ(ErrorOf([&] { Control("txtInner", 0); }), 9);
  EXPECT_EQ(ErrorOf([&] { Control("cmdNowhere"); }), 9);

  // The form's own controls and a container's.
  const Dispatch designer(form_.Get("Designer").ToObject());
  EXPECT_EQ(Dispatch(designer.Get("ContainedVBControls").ToObject()).Get("Count").ToLong(), 9);
  const Dispatch inFrame(Control("fraOuter").Get("ContainedVBControls").ToObject());
  ASSERT_EQ(inFrame.Get("Count").ToLong(), 1);
  EXPECT_EQ(inFrame.Call("Item", 1).ToObject(), Control("txtInner").object());
  EXPECT_EQ(Control("txtInner").Get("Container").ToObject(), Control("fraOuter").object());
  EXPECT_EQ(Control("fraOuter").Get("Container").ToObject(), nullptr);
  EXPECT_EQ(Control("mnuFileOpen").Get("Container").ToObject(), Control("mnuFile").object());

  // A module has no designer.
  EXPECT_EQ(Component("modMain").Get("Designer").ToObject(), nullptr);
}

TEST_F(VbControls, ProgIdClassNameAndControlType) {
  const struct {
    const char* name;
    const char* progId;
    const char* className;
    int32_t type;
  } expected[] = {
      {"fraOuter", "VB.Frame", "Frame", 3},
      {"txtInner", "VB.TextBox", "TextBox", 2},
      {"lblNote", "VB.Label", "Label", 1},
      {"barProgress", "MSComctlLib.ProgressBar", "ProgressBar", 2},
      {"mnuFile", "VB.Menu", "Menu", 3},  // it holds a submenu
      {"mnuFileOpen", "VB.Menu", "Menu", 1},
  };
  for (const auto& e : expected) {
    SCOPED_TRACE(e.name);
    const Dispatch control = Control(e.name);
    EXPECT_EQ(control.Get("ProgId").ToString(), e.progId);
    EXPECT_EQ(control.Get("ClassName").ToString(), e.className);
    EXPECT_EQ(control.Get("ControlType").ToLong(), e.type);
  }
}

TEST_F(VbControls, LiveControlsAnswerTheirTypesPropertiesWithDefaults) {
  const Dispatch text = Live("txtInner");
  EXPECT_EQ(text.Get("Text").ToString(), "inner");
  EXPECT_EQ(text.Get("Name").ToString(), "txtInner");
  EXPECT_EQ(text.Get("Index").ToLong(), -1);
  // The form's font, since the box has none of its own.
  EXPECT_EQ(text.Get("FontName").ToString(), "Tahoma");
  EXPECT_FLOAT_EQ(text.Get("FontSize").ToSingle(), 9.0f);
  EXPECT_EQ(ErrorOf([&] { text.Get("Caption"); }), 438);
  EXPECT_EQ(ErrorOf([&] { text.Put("Caption", "x"); }), 438);
  EXPECT_EQ(ErrorOf([&] { text.Get("ListCount"); }), 438);
  EXPECT_EQ(ErrorOf([&] { text.Call("AddItem", "x"); }), 438);

  EXPECT_EQ(Live("Option1", 2).Get("Index").ToLong(), 2);
  // A write goes to the model and marks the form changed (what it saves is the model's), also
  // after it was marked saved.
  form_.Put("IsDirty", false);
  const Dispatch label = Live("lblNote");
  label.Put("Caption", "Remark");
  EXPECT_EQ(label.Get("Caption").ToString(), "Remark");
  EXPECT_TRUE(form_.Get("IsDirty").ToBool());
  form_.Put("IsDirty", false);

  // A control of another library: what its file stores and the extender's properties (whose
  // rules are the model's), and nothing else.
  const Dispatch bar = Live("barProgress");
  EXPECT_EQ(bar.Get("Max").ToLong(), 50);
  EXPECT_EQ(bar.Get("TabIndex").ToLong(), 6);
  bar.Put("ToolTipText", "Progress");
  EXPECT_EQ(Property(Control("barProgress"), "ToolTipText").Get("Value").ToString(), "Progress");
  EXPECT_TRUE(form_.Get("IsDirty").ToBool());
  EXPECT_EQ(bar.Get("Name").ToString(), "barProgress");
  EXPECT_EQ(ErrorOf([&] { bar.Get("Min"); }), 438);
  EXPECT_EQ(ErrorOf([&] { bar.Call("Refresh"); }), 438);

  // The data format of a bound text box; a label without one has the general format.
  const Dispatch format(text.Get("DataFormat").ToObject());
  EXPECT_EQ(format.Get("Type").ToLong(), 1);
  EXPECT_EQ(format.Get("Format").ToString(), "0.00");
  EXPECT_EQ(format.Get("LCID").ToLong(), 1033);
  EXPECT_EQ(Dispatch(label.Get("DataFormat").ToObject()).Get("Type").ToLong(), 0);
}

// The list's own rules are the model's (ObjectPropertiesTest): the live control's members reach
// them, and what they write outlives an IDE that ends while its controls are held.
TEST_F(VbControls, TheLiveListsMembersReachTheModelAndTheFile) {
  const Dispatch list = Live("lstItems");
  ASSERT_EQ(list.Get("ListCount").ToLong(), 3);
  EXPECT_EQ(list.GetAt("List", Variant::Long(2)).ToString(), "Cherry");
  EXPECT_EQ(list.GetAt("ItemData", Variant::Long(1)).ToLong(), 20);

  list.Call("AddItem", "Date");
  list.Call("AddItem", "Apricot", Variant::Long(1));
  Args put{Variant::Long(0), Variant("Avocado")};
  list.object()->Invoke("", "List", MemberKind::Put, put);
  ASSERT_EQ(list.Get("ListCount").ToLong(), 5);
  EXPECT_EQ(list.GetAt("List", Variant::Long(1)).ToString(), "Apricot");
  Args data{Variant::Long(4), Variant::Long(-7)};
  list.object()->Invoke("", "ItemData", MemberKind::Put, data);
  EXPECT_EQ(list.GetAt("ItemData", Variant::Long(4)).ToLong(), -7);
  EXPECT_EQ(ErrorOf([&] {
              Args past{Variant::Long(5), Variant("x")};
              list.object()->Invoke("", "List", MemberKind::Put, past);
            }),
            381);  // the model's refusal comes back
  Save();
  Start();
  const Dispatch again = Live("lstItems");
  EXPECT_EQ(again.GetAt("List", Variant::Long(0)).ToString(), "Avocado");
  again.Call("Clear");
  EXPECT_EQ(again.Get("ListCount").ToLong(), 0);
}

TEST_F(VbControls, RemoveItemTakesItsItemDataAlongAndRefusesOutsideTheList) {
  const Dispatch list = Live("lstItems");  // Apple 10, Banana 20, Cherry 30
  for (int32_t outside : {3, -1}) {
    EXPECT_EQ(ErrorOf([&] { list.Call("RemoveItem", Variant::Long(outside)); }), 5) << outside;
  }
  EXPECT_FALSE(form_.Get("IsDirty").ToBool());
  list.Call("RemoveItem", Variant::Long(1));
  ASSERT_EQ(list.Get("ListCount").ToLong(), 2);
  EXPECT_EQ(list.GetAt("List", Variant::Long(1)).ToString(), "Cherry");
  EXPECT_EQ(list.GetAt("ItemData", Variant::Long(1)).ToLong(), 30);
  EXPECT_TRUE(form_.Get("IsDirty").ToBool());

  // The last item gone, the list keeps no lines.
  for (int i = 0; i < 2; ++i)
    list.Call("RemoveItem", Variant::Long(0));
  EXPECT_EQ(ErrorOf([&] { list.Call("RemoveItem", Variant::Long(0)); }), 5);
  Save();
  EXPECT_EQ(FormBytes().find("frmControls.frx"), std::string::npos);
  EXPECT_EQ(ErrorOf([&] { Live("filPick").Call("RemoveItem", Variant::Long(0)); }), 438);
}

// The collection itself is the form's too (VbideProperties).
TEST_F(VbControls, ControlPropertiesListTheWindowsProperties) {
  EXPECT_EQ(Property(Control("txtInner"), "Text").Get("Value").ToString(), "inner");
  // Font attributes are the live control's, not the window's.
  EXPECT_EQ(ErrorOf([&] { Property(Control("txtInner"), "FontBold"); }), 9);
  // Other libraries' controls: what the file stores, and their name and index.
  EXPECT_EQ(Property(Control("barProgress"), "Max").Get("Value").ToLong(), 50);
  EXPECT_EQ(Property(Control("barProgress"), "Index").Get("Value").ToLong(), -1);
  Reindex(Control("barProgress"), 3);
  EXPECT_EQ(NameOf(Control("barProgress", 3)), "barProgress(3)");
}

TEST_F(VbControls, RenamesKeepControlArraysConsistent) {
  const Dispatch one = Control("Option1", 1);
  // A fresh name: the member leaves the array and keeps its index.
  Rename(one, "Choice");
  EXPECT_EQ(NameOf(one), "Choice(1)");
  EXPECT_EQ(Control("Choice", 1).object(), one.object());
  // Back to the array's name: it joins again with its free index.
  Rename(one, "option1");
  EXPECT_EQ(NameOf(one), "Option1(1)");  // the array's spelling
  // The driver's way of taking a member out of an array: the name, then the index.
  const Dispatch two = Control("Option1", 2);
  Rename(two, "Option9");
  Reindex(two, -1);
  EXPECT_EQ(NameOf(two), "Option9");
  // Joining an array whose index it has already: the next after the highest.
  const Dispatch zero = Control("Option1", 0);
  Rename(two, "Option1");
  EXPECT_EQ(NameOf(two), "Option1(2)");
  Reindex(two, 5);
  EXPECT_EQ(NameOf(two), "Option1(5)");

  // Refused with 380, changing nothing.
  EXPECT_EQ(ErrorOf([&] { Reindex(two, 0); }), 380);          // taken
  EXPECT_EQ(ErrorOf([&] { Reindex(two, -1); }), 380);         // others share the name
  EXPECT_EQ(ErrorOf([&] { Reindex(two, 40000); }), 380);      // no such index
  EXPECT_EQ(ErrorOf([&] { Rename(zero, "lblNote"); }), 380);  // a control outside an array
  EXPECT_EQ(ErrorOf([&] { Rename(Control("txtInner"), "Option1"); }), 380);  // another type
  EXPECT_EQ(ErrorOf([&] { Rename(zero, "frmControls"); }), 380);             // the form's name
  EXPECT_EQ(ErrorOf([&] { Rename(zero, "1st"); }), 380);
  EXPECT_EQ(NameOf(zero), "Option1(0)");

  // An index makes a control an array of one.
  const Dispatch text = Control("txtInner");
  Reindex(text, 0);
  EXPECT_EQ(Control("txtInner", 0).object(), text.object());
  // A new spelling reaches every member.
  Rename(zero, "OPTION1");
  EXPECT_EQ(NameOf(Control("Option1", 5)), "OPTION1(5)");

  // The Begin lines and Index lines changed, nothing else.
  const std::string before = FormBytes();
  Save();
  EXPECT_EQ(Missing(before, FormBytes()),
            (std::multiset<std::string>{
                "   Begin VB.OptionButton Option1 \r", "   Begin VB.OptionButton Option1 \r",
                "   Begin VB.OptionButton Option1 \r", "      Index           =   2\r"}));
  EXPECT_EQ(Missing(FormBytes(), before),
            (std::multiset<std::string>{
                "         Index           =   0\r",  // txtInner's
                "   Begin VB.OptionButton OPTION1 \r", "   Begin VB.OptionButton OPTION1 \r",
                "   Begin VB.OptionButton OPTION1 \r", "      Index           =   5\r"}));
}

TEST_F(VbControls, FontAttributesOfTheLiveControlWriteItsOwnFont) {
  const Dispatch text = Live("txtInner");
  text.Put("FontBold", true);
  EXPECT_TRUE(text.Get("FontBold").ToBool());
  EXPECT_EQ(text.Get("FontName").ToString(), "Tahoma");  // the rest as the form's
  // The font object shows the same font.
  const Dispatch font(text.Get("Font").ToObject());
  EXPECT_TRUE(font.Get("Bold").ToBool());
  EXPECT_EQ(font.Get("Name").ToString(), "Tahoma");

  // Types without a font have no font attributes.
  EXPECT_EQ(ErrorOf([&] { Live("mnuFile").Get("FontName"); }), 438);
}

TEST_F(VbControls, ControlsAreFoundAgainWhenTheFileIsReadAgain) {
  const Dispatch list = Control("lstItems");
  const Dispatch one = Control("Option1", 1);
  // Another program changes the file: the caption of Option1(1) and lstItems goes away.
  std::string bytes = FormBytes();
  bytes.replace(bytes.find("\"One\""), 5, "\"Eins\"");
  const std::size_t begin = bytes.find("   Begin VB.ListBox lstItems");
  const std::size_t end = bytes.find("   End\r\n", begin) + 8;
  bytes.erase(begin, end - begin);
  idetest::WriteBytes(Path("frmControls.frm"), bytes);
  std::filesystem::last_write_time(
      Path("frmControls.frm"),
      std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5));

  EXPECT_EQ(Dispatch(one.Get("ControlObject").ToObject()).Get("Caption").ToString(), "Eins");
  EXPECT_EQ(Control("Option1", 1).object(), one.object());
  EXPECT_EQ(ErrorOf([&] { list.Get("ProgId"); }), 91);
  EXPECT_EQ(controls_.Get("Count").ToLong(), 10);
}

TEST_F(VbControls, EveryFormLikeComponentHasADesigner) {
  auto copy = std::make_unique<FixtureCopy>("ledger");
  auto ide = ide::Ide::Start(copy->Path("Ledger.vbp"));
  const Dispatch components(Dispatch(ide->VBProject()).Get("VBComponents").ToObject());
  auto controls = [&](const char* component) {
    const Dispatch designer(
        Dispatch(components.Call("Item", component).ToObject()).Get("Designer").ToObject());
    return Dispatch(designer.Get("VBControls").ToObject());
  };
  EXPECT_EQ(controls("frmMain").Get("Count").ToLong(), 5);
  EXPECT_EQ(Dispatch(controls("frmMain").Call("Item", 1).ToObject()).Get("ProgId").ToString(),
            "MSComctlLib.ListView");
  EXPECT_EQ(controls("frmShell").Get("Count").ToLong(), 0);
  EXPECT_EQ(
      Dispatch(controls("ctlGauge").Call("Item", "shpBar").ToObject()).Get("ClassName").ToString(),
      "Shape");
  EXPECT_EQ(controls("ppgGauge").Get("Count").ToLong(), 1);
  EXPECT_EQ(controls("docHome").Get("Count").ToLong(), 0);
  // Classes have none.
  EXPECT_EQ(Dispatch(components.Call("Item", "CAccount").ToObject()).Get("Designer").ToObject(),
            nullptr);
}

}  // namespace
