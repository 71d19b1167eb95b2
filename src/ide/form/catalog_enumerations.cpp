// The enumerations of VB6's intrinsic classes, with the description VB6 writes after a value
// in a form file. The descriptions are those of the English IDE's Properties window; where
// form files do not show one, it is the window's wording as best known.

#include "ide/form/catalog_data.h"

namespace ide::form::data {
namespace {

constexpr EnumMember kAlignMembers[] = {
    {0, "None"}, {1, "Align Top"}, {2, "Align Bottom"}, {3, "Align Left"}, {4, "Align Right"}};
constexpr EnumMember kAlignmentMembers[] = {
    {0, "Left Justify"}, {1, "Right Justify"}, {2, "Center"}};
constexpr EnumMember kAppearanceMembers[] = {{0, "Flat"}, {1, "3D"}};
constexpr EnumMember kAutoActivateMembers[] = {
    {0, "Manual"}, {1, "GetFocus"}, {2, "Double-Click"}, {3, "Automatic"}};
constexpr EnumMember kBackStyleMembers[] = {{0, "Transparent"}, {1, "Opaque"}};
constexpr EnumMember kBOFActionMembers[] = {{0, "Move First"}, {1, "BOF"}};
constexpr EnumMember kEOFActionMembers[] = {{0, "Move Last"}, {1, "EOF"}, {2, "Add New"}};
constexpr EnumMember kFormBorderStyleMembers[] = {
    {0, "None"},         {1, "Fixed Single"},     {2, "Sizable"},
    {3, "Fixed Dialog"}, {4, "Fixed ToolWindow"}, {5, "Sizable ToolWindow"}};
constexpr EnumMember kLineBorderStyleMembers[] = {
    {0, "Transparent"}, {1, "Solid"},        {2, "Dash"},        {3, "Dot"},
    {4, "Dash-Dot"},    {5, "Dash-Dot-Dot"}, {6, "Inside Solid"}};
constexpr EnumMember kButtonStyleMembers[] = {{0, "Standard"}, {1, "Graphical"}};
constexpr EnumMember kComboStyleMembers[] = {
    {0, "Dropdown Combo"}, {1, "Simple Combo"}, {2, "Dropdown List"}};
constexpr EnumMember kListStyleMembers[] = {{0, "Standard"}, {1, "Checkbox"}};
constexpr EnumMember kCheckValueMembers[] = {{0, "Unchecked"}, {1, "Checked"}, {2, "Grayed"}};
constexpr EnumMember kClipBehaviorMembers[] = {{0, "None"}, {1, "Use Region"}};
constexpr EnumMember kHitBehaviorMembers[] = {{0, "None"}, {1, "Use Region"}, {2, "Use Paint"}};
constexpr EnumMember kDefaultCursorTypeMembers[] = {
    {0, "DefaultCursor"}, {1, "ODBCCursor"}, {2, "ServerSideCursor"}};
// VB6 writes 'UseODBC after both values (DefaultType = 2 is a new data control's Jet).
constexpr EnumMember kWorkspaceTypeMembers[] = {{1, "UseODBC"}, {2, "UseODBC"}};
constexpr EnumMember kDragModeMembers[] = {{0, "Manual"}, {1, "Automatic"}};
constexpr EnumMember kDrawModeMembers[] = {
    {1, "Blackness"},    {2, "Not Merge Pen"},  {3, "Mask Not Pen"}, {4, "Not Copy Pen"},
    {5, "Mask Pen Not"}, {6, "Invert"},         {7, "Xor Pen"},      {8, "Not Mask Pen"},
    {9, "Mask Pen"},     {10, "Not Xor Pen"},   {11, "Nop"},         {12, "Merge Not Pen"},
    {13, "Copy Pen"},    {14, "Merge Pen Not"}, {15, "Merge Pen"},   {16, "Whiteness"}};
constexpr EnumMember kDrawStyleMembers[] = {
    {0, "Solid"},        {1, "Dash"},        {2, "Dot"},         {3, "Dash-Dot"},
    {4, "Dash-Dot-Dot"}, {5, "Transparent"}, {6, "Inside Solid"}};
constexpr EnumMember kFillStyleMembers[] = {{0, "Solid"},           {1, "Transparent"},
                                            {2, "Horizontal Line"}, {3, "Vertical Line"},
                                            {4, "Upward Diagonal"}, {5, "Downward Diagonal"},
                                            {6, "Cross"},           {7, "Diagonal Cross"}};
constexpr EnumMember kLinkModeMembers[] = {
    {0, "None"}, {1, "Automatic"}, {2, "Manual"}, {3, "Notify"}};
constexpr EnumMember kFormLinkModeMembers[] = {{0, "None"}, {1, "Source"}};
constexpr EnumMember kMousePointerMembers[] = {{0, "Default"},
                                               {1, "Arrow"},
                                               {2, "Cross"},
                                               {3, "I-Beam"},
                                               {4, "Icon"},
                                               {5, "Size"},
                                               {6, "Size NE SW"},
                                               {7, "Size N S"},
                                               {8, "Size NW SE"},
                                               {9, "Size W E"},
                                               {10, "Up Arrow"},
                                               {11, "Hourglass"},
                                               {12, "No Drop"},
                                               {13, "Arrow and Hourglass"},
                                               {14, "Arrow and Question"},
                                               {15, "Size All"},
                                               {99, "Custom"}};
constexpr EnumMember kOLEDisplayMembers[] = {{0, "Content"}, {1, "Icon"}};
constexpr EnumMember kOLEDragMembers[] = {{0, "Manual"}, {1, "Automatic"}};
constexpr EnumMember kOLEDropMembers[] = {{0, "None"}, {1, "Manual"}, {2, "Automatic"}};
constexpr EnumMember kOLEContainerMembers[] = {{0, "Linked"}, {1, "Embedded"}, {2, "Either"}};
constexpr EnumMember kPaletteModeMembers[] = {{0, "Halftone"},  {1, "UseZOrder"}, {2, "Custom"},
                                              {3, "Container"}, {4, "None"},      {5, "Object"}};
constexpr EnumMember kRecordsetTypeMembers[] = {{0, "Table"}, {1, "Dynaset"}, {2, "Snapshot"}};
constexpr EnumMember kScaleModeMembers[] = {{0, "User"},       {1, "Twip"},      {2, "Point"},
                                            {3, "Pixel"},      {4, "Character"}, {5, "Inch"},
                                            {6, "Millimeter"}, {7, "Centimeter"}};
constexpr EnumMember kScrollBarsMembers[] = {
    {0, "None"}, {1, "Horizontal"}, {2, "Vertical"}, {3, "Both"}};
constexpr EnumMember kShapeMembers[] = {
    {0, "Rectangle"},         {1, "Square"},        {2, "Oval"}, {3, "Circle"},
    {4, "Rounded Rectangle"}, {5, "Rounded Square"}};
constexpr EnumMember kSizeModeMembers[] = {
    {0, "Clip"}, {1, "Stretch"}, {2, "AutoSize"}, {3, "Zoom"}};
constexpr EnumMember kStartUpPositionMembers[] = {
    {0, "Manual"}, {1, "CenterOwner"}, {2, "CenterScreen"}, {3, "Windows Default"}};
constexpr EnumMember kUpdateOptionsMembers[] = {{0, "Automatic"}, {1, "Frozen"}, {2, "Manual"}};
constexpr EnumMember kWindowStateMembers[] = {{0, "Normal"}, {1, "Minimized"}, {2, "Maximized"}};
constexpr EnumMember kMultiSelectMembers[] = {{0, "None"}, {1, "Simple"}, {2, "Extended"}};
constexpr EnumMember kIMEModeMembers[] = {{0, "NoControl"},     {1, "ON"},         {2, "OFF"},
                                          {3, "DISABLE"},       {4, "HIRAGANA"},   {5, "KATAKANA"},
                                          {6, "KATAKANA HALF"}, {7, "ALPHA FULL"}, {8, "ALPHA"},
                                          {9, "HANGUL FULL"},   {10, "HANGUL"}};
constexpr EnumMember kNegotiatePositionMembers[] = {
    {0, "None"}, {1, "Left"}, {2, "Middle"}, {3, "Right"}};
constexpr EnumMember kStandardSizeMembers[] = {{0, "Custom"}, {1, "Small"}, {2, "Large"}};
constexpr EnumMember kDataBindingBehaviorMembers[] = {
    {0, "vbNone"}, {1, "vbSimpleBound"}, {2, "vbComplexBound"}};
constexpr EnumMember kDataSourceBehaviorMembers[] = {{0, "vbNone"}, {1, "vbDataSource"}};
constexpr EnumMember kCursorDriverMembers[] = {{0, "rdUseIfNeeded"},
                                               {1, "rdUseOdbc"},
                                               {2, "rdUseServer"},
                                               {3, "rdUseClientBatch"},
                                               {4, "rdUseNone"}};

}  // namespace

const Enumeration kAlign{"AlignConstants", kAlignMembers};
const Enumeration kAlignment{"AlignmentConstants", kAlignmentMembers};
const Enumeration kAlignmentCheck{"CheckAlignmentConstants", std::span(kAlignmentMembers).first(2)};
const Enumeration kAppearance{"AppearanceConstants", kAppearanceMembers};
const Enumeration kAutoActivate{"AutoActivateConstants", kAutoActivateMembers};
const Enumeration kBackStyle{"BackStyleConstants", kBackStyleMembers};
const Enumeration kBOFAction{"BOFActionConstants", kBOFActionMembers};
const Enumeration kEOFAction{"EOFActionConstants", kEOFActionMembers};
const Enumeration kFormBorderStyle{"FormBorderStyleConstants", kFormBorderStyleMembers};
const Enumeration kControlBorderStyle{"ControlBorderStyleConstants",
                                      std::span(kFormBorderStyleMembers).first(2)};
const Enumeration kLineBorderStyle{"BorderStyleConstants", kLineBorderStyleMembers};
const Enumeration kButtonStyle{"ButtonConstants", kButtonStyleMembers};
const Enumeration kComboStyle{"ComboBoxConstants", kComboStyleMembers};
const Enumeration kListStyle{"ListBoxConstants", kListStyleMembers};
const Enumeration kCheckValue{"CheckBoxConstants", kCheckValueMembers};
const Enumeration kClipBehavior{"ClipBehaviorConstants", kClipBehaviorMembers};
const Enumeration kHitBehavior{"HitBehaviorConstants", kHitBehaviorMembers};
const Enumeration kDefaultCursorType{"DefaultCursorTypeConstants", kDefaultCursorTypeMembers};
const Enumeration kWorkspaceType{"WorkspaceTypeConstants", kWorkspaceTypeMembers};
const Enumeration kDragMode{"DragModeConstants", kDragModeMembers};
const Enumeration kDrawMode{"DrawModeConstants", kDrawModeMembers};
const Enumeration kDrawStyle{"DrawStyleConstants", kDrawStyleMembers};
const Enumeration kFillStyle{"FillStyleConstants", kFillStyleMembers};
const Enumeration kLinkMode{"LinkModeConstants", kLinkModeMembers};
const Enumeration kFormLinkMode{"FormLinkModeConstants", kFormLinkModeMembers};
const Enumeration kMousePointer{"MousePointerConstants", kMousePointerMembers};
const Enumeration kOLEDisplay{"OLEDisplayConstants", kOLEDisplayMembers};
const Enumeration kOLEDrag{"OLEDragConstants", kOLEDragMembers};
const Enumeration kOLEDrop{"OLEDropConstants", kOLEDropMembers};
const Enumeration kOLEContainer{"OLEContainerConstants", kOLEContainerMembers};
const Enumeration kPaletteMode{"PaletteModeConstants", kPaletteModeMembers};
const Enumeration kFormPaletteMode{"FormPaletteModeConstants",
                                   std::span(kPaletteModeMembers).first(3)};
const Enumeration kRecordsetType{"RecordSetTypeConstants", kRecordsetTypeMembers};
const Enumeration kScaleMode{"ScaleModeConstants", kScaleModeMembers};
const Enumeration kScrollBars{"ScrollBarConstants", kScrollBarsMembers};
const Enumeration kShape{"ShapeConstants", kShapeMembers};
const Enumeration kSizeMode{"SizeModeConstants", kSizeModeMembers};
const Enumeration kStartUpPosition{"StartupPositionConstants", kStartUpPositionMembers};
const Enumeration kUpdateOptions{"UpdateOptionsConstants", kUpdateOptionsMembers};
const Enumeration kWindowState{"WindowStateConstants", kWindowStateMembers};
const Enumeration kMultiSelect{"MultiSelectConstants", kMultiSelectMembers};
const Enumeration kIMEMode{"IMEModeConstants", kIMEModeMembers};
const Enumeration kNegotiatePosition{"NegotiatePositionConstants", kNegotiatePositionMembers};
const Enumeration kStandardSize{"StandardSizeConstants", kStandardSizeMembers};
const Enumeration kDataBindingBehavior{"DataBindingBehaviorConstants", kDataBindingBehaviorMembers};
const Enumeration kDataSourceBehavior{"DataSourceBehaviorConstants", kDataSourceBehaviorMembers};
const Enumeration kCursorDriver{"CursorDriverConstants", kCursorDriverMembers};

}  // namespace ide::form::data

