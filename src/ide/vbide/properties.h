#pragma once
// VBIDE's Properties collection and Property object over one object of a form description: a
// component's form, MDI form, user control, property page, user document or designer, and (for
// VBControl.Properties) a control on it. They hold no values of their own: every call finds the
// object again (the component's file may have been read again since) and reads or writes it
// through ide::form::ObjectProperties.
//
// Item takes a name (as the Properties window shows it, any letter case) or a 1-based position,
// as VBIDE's other collections count; anything else raises 9 "Subscript out of range". The
// collection lists every property the window shows, defaults included, in the catalog's order
// (for classes the catalog does not know, the properties the file stores, then for a control
// the extender's that it does not store).
//
// Property.Value is the default member: the value as VB6 answers it, written with VB6's
// coercions and errors. For the font it is a Properties collection of the font's own properties
// (Name, Size, Charset, Weight, Underline, Italic, Strikethrough, Bold); Property.Object is the
// font object itself (ide/vbide/font.h), and takes any object with a font's properties. Lists
// (List, ItemData) have NumIndices 1 and are read and written with IndexedValue(i), zero-based
// as a list box counts; their Value raises 380. Modules and classes have no Properties window
// here: their collection is empty.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "automation/object.h"
#include "ide/form/object_properties.h"

namespace ide::vbide {

// How a Properties collection reaches its object.
struct PropertySource {
  // The object's properties, found again at each call; raises when it is gone.
  std::function<form::ObjectProperties()> locate;
  // After every successful write (the owner's IsDirty).
  std::function<void()> changed;
  // Writes a property the core leaves to the owner (Name, Index); returns false when the owner
  // leaves it to the core. May be empty.
  std::function<bool(std::string_view name, const automation::Variant& value)> intercept;
};

class Property;

class Properties : public automation::Object {
 public:
  enum class Kind : uint8_t {
    kObject,  // the properties of a described object
    kFont,    // the properties of its font
    kEmpty,   // a module's or class's
  };

  Properties(PropertySource source, automation::ObjectRef parent, Kind kind = Kind::kObject);

  const automation::ClassInfo& Class() const override;

  int32_t Count() const;
  std::shared_ptr<Property> Item(const automation::Variant& index);
  automation::ObjectRef Parent() const { return parent_; }

  Kind GetKind() const { return kind_; }
  const PropertySource& Source() const { return source_; }

 private:
  PropertySource source_;
  automation::ObjectRef parent_;
  Kind kind_;
};

class Property : public automation::Object {
 public:
  Property(std::shared_ptr<Properties> collection, std::string name);

  const automation::ClassInfo& Class() const override;

  std::string Name() const { return name_; }
  automation::Variant Value();
  void SetValue(const automation::Variant& value);
  automation::Variant IndexedValue(const automation::Variant& index1,
                                   const automation::Variant& index2,
                                   const automation::Variant& index3,
                                   const automation::Variant& index4);
  void SetIndexedValue(const automation::Variant& index, const automation::Variant& value);
  int16_t NumIndices() const;
  automation::ObjectRef Object();
  void SetObject(const automation::Variant& value);
  std::shared_ptr<Properties> Collection() const { return collection_; }
  automation::ObjectRef Parent() const { return collection_->Parent(); }

 private:
  const form::PropertyInfo* Info(const form::ObjectProperties& object) const;
  void Changed() const;

  std::shared_ptr<Properties> collection_;
  std::string name_;
};

}  // namespace ide::vbide
