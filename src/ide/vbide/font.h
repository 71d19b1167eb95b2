#pragma once
// The font object (IFontDisp) of a form or control, live over the form description: every read
// answers the object's font as it stands (its own Font group, else its form's), every write
// changes the group at once (ObjectProperties::SetFont: a font equal to the form's is dropped).
// Its members carry StdFont's dispatch identifiers: Name 0, Size 2 (Currency), Bold 3, Italic 4,
// Underline 5, Strikethrough 6, Weight 7, Charset 8.

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/object.h"
#include "ide/vbide/properties.h"

namespace ide::vbide {

class Font : public automation::Object {
 public:
  explicit Font(PropertySource source);

  const automation::ClassInfo& Class() const override;

  std::string Name() const;
  void SetName(const std::string& name);
  automation::Currency Size() const;
  void SetSize(automation::Currency size);
  bool Bold() const;
  void SetBold(bool bold);
  bool Italic() const;
  void SetItalic(bool italic);
  bool Underline() const;
  void SetUnderline(bool underline);
  bool Strikethrough() const;
  void SetStrikethrough(bool strikethrough);
  int16_t Weight() const;
  void SetWeight(int16_t weight);
  int16_t Charset() const;
  void SetCharset(int16_t charset);

 private:
  void Write(form::FontAttribute attribute, const automation::Variant& value);
  void WriteSpec(const form::FontSpec& font);

  PropertySource source_;
};

// A font attribute by the name Properties("Font").Value lists it (Name, Size, Charset, Weight,
// Underline, Italic, Strikethrough, Bold), read and written over an object's properties. Size
// is answered as the file's Single; Weight and Charset as Integers.
automation::Variant ReadFontProperty(const form::ObjectProperties& object, std::string_view name);
void WriteFontProperty(form::ObjectProperties& object, std::string_view name,
                       const automation::Variant& value);
// Copies another font object's settings (ours or any object with a font's properties).
void CopyFont(form::ObjectProperties& object, const automation::ObjectRef& font);

}  // namespace ide::vbide
