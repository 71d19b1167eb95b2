#pragma once
// Typed property access over one object of a form description: what VBComponent.Properties,
// VBControl.Properties and the live control objects answer and take, over the same model.
//
// An object is a DescriptionNode (the root of a component's description or a control below it)
// with its class from the catalog (none for other libraries' controls and designers the catalog
// does not know; other libraries' controls have the extender's properties, ExtenderClass), the
// component's code page and its binary companion (CompanionStore).
//
// Reading answers as VB6 does: the stored value parsed by the property's catalog type; the
// omission default when the line is absent; strings and lists that VB6 keeps in the companion
// read from it (decoded with the code page). An object of a class the catalog does not know
// answers the properties its file stores, as written: quoted strings as text, numbers as
// numbers (Booleans where the line carries VB6's 'True or 'False comment, and writes to it keep
// that form), other values as their text; companion references as the record's content. A
// control of another library also answers the extender's properties (Tag, Visible, Left, ...)
// as VB's own controls answer them: typed, defaulted when absent, and written (the line added,
// rewritten or, at the default, removed) the same way.
//
// Writing coerces the value with the catalog (CoerceValue: 380, 383 read-only, 13, 6) and
// stores it as VB6 does: the line formatted by property_line in VB6's place, the line removed
// when the value equals the omission default (unless the property is always written), strings
// that VB6 keeps in the companion (long ones, ones with line breaks, a MultiLine TextBox's Text)
// written there as records, their line a reference whose offset the next save settles.
//
// Sizes a form-like object keeps as its client area (a form's Height, Left, Top, Width, which
// the file does not store) are answered and written as the client area's.
//
// Fonts are ambient: an object without its own Font group shows its form's font (the
// description's root); writing a font attribute writes the object's own group, and a font equal
// to the form's is dropped, as VB6 drops it. When the form's own font changes, the controls
// that showed it keep the font they had (VB6 changes only the form): each intrinsic control
// with a font gets its own group (other libraries' controls keep what their files store).

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "automation/variant.h"
#include "ide/form/companion.h"
#include "ide/form/companion_record.h"
#include "ide/form/companion_store.h"
#include "ide/form/description.h"
#include "ide/form/property_catalog.h"

namespace platform {
class CodePage;
}

namespace ide::form {

// The kind of record a reference line points at: by its property's catalog type (List and
// ItemData lists, pictures, `$` long strings, text without `$`, property pages); opaque for
// properties the catalog does not know.
CompanionRecordKind RecordKindOf(const PropertyEntry& entry);

// What an object's properties need besides its node.
struct FormContext {
  Description* description = nullptr;
  const platform::CodePage* codePage = nullptr;
  CompanionStore* companion = nullptr;  // null: the component has no companion
  // The root's class when its Begin line does not name one the catalog knows (a designer found
  // by its DesignerID, such as the user connection); null otherwise.
  const ClassInfo* rootClass = nullptr;
};

class ObjectProperties {
 public:
  ObjectProperties(FormContext context, DescriptionNode& node);

  DescriptionNode& Node() const { return *node_; }
  // The class from the catalog; null for a class it does not know.
  const ClassInfo* Class() const { return class_; }
  const FormContext& Context() const { return context_; }
  // The object's name as the Begin line has it.
  const std::string& ObjectName() const { return node_->Name(); }

  // The Properties collection: for a catalog class the properties it shows (window and hidden,
  // in its order); for another class Name, then the properties its file stores (lines and
  // groups) in stored order, then (a control) the extender's properties its file does not
  // store, in the extender's order; and Index by name also when its line is absent.
  int32_t Count() const;
  // The name at a zero-based position; raises 9 past the end.
  std::string NameAt(int32_t position) const;
  // The catalog's entry of a property of the collection (the extender's for another library's
  // control; null for unknown classes and names).
  const PropertyInfo* Find(std::string_view name) const;
  // Whether the collection has the property (stored ones for unknown classes).
  bool Has(std::string_view name) const;
  // The property's name as the collection spells it ("caption" gives "Caption").
  std::string Spelling(std::string_view name) const;

