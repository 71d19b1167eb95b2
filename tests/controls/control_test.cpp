// Controls and Control over stand-ins for the IDE's designer, controls and live controls: the
// gated reads, the declared types, control names with their re-keying, and List.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/type_library.h"
#include "controls/control_properties.h"
#include "controls/control_types.h"
#include "controls/controls.h"
#include "controls/enumerations.h"
#include "support/driver_env.h"
#include "support/errors.h"
#include "tests/controls/fakes.h"

namespace qxtest {
namespace {

using automation::Dispatch;
using namespace controls;

std::vector<std::string> PropertyNames() {
  std::vector<std::string> names;
  for (const ControlProperty& row : ControlProperties())
    names.emplace_back(row.name);
  return names;
}

class ControlsTest : public ::testing::Test {
 protected:
  // Adds an IDE control to the designer (before Build).
  FakeControl& Place(const std::string& progId, const std::string& name, int16_t index = -1) {
    placed_.push_back(std::make_unique<FakeControl>(progId, name, index, PropertyNames()));
    return *placed_.back();
  }

  // The Controls of a component whose designer holds the placed controls.
  Dispatch Build() {
    auto vbControls = std::make_shared<Fake>("VBControls");
    vbControls
        ->Member("Count", MemberKind::Get, 0,
                 [this](Fake&, Args&) { return Variant::Long(int32_t(placed_.size())); })
        .Member("Item", MemberKind::Method, 1, [this](Fake&, Args& args) {
          return Variant(ObjectRef(placed_.at(args.at(0).ToLong() - 1)->vbControl));
        });
    auto designer = std::make_shared<Fake>("VBForm");
    designer->Property("VBControls", Variant(ObjectRef(vbControls)));
    auto component = std::make_shared<Fake>("VBComponent");
    component->Property("Designer", Variant(ObjectRef(designer)));
    return Initialized(component);
  }

  static Dispatch Initialized(ObjectRef component) {
    auto controls = std::make_shared<Controls>();
    controls->Initialize(component);
    return Dispatch(controls);
  }

  static Dispatch Item(const Dispatch& controls, const Variant& index) {
    return Dispatch(controls.Call("Item", index).ToObject());
  }