namespace ide::form {

std::span<const Enumeration* const> data::AllEnumerations() {
  static constexpr const Enumeration* kAll[] = {&kAlign,
                                                &kAlignment,
                                                &kAlignmentCheck,
                                                &kAppearance,
                                                &kAutoActivate,
                                                &kBackStyle,
                                                &kBOFAction,
                                                &kEOFAction,
                                                &kFormBorderStyle,
                                                &kControlBorderStyle,
                                                &kLineBorderStyle,
                                                &kButtonStyle,
                                                &kComboStyle,
                                                &kListStyle,
                                                &kCheckValue,
                                                &kClipBehavior,
                                                &kHitBehavior,
                                                &kDefaultCursorType,
                                                &kWorkspaceType,
                                                &kDragMode,
                                                &kDrawMode,
                                                &kDrawStyle,
                                                &kFillStyle,
                                                &kLinkMode,
                                                &kFormLinkMode,
                                                &kMousePointer,
                                                &kOLEDisplay,
                                                &kOLEDrag,
                                                &kOLEDrop,
                                                &kOLEContainer,
                                                &kPaletteMode,
                                                &kFormPaletteMode,
                                                &kRecordsetType,
                                                &kScaleMode,
                                                &kScrollBars,
                                                &kShape,
                                                &kSizeMode,
                                                &kStartUpPosition,
                                                &kUpdateOptions,
                                                &kWindowState,
                                                &kMultiSelect,
                                                &kIMEMode,
                                                &kNegotiatePosition,
                                                &kStandardSize,
                                                &kDataBindingBehavior,
                                                &kDataSourceBehavior,
                                                &kCursorDriver};
  return kAll;
}

}  // namespace ide::form
