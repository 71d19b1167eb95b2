#include "components/form.h"

#include <array>

namespace components {
namespace {

using enum DeclaredType;
constexpr FormKinds kStandard = FormKinds::kStandard;
constexpr FormKinds kMdi = FormKinds::kMdi;

constexpr std::array kProperties = {
    Enumerated("Appearance", "AppearanceConstants"),
    Plain("AutoShowChildren", kBoolean).On(kMdi),
    Plain("AutoRedraw", kBoolean).On(kStandard),
    Plain("BackColor", kColour),
    Enumerated("BorderStyle", "BorderStyleConstants").On(kStandard),
    Plain("Caption", kString),
    Plain("ClipControls", kBoolean).On(kStandard),
    Plain("ControlBox", kBoolean).On(kStandard),
    Enumerated("DrawMode", "DrawModeConstants").On(kStandard),
    Enumerated("DrawStyle", "DrawStyleConstants").On(kStandard),
    Plain("DrawWidth", kInteger).On(kStandard),
    Plain("Enabled", kBoolean),
    Plain("FillColor", kColour).On(kStandard),
    Enumerated("FillStyle", "FillStyleConstants").On(kStandard),
    FontAttributeOf("FontBold", kBoolean, kFontBold).On(kStandard),
    FontAttributeOf("FontItalic", kBoolean, kFontItalic).On(kStandard),
    FontAttributeOf("FontName", kString, kFontName).On(kStandard),
    FontAttributeOf("FontSize", kSingle, kFontSize).On(kStandard),
    FontAttributeOf("FontStrikethru", kBoolean, kFontStrikethrough).On(kStandard),
    Plain("FontTransparent", kBoolean).On(kStandard),
    FontAttributeOf("FontUnderline", kBoolean, kFontUnderline).On(kStandard),
    Plain("ForeColor", kColour).On(kStandard),
    Plain("Height", kSingle),
    Plain("HelpContextID", kLong),
    Plain("KeyPreview", kBoolean).On(kStandard),
    Plain("Left", kSingle),
    Enumerated("LinkMode", "LinkModeConstants"),
    Plain("LinkTopic", kString),
    Plain("MaxButton", kBoolean).On(kStandard),
    Plain("MDIChild", kBoolean).On(kStandard),
    Plain("MinButton", kBoolean).On(kStandard),
    Enumerated("MousePointer", "MousePointerConstants"),
    Plain("Moveable", kBoolean),
    Plain("NegotiateToolbars", kBoolean).On(kMdi),
    Enumerated("OLEDropMode", "OLEDropConstants"),
    Enumerated("PaletteMode", "PaletteModeConstants").On(kStandard),
    Plain("RightToLeft", kBoolean),
    Plain("ScaleHeight", kSingle),
    Plain("ScaleLeft", kSingle).On(kStandard),
    Enumerated("ScaleMode", "ScaleModeConstants").On(kStandard),
    Plain("ScaleTop", kSingle).On(kStandard),
    Plain("ScaleWidth", kSingle),
    Plain("ScrollBars", kBoolean).On(kMdi),
    Plain("ShowInTaskBar", kBoolean).On(kStandard),
    Enumerated("StartUpPosition", "StartupPositionConstants"),
    Plain("Tag", kString),
    Plain("Top", kSingle),
    Plain("Visible", kBoolean),
    Plain("WhatsThisButton", kBoolean).On(kStandard),
    Plain("WhatsThisHelp", kBoolean),
    Plain("Width", kSingle),
    Enumerated("WindowState", "WindowStateConstants").On(kStandard),
};

// Forms have no public TearDown: Dispose releases the project and the IDE project itself.
constexpr DesignedClass kForm{"Form", kProperties, /*hasControls=*/true, /*hasTearDown=*/false};

}  // namespace

const DesignedClass& FormClass() {
  return kForm;
}

}  // namespace components
