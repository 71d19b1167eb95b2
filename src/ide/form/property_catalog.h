#pragma once
// VB6's property catalog: for each class the IDE designs (forms, MDI forms, user controls,
// property pages, user documents, the 21 intrinsic controls, the DHTML page and user connection
// designers) the properties its Properties window shows, in that window's order, with each
// property's type, the default whose line VB6 leaves out of the form file, and how VB6 stores it.
//
// Order. For the VB classes the window lists `(Name)` first and then every other property in
// case-insensitive alphabetical order, which is also the order in which VB6 writes them to the
// form file; the catalog names `(Name)` "Name", as VBIDE's Properties collection does. The
// designers keep their own order, the one their files are written in.
//
// Beyond what the window shows, a class may list:
//  - properties the file stores but the window does not show (a form's ClientHeight...; the
//    DHTML page's _ExtentX...): `Visibility::kHidden`, still part of the Properties collection;
//  - properties only the live object has (FontBold, a file list box's Path, a list box's
//    Text): `Visibility::kRuntime`, answered by the live control object by name, never by the
//    Properties collection.
//
// A class that is not in the catalog (controls of other libraries, other designers) has no
// entry: its owner answers the properties its file stores, and a control of another library
// also those the container's extender gives it (ExtenderClass).

#include <cstdint>
#include <span>
#include <string_view>

namespace ide::form {

// One member of an enumeration, with the text VB6 writes after its value in a form file
// (`StartUpPosition = 3  'Windows Default`).
struct EnumMember {
  int32_t value;
  std::string_view description;
};

struct Enumeration {
  std::string_view name;  // the type library's name: "MousePointerConstants"
  std::span<const EnumMember> members;

  const EnumMember* Find(int32_t value) const;
  // The member's description; empty for a value the enumeration does not have.
  std::string_view Describe(int32_t value) const;
};

// A property value's type, as the Properties window and Property.Value carry it.
enum class ValueType : uint8_t {
  kBoolean,      // VT_BOOL
  kInteger,      // 16-bit
  kLong,         // 32-bit
  kSingle,       // 32-bit floating point
  kString,       // text
  kColour,       // OLE_COLOR, a 32-bit Long
  kEnumeration,  // a Long restricted to the members of `PropertyInfo::enumeration`
  kFont,         // the font object (StdFont)
  kPicture,      // a picture, kept in the binary companion
  kList,         // list of strings, one index (List)
  kItemData,     // list of Longs, one index (ItemData)
  kShortcut,     // a menu's shortcut key, written unquoted as SendKeys text: ^X, {F3}
  kObject,       // any other object (DataFormat, a user document's Hyperlink), kept opaque
  kBlob,         // an opaque companion record (OLE's object data, a DHTML page's document)
};

// Where the Properties collection, the live object and the file meet a property.
enum class Visibility : uint8_t {
  kWindow,   // shown in the Properties window: in the Properties collection, saved, live
  kHidden,   // saved and in the Properties collection, not shown in the window
  kRuntime,  // only the live object has it; never saved
};

// When VB6 writes the property's line.
enum class Saving : uint8_t {
  kUnlessDefault,  // omitted when the value equals the omission default
  kAlways,         // always written (a form's ClientHeight, a control's Left, a menu's Caption)
  kNever,          // derived or runtime only (a form's Height comes from ClientHeight)
};

// Where a string value goes when it is saved.
enum class StringPlace : uint8_t {
  kInline,    // always on the property line (Name, DataField, the designers' settings)
  kLongText,  // on the line, or to the companion as a `$` record when it is long or holds a
              // line break (captions, tags, tool tips: VB's strings)
  kBoxText,   // a TextBox's Text: to the companion without `$` when the box is MultiLine,
              // otherwise as kLongText
};

// One of the font's attributes, for the live controls' FontBold... properties.
enum class FontAttribute : uint8_t { kNone, kName, kSize, kBold, kItalic, kUnderline, kStrike };

// A default value: a number (Booleans as 0 and -1, colours as their Long), a text, or nothing
// (pictures, fonts: the object VB6 makes itself).
struct DefaultValue {
  enum class Kind : uint8_t { kNone, kNumber, kText, kObjectName };
  Kind kind = Kind::kNone;
  double number = 0;
  std::string_view text;
};

struct PropertyInfo {
  std::string_view name;
  ValueType type = ValueType::kString;
  const Enumeration* enumeration = nullptr;  // for kEnumeration
  // The value whose line VB6 leaves out (and that an absent line means).
  DefaultValue omission;
  // The value a new object gets when it differs from the omission default (kNone: the same):
  // kObjectName for a caption that starts as the object's name, 3 for a form's StartUpPosition.
  DefaultValue creation;
  Visibility visibility = Visibility::kWindow;
  Saving saving = Saving::kUnlessDefault;
  bool readOnly = false;  // read-only at design time: a write raises 383
  StringPlace strings = StringPlace::kInline;
  FontAttribute fontAttribute = FontAttribute::kNone;
  // The values VB6 takes for a number (an Integer or Long range narrower than its type's);
  // outside it a write is refused with 380.
  double minimum = 0;
  double maximum = 0;  // minimum == maximum: the type's own range

