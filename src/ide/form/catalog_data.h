#pragma once
// The building blocks of the catalog's tables: the enumerations, and one constexpr maker per
// kind of property so that each class's table reads as a list of its properties. Only the
// catalog's own .cpp files include this.

#include <cstdint>

#include "ide/form/property_catalog.h"

namespace ide::form::data {

// Enumerations (catalog_enumerations.cpp). Where VB6 gives one property different member sets
// on different classes, each set is an enumeration of its own.
extern const Enumeration kAlign;
extern const Enumeration kAlignment;       // TextBox, Label: left, right, center
extern const Enumeration kAlignmentCheck;  // CheckBox, OptionButton: left, right
extern const Enumeration kAppearance;
extern const Enumeration kAutoActivate;
extern const Enumeration kBackStyle;
extern const Enumeration kBOFAction;
extern const Enumeration kEOFAction;
extern const Enumeration kFormBorderStyle;
extern const Enumeration kControlBorderStyle;  // None, Fixed Single
extern const Enumeration kLineBorderStyle;     // Line, Shape
extern const Enumeration kButtonStyle;
extern const Enumeration kComboStyle;
extern const Enumeration kListStyle;
extern const Enumeration kCheckValue;
extern const Enumeration kClipBehavior;
extern const Enumeration kHitBehavior;
extern const Enumeration kDefaultCursorType;
extern const Enumeration kWorkspaceType;
extern const Enumeration kDragMode;
extern const Enumeration kDrawMode;
extern const Enumeration kDrawStyle;
extern const Enumeration kFillStyle;
extern const Enumeration kLinkMode;      // controls: None, Automatic, Manual, Notify
extern const Enumeration kFormLinkMode;  // forms: None, Source
extern const Enumeration kMousePointer;
extern const Enumeration kOLEDisplay;
extern const Enumeration kOLEDrag;
extern const Enumeration kOLEDrop;
extern const Enumeration kOLEContainer;
extern const Enumeration kPaletteMode;      // user controls, property pages, user documents
extern const Enumeration kFormPaletteMode;  // forms: Halftone, UseZOrder, Custom
extern const Enumeration kRecordsetType;
extern const Enumeration kScaleMode;
extern const Enumeration kScrollBars;
extern const Enumeration kShape;
extern const Enumeration kSizeMode;
extern const Enumeration kStartUpPosition;
extern const Enumeration kUpdateOptions;
extern const Enumeration kWindowState;
extern const Enumeration kMultiSelect;
extern const Enumeration kIMEMode;
extern const Enumeration kNegotiatePosition;
extern const Enumeration kStandardSize;
extern const Enumeration kDataBindingBehavior;
extern const Enumeration kDataSourceBehavior;
extern const Enumeration kCursorDriver;
// Every one of them, for the look-up by name.
std::span<const Enumeration* const> AllEnumerations();

// The classes (catalog_forms.cpp, catalog_controls.cpp, catalog_designers.cpp).
extern const ClassInfo kForm;
extern const ClassInfo kMDIForm;
extern const ClassInfo kUserControl;
extern const ClassInfo kPropertyPage;
extern const ClassInfo kUserDocument;
extern const ClassInfo kControls[21];  // in ControlTypeConstants order
extern const ClassInfo kDhtmlPage;
extern const ClassInfo kUserConnection;
extern const ClassInfo kExtender;  // not a class of its own: see ExtenderClass()

// Defaults.
constexpr DefaultValue Number(double value) {
  return {DefaultValue::Kind::kNumber, value, {}};
}
constexpr DefaultValue Text(std::string_view text) {
  return {DefaultValue::Kind::kText, 0, text};
}
constexpr DefaultValue kObjectName{DefaultValue::Kind::kObjectName, 0, {}};

// Makers, one per type.
constexpr PropertyInfo Make(std::string_view name, ValueType type, DefaultValue omission) {
  PropertyInfo p;
  p.name = name;
  p.type = type;
  p.omission = omission;
  return p;
}
constexpr PropertyInfo Bool(std::string_view name, bool value) {
  return Make(name, ValueType::kBoolean, Number(value ? -1 : 0));
}
constexpr PropertyInfo Int(std::string_view name, int32_t value) {
  return Make(name, ValueType::kInteger, Number(value));
}
constexpr PropertyInfo Lng(std::string_view name, int32_t value) {
  return Make(name, ValueType::kLong, Number(value));
}
constexpr PropertyInfo Sng(std::string_view name, double value) {
  return Make(name, ValueType::kSingle, Number(value));
}
// A VB string: long ones and those with line breaks go to the companion.
constexpr PropertyInfo Str(std::string_view name, std::string_view value = {}) {
  PropertyInfo p = Make(name, ValueType::kString, Text(value));
  p.strings = StringPlace::kLongText;
  return p;
}
// A string VB6 always keeps on its line (names of fields, files and links).
constexpr PropertyInfo Word(std::string_view name, std::string_view value = {}) {
  return Make(name, ValueType::kString, Text(value));
}
constexpr PropertyInfo Colour(std::string_view name, uint32_t value) {
  return Make(name, ValueType::kColour, Number(static_cast<int32_t>(value)));
}
constexpr PropertyInfo Enum(std::string_view name, const Enumeration& e, int32_t value) {
  PropertyInfo p = Make(name, ValueType::kEnumeration, Number(value));
  p.enumeration = &e;
  return p;
}
constexpr PropertyInfo Picture(std::string_view name) {
  return Make(name, ValueType::kPicture, {});
}
constexpr PropertyInfo Object(std::string_view name) {
  return Make(name, ValueType::kObject, {});
}
constexpr PropertyInfo Blob(std::string_view name) {
  return Make(name, ValueType::kBlob, {});
}
constexpr PropertyInfo Font() {
  return Make("Font", ValueType::kFont, {});
}
constexpr PropertyInfo List() {
  PropertyInfo p = Make("List", ValueType::kList, {});
  p.strings = StringPlace::kInline;
  return p;
}
constexpr PropertyInfo ItemData() {
  return Make("ItemData", ValueType::kItemData, {});
}

// Modifiers.
constexpr PropertyInfo Always(PropertyInfo p) {
  p.saving = Saving::kAlways;
  return p;
}
constexpr PropertyInfo Hidden(PropertyInfo p) {
  p.visibility = Visibility::kHidden;
  return p;
}
// Shown, but not saved: a value VB6 works out from others (a form's Height).
constexpr PropertyInfo Derived(PropertyInfo p) {
  p.saving = Saving::kNever;
  return p;
}
constexpr PropertyInfo Runtime(PropertyInfo p) {
  p.visibility = Visibility::kRuntime;
  p.saving = Saving::kNever;
  return p;
}
constexpr PropertyInfo ReadOnly(PropertyInfo p) {
  p.readOnly = true;
  return p;
}
constexpr PropertyInfo Created(PropertyInfo p, DefaultValue value) {
  p.creation = value;
  return p;
}
constexpr PropertyInfo Range(PropertyInfo p, double minimum, double maximum) {
  p.minimum = minimum;
  p.maximum = maximum;
  return p;
}
constexpr PropertyInfo Box(PropertyInfo p) {
  p.strings = StringPlace::kBoxText;
  return p;
}
constexpr PropertyInfo FontPart(std::string_view name, ValueType type, FontAttribute a) {
  PropertyInfo p = Runtime(Make(name, type, {}));
  p.fontAttribute = a;
  return p;
}

// Properties many classes share, with VB6's defaults.
// The name lives on the `Begin` line, not on a property line of its own.
constexpr PropertyInfo Name() {
  return Derived(Word("Name"));
}
// A control array member's index; -1 (no line) outside arrays.
constexpr PropertyInfo Index() {
  return Range(Int("Index", -1), -1, 32767);
}
constexpr PropertyInfo Position(std::string_view name) {
  return Always(Sng(name, 0));
}
constexpr PropertyInfo TabIndex() {
  return Always(Range(Int("TabIndex", 0), 0, 32767));
}
constexpr PropertyInfo Caption() {
  return Created(Str("Caption"), kObjectName);
}
constexpr PropertyInfo Client(std::string_view name) {
  return Hidden(Always(Sng(name, 0)));
}

// The font attributes a font-bearing control answers on its live object.
#define QX_FONT_PARTS                                                          \
  FontPart("FontBold", ValueType::kBoolean, FontAttribute::kBold),             \
      FontPart("FontItalic", ValueType::kBoolean, FontAttribute::kItalic),     \
      FontPart("FontName", ValueType::kString, FontAttribute::kName),          \
      FontPart("FontSize", ValueType::kSingle, FontAttribute::kSize),          \
      FontPart("FontStrikethru", ValueType::kBoolean, FontAttribute::kStrike), \
      FontPart("FontUnderline", ValueType::kBoolean, FontAttribute::kUnderline)

}  // namespace ide::form::data
