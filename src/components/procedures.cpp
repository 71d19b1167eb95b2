#include "components/procedures.h"

#include <memory>

#include "components/procedure.h"
#include "components/procedure_walk.h"
#include "contracts/host_classes.h"
#include "contracts/ide_objects.h"
#include "foundation/operation.h"

namespace components {

using automation::ObjectRef;
using automation::Variant;
using foundation::Operation;

namespace {

constexpr const char* kClass = "Procedures";

}  // namespace

const automation::ClassInfo& Procedures::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<Procedures>("Procedures")
          .Method("Initialize", &Procedures::Initialize, {"Module"})
          .Method("TearDown", &Procedures::TearDown)
          .Method("UpdateKey", &Procedures::UpdateKey, {"OldName", "NewName"})
          .Get("Count", &Procedures::Count)
          .Method("Item", &Procedures::Item, {"Index"})
          .Method("NewEnum", &Procedures::NewEnum)
          .Id(-4)
          .Build();
  return info;
}

void Procedures::Initialize(ObjectRef& module) {
  Operation(kClass, "Initialize", [&] {
    const contracts::KeyedList list = contracts::KeyedList::New();
    list_ = list.object();
    if (!module) return;
    ObjectRef self = shared_from_this();
    const auto add = [&](const std::string& name, int32_t kind) {
      auto procedure = std::make_shared<Procedure>();
      procedure->Initialize(self, module, name, kind);
      list.Add(ObjectRef(procedure), procedure->Name());
    };
    add(Procedure::kDeclarations, contracts::kProcKindProc);
    WalkProcedures(contracts::CodeModule(module), add);
  });
}

void Procedures::TearDown() {
  Operation(kClass, "TearDown", [&] {
    if (!list_) return;
    const contracts::KeyedList list(list_);
    for (int32_t position = 0; position < list.Count(); ++position) {
      automation::Dispatch(list.ItemAt(list.Find(position)).ToObject()).Call("TearDown");
    }
    list_.reset();
  });
}

void Procedures::UpdateKey(const std::string& oldName, const std::string& newName) {
  Operation(kClass, "UpdateKey", [&] {
    const contracts::KeyedList list(list_);
    list.Rekey(list.Find(oldName), newName);
  });
}

int32_t Procedures::Count() {
  return Operation(kClass, "Count", [&] { return contracts::KeyedList(list_).Count(); });
}

ObjectRef Procedures::Item(const Variant& index) {
  return Operation(kClass, "Item", [&] {
    const contracts::KeyedList list(list_);
    return list.ItemAt(list.Find(index)).ToObject();
  });
}

ObjectRef Procedures::NewEnum() {
  return Operation(kClass, "NewEnum", [&] { return ObjectRef(); });
}

}  // namespace components