  DriverEnv env_;
  std::vector<std::unique_ptr<FakeControl>> placed_;
};

TEST_F(ControlsTest, TheControlTypeComesFromTheClassIdentifierInAnyLetterCase) {
  const struct {
    const char* progId;
    ControlType type;
  } cases[] = {
      {"VB.TextBox", kTextBox},
      {"vb.TEXTBOX", kTextBox},
      {"VB.CheckBox", kCheckBox},
      {"VB.VScrollBar", kVScrollBar},
      {"VB.Timer", kTimer},
      {"VB.TextBoxes", kCustomControl},
      {"MSComctlLib.ListViewCtrl.2", kCustomControl},
      {"", kCustomControl},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ControlTypeOf(c.progId), c.type) << c.progId;
  EXPECT_EQ(ControlTypeTable().size(), 22u);
}

TEST_F(ControlsTest, ReadsReachTheLiveControlOnlyOnTheTypesThatHaveTheProperty) {
  const struct {
    const char* progId;
    const char* property;
    bool reads;
  } cases[] = {
      // Which types have which property is the table's (PropertyCatalog compares it with the
      // IDE's); these show the gate both ways.
      {"VB.TextBox", "Caption", false}, {"VB.Label", "Caption", true},
      {"VB.Timer", "Visible", false},   {"VB.Data", "FontBold", true},
      {"VB.TextBox", "Object", false},
  };
  for (const auto& c : cases) {
    Place(c.progId, "C" + std::to_string(placed_.size()));
  }
  const Dispatch controls = Build();
  for (size_t i = 0; i < std::size(cases); ++i) {
    // The member table of the control's type hides what the type lacks, so that a reader of
    // every property skips it; reading it anyway is still refused.
    const automation::Member* member =
        Item(controls, int32_t(i))
            .object()
            ->Class()
            .defaultInterface.Find(cases[i].property, automation::MemberKind::Get);
    ASSERT_NE(member, nullptr);
    EXPECT_EQ(member->hidden, !cases[i].reads) << cases[i].progId << " " << cases[i].property;
    const auto e = Caught([&] { Item(controls, int32_t(i)).Get(cases[i].property); });
    if (cases[i].reads) {
      EXPECT_EQ(e.Number(), 0) << cases[i].progId << " " << cases[i].property;
    } else {
      EXPECT_EQ(e.Number(), -32749) << cases[i].progId << " " << cases[i].property;
      EXPECT_EQ(e.Description(), "Undefined property.");
    }
  }
}

TEST_F(ControlsTest, ACustomControlReadsOnlyNameTagObjectAndAZeroFillColor) {
  FakeControl& custom = Place("MSComctlLib.ListViewCtrl.2", "lvw");
  custom.live->values["Tag"] = "mine";
  const Dispatch control = Item(Build(), 0);
  std::vector<std::string> readable;
  for (const ControlProperty& row : ControlProperties()) {
    if (ErrorOf([&] { control.Get(row.name); }) == 0) readable.emplace_back(row.name);
  }
  EXPECT_EQ(readable, (std::vector<std::string>{"Name", "FillColor", "Object", "Tag"}));
  EXPECT_EQ(control.Get("Object").ToObject(), ObjectRef(custom.live));
  EXPECT_EQ(control.Get("Tag").ToString(), "mine");
  EXPECT_EQ(control.Get("FillColor").Type(), automation::VarType::Long);
  EXPECT_EQ(control.Get("FillColor").ToLong(), 0);
}

TEST_F(ControlsTest, ValuesTravelWithTheirDeclaredTypesAndWritesAreNotGated) {
  FakeControl& box = Place("VB.TextBox", "Text1");
  box.live->values["Height"] = "120";
  box.live->values["MaxLength"] = Variant::Integer(7);
  box.live->values["Locked"] = Variant::Long(1);
  const Dispatch control = Item(Build(), "Text1");
  EXPECT_EQ(control.Get("Height").Type(), automation::VarType::Single);
  EXPECT_EQ(control.Get("Height").ToSingle(), 120.0f);
  EXPECT_EQ(control.Get("MaxLength").Type(), automation::VarType::Long);
  EXPECT_EQ(control.Get("Locked").Type(), automation::VarType::Boolean);
  EXPECT_TRUE(control.Get("Locked").ToBool());

  control.Put("TabIndex", Variant::Long(3));
  EXPECT_EQ(box.live->values["TabIndex"].Type(), automation::VarType::Integer);
  control.Put("Alignment", Variant::Integer(2));
  EXPECT_EQ(box.live->values["Alignment"].Type(), automation::VarType::Long);
  // Caption cannot be read on a text box, but a write goes to the control as it is.
  control.Put("Caption", "given");
  EXPECT_EQ(box.live->values["Caption"].ToString(), "given");
  // A value that does not convert fails with the conversion's error, before the control.
  EXPECT_EQ(ErrorOf([&] { control.Put("Height", "tall"); }), automation::err::kTypeMismatch);
}

TEST_F(ControlsTest, NamesCarryTheArrayIndexAndRenamesReKeyTheCollection) {
  FakeControl& member = Place("VB.TextBox", "Text1", 3);
  FakeControl& label = Place("VB.Label", "Label1");
  const Dispatch controls = Build();
  EXPECT_EQ(controls.Get("Count").ToLong(), 2);
  EXPECT_EQ(Item(controls, 0).Get("Name").ToString(), "Text1(3)");
  EXPECT_EQ(Item(controls, "Label1").Get("Name").ToString(), "Label1");

  // An array member written with its bare name leaves the array.
  Item(controls, "Text1(3)").Put("Name", "Text1");
  EXPECT_EQ(member.Ide("Name").ToString(), "Text1");
  EXPECT_EQ(member.Ide("Index").Type(), automation::VarType::Integer);
  EXPECT_EQ(member.Ide("Index").ToLong(), -1);
  EXPECT_EQ(Item(controls, "Text1").Get("Name").ToString(), "Text1");
  EXPECT_NE(ErrorOf([&] { Item(controls, "Text1(3)"); }), 0);

  // A control joins an array under its new name; the key is the name as written.
  Item(controls, "Label1").Put("Name", "lblTitle(05)");
  EXPECT_EQ(label.Ide("Name").ToString(), "lblTitle");
  EXPECT_EQ(label.Ide("Index").ToLong(), 5);
  EXPECT_EQ(Item(controls, "lblTitle(05)").Get("Name").ToString(), "lblTitle(5)");
  EXPECT_EQ(label.items.at("Name")->writes, (std::vector<std::string>{"Value"}));
}

TEST_F(ControlsTest, MalformedNamesAreRefusedBeforeAnythingChanges) {
  FakeControl& box = Place("VB.TextBox", "Text1", 3);
  const Dispatch controls = Build();
  for (const char* bad : {"Text1(4", "Text1(4)x", "Text1)(4", "Text1(4))"}) {
    const auto e = Caught([&] { Item(controls, "Text1(3)").Put("Name", bad); });
    EXPECT_EQ(e.Number(), -32767) << bad;
    EXPECT_EQ(e.Description().rfind("Invalid control name syntax.", 0), 0u) << e.Description();
  }
  EXPECT_TRUE(box.items.at("Name")->writes.empty());
  EXPECT_TRUE(box.items.at("Index")->writes.empty());
  EXPECT_EQ(Item(controls, "Text1(3)").Get("Name").ToString(), "Text1(3)");

  // An index that is not a number fails in its conversion, after the name was written; the
  // key stays.
  for (const char* bad : {"Text2()", "Text2(x)"}) {
    EXPECT_EQ(ErrorOf([&] { Item(controls, 0).Put("Name", bad); }), automation::err::kTypeMismatch)
        << bad;
  }
  EXPECT_EQ(box.Ide("Name").ToString(), "Text2");
  EXPECT_EQ(box.Ide("Index").ToLong(), 3);
  EXPECT_EQ(Item(controls, "Text1(3)").Get("Name").ToString(), "Text2(3)");
}

TEST_F(ControlsTest, ListReadsAndWritesItemsJoinedByCrLf) {
  FakeControl& list = Place("VB.ListBox", "List1");
  Place("VB.TextBox", "Text1");
  const Dispatch controls = Build();
  const Dispatch control = Item(controls, "List1");
  EXPECT_EQ(control.Get("List").ToString(), "");

  *list.listItems = {"one", "two"};
  EXPECT_EQ(control.Get("List").ToString(), "one\r\ntwo");

  const struct {
    const char* written;
    std::vector<std::string> items;
  } writes[] = {
      {"", {}},
      {"alpha", {"alpha"}},
      {"a\r\nb", {"a", "b"}},
      {"a\r\n", {"a", ""}},
      {"a\nb\r\n\r\nc", {"a\nb", "", "c"}},
  };
  for (const auto& w : writes) {
    *list.listItems = {"old"};
    control.Put("List", w.written);
    EXPECT_EQ(*list.listItems, w.items) << w.written;
  }
  EXPECT_EQ(ErrorOf([&] { Item(controls, "Text1").Get("List"); }), -32749);
}

TEST_F(ControlsTest, AComponentWithoutADesignerHasNoControls) {
  auto component = std::make_shared<Fake>("VBComponent");
  component->Member("Designer", MemberKind::Get, 0, [](Fake&, Args&) -> Variant {
    automation::Raise(automation::err::kNoSuchMember);
  });
  EXPECT_EQ(Initialized(component).Get("Count").ToLong(), 0);
  auto plain = std::make_shared<Fake>("VBComponent");
  plain->Property("Designer", Variant(ObjectRef()));
  EXPECT_EQ(Initialized(plain).Get("Count").ToLong(), 0);
}

TEST_F(ControlsTest, TearDownReleasesTheControls) {
  FakeControl& box = Place("VB.TextBox", "Text1");
  const Dispatch controls = Build();
  const Dispatch control = Item(controls, 0);
  const long before = box.live.use_count();
  controls.Call("TearDown");
  EXPECT_LT(box.live.use_count(), before);
  EXPECT_EQ(ErrorOf([&] { control.Get("Text"); }), automation::err::kObjectNotSet);
  EXPECT_NE(ErrorOf([&] { controls.Get("Count"); }), 0);
}

TEST_F(ControlsTest, TheEnumerationsArePublishedInOrderAndDeclareTheProperties) {
  const auto& published = automation::PublishedEnumerations(kTypeLibrary);
  ASSERT_EQ(published.size(), 36u);
  EXPECT_EQ(published.front().name, "AlignConstants");
  EXPECT_EQ(published[10].name, "ControlTypeConstants");
  EXPECT_EQ(published[10].values.back(), (std::pair<std::string, int32_t>{"vbCustomControl", 21}));
  EXPECT_EQ(published.back().name, "WorkspaceTypeConstants");

  // Every enumeration a control property is declared with is one of them.
  const automation::ClassInfo& info = std::make_shared<Controls>()->Class();
  EXPECT_EQ(info.defaultInterface.Find("#-4", MemberKind::Method)->name, "NewEnum");
  Place("VB.TextBox", "Text1");
  const ObjectRef control = Build().Call("Item", 0).ToObject();
  size_t declared = 0;
  for (const automation::Member& member : control->Class().defaultInterface.members) {
    if (member.typeName.empty() || member.typeName == "OLE_COLOR") continue;
    ++declared;
    bool found = false;
    for (const automation::Enumeration& e : published)
      found = found || e.name == member.typeName;
    EXPECT_TRUE(found) << member.name << " " << member.typeName;
  }
  EXPECT_GT(declared, 50u);
}

}  // namespace
}  // namespace qxtest