  // How many indices IndexedValue takes: 1 for lists, 0 for everything else.
  int NumIndices() const {
    return type == ValueType::kList || type == ValueType::kItemData ? 1 : 0;
  }
  bool IsObject() const {
    return type == ValueType::kFont || type == ValueType::kPicture || type == ValueType::kObject ||
           type == ValueType::kBlob;
  }
  bool HasRange() const { return minimum != maximum; }
};

// The kinds of class, so that callers need not compare ProgIds.
enum class ClassKind : uint8_t {
  kForm,
  kMDIForm,
  kUserControl,
  kPropertyPage,
  kUserDocument,
  kControl,    // one of the 21 intrinsic controls
  kDhtmlPage,  // the DHTML page designer
  kUserConnection,
  kExtender,  // the container's extender around a control of another library
};

// The order of a class's properties in the window and the file.
enum class PropertyOrder : uint8_t { kAlphabetical, kDesigner };

struct ClassInfo {
  std::string_view progId;     // "VB.TextBox"; for a designer its DesignerID
  std::string_view classId;    // a designer's CLSID as its `Begin {CLSID}` line has it; else empty
  std::string_view className;  // VBControl.ClassName: "TextBox"
  ClassKind kind;
  int32_t controlType;  // ControlTypeConstants (0 CheckBox ... 20 VScrollBar); -1 for the others
  PropertyOrder order;
  // Properties of the Properties collection (kWindow and kHidden, in their order), then the
  // live object's own (kRuntime), which take no position.
  std::span<const PropertyInfo> properties;

  bool HasFont() const;
  // The Properties collection: how many, and the one at a zero-based position (nullptr past
  // the end).
  int32_t Count() const;
  const PropertyInfo* At(int32_t position) const;
  // A property of the Properties collection by name, case-insensitively; nullptr when none.
  const PropertyInfo* Find(std::string_view name) const;
  // Its zero-based position; -1 when none.
  int32_t PositionOf(std::string_view name) const;
  // A property of the live object by name: the collection's and the runtime-only ones.
  const PropertyInfo* FindMember(std::string_view name) const;
};

// The font VB6 gives a form that has no Font block, and every object whose container has none.
struct FontDefaults {
  std::string_view name = "MS Sans Serif";
  double size = 8.25;
  int16_t charset = 0;
  int16_t weight = 400;
  bool underline = false;
  bool italic = false;
  bool strikethrough = false;
};
inline constexpr FontDefaults kDefaultFont{};
// Bold is a view of the weight: a weight of 700 or more is bold; setting Bold writes 700 and
// clearing it 400.
inline constexpr int16_t kBoldWeight = 700;
inline constexpr int16_t kNormalWeight = 400;
inline constexpr bool IsBold(int16_t weight) {
  return weight >= kBoldWeight;
}

// The font object's own properties, as `Properties("Font").Value` lists them, in the order of
// the `BeginProperty Font` block (Name, Size, Charset, Weight, Underline, Italic,
// Strikethrough), then Bold, which the block does not write: it is the weight seen as a Boolean.
// Size is written as a Single; the font object itself carries it as Currency.
std::span<const PropertyInfo> FontProperties();

// The DHTML page designer's CLSID as its `.dsr` names it, and the DesignerIDs of the two
// designers the catalog knows.
inline constexpr std::string_view kDhtmlPageClassId = "{90290CCD-F27D-11D0-8031-00C04FB6C701}";
inline constexpr std::string_view kDhtmlPageDesignerId = "DHTMLPageDesigner.DHTMLPage";
inline constexpr std::string_view kUserConnectionDesignerId = "ConnectionDesigner.UserConnection";

// The class of an object by the identifier its `Begin` line has ("VB.Form", "vb.textbox", a
// designer's CLSID) or by a designer's DesignerID, case-insensitively; nullptr for a class the
// catalog does not know.
const ClassInfo* FindClass(std::string_view identifier);
// Every class of the catalog: the five form-like ones, the 21 controls in ControlTypeConstants
// order, then the two designers.
std::span<const ClassInfo* const> AllClasses();

// The properties VB6's extender object gives every control of another library (Tag, Visible,
// Left, TabIndex, ...), typed and defaulted as for VB's own controls, in the window's order.
// Not a class of AllClasses: it wraps whatever class the control has.
const ClassInfo& ExtenderClass();

// The enumerations of the catalog by their type-library name; nullptr when unknown.
const Enumeration* FindEnumeration(std::string_view name);

}  // namespace ide::form
