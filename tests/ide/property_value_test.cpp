#include "ide/form/property_value.h"

#include <gtest/gtest.h>

#include <string>

#include "automation/error.h"

namespace {

using automation::Variant;
using namespace ide::form;

const PropertyInfo& Prop(std::string_view cls, std::string_view name) {
  const ClassInfo* c = FindClass(cls);
  EXPECT_NE(c, nullptr) << cls;
  const PropertyInfo* p = c ? c->FindMember(name) : nullptr;
  EXPECT_NE(p, nullptr) << cls << "." << name;
  static const PropertyInfo kNone{};
  return p ? *p : kNone;
}

// The error number a coercion raises; 0 when it succeeds.
int32_t ErrorOf(const PropertyInfo& p, const Variant& value) {
  try {
    CoerceValue(p, value);
    return 0;
  } catch (const automation::Error& e) {
    return e.Number();
  }
}

TEST(PropertyValue, BooleansFromNumbersAndWords) {
  const PropertyInfo& visible = Prop("VB.TextBox", "Visible");
  EXPECT_EQ(CoerceValue(visible, Variant("True")), Variant(true));
  EXPECT_EQ(CoerceValue(visible, Variant(" false ")), Variant(false));
  EXPECT_EQ(CoerceValue(visible, Variant("#TRUE#")), Variant(true));
  EXPECT_EQ(CoerceValue(visible, Variant(5)), Variant(true));
  EXPECT_EQ(CoerceValue(visible, Variant("0")), Variant(false));
  EXPECT_EQ(CoerceValue(visible, Variant(0.5)), Variant(true));
  EXPECT_EQ(ErrorOf(visible, Variant("yes")), 13);
}

TEST(PropertyValue, IntegersAndLongsOverflowOrMismatchAsVbConverts) {
  const PropertyInfo& max = Prop("VB.HScrollBar", "Max");
  EXPECT_EQ(CoerceValue(max, Variant("&H8000")), Variant::Integer(-32768));
  EXPECT_EQ(CoerceValue(max, Variant(2.5)), Variant::Integer(2));
  EXPECT_EQ(CoerceValue(max, Variant(32766.5)), Variant::Integer(32766));
  EXPECT_EQ(ErrorOf(max, Variant(32767.5)), 6);
  EXPECT_EQ(ErrorOf(max, Variant("40000")), 6);
  EXPECT_EQ(ErrorOf(max, Variant("12abc")), 13);
  EXPECT_EQ(ErrorOf(max, Variant("")), 13);
  const PropertyInfo& help = Prop("VB.Form", "HelpContextID");
  EXPECT_EQ(CoerceValue(help, Variant(true)), Variant::Long(-1));
  EXPECT_EQ(ErrorOf(help, Variant(3e9)), 6);
  EXPECT_EQ(CoerceValue(Prop("VB.Form", "ScaleHeight"), Variant("1542.637")),
            Variant::Single(1542.637f));
}

TEST(PropertyValue, NumbersOutsideAPropertysRangeAreInvalidValues) {
  EXPECT_EQ(ErrorOf(Prop("VB.Form", "DrawWidth"), Variant(0)), 380);
  EXPECT_EQ(ErrorOf(Prop("VB.TextBox", "TabIndex"), Variant(-1)), 380);
  EXPECT_EQ(ErrorOf(Prop("VB.Timer", "Interval"), Variant(65536)), 380);
  EXPECT_EQ(CoerceValue(Prop("VB.Timer", "Interval"), Variant(65535)), Variant::Long(65535));
  EXPECT_EQ(CoerceValue(Prop("VB.TextBox", "Index"), Variant(-1)), Variant::Integer(-1));
  // Overflow is found before the range.
  EXPECT_EQ(ErrorOf(Prop("VB.Form", "DrawWidth"), Variant(70000)), 6);
}

TEST(PropertyValue, ColoursAsNumbersOrAsTheFileWritesThem) {
  const PropertyInfo& back = Prop("VB.Form", "BackColor");
  const Variant buttonFace = Variant::Long(static_cast<int32_t>(0x8000000F));
  EXPECT_EQ(CoerceValue(back, Variant("&H8000000F&")), buttonFace);
  EXPECT_EQ(CoerceValue(back, Variant("&H8000000F")), buttonFace);
  EXPECT_EQ(CoerceValue(back, Variant(-2147483633)), buttonFace);
  EXPECT_EQ(CoerceValue(back, Variant("&H00C0C0C0&")), Variant::Long(0xC0C0C0));
  EXPECT_EQ(CoerceValue(back, Variant(255)), Variant::Long(255));
  EXPECT_EQ(ErrorOf(back, Variant(static_cast<double>(0x80000040))), 6);  // a Double too big
  EXPECT_EQ(ErrorOf(back, Variant("&H80000040&")), 380);                  // no such system colour
  EXPECT_EQ(ErrorOf(back, Variant("&H12345678")), 380);
  EXPECT_EQ(ErrorOf(back, Variant(-1)), 380);
  EXPECT_EQ(ErrorOf(back, Variant("red")), 13);
  // A plain Long takes no `&` suffix.
  EXPECT_EQ(ErrorOf(Prop("VB.Form", "HelpContextID"), Variant("&H10&")), 13);
}

TEST(PropertyValue, EnumerationsTakeOnlyTheirMembers) {
  const PropertyInfo& start = Prop("VB.Form", "StartUpPosition");
  EXPECT_EQ(CoerceValue(start, Variant("3")), Variant::Long(3));
  EXPECT_EQ(CoerceValue(start, Variant::Integer(2)), Variant::Long(2));
  EXPECT_EQ(ErrorOf(start, Variant(4)), 380);
  EXPECT_EQ(ErrorOf(start, Variant(true)), 380);
  EXPECT_EQ(ErrorOf(start, Variant("Manual")), 13);
  const PropertyInfo& pointer = Prop("VB.Label", "MousePointer");
  EXPECT_EQ(CoerceValue(pointer, Variant(99)), Variant::Long(99));
  EXPECT_EQ(ErrorOf(pointer, Variant(16)), 380);
  // The form's palette has fewer members than a user control's.
  EXPECT_EQ(ErrorOf(Prop("VB.Form", "PaletteMode"), Variant(3)), 380);
  EXPECT_EQ(CoerceValue(Prop("VB.UserControl", "PaletteMode"), Variant(3)), Variant::Long(3));
}

TEST(PropertyValue, StringsNamesObjectsListsAndReadOnlyProperties) {
  const PropertyInfo& caption = Prop("VB.Label", "Caption");
  EXPECT_EQ(CoerceValue(caption, Variant(5)), Variant("5"));
  EXPECT_EQ(CoerceValue(caption, Variant(true)), Variant("True"));
  EXPECT_EQ(CoerceValue(caption, Variant()), Variant(""));
  const PropertyInfo& name = Prop("VB.TextBox", "Name");
  EXPECT_EQ(CoerceValue(name, Variant("txt_Name1")), Variant("txt_Name1"));
  EXPECT_EQ(ErrorOf(name, Variant("1abc")), 380);
  EXPECT_EQ(ErrorOf(name, Variant("a b")), 380);
  EXPECT_EQ(ErrorOf(name, Variant(std::string(41, 'a'))), 380);
  EXPECT_EQ(ErrorOf(name, Variant("")), 380);
  EXPECT_EQ(ErrorOf(Prop("VB.Form", "Font"), Variant("Arial")), 424);
  EXPECT_EQ(CoerceValue(Prop("VB.Form", "Picture"), Variant()), Variant(automation::ObjectRef()));
  const PropertyInfo& list = Prop("VB.ListBox", "List");
  EXPECT_EQ(list.NumIndices(), 1);
  EXPECT_EQ(ErrorOf(list, Variant("a")), 380);
  EXPECT_EQ(CoerceItem(list, Variant(7)), Variant("7"));
  EXPECT_EQ(CoerceItem(Prop("VB.ComboBox", "ItemData"), Variant("7")), Variant::Long(7));
  EXPECT_EQ(ErrorOf(Prop("ConnectionDesigner.UserConnection", "Updatable"), Variant(true)), 383);
}

TEST(PropertyValue, OmissionFollowsTheDefaultInThePropertysType) {
  EXPECT_TRUE(
      IsOmitted(Prop("VB.Form", "BackColor"), Variant::Long(static_cast<int32_t>(0x8000000F))));
  EXPECT_FALSE(IsOmitted(Prop("VB.Form", "BackColor"), Variant::Long(0)));
  EXPECT_TRUE(IsOmitted(Prop("VB.Form", "DrawMode"), Variant::Integer(13)));
  EXPECT_TRUE(IsOmitted(Prop("VB.Label", "Caption"), Variant("")));
  EXPECT_FALSE(IsOmitted(Prop("VB.Label", "Caption"), Variant("Label1")));
  EXPECT_TRUE(IsOmitted(Prop("VB.Timer", "Interval"), Variant::Long(0)));
  EXPECT_TRUE(IsOmitted(Prop("VB.TextBox", "Enabled"), Variant(true)));
  // Always written, whatever the value; objects have no default to compare.
  EXPECT_FALSE(IsOmitted(Prop("VB.Form", "LinkTopic"), Variant("")));
  EXPECT_FALSE(IsOmitted(Prop("VB.TextBox", "Left"), Variant::Single(0)));
  EXPECT_FALSE(IsOmitted(Prop("VB.Form", "Icon"), Variant()));
  EXPECT_FALSE(IsOmitted(Prop("VB.Form", "BackColor"), Variant("not a colour")));
}

TEST(PropertyValue, HowValuesAreWritten) {
  EXPECT_EQ(FormOf(Prop("VB.Form", "BackColor")), ValueForm::kColour);
  EXPECT_EQ(FormOf(Prop("VB.Form", "Enabled")), ValueForm::kBoolean);
  EXPECT_EQ(FormOf(Prop("VB.Form", "StartUpPosition")), ValueForm::kEnumeration);
  EXPECT_EQ(FormOf(Prop("VB.Form", "ScaleHeight")), ValueForm::kSingle);
  EXPECT_EQ(FormOf(Prop("VB.Form", "DrawWidth")), ValueForm::kInteger);
  EXPECT_EQ(FormOf(Prop("VB.Form", "Font")), ValueForm::kFontBlock);
  EXPECT_EQ(FormOf(Prop("VB.Form", "Icon")), ValueForm::kCompanion);
  EXPECT_EQ(FormOf(Prop("VB.ListBox", "ItemData")), ValueForm::kCompanion);
  EXPECT_EQ(FormOf(Prop("VB.TextBox", "DataFormat")), ValueForm::kObjectBlock);
  EXPECT_EQ(FormOf(Prop("VB.Menu", "Shortcut")), ValueForm::kShortcut);
  EXPECT_EQ(FormOf(Prop("VB.Form", "Name")), ValueForm::kNone);
  EXPECT_EQ(FormOf(Prop("VB.Form", "Height")), ValueForm::kNone);
  EXPECT_EQ(FormOf(Prop("VB.TextBox", "FontBold")), ValueForm::kNone);
}

TEST(PropertyValue, LongAndMultiLineStringsGoToTheCompanion) {
  const PropertyInfo& caption = Prop("VB.Label", "Caption");
  const std::string longest(kLongestInlineString, 'x');
  EXPECT_EQ(PlaceString(caption, longest, false), StringStorage::kInline);
  EXPECT_EQ(PlaceString(caption, longest + "x", false), StringStorage::kLongCompanion);
  EXPECT_EQ(PlaceString(caption, "two\r\nlines", false), StringStorage::kLongCompanion);
  EXPECT_EQ(PlaceString(caption, "", false), StringStorage::kInline);

  const PropertyInfo& text = Prop("VB.TextBox", "Text");
  EXPECT_EQ(PlaceString(text, "short", true), StringStorage::kCompanion);
  EXPECT_EQ(PlaceString(text, longest + "x", true), StringStorage::kCompanion);
  EXPECT_EQ(PlaceString(text, "", true), StringStorage::kInline);  // then omitted
  EXPECT_EQ(PlaceString(text, "short", false), StringStorage::kInline);
  EXPECT_EQ(PlaceString(text, longest + "x", false), StringStorage::kLongCompanion);
  // A ComboBox's Text does not heed MultiLine.
  EXPECT_EQ(PlaceString(Prop("VB.ComboBox", "Text"), "short", true), StringStorage::kInline);
  // Names of fields and files stay on their line.
  EXPECT_EQ(PlaceString(Prop("VB.TextBox", "DataField"), longest + "x", false),
            StringStorage::kInline);
}

}  // namespace
