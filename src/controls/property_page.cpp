#include <array>

#include "controls/designed_classes.h"

namespace controls {
namespace {

using namespace components;
using enum DeclaredType;

constexpr std::array kProperties = {
    Enumerated("Appearance", "AppearanceConstants"),
    Plain("AutoRedraw", kBoolean),
    Plain("BackColor", kColour),
    Plain("Caption", kString),
    Plain("ClipControls", kBoolean),
    Enumerated("DrawMode", "DrawModeConstants"),
    Enumerated("DrawStyle", "DrawStyleConstants"),
    Plain("DrawWidth", kInteger),
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
    Plain("HelpContextID", kLong),
    Plain("KeyPreview", kBoolean),
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

constexpr DesignedClass kPropertyPage{"PropertyPage", kProperties, /*hasControls=*/true};

}  // namespace

const DesignedClass& PropertyPageClass() {
  return kPropertyPage;
}

}  // namespace controls
