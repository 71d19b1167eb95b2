#include <array>

#include "controls/designed_classes.h"

namespace controls {
namespace {

using namespace components;
using enum DeclaredType;

constexpr std::array kProperties = {
    Plain("AccessKeys", kString),
    Enumerated("Appearance", "AppearanceConstants"),
    Plain("AutoRedraw", kBoolean),
    Plain("BackColor", kColour),
    Enumerated("BackStyle", "BackStyleConstants"),
    Enumerated("BorderStyle", "BorderStyleConstants"),
    Enumerated("ClipBehavior", "ClipBehaviorConstants"),
    Plain("ClipControls", kBoolean),
    Enumerated("DrawMode", "DrawModeConstants"),
    Enumerated("DrawStyle", "DrawStyleConstants"),
    Plain("DrawWidth", kInteger),
    Plain("Enabled", kBoolean),
    Plain("FillColor", kColour),
    Enumerated("FillStyle", "FillStyleConstants"),
    FontAttributeOf("FontBold", kBoolean, kFontBold),
    FontAttributeOf("FontItalic", kBoolean, kFontItalic),
    FontAttributeOf("FontName", kString, kFontName),
    FontAttributeOf("FontSize", kSingle, kFontSize),
    FontAttributeOf("FontStrikethru", kBoolean, kFontStrikethrough),
    Plain("FontTransparent", kBoolean),
    FontAttributeOf("FontUnderline", kBoolean, kFontUnderline),
    Plain("ForeColor", kColour),
    Plain("Height", kSingle),
    Enumerated("HitBehavior", "HitBehaviorConstants"),
    Plain("KeyPreview", kBoolean),
    Plain("MaskColor", kColour),
    Enumerated("MousePointer", "MousePointerConstants"),
    Enumerated("OLEDropMode", "OLEDropConstants"),
    Enumerated("PaletteMode", "PaletteModeConstants"),
    Plain("RightToLeft", kBoolean),
    Plain("ScaleHeight", kSingle),
    Plain("ScaleLeft", kSingle),
    Enumerated("ScaleMode", "ScaleModeConstants"),
    Plain("ScaleTop", kSingle),
    Plain("ScaleWidth", kSingle),
    Plain("Tag", kString),
    Plain("Width", kSingle),
};

constexpr DesignedClass kUserControl{"UserControl", kProperties, /*hasControls=*/true};

}  // namespace

const DesignedClass& UserControlClass() {
  return kUserControl;
}

}  // namespace controls
