#include "ide/vbide/properties.h"

#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/vbide/font.h"
#include "ide/vbide/make.h"

namespace ide::vbide {
namespace {

using automation::Variant;
namespace err = automation::err;

[[noreturn]] void NoItem(const Variant& index) {
  automation::Raise(err::kSubscript, "no property \"" + index.ToString() + "\"");
}

}  // namespace

Properties::Properties(PropertySource source, automation::ObjectRef parent, Kind kind)
    : source_(std::move(source)), parent_(std::move(parent)), kind_(kind) {}

const automation::ClassInfo& Properties::Class() const {
  // The members in the order of VBIDE's Properties interface.
  static const automation::ClassInfo info = automation::ClassBuilder<Properties>("Properties")
                                                .Method("Item", &Properties::Item, {"index"})
                                                .Id(0)
                                                .Get("Parent", &Properties::Parent)
                                                .Get("Count", &Properties::Count)
                                                .Build();
  return info;
}

int32_t Properties::Count() const {
  switch (kind_) {
    case Kind::kEmpty:
      return 0;
    case Kind::kFont:
      return static_cast<int32_t>(form::FontProperties().size());
    case Kind::kObject:
      break;
  }
  return source_.locate().Count();
}

std::shared_ptr<Property> Properties::Item(const Variant& index) {
  auto self = std::static_pointer_cast<Properties>(shared_from_this());
  if (kind_ == Kind::kEmpty) NoItem(index);
  std::string name;
  if (index.IsString()) {
    const std::string wanted = index.ToString();
    if (kind_ == Kind::kFont) {
      for (const form::PropertyInfo& info : form::FontProperties()) {
        if (automation::SameVbName(info.name, wanted)) name = std::string(info.name);
      }
    } else {
      form::ObjectProperties object = source_.locate();
      if (object.Has(wanted)) name = object.Spelling(wanted);
    }
    if (name.empty()) NoItem(index);
  } else {
    const int32_t position = index.ToLong();
    if (position < 1 || position > Count()) NoItem(index);
    if (kind_ == Kind::kFont) {
      name = std::string(form::FontProperties()[static_cast<std::size_t>(position - 1)].name);
    } else {
      name = source_.locate().NameAt(position - 1);
    }
  }
  return MakeBeside<Property>(*this, std::move(self), std::move(name));
}

Property::Property(std::shared_ptr<Properties> collection, std::string name)
    : collection_(std::move(collection)), name_(std::move(name)) {}

const automation::ClassInfo& Property::Class() const {
  // The members in the order of VBIDE's Property interface; Value is the default member.
  static const automation::ClassInfo info =
      automation::ClassBuilder<Property>("Property")
          .Get("Value", &Property::Value)
          .Id(0)
          .Put("Value", &Property::SetValue)
          .Id(0)
          .Get("IndexedValue", &Property::IndexedValue,
               {"Index1", automation::Optional("Index2"), automation::Optional("Index3"),
                automation::Optional("Index4")})
          .Put("IndexedValue", &Property::SetIndexedValue)
          .Get("NumIndices", &Property::NumIndices)
          .Get("Parent", &Property::Parent)
          .Get("Name", &Property::Name)
          .Get("Collection", &Property::Collection)
          .Get("Object", &Property::Object)
          .Put("Object", &Property::SetObject)
          .Build();
  return info;
}

const form::PropertyInfo* Property::Info(const form::ObjectProperties& object) const {
  return object.Find(name_);
}

void Property::Changed() const {
  if (collection_->Source().changed) collection_->Source().changed();
}

Variant Property::Value() {
  form::ObjectProperties object = collection_->Source().locate();
  if (collection_->GetKind() == Properties::Kind::kFont) return ReadFontProperty(object, name_);
  const form::PropertyInfo* info = Info(object);
  if (info != nullptr && info->type == form::ValueType::kFont) {
    // The font's own properties, as VBIDE gives an object-valued property's Value.
    return Variant(MakeBeside<Properties>(*this, collection_->Source(), shared_from_this(),
                                          Properties::Kind::kFont));
  }
  return object.Get(name_);
}

void Property::SetValue(const Variant& value) {
  const PropertySource& source = collection_->Source();
  form::ObjectProperties object = source.locate();
  if (collection_->GetKind() == Properties::Kind::kFont) {
    WriteFontProperty(object, name_, value);
  } else if (source.intercept && source.intercept(name_, value)) {
    // The owner wrote it (a name or an index).
  } else {
    const form::PropertyInfo* info = Info(object);
    if (info != nullptr && info->type == form::ValueType::kFont) {
      CopyFont(object, value.ToObject());
    } else {
      object.Set(name_, value);
    }
  }
  Changed();
}

Variant Property::IndexedValue(const Variant& index1, const Variant& index2, const Variant& index3,
                               const Variant& index4) {
  if (NumIndices() == 0) {
    automation::Raise(err::kInvalidCall, name_ + " takes no index");
  }
  if (!index2.IsEmpty() || !index3.IsEmpty() || !index4.IsEmpty()) {
    automation::Raise(err::kInvalidCall, name_ + " takes one index");
  }
  return collection_->Source().locate().ListItem(name_, index1.ToLong());
}

void Property::SetIndexedValue(const Variant& index, const Variant& value) {
  if (NumIndices() == 0) automation::Raise(err::kInvalidCall, name_ + " takes no index");
  form::ObjectProperties object = collection_->Source().locate();
  object.SetListItem(name_, index.ToLong(), value);
  Changed();
}

int16_t Property::NumIndices() const {
  if (collection_->GetKind() != Properties::Kind::kObject) return 0;
  const form::ObjectProperties object = collection_->Source().locate();
  const form::PropertyInfo* info = Info(object);
  return info != nullptr ? static_cast<int16_t>(info->NumIndices()) : 0;
}

automation::ObjectRef Property::Object() {
  if (collection_->GetKind() == Properties::Kind::kObject) {
    const form::ObjectProperties object = collection_->Source().locate();
    const form::PropertyInfo* info = Info(object);
    if (info != nullptr && info->type == form::ValueType::kFont) {
      return MakeBeside<Font>(*this, collection_->Source());
    }
    if (info != nullptr && info->IsObject()) return nullptr;  // no picture, no object
  }
  automation::Raise(err::kInvalidCall, name_ + " is not an object");
}

void Property::SetObject(const Variant& value) {
  const PropertySource& source = collection_->Source();
  form::ObjectProperties object = source.locate();
  const form::PropertyInfo* info =
      collection_->GetKind() == Properties::Kind::kObject ? Info(object) : nullptr;
  if (info == nullptr || !info->IsObject()) {
    automation::Raise(err::kInvalidCall, name_ + " is not an object");
  }
  if (info->type == form::ValueType::kFont) {
    CopyFont(object, value.ToObject());
  } else {
    object.Set(name_, value);
  }
  Changed();
}

}  // namespace ide::vbide