  // The value of a property of the collection or of the live object (a runtime-only font
  // attribute such as FontBold; Name; Index). Lists, fonts and pictures are not values: Get of
  // a list raises 380 (use the list members); of the font, a picture or another object it gives
  // Nothing (the font is Font()). An unknown name raises 438 naming it.
  automation::Variant Get(std::string_view name) const;
  // The size of the data an object-valued property keeps in the companion: a picture's image,
  // the record of another library's object (any of its lines that references the companion
  // other than as a `$` string). Nullopt when the property keeps none there (no picture) or is
  // not object-valued. Raises as reading the record does (53, 321).
  std::optional<std::size_t> CompanionDataSize(std::string_view name) const;
  // Writes a property (coerce, then store). Name and Index are written with WriteName and
  // WriteIndex by whoever keeps control arrays consistent; through Set they raise 383.
  void Set(std::string_view name, const automation::Variant& value);

  // Lists (List, ItemData): items kept in the companion record the line references.
  int32_t ListCount(std::string_view list) const;
  // Item i (zero-based); "" (List) or 0 (ItemData) past the end, as a list box answers.
  automation::Variant ListItem(std::string_view list, int32_t index) const;
  // Sets item i; past the end raises 381 "Invalid property array index".
  void SetListItem(std::string_view list, int32_t index, const automation::Variant& value);
  // Adds an item at index (-1: at the end); ItemData grows with List (0 for the new item).
  void AddItem(const automation::Variant& item, int32_t index = -1);
  // Removes item index (zero-based) and its ItemData entry; an index outside the list raises
  // 5 "Invalid procedure call or argument", as a list box's RemoveItem does.
  void RemoveItem(int32_t index);
  // Empties List and ItemData.
  void ClearList();

  // The font the object shows: its own group, else its form's (ambient), else VB6's default.
  FontValues Font() const;
  bool HasOwnFont() const;
  // Writes the object's font: its own group, dropped when equal to its form's.
  void SetFont(const FontValues& font);
  // One attribute, as the font object and FontBold... write it (coerced to its type).
  void SetFontAttribute(FontAttribute attribute, const automation::Variant& value);
  automation::Variant FontAttributeValue(FontAttribute attribute) const;

  // The primitives behind Name and Index writes: they change this object's Begin line or
  // Index line only, with VB's rules for a name (380); arrays are the caller's business.
  void WriteName(std::string_view name);
  void WriteIndex(int32_t index);

 private:
  automation::Variant Read(const PropertyInfo& info) const;
  automation::Variant ReadStored(const PropertyEntry& entry) const;
  void Store(const PropertyInfo& info, const automation::Variant& value);
  void StoreString(const PropertyInfo& info, const std::string& text);
  std::vector<std::string> ReadList(const PropertyInfo& info) const;
  // List with ItemData in step (an entry for every item, 0 where the record has none), when the
  // object stores ItemData; AddItem and RemoveItem edit both and store them.
  struct Items {
    std::vector<std::string> list;
    std::optional<std::vector<std::string>> data;
  };
  Items ReadItems() const;
  void StoreItems(const Items& items);
  void StoreList(const PropertyInfo& info, const std::vector<std::string>& items);
  void RemoveLine(std::string_view name);
  // The line's record, if an edit gave it one, is no longer its (the line is about to change).
  void ForgetRecord(std::string_view name);
  bool MultiLine() const;
  const PropertyInfo& Require(std::string_view name) const;
  const PropertyInfo* ExtenderInfo(std::string_view name) const;

  FormContext context_;
  DescriptionNode* node_;
  const ClassInfo* class_;
  const ClassInfo* extender_ = nullptr;  // a control of another library: the extender
};

// The font a description node has in its own group, if it has one.
std::optional<FontValues> OwnFont(const DescriptionNode& node);

}  // namespace ide::form
