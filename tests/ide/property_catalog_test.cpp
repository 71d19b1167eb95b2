#include "ide/form/property_catalog.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <set>
#include <string>

#include "automation/casefold.h"
#include "automation/variant.h"
#include "components/declared_types.h"
#include "controls/control_properties.h"
#include "controls/control_types.h"
#include "ide/form/property_value.h"

namespace {

using namespace ide::form;

const ClassInfo& Class(std::string_view id) {
  const ClassInfo* c = FindClass(id);
  EXPECT_NE(c, nullptr) << id;
  static const ClassInfo kNone{};
  return c ? *c : kNone;
}

const PropertyInfo& Prop(std::string_view cls, std::string_view name) {
  const PropertyInfo* p = Class(cls).FindMember(name);
  EXPECT_NE(p, nullptr) << cls << "." << name;
  static const PropertyInfo kNone{};
  return p ? *p : kNone;
}

TEST(PropertyCatalog, FindsClassesByProgIdOrDesignerIdWithoutCase) {
  EXPECT_EQ(Class("vb.textbox").className, "TextBox");
  EXPECT_EQ(Class("VB.TEXTBOX").controlType, 18);
  EXPECT_EQ(Class("VB.Form").kind, ClassKind::kForm);
  EXPECT_EQ(Class("vb.mdiform").kind, ClassKind::kMDIForm);
  EXPECT_EQ(Class("{90290ccd-f27d-11d0-8031-00c04fb6c701}").kind, ClassKind::kDhtmlPage);
  EXPECT_EQ(Class("DHTMLPageDesigner.DHTMLPage").kind, ClassKind::kDhtmlPage);
  EXPECT_EQ(Class("connectiondesigner.userconnection").kind, ClassKind::kUserConnection);
  // Controls of other libraries and designers the catalog does not know have no entry.
  EXPECT_EQ(FindClass("MSComctlLib.ListView"), nullptr);
  EXPECT_EQ(FindClass("{C0E45035-5775-11D0-B388-00A0C9055D8E}"), nullptr);
  EXPECT_EQ(FindClass("TextBox"), nullptr);
  EXPECT_EQ(FindClass(""), nullptr);
}

TEST(PropertyCatalog, ControlsComeInControlTypeOrder) {
  const auto all = AllClasses();
  ASSERT_EQ(all.size(), 28u);
  for (int32_t type = 0; type < 21; ++type) {
    const ClassInfo& c = *all[5 + static_cast<std::size_t>(type)];
    EXPECT_EQ(c.controlType, type) << c.progId;
    EXPECT_EQ(c.kind, ClassKind::kControl);
    EXPECT_EQ(c.progId, "VB." + std::string(c.className));
  }
}

TEST(PropertyCatalog, PropertiesByNameAndPosition) {
  const ClassInfo& box = Class("VB.TextBox");
  ASSERT_GT(box.Count(), 40);
  EXPECT_EQ(box.Find("multiline")->name, "MultiLine");
  EXPECT_EQ(box.Find("MULTILINE"), box.At(box.PositionOf("MultiLine")));
  EXPECT_EQ(box.At(box.Count()), nullptr);
  EXPECT_EQ(box.At(-1), nullptr);
  EXPECT_EQ(box.Find("Caption"), nullptr);
  EXPECT_EQ(box.PositionOf("Caption"), -1);
  // The font attributes belong to the live control, not to the Properties collection.
  EXPECT_EQ(box.Find("FontBold"), nullptr);
  ASSERT_NE(box.FindMember("fontbold"), nullptr);
  EXPECT_EQ(box.FindMember("FontBold")->fontAttribute, FontAttribute::kBold);
  // The form's stored client size is in the collection though the window does not show it.
  const PropertyInfo* client = Class("VB.Form").Find("ClientHeight");
  ASSERT_NE(client, nullptr);
  EXPECT_EQ(client->visibility, Visibility::kHidden);
  EXPECT_EQ(client->saving, Saving::kAlways);
}

// What every table must satisfy: the window's order, no name twice, the collection's
// properties before the runtime-only ones, enumeration defaults that are members.
TEST(PropertyCatalog, EveryTableIsWellFormed) {
  for (const ClassInfo* c : AllClasses()) {
    SCOPED_TRACE(std::string(c->progId));
    ASSERT_GT(c->Count(), 1);
    EXPECT_EQ(c->At(0)->name, "Name");
    std::set<std::string> seen;
    bool runtime = false;
    for (const PropertyInfo& p : c->properties) {
      EXPECT_TRUE(seen.insert(automation::LowerAscii(p.name)).second) << p.name;
      if (p.visibility == Visibility::kRuntime) runtime = true;
      EXPECT_EQ(p.visibility == Visibility::kRuntime, runtime) << p.name << " after runtime ones";
      if (p.type == ValueType::kEnumeration) {
        ASSERT_NE(p.enumeration, nullptr) << p.name;
        EXPECT_NE(p.enumeration->Find(static_cast<int32_t>(p.omission.number)), nullptr) << p.name;
        EXPECT_EQ(FindEnumeration(p.enumeration->name), p.enumeration);
      }
      if (p.HasRange() && p.omission.kind == DefaultValue::Kind::kNumber) {
        EXPECT_GE(p.omission.number, p.minimum) << p.name;
        EXPECT_LE(p.omission.number, p.maximum) << p.name;
      }
    }
    if (c->order != PropertyOrder::kAlphabetical) continue;
    for (int32_t i = 2; i < c->Count(); ++i) {
      EXPECT_LT(automation::LowerAscii(c->At(i - 1)->name), automation::LowerAscii(c->At(i)->name))
          << "order at " << c->At(i)->name;
    }
  }
}

// Defaults confirmed by VB6's own form files, which leave out a property at its default.
TEST(PropertyCatalog, DefaultsTheFormFilesConfirm) {
  struct Row {
    std::string_view cls, name;
    double value;
  };
  const Row rows[] = {
      {"VB.Form", "BackColor", static_cast<int32_t>(0x8000000F)},
      {"VB.Form", "ForeColor", static_cast<int32_t>(0x80000012)},
      {"VB.Form", "BorderStyle", 2},
      {"VB.Form", "FillStyle", 1},
      {"VB.Form", "StartUpPosition", 0},
      {"VB.Form", "ScaleMode", 1},
      {"VB.Form", "ShowInTaskbar", -1},
      {"VB.UserControl", "BackStyle", 1},
      {"VB.UserControl", "ClipBehavior", 1},
      {"VB.Frame", "BorderStyle", 1},
      {"VB.Label", "UseMnemonic", -1},
      {"VB.Label", "BackStyle", 1},
      {"VB.TextBox", "BackColor", static_cast<int32_t>(0x80000005)},
      {"VB.TextBox", "HideSelection", -1},
      {"VB.TextBox", "BorderStyle", 1},
      {"VB.ListBox", "IntegralHeight", -1},
      {"VB.HScrollBar", "Max", 32767},
      {"VB.VScrollBar", "LargeChange", 1},
      {"VB.Shape", "BackStyle", 0},
      {"VB.Shape", "FillStyle", 1},
      {"VB.Line", "BorderColor", static_cast<int32_t>(0x80000008)},
      {"VB.CheckBox", "MaskColor", 0x00C0C0C0},
      {"VB.Timer", "Interval", 0},
      {"VB.Timer", "Enabled", -1},
      {"VB.CommandButton", "Appearance", 1},
  };
  for (const Row& row : rows) {
    const PropertyInfo& p = Prop(row.cls, row.name);
    EXPECT_EQ(p.omission.kind, DefaultValue::Kind::kNumber) << row.cls << "." << row.name;
    EXPECT_EQ(p.omission.number, row.value) << row.cls << "." << row.name;
  }
  EXPECT_EQ(Prop("VB.FileListBox", "Pattern").omission.text, "*.*");
  EXPECT_EQ(Prop("VB.Data", "Connect").omission.text, "Access");
}

TEST(PropertyCatalog, WhatVbAlwaysWritesAndWhatANewObjectGets) {
  EXPECT_EQ(Prop("VB.Form", "LinkTopic").saving, Saving::kAlways);
  EXPECT_EQ(Prop("VB.Form", "ScaleWidth").saving, Saving::kAlways);
  EXPECT_EQ(Prop("VB.Form", "Height").saving, Saving::kNever);
  EXPECT_EQ(Prop("VB.UserDocument", "Height").saving, Saving::kAlways);
  EXPECT_EQ(Prop("VB.Menu", "Caption").saving, Saving::kAlways);
  EXPECT_EQ(Prop("VB.Label", "Caption").saving, Saving::kUnlessDefault);
  EXPECT_EQ(Prop("VB.Label", "TabIndex").saving, Saving::kAlways);
  EXPECT_EQ(Prop("VB.Timer", "Left").saving, Saving::kAlways);
  EXPECT_EQ(Class("VB.Timer").Find("Width"), nullptr);
  EXPECT_EQ(Class("VB.Line").Find("Left"), nullptr);
  EXPECT_EQ(Prop("VB.Line", "X1").saving, Saving::kAlways);
  // The data control writes its database settings even at their defaults.
  EXPECT_EQ(Prop("VB.Data", "DatabaseName").saving, Saving::kAlways);
  EXPECT_EQ(Prop("VB.Data", "RecordsetType").saving, Saving::kAlways);
  EXPECT_EQ(Prop("VB.Data", "BOFAction").saving, Saving::kUnlessDefault);

  using automation::Variant;
  EXPECT_EQ(CreationValueOf(Prop("VB.Form", "StartUpPosition"), "Form1"), Variant::Long(3));
  EXPECT_EQ(CreationValueOf(Prop("VB.Form", "Caption"), "Form1"), Variant("Form1"));
  EXPECT_EQ(CreationValueOf(Prop("VB.Form", "LinkTopic"), "Form1"), Variant("Form1"));
  EXPECT_EQ(CreationValueOf(Prop("VB.MDIForm", "BackColor"), "MDIForm1"),
            Variant::Long(static_cast<int32_t>(0x8000000C)));
  EXPECT_EQ(DefaultOf(Prop("VB.Label", "Caption"), "Label1"), Variant(""));
  EXPECT_EQ(DefaultOf(Prop("VB.TextBox", "Index")), Variant::Integer(-1));
}

TEST(PropertyCatalog, FontsAndWhoHasThem) {
  EXPECT_EQ(kDefaultFont.name, "MS Sans Serif");
  EXPECT_EQ(kDefaultFont.size, 8.25);
  EXPECT_EQ(kDefaultFont.weight, 400);
  EXPECT_EQ(kDefaultFont.charset, 0);
  EXPECT_TRUE(IsBold(700));
  EXPECT_TRUE(IsBold(900));
  EXPECT_FALSE(IsBold(699));
  // The font block's own order, every attribute saved but Bold.
  const auto font = FontProperties();
  ASSERT_EQ(font.size(), 8u);
  EXPECT_EQ(font[0].name, "Name");
  EXPECT_EQ(font[0].omission.text, "MS Sans Serif");
  EXPECT_EQ(font[1].name, "Size");
  EXPECT_EQ(font[6].name, "Strikethrough");
  EXPECT_EQ(font[7].name, "Bold");
  EXPECT_EQ(font[7].saving, Saving::kNever);
  EXPECT_EQ(CoerceValue(font[3], automation::Variant(700)), automation::Variant::Integer(700));
  for (std::string_view cls : {"VB.Form", "VB.UserControl", "VB.PropertyPage", "VB.UserDocument",
                               "VB.TextBox", "VB.Data", "VB.PictureBox", "VB.Frame"}) {
    EXPECT_TRUE(Class(cls).HasFont()) << cls;
  }
  for (std::string_view cls :
       {"VB.MDIForm", "VB.Line", "VB.Shape", "VB.Image", "VB.OLE", "VB.Timer", "VB.Menu",
        "VB.HScrollBar", "DHTMLPageDesigner.DHTMLPage"}) {
    EXPECT_FALSE(Class(cls).HasFont()) << cls;
  }
}

TEST(PropertyCatalog, EnumerationDescriptionsAreWhatFormFilesShow) {
  EXPECT_EQ(Prop("VB.Form", "StartUpPosition").enumeration->Describe(3), "Windows Default");
  EXPECT_EQ(Prop("VB.Form", "MousePointer").enumeration->Describe(11), "Hourglass");
  EXPECT_EQ(Prop("VB.Form", "MousePointer").enumeration->Describe(99), "Custom");
  EXPECT_EQ(Prop("VB.Form", "BorderStyle").enumeration->Describe(0), "None");
  EXPECT_EQ(Prop("VB.Form", "BorderStyle").enumeration->Describe(3), "Fixed Dialog");
  EXPECT_EQ(Prop("VB.TextBox", "Appearance").enumeration->Describe(0), "Flat");
  EXPECT_EQ(Prop("VB.TextBox", "Alignment").enumeration->Describe(2), "Center");
  EXPECT_EQ(Prop("VB.Shape", "BorderStyle").enumeration->Describe(3), "Dot");
  EXPECT_EQ(Prop("VB.CheckBox", "Value").enumeration->Describe(1), "Checked");
  EXPECT_EQ(Prop("VB.Form", "PaletteMode").enumeration->Describe(0), "Halftone");
  EXPECT_EQ(Prop("VB.TextBox", "IMEMode").enumeration->Describe(3), "DISABLE");
  // VB6's own slip, kept: both workspace types are written as ODBC.
  EXPECT_EQ(Prop("VB.Data", "DefaultType").enumeration->Describe(2), "UseODBC");
  // Values outside the enumeration have no description; a Form has no Container palette.
  EXPECT_EQ(Prop("VB.Form", "MousePointer").enumeration->Describe(16), "");
  EXPECT_EQ(Prop("VB.Form", "PaletteMode").enumeration->Describe(3), "");
  EXPECT_EQ(Prop("VB.UserControl", "PaletteMode").enumeration->Describe(3), "Container");
  EXPECT_EQ(FindEnumeration("mousepointerconstants"), Prop("VB.Label", "MousePointer").enumeration);
  EXPECT_EQ(FindEnumeration("NoSuchConstants"), nullptr);
}

// The driver's Control reads a property on the live control only on the types whose class has
// it; both tables must name the same types and agree on the type where the catalog gives one
// type for all of them.
std::optional<components::DeclaredType> Declared(ValueType type) {
  using enum components::DeclaredType;
  switch (type) {
    case ValueType::kBoolean:
      return kBoolean;
    case ValueType::kInteger:
      return kInteger;
    case ValueType::kLong:
    case ValueType::kEnumeration:
      return kLong;
    case ValueType::kSingle:
      return kSingle;
    case ValueType::kString:
    case ValueType::kList:
      return kString;
    case ValueType::kColour:
      return kColour;
    case ValueType::kObject:
      return kObject;
    default:
      return std::nullopt;
  }
}

TEST(PropertyCatalog, TheDriversControlTableAgreesWithTheCatalog) {
  for (const controls::ControlProperty& row : controls::ControlProperties()) {
    if (row.reading == controls::Reading::kName || row.reading == controls::Reading::kSelf) {
      continue;
    }
    SCOPED_TRACE(std::string(row.name));
    std::set<std::string> inDriver, inCatalog;
    std::set<std::pair<ValueType, std::string_view>> types;
    for (int32_t type = 0; type < controls::kCustomControl; ++type) {
      if (row.readOn & (controls::TypeSet{1} << type)) {
        inDriver.insert(std::string(controls::ControlTypeTable()[type].progId));
      }
    }
    for (const ClassInfo* c : AllClasses()) {
      const PropertyInfo* p = c->kind == ClassKind::kControl ? c->FindMember(row.name) : nullptr;
      if (!p) continue;
      inCatalog.insert(automation::LowerAscii(c->progId));
      types.insert({p->type, p->enumeration ? p->enumeration->name : std::string_view()});
    }
    // Where they part today: the catalog keeps a Timer's design-time position, which the
    // driver's Control does not read, and gives MultiSelect its enumeration, which the driver
    // declares as a plain Integer.
    if (row.name == "Left" || row.name == "Top") inCatalog.erase("vb.timer");
    if (row.name == "MultiSelect") continue;
    EXPECT_EQ(inDriver, inCatalog);
    if (types.size() != 1) continue;  // Value, Style, BorderStyle: each control its own
    const auto [type, enumeration] = *types.begin();
    EXPECT_EQ(Declared(type), row.type);
    if (type == ValueType::kEnumeration) {
      EXPECT_EQ(enumeration, row.enumeration);
    }
  }
}

}  // namespace
