// ObjectProperties: fonts, which are ambient (an object without its own Font group shows its
// form's), and their attributes read and written one by one.

#include "ide/form/object_properties.h"

#include <utility>

#include "automation/error.h"
#include "ide/form/object_properties_detail.h"
#include "ide/form/property_line.h"

namespace ide::form {
namespace {

namespace err = automation::err;
using automation::Variant;
using detail::ClassOf;
using detail::NoSuchProperty;
using detail::ParseNumber;
using detail::Same;

bool SameFont(const FontValues& a, const FontValues& b) {
  return a.name == b.name && a.size == b.size && a.charset == b.charset && a.weight == b.weight &&
         a.underline == b.underline && a.italic == b.italic && a.strikethrough == b.strikethrough;
}

FontValues DefaultFont() {
  FontValues font;
  font.name = std::string(kDefaultFont.name);
  font.size = kDefaultFont.size;
  font.charset = kDefaultFont.charset;
  font.weight = kDefaultFont.weight;
  return font;
}

FontValues FormFont(const DescriptionNode& node) {
  const DescriptionNode* root = &node;
  while (root->Parent() != nullptr)
    root = root->Parent();
  if (auto own = OwnFont(*root)) return *own;
  return DefaultFont();
}

}  // namespace

std::optional<FontValues> OwnFont(const DescriptionNode& node) {
  const DescriptionNode* group = node.FindGroup("Font");
  if (group == nullptr) return std::nullopt;
  FontValues font = DefaultFont();
  for (const PropertyEntry* entry : group->Properties()) {
    const std::string_view name = entry->Name();
    std::optional<double> number = ParseNumber(entry->Value());
    if (Same(name, "Name")) {
      if (auto text = UnquoteString(entry->Value())) font.name = *text;
    } else if (!number) {
      continue;
    } else if (Same(name, "Size")) {
      font.size = *number;
    } else if (Same(name, "Charset")) {
      font.charset = static_cast<int32_t>(*number);
    } else if (Same(name, "Weight")) {
      font.weight = static_cast<int32_t>(*number);
    } else if (Same(name, "Underline")) {
      font.underline = *number != 0;
    } else if (Same(name, "Italic")) {
      font.italic = *number != 0;
    } else if (Same(name, "Strikethrough")) {
      font.strikethrough = *number != 0;
    }
  }
  return font;
}

FontValues ObjectProperties::Font() const {
  if (auto own = OwnFont(*node_)) return *own;
  return FormFont(*node_);
}

bool ObjectProperties::HasOwnFont() const {
  return node_->FindGroup("Font") != nullptr;
}

void ObjectProperties::SetFont(const FontValues& font) {
  if (class_ != nullptr && !class_->HasFont()) NoSuchProperty("Font");
  if (node_->Parent() == nullptr) {
    // The form's own font: the controls that showed it keep the font they had.
    const FontValues old = Font();
    if (SameFont(old, font) && HasOwnFont()) return;
    if (context_.description != nullptr) {
      for (DescriptionNode* control : context_.description->Controls()) {
        const ClassInfo* cls = ClassOf(*control);
        if (cls == nullptr || !cls->HasFont() || OwnFont(*control)) continue;
        if (!SameFont(old, font)) control->SetFont(old);
      }
    }
    node_->SetFont(font);
    return;
  }
  if (SameFont(font, FormFont(*node_))) {
    node_->RemoveGroup("Font");
  } else {
    node_->SetFont(font);
  }
}

void ObjectProperties::SetFontAttribute(FontAttribute attribute, const Variant& value) {
  FontValues font = Font();
  switch (attribute) {
    case FontAttribute::kName: {
      std::string name = value.ToString();
      if (name.empty()) automation::Raise(err::kInvalidPropertyValue, "a font needs a name");
      font.name = std::move(name);
      break;
    }
    case FontAttribute::kSize: {
      const double size = value.ToCurrency().scaled / 10000.0;
      if (size <= 0 || size > 2160) automation::Raise(err::kInvalidPropertyValue, "font size");
      // VB6 keeps sizes as Single.
      font.size = static_cast<float>(size);
      break;
    }
    case FontAttribute::kBold:
      font.weight = value.ToBool() ? kBoldWeight : kNormalWeight;
      break;
    case FontAttribute::kItalic:
      font.italic = value.ToBool();
      break;
    case FontAttribute::kUnderline:
      font.underline = value.ToBool();
      break;
    case FontAttribute::kStrike:
      font.strikethrough = value.ToBool();
      break;
    case FontAttribute::kNone:
      return;
  }
  SetFont(font);
}

Variant ObjectProperties::FontAttributeValue(FontAttribute attribute) const {
  const FontValues font = Font();
  switch (attribute) {
    case FontAttribute::kName:
      return Variant(font.name);
    case FontAttribute::kSize:
      return Variant::Single(static_cast<float>(font.size));
    case FontAttribute::kBold:
      return Variant(IsBold(static_cast<int16_t>(font.weight)));
    case FontAttribute::kItalic:
      return Variant(font.italic);
    case FontAttribute::kUnderline:
      return Variant(font.underline);
    case FontAttribute::kStrike:
      return Variant(font.strikethrough);
    case FontAttribute::kNone:
      break;
  }
  return Variant();
}

}  // namespace ide::form
