#include "collections/component_collection.h"

#include <map>

#include "automation/error.h"
#include "foundation/globals.h"
#include "foundation/operation.h"
#include "platform/windows.h"

namespace collections {
namespace {

using automation::Dispatch;
using automation::ObjectRef;
using foundation::Operation;

// The commands every collection offers for one component.
struct Command {
  std::string_view caption;
  int32_t number;
  bool flag;
  std::string_view description;
};
constexpr Command kCommands[] = {{"&Design", 9, false, "Open the designer in design view."}};

constexpr int32_t kRestoreWindow = 9;

automation::ClassInfo BuildClassInfo(std::string_view name) {
  using C = ComponentCollection;
  return automation::ClassBuilder<C>(std::string(name))
      .Method("Initialize", &C::Initialize, {"Parent"})
      .Method("TearDown", &C::TearDown)
      .Implements("ICollection")
      .Method("EnumObjects", &C::ICollection_EnumObjects)
      .Method("GetObject", &C::ICollection_GetObject, {"ObjectName"})
      .Method("EnumCommands", &C::ICollection_EnumCommands)
      .Method("ExecuteCommand", &C::ICollection_ExecuteCommand, {"Index"})
      .Method("EnumObjectCommands", &C::ICollection_EnumObjectCommands, {"ObjectName"})
      .Method("ExecuteObjectCommand", &C::ICollection_ExecuteObjectCommand, {"ObjectName", "Index"})
      .Build();
}

}  // namespace

ComponentCollection::ComponentCollection(const contracts::ComponentKind& kind) : kind_(kind) {}

const automation::ClassInfo& ComponentCollection::Class() const {
  static const std::map<std::string_view, automation::ClassInfo> infos = [] {
    std::map<std::string_view, automation::ClassInfo> built;
    for (const contracts::ComponentKind& kind : contracts::kComponentKinds) {
      built.emplace(kind.collection, BuildClassInfo(kind.collection));
    }
    return built;
  }();
  return infos.at(kind_.collection);
}

void ComponentCollection::Initialize(std::shared_ptr<project::Project> parent) {
  Operation(kind_.collection, "Initialize", [&] { parent_ = std::move(parent); });
}

void ComponentCollection::TearDown() {
  Operation(kind_.collection, "TearDown", [&] { parent_.reset(); });
}

std::string ComponentCollection::ICollection_EnumObjects() {
  return Operation(kind_.collection, "ICollection_EnumObjects", [&] {
    if (!parent_) automation::Raise(automation::err::kObjectNotSet);
    if (parent_->IsActive()) {
      return Dispatch(parent_->Dispatcher()).Call(kind_.enumeration).ToString();
    }
    return parent_->EnumObjects(std::string(kind_.projectFileKey), kind_.bitmapId);
  });
}

ObjectRef ComponentCollection::ICollection_GetObject(const std::string& objectName) {
  return Operation(kind_.collection, "ICollection_GetObject", [&]() -> ObjectRef {
    if (!parent_) automation::Raise(automation::err::kObjectNotSet);
    const ObjectRef dispatcher = parent_->Dispatcher();
    if (!dispatcher) return nullptr;
    return Dispatch(dispatcher).Call(kind_.factory, ObjectRef(parent_), objectName).ToObject();
  });
}

std::string ComponentCollection::ICollection_EnumObjectCommands(const std::string&) {
  return Operation(kind_.collection, "ICollection_EnumObjectCommands", [&] {
    std::string result;
    for (const Command& command : kCommands) {
      if (!result.empty()) result += "\r\n";
      result += std::string(command.caption) + "\t" + std::to_string(command.number) + "\t" +
                (command.flag ? "True" : "False") + "\t" + std::string(command.description);
    }
    return result;
  });
}

void ComponentCollection::ICollection_ExecuteObjectCommand(const std::string& objectName,
                                                           int32_t index) {
  Operation(kind_.collection, "ICollection_ExecuteObjectCommand", [&] {
    if (index != 0) foundation::RaiseInvalidCaseSelector(automation::Variant(index));
    if (!parent_) automation::Raise(automation::err::kObjectNotSet);
    const ObjectRef vbProject = Dispatch(parent_->Dispatcher()).Get("VBProject").ToObject();
    if (!vbProject) return;
    const ObjectRef vbe = Dispatch(vbProject).Get("VBE").ToObject();
    const ObjectRef mainWindow = Dispatch(vbe).Get("MainWindow").ToObject();
    platform::ShowWindow(Dispatch(mainWindow).Get("hWnd").ToLong(), kRestoreWindow);
    const ObjectRef components = Dispatch(vbProject).Get("VBComponents").ToObject();
    Dispatch(Dispatch(components).Call("Item", objectName).ToObject()).Call("Activate");
  });
}

void RegisterCollectionClasses() {
  project::SetCollectionFactory([](std::string_view key) -> ObjectRef {
    const contracts::ComponentKind* kind = contracts::FindCollectionKind(key);
    if (kind == nullptr) automation::Raise(automation::err::kCantCreateObject, std::string(key));
    return std::make_shared<ComponentCollection>(*kind);
  });
  for (const contracts::ComponentKind& kind : contracts::kComponentKinds) {
    if (!kind.creatable) continue;
    foundation::RegisterCreatable(kind.collection, [&kind]() -> ObjectRef {
      return std::make_shared<ComponentCollection>(kind);
    });
  }
}

}  // namespace collections
