#include "controls/controls.h"

#include <memory>

#include "contracts/host_classes.h"
#include "controls/control.h"
#include "foundation/operation.h"

namespace controls {

using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;
using foundation::Operation;

namespace {

constexpr const char* kClass = "Controls";

// The designer of the component, or null when it has none (or cannot give it).
ObjectRef DesignerOf(const ObjectRef& vbComponent) {
  try {
    return Dispatch(vbComponent).Get("Designer").ToObject();
  } catch (const automation::Error&) {
    return nullptr;
  }
}

}  // namespace

const automation::ClassInfo& Controls::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<Controls>("Controls")
          .Method("Initialize", &Controls::Initialize, {"VBComponent"})
          .Method("TearDown", &Controls::TearDown)
          .Get("Count", &Controls::Count)
          .Method("Item", &Controls::Item, {"Index"})
          .Method("NewEnum", &Controls::NewEnum)
          .Id(-4)
          .Method("UpdateKey", &Controls::UpdateKey, {"OldName", "NewName"})
          .Build();
  return info;
}

void Controls::Initialize(ObjectRef& vbComponent) {
  Operation(kClass, "Initialize", [&] {
    const contracts::KeyedList list = contracts::KeyedList::New();
    list_ = list.object();
    const ObjectRef designer = DesignerOf(vbComponent);
    if (!designer) return;
    const Dispatch vbControls(Dispatch(designer).Get("VBControls").ToObject());
    ObjectRef self = shared_from_this();
    const int32_t count = vbControls.Get("Count").ToLong();
    for (int32_t index = 1; index <= count; ++index) {
      ObjectRef vbControl = vbControls.Call("Item", index).ToObject();
      auto control = std::make_shared<Control>();
      control->Initialize(self, vbControl);
      list.Add(ObjectRef(control), Dispatch(control).Get("Name").ToString());
    }
  });
}

void Controls::TearDown() {
  Operation(kClass, "TearDown", [&] {
    if (!list_) return;
    const contracts::KeyedList list(list_);
    const int32_t count = list.Count();
    for (int32_t position = 0; position < count; ++position) {
      Dispatch(list.ItemAt(list.Find(position)).ToObject()).Call("TearDown");
    }
    list_.reset();
  });
}

Variant Controls::Count() {
  return Operation(kClass, "Count",
                   [&] { return Variant::Long(contracts::KeyedList(list_).Count()); });
}

ObjectRef Controls::Item(const Variant& index) {
  return Operation(kClass, "Item", [&] {
    const contracts::KeyedList list(list_);
    return list.ItemAt(list.Find(index)).ToObject();
  });
}

ObjectRef Controls::NewEnum() {
  return Operation(kClass, "NewEnum", [&] { return ObjectRef(); });
}

void Controls::UpdateKey(const std::string& oldName, const std::string& newName) {
  Operation(kClass, "UpdateKey", [&] {
    const contracts::KeyedList list(list_);
    list.Rekey(list.Find(oldName), newName);
  });
}

}  // namespace controls
