#include "controls/control_properties.h"

#include <array>

#include "automation/casefold.h"

namespace controls {
namespace {

using enum components::DeclaredType;

constexpr ControlProperty Row(std::string_view name, components::DeclaredType type,
                              TypeSet readOn) {
  return {name, type, {}, readOn};
}
constexpr ControlProperty Enumerated(std::string_view name, std::string_view enumeration,
                                     TypeSet readOn) {
  return {name, kLong, enumeration, readOn};
}
constexpr ControlProperty ReadOnly(std::string_view name, TypeSet readOn) {
  return {name, kObject, {}, readOn, Reading::kLive, true};
}
constexpr ControlProperty Special(std::string_view name, components::DeclaredType type,
                                  TypeSet readOn, Reading reading, bool readOnly = false) {
  return {name, type, {}, readOn, reading, readOnly};
}

// The controls that have the font properties, and those that are placed on the component with
// a position and a size.
constexpr TypeSet kFontGroup =
    TypesOf({kCheckBox, kComboBox, kCommandButton, kData, kDirListBox, kDriveListBox, kFileListBox,
             kFrame, kLabel, kListBox, kOptionButton, kPictureBox, kTextBox});
constexpr TypeSet kPlaced = IntrinsicExcept({kLine, kMenu, kTimer});

constexpr std::array kProperties = {
    Special("Name", kString, kEveryType, Reading::kName),
    Enumerated("Align", "AlignConstants", TypesOf({kData, kPictureBox})),
    Enumerated("Alignment", "AlignmentConstants",
               TypesOf({kCheckBox, kLabel, kOptionButton, kTextBox})),
    Enumerated("Appearance", "AppearanceConstants",
               IntrinsicExcept({kHScrollBar, kLine, kMenu, kShape, kTimer, kVScrollBar})),
    Row("Archive", kBoolean, TypesOf({kFileListBox})),
    Enumerated("AutoActivate", "AutoActivateConstants", TypesOf({kOLE})),
    Row("AutoRedraw", kBoolean, TypesOf({kPictureBox})),
    Row("AutoSize", kBoolean, TypesOf({kLabel, kPictureBox})),
    Row("AutoVerbMenu", kBoolean, TypesOf({kOLE})),
    Row("BackColor", kColour,
        IntrinsicExcept({kHScrollBar, kImage, kLine, kMenu, kTimer, kVScrollBar})),
    Enumerated("BackStyle", "BackStyleConstants", TypesOf({kLabel, kOLE, kShape})),
    Enumerated("BOFAction", "BOFActionConstants", TypesOf({kData})),
    Row("BorderColor", kColour, TypesOf({kLine, kShape})),
    Enumerated("BorderStyle", "FormBorderStyleConstants",
               TypesOf({kFrame, kImage, kLabel, kLine, kOLE, kPictureBox, kShape, kTextBox})),
    Row("BorderWidth", kInteger, TypesOf({kLine, kShape})),
    Row("Cancel", kBoolean, TypesOf({kCommandButton})),
    Row("Caption", kString,
        TypesOf({kCheckBox, kCommandButton, kData, kFrame, kLabel, kMenu, kOptionButton})),
    Row("CausesValidation", kBoolean,
        IntrinsicExcept({kData, kFrame, kImage, kLabel, kLine, kMenu, kShape, kTimer})),
    Row("Checked", kBoolean, TypesOf({kMenu})),
    Row("Class", kString, TypesOf({kOLE})),
    Row("ClipControls", kBoolean, TypesOf({kFrame, kPictureBox})),
    Row("Columns", kInteger, TypesOf({kListBox})),
    Row("Connect", kString, TypesOf({kData})),
    Row("DatabaseName", kString, TypesOf({kData})),
    Row("DataField", kString,
        TypesOf({kCheckBox, kComboBox, kImage, kLabel, kListBox, kOLE, kPictureBox, kTextBox})),
    ReadOnly("DataFormat",
             TypesOf({kCheckBox, kComboBox, kImage, kLabel, kListBox, kPictureBox, kTextBox})),
    Row("DataMember", kString,
        TypesOf({kCheckBox, kComboBox, kImage, kLabel, kListBox, kPictureBox, kTextBox})),
    Row("DataText", kString, TypesOf({kOLE})),
    Row("Default", kBoolean, TypesOf({kCommandButton})),
    Enumerated("DefaultCursorType", "DefaultCursorTypeConstants", TypesOf({kData})),
    Enumerated("DefaultType", "WorkspaceTypeConstants", TypesOf({kData})),
    Enumerated("DisplayType", "OLEDisplayConstants", TypesOf({kOLE})),
    Enumerated("DragMode", "DragModeConstants", IntrinsicExcept({kLine, kMenu, kShape, kTimer})),
    Enumerated("DrawMode", "DrawModeConstants", TypesOf({kLine, kPictureBox, kShape})),
    Enumerated("DrawStyle", "DrawStyleConstants", TypesOf({kPictureBox})),
    Row("DrawWidth", kInteger, TypesOf({kPictureBox})),
    Row("Drive", kString, TypesOf({kDriveListBox})),
    Row("Enabled", kBoolean, IntrinsicExcept({kLine, kShape})),
    Enumerated("EOFAction", "EOFActionConstants", TypesOf({kData})),
    Row("Exclusive", kBoolean, TypesOf({kData})),
    Row("FileName", kString, TypesOf({kFileListBox})),
    Row("FileNumber", kInteger, TypesOf({kOLE})),
    Special("FillColor", kColour, TypesOf({kPictureBox, kShape}), Reading::kZeroElsewhere),
    Enumerated("FillStyle", "FillStyleConstants", TypesOf({kPictureBox, kShape})),
    Row("FontBold", kBoolean, kFontGroup),
    Row("FontItalic", kBoolean, kFontGroup),
    Row("FontName", kString, kFontGroup),
    Row("FontSize", kSingle, kFontGroup),
    Row("FontStrikethru", kBoolean, kFontGroup),
    Row("FontTransparent", kBoolean, TypesOf({kPictureBox})),
    Row("FontUnderline", kBoolean, kFontGroup),
    Row("ForeColor", kColour,
        IntrinsicExcept({kCommandButton, kHScrollBar, kImage, kLine, kMenu, kOLE, kShape, kTimer,
                         kVScrollBar})),
    Row("Format", kString, TypesOf({kOLE})),
    Row("Height", kSingle, kPlaced),
    Row("HelpContextID", kLong, IntrinsicExcept({kData, kImage, kLabel, kLine, kShape, kTimer})),
    Row("HideSelection", kBoolean, TypesOf({kTextBox})),
    Row("Hidden", kBoolean, TypesOf({kFileListBox})),
    Row("HostName", kString, TypesOf({kOLE})),
    Row("IntegralHeight", kBoolean, TypesOf({kComboBox, kListBox})),
    Row("Interval", kLong, TypesOf({kTimer})),
    Row("LargeChange", kInteger, TypesOf({kHScrollBar, kVScrollBar})),
    Row("Left", kSingle, kPlaced),
    Row("LinkItem", kString, TypesOf({kLabel, kPictureBox, kTextBox})),
    Enumerated("LinkMode", "LinkModeConstants", TypesOf({kLabel, kPictureBox, kTextBox})),
    Row("LinkTimeout", kInteger, TypesOf({kLabel, kPictureBox, kTextBox})),
    Row("LinkTopic", kString, TypesOf({kLabel, kPictureBox, kTextBox})),
    Special("List", kString,
            TypesOf({kComboBox, kDirListBox, kDriveListBox, kFileListBox, kListBox}),
            Reading::kList),
    Row("Locked", kBoolean, TypesOf({kComboBox, kTextBox})),
    Row("MaskColor", kColour, TypesOf({kCheckBox, kCommandButton, kOptionButton})),
    Row("Max", kInteger, TypesOf({kHScrollBar, kVScrollBar})),
    Row("MaxLength", kLong, TypesOf({kTextBox})),
    Row("Min", kInteger, TypesOf({kHScrollBar, kVScrollBar})),
    Row("MiscFlags", kInteger, TypesOf({kOLE})),
    Enumerated("MousePointer", "MousePointerConstants",
               IntrinsicExcept({kLine, kMenu, kShape, kTimer})),
    Row("MultiLine", kBoolean, TypesOf({kTextBox})),
    Row("MultiSelect", kInteger, TypesOf({kFileListBox, kListBox})),
    Row("Normal", kBoolean, TypesOf({kFileListBox})),
    Special("Object", kObject, TypesOf({kCustomControl}), Reading::kSelf, true),
    Enumerated(
        "OLEDragMode", "OLEDragConstants",
        TypesOf({kComboBox, kDirListBox, kFileListBox, kImage, kListBox, kPictureBox, kTextBox})),
    Row("OLEDropAllowed", kBoolean, TypesOf({kOLE})),
    Enumerated("OLEDropMode", "OLEDropConstants",
               IntrinsicExcept({kHScrollBar, kLine, kMenu, kOLE, kShape, kTimer, kVScrollBar})),
    Enumerated("OLETypeAllowed", "OLEContainerConstants", TypesOf({kOLE})),
    Row("Options", kInteger, TypesOf({kData})),
    Row("PasswordChar", kString, TypesOf({kTextBox})),
    Row("Path", kString, TypesOf({kDirListBox, kFileListBox})),
    Row("Pattern", kString, TypesOf({kFileListBox})),
    Row("ReadOnly", kBoolean, TypesOf({kData, kFileListBox})),
    Enumerated("RecordsetType", "RecordSetTypeConstants", TypesOf({kData})),
    Row("RecordSource", kString, TypesOf({kData})),
    Row("RightToLeft", kBoolean,
        IntrinsicExcept({kDirListBox, kDriveListBox, kFileListBox, kImage, kLine, kMenu, kOLE,
                         kShape, kTimer})),
    Row("ScaleHeight", kSingle, TypesOf({kPictureBox})),
    Row("ScaleLeft", kSingle, TypesOf({kPictureBox})),
    Enumerated("ScaleMode", "ScaleModeConstants", TypesOf({kPictureBox})),
    Row("ScaleTop", kSingle, TypesOf({kPictureBox})),
    Row("ScaleWidth", kSingle, TypesOf({kPictureBox})),
    Enumerated("ScrollBars", "ScrollBarConstants", TypesOf({kTextBox})),
    Enumerated("Shape", "ShapeConstants", TypesOf({kShape})),
    Enumerated("SizeMode", "SizeModeConstants", TypesOf({kOLE})),
    Row("SmallChange", kInteger, TypesOf({kHScrollBar, kVScrollBar})),
    Row("Sorted", kBoolean, TypesOf({kComboBox, kListBox})),
    Row("SourceDoc", kString, TypesOf({kOLE})),
    Row("SourceItem", kString, TypesOf({kOLE})),
    Row("Stretch", kBoolean, TypesOf({kImage})),
    Enumerated("Style", "ButtonConstants",
               TypesOf({kCheckBox, kComboBox, kCommandButton, kListBox, kOptionButton})),
    Row("System", kBoolean, TypesOf({kFileListBox})),
    Row("TabIndex", kInteger, IntrinsicExcept({kData, kImage, kLine, kMenu, kShape, kTimer})),
    Row("TabStop", kBoolean,
        IntrinsicExcept({kData, kFrame, kImage, kLabel, kLine, kMenu, kShape, kTimer})),
    Row("Tag", kString, kEveryType),
    Row("Text", kString, TypesOf({kComboBox, kListBox, kTextBox})),
    Row("ToolTipText", kString,
        IntrinsicExcept({kHScrollBar, kLine, kMenu, kOLE, kShape, kTimer, kVScrollBar})),
    Row("Top", kSingle, kPlaced),
    Enumerated("UpdateOptions", "UpdateOptionsConstants", TypesOf({kOLE})),
    Row("UseMaskColor", kBoolean, TypesOf({kCheckBox, kCommandButton, kOptionButton})),
    Row("UseMnemonic", kBoolean, TypesOf({kLabel})),
    Row("Value", kInteger,
        TypesOf({kCheckBox, kCommandButton, kHScrollBar, kOptionButton, kVScrollBar})),
    Row("Verb", kInteger, TypesOf({kOLE})),
    Row("Visible", kBoolean, IntrinsicExcept({kTimer})),
    Row("WhatsThisHelpID", kLong, IntrinsicExcept({kLine, kMenu, kShape, kTimer})),
    Row("Width", kSingle, kPlaced),
    Row("WindowList", kBoolean, TypesOf({kMenu})),
    Row("WordWrap", kBoolean, TypesOf({kLabel})),
    Row("X1", kSingle, TypesOf({kLine})),
    Row("X2", kSingle, TypesOf({kLine})),
    Row("Y1", kSingle, TypesOf({kLine})),
    Row("Y2", kSingle, TypesOf({kLine})),
};

}  // namespace

std::span<const ControlProperty> ControlProperties() {
  return kProperties;
}

const ControlProperty* FindControlProperty(std::string_view name) {
  for (const ControlProperty& row : kProperties) {
    if (automation::SameVbName(row.name, name)) return &row;
  }
  return nullptr;
}

}  // namespace controls
