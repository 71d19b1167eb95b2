#include <array>

#include "controls/designed_classes.h"

namespace controls {
namespace {

using namespace components;
using enum DeclaredType;

// The document's hyperlink object, under the IDE's item "Hyperlink"; it cannot be written.
constexpr ComponentProperty HyperLink{"HyperLink",        kObject,     {},  kNoFontAttribute,
                                      FormKinds::kEither, "Hyperlink", true};

constexpr std::array kProperties = {
    Enumerated("Appearance", "AppearanceConstants"),
    Plain("AutoRedraw", kBoolean),
    Plain("BackColor", kColour),
    Plain("ClipControls", kBoolean),
    Plain("ContinuousScroll", kBoolean),
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
    Plain("HScrollSmallChange", kSingle),
    HyperLink,
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
    Enumerated("ScrollBars", "ScrollBarConstants"),
    Plain("Tag", kString),
    Plain("VScrollSmallChange", kSingle),
    Plain("Width", kSingle),
};

constexpr DesignedClass kUserDocument{"UserDocument", kProperties, /*hasControls=*/false};

}  // namespace

const DesignedClass& UserDocumentClass() {
  return kUserDocument;
}

}  // namespace controls
