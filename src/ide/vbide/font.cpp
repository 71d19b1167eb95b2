#include "ide/vbide/font.h"

#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/form/property_value.h"

namespace ide::vbide {
namespace {

using automation::Variant;
namespace err = automation::err;

bool Same(std::string_view a, std::string_view b) {
  return automation::SameVbName(a, b);
}

const form::PropertyInfo& FontInfo(std::string_view name) {
  for (const form::PropertyInfo& info : form::FontProperties()) {
    if (Same(info.name, name)) return info;
  }
  automation::Raise(err::kNoSuchMember, "the font has no property \"" + std::string(name) + "\"");
}

}  // namespace

Variant ReadFontProperty(const form::ObjectProperties& object, std::string_view name) {
  const form::PropertyInfo& info = FontInfo(name);
  const form::FontSpec font = object.Font();
  if (Same(info.name, "Name")) return Variant(font.name);
  if (Same(info.name, "Size")) return Variant::Single(static_cast<float>(font.size));
  if (Same(info.name, "Charset")) return Variant::Integer(static_cast<int16_t>(font.charset));
  if (Same(info.name, "Weight")) return Variant::Integer(static_cast<int16_t>(font.weight));
  if (Same(info.name, "Underline")) return Variant(font.underline);
  if (Same(info.name, "Italic")) return Variant(font.italic);
  if (Same(info.name, "Strikethrough")) return Variant(font.strikethrough);
  return Variant(form::IsBold(static_cast<int16_t>(font.weight)));
}

void WriteFontProperty(form::ObjectProperties& object, std::string_view name,
                       const Variant& value) {
  const form::PropertyInfo& info = FontInfo(name);
  if (Same(info.name, "Size")) {
    // The font object takes its size as Currency; the file keeps it as a Single.
    object.SetFontAttribute(form::FontAttribute::kSize, Variant::Cur(value.ToCurrency()));
    return;
  }
  if (Same(info.name, "Bold")) {
    object.SetFontAttribute(form::FontAttribute::kBold, value);
    return;
  }
  const Variant coerced = form::CoerceValue(info, value);
  form::FontSpec font = object.Font();
  if (Same(info.name, "Name")) {
    if (coerced.ToString().empty()) {
      automation::Raise(err::kInvalidPropertyValue, "a font needs a name");
    }
    font.name = coerced.ToString();
  } else if (Same(info.name, "Charset")) {
    font.charset = coerced.ToLong();
  } else if (Same(info.name, "Weight")) {
    font.weight = coerced.ToLong();
  } else if (Same(info.name, "Underline")) {
    font.underline = coerced.ToBool();
  } else if (Same(info.name, "Italic")) {
    font.italic = coerced.ToBool();
  } else if (Same(info.name, "Strikethrough")) {
    font.strikethrough = coerced.ToBool();
  }
  object.SetFont(font);
}

void CopyFont(form::ObjectProperties& object, const automation::ObjectRef& font) {
  if (!font) automation::Raise(err::kInvalidPropertyValue, "a font object is needed");
  if (auto ours = std::dynamic_pointer_cast<Font>(font)) {
    form::FontSpec spec = object.Font();
    spec.name = ours->Name();
    spec.size = static_cast<double>(ours->Size().scaled) / 10000.0;
    spec.charset = ours->Charset();
    spec.weight = ours->Weight();
    spec.underline = ours->Underline();
    spec.italic = ours->Italic();
    spec.strikethrough = ours->Strikethrough();
    object.SetFont(spec);
    return;
  }
  // Another font object: its settings by StdFont's names.
  const automation::Dispatch other(font);
  form::FontSpec spec = object.Font();
  spec.name = other.Get("Name").ToString();
  spec.size = static_cast<float>(other.Get("Size").ToCurrency().scaled / 10000.0);
  spec.weight = other.Get("Weight").ToLong();
  spec.charset = other.Get("Charset").ToLong();
  spec.underline = other.Get("Underline").ToBool();
  spec.italic = other.Get("Italic").ToBool();
  spec.strikethrough = other.Get("Strikethrough").ToBool();
  object.SetFont(spec);
}

Font::Font(PropertySource source) : source_(std::move(source)) {}

const automation::ClassInfo& Font::Class() const {
  // StdFont's members with their standard dispatch identifiers.
  static const automation::ClassInfo info = automation::ClassBuilder<Font>("Font")
                                                .Get("Name", &Font::Name)
                                                .Id(0)
                                                .Put("Name", &Font::SetName)
                                                .Id(0)
                                                .Get("Size", &Font::Size)
                                                .Id(2)
                                                .Put("Size", &Font::SetSize)
                                                .Id(2)
                                                .Get("Bold", &Font::Bold)
                                                .Id(3)
                                                .Put("Bold", &Font::SetBold)
                                                .Id(3)
                                                .Get("Italic", &Font::Italic)
                                                .Id(4)
                                                .Put("Italic", &Font::SetItalic)
                                                .Id(4)
                                                .Get("Underline", &Font::Underline)
                                                .Id(5)
                                                .Put("Underline", &Font::SetUnderline)
                                                .Id(5)
                                                .Get("Strikethrough", &Font::Strikethrough)
                                                .Id(6)
                                                .Put("Strikethrough", &Font::SetStrikethrough)
                                                .Id(6)
                                                .Get("Weight", &Font::Weight)
                                                .Id(7)
                                                .Put("Weight", &Font::SetWeight)
                                                .Id(7)
                                                .Get("Charset", &Font::Charset)
                                                .Id(8)
                                                .Put("Charset", &Font::SetCharset)
                                                .Id(8)
                                                .Build();
  return info;
}

std::string Font::Name() const {
  return source_.locate().Font().name;
}

automation::Currency Font::Size() const {
  return Variant(source_.locate().Font().size).ToCurrency();
}

bool Font::Bold() const {
  return form::IsBold(static_cast<int16_t>(source_.locate().Font().weight));
}

bool Font::Italic() const {
  return source_.locate().Font().italic;
}

bool Font::Underline() const {
  return source_.locate().Font().underline;
}

bool Font::Strikethrough() const {
  return source_.locate().Font().strikethrough;
}

int16_t Font::Weight() const {
  return static_cast<int16_t>(source_.locate().Font().weight);
}

int16_t Font::Charset() const {
  return static_cast<int16_t>(source_.locate().Font().charset);
}

void Font::Write(form::FontAttribute attribute, const Variant& value) {
  form::ObjectProperties object = source_.locate();
  object.SetFontAttribute(attribute, value);
  if (source_.changed) source_.changed();
}

void Font::WriteSpec(const form::FontSpec& font) {
  form::ObjectProperties object = source_.locate();
  object.SetFont(font);
  if (source_.changed) source_.changed();
}

void Font::SetName(const std::string& name) {
  Write(form::FontAttribute::kName, Variant(name));
}

void Font::SetSize(automation::Currency size) {
  Write(form::FontAttribute::kSize, Variant::Cur(size));
}

void Font::SetBold(bool bold) {
  Write(form::FontAttribute::kBold, Variant(bold));
}

void Font::SetItalic(bool italic) {
  Write(form::FontAttribute::kItalic, Variant(italic));
}

void Font::SetUnderline(bool underline) {
  Write(form::FontAttribute::kUnderline, Variant(underline));
}

void Font::SetStrikethrough(bool strikethrough) {
  Write(form::FontAttribute::kStrike, Variant(strikethrough));
}

void Font::SetWeight(int16_t weight) {
  if (weight < 0 || weight > 1000) automation::Raise(err::kInvalidPropertyValue, "font weight");
  form::FontSpec font = source_.locate().Font();
  font.weight = weight;
  WriteSpec(font);
}

void Font::SetCharset(int16_t charset) {
  form::FontSpec font = source_.locate().Font();
  font.charset = charset;
  WriteSpec(font);
}

}  // namespace ide::vbide
