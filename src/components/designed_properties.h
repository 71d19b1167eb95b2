#pragma once
// The design-time properties of forms, user controls, user documents and property pages as
// data, and the one way they are read and written: live in the IDE, through the component's
// Properties.Item(name). A read converts the item's Value to the declared type, a write sets
// Value carried with the declared type. The font attributes go through the item "Font": its
// Object is a standard font object, whose attribute is reached by its dispatch identifier
// (FontSize reads the font's Currency size as a Single). A read marked for one kind of form
// first checks the component's Type and refuses the other kind with "Undefined property.".

#include <cstdint>
#include <span>
#include <string_view>

#include "automation/object.h"
#include "components/declared_types.h"

namespace components {

// The dispatch identifiers of the standard font object's attributes.
enum FontAttribute : int32_t {
  kFontName = 0,
  kFontSize = 2,
  kFontBold = 3,
  kFontItalic = 4,
  kFontUnderline = 5,
  kFontStrikethrough = 6,
  kNoFontAttribute = -1,
};

// Which kind of form a read is accepted on, by the component's Type.
enum class FormKinds : uint8_t { kEither, kStandard, kMdi };
inline constexpr int32_t kStandardFormType = 5;  // vbext_ct_VBForm
inline constexpr int32_t kMdiFormType = 6;       // vbext_ct_VBMDIForm

struct ComponentProperty {
  std::string_view name;  // "Caption": the member and, by default, the item
  DeclaredType type = DeclaredType::kString;
  std::string_view enumeration = {};         // "AppearanceConstants" for an enumeration
  int32_t fontAttribute = kNoFontAttribute;  // an attribute of the item "Font"
  FormKinds readsOn = FormKinds::kEither;
  std::string_view item = {};  // the IDE's item when it is not the property's own name
  bool readOnly = false;

  constexpr ComponentProperty On(FormKinds kinds) const {
    ComponentProperty p = *this;
    p.readsOn = kinds;
    return p;
  }
};

// The rows of a table.
constexpr ComponentProperty Plain(std::string_view name, DeclaredType type) {
  return {name, type};
}
constexpr ComponentProperty Enumerated(std::string_view name, std::string_view enumeration) {
  return {name, DeclaredType::kLong, enumeration};
}
constexpr ComponentProperty FontAttributeOf(std::string_view name, DeclaredType type,
                                            FontAttribute attribute) {
  return {name, type, {}, attribute};
}

// The property of the component (a VBComponent; null in mode 0, which fails with 91).
automation::Variant ReadComponentProperty(const automation::ObjectRef& component,
                                          const ComponentProperty& property);
void WriteComponentProperty(const automation::ObjectRef& component,
                            const ComponentProperty& property, const automation::Variant& value);

}  // namespace components
