#include "components/designed_properties.h"

#include <string>

#include "foundation/vxhandler.h"

namespace components {

using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;

namespace {

// The IDE's Property object of the component that the row goes through.
Dispatch Item(const ObjectRef& component, const ComponentProperty& property) {
  std::string_view name = property.item.empty() ? property.name : property.item;
  if (property.fontAttribute != kNoFontAttribute) name = "Font";
  const Dispatch properties(Dispatch(component).Get("Properties").ToObject());
  return Dispatch(properties.Call("Item", std::string(name)).ToObject());
}

void CheckFormKind(const ObjectRef& component, FormKinds kinds) {
  if (kinds == FormKinds::kEither) return;
  const int32_t type = Dispatch(component).Get("Type").ToLong();
  const int32_t wanted = kinds == FormKinds::kStandard ? kStandardFormType : kMdiFormType;
  if (type != wanted) foundation::RaiseUndefinedProperty();
}

}  // namespace

Variant ReadComponentProperty(const ObjectRef& component, const ComponentProperty& property) {
  CheckFormKind(component, property.readsOn);
  const Dispatch item = Item(component, property);
  if (property.fontAttribute != kNoFontAttribute) {
    const Dispatch font(item.Get("Object").ToObject());
    return ToDeclared(font.GetId(property.fontAttribute), property.type);
  }
  if (property.type == DeclaredType::kObject) return item.Get("Object");
  return ToDeclared(item.Get("Value"), property.type);
}

void WriteComponentProperty(const ObjectRef& component, const ComponentProperty& property,
                            const Variant& value) {
  const Dispatch item = Item(component, property);
  if (property.fontAttribute != kNoFontAttribute) {
    Dispatch(item.Get("Object").ToObject())
        .PutId(property.fontAttribute, ToDeclared(value, property.type));
    return;
  }
  item.Put("Value", ToDeclared(value, property.type));
}

}  // namespace components
