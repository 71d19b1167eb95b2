#include "project/dispatcher.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "contracts/host_classes.h"
#include "foundation/globals.h"
#include "foundation/operation.h"
#include "foundation/vxhandler.h"
#include "platform/files.h"
#include "project/utility.h"

namespace project {

using automation::Dispatch;
using automation::ObjectRef;
using foundation::Operation;

namespace {

constexpr const char* kClass = "Dispatcher";

std::map<std::string, ComponentFactory, std::less<>>& Factories() {
  static std::map<std::string, ComponentFactory, std::less<>> factories;
  return factories;
}

}  // namespace

void RegisterComponentClass(std::string className, ComponentFactory factory) {
  const contracts::ComponentKind* kind = contracts::FindComponentKind(className);
  if (kind != nullptr && kind->creatable) foundation::RegisterCreatable(className, factory);
  Factories()[std::move(className)] = std::move(factory);
}

const automation::ClassInfo& Dispatcher::Class() const {
  static const automation::ClassInfo info = [] {
    automation::ClassBuilder<Dispatcher> builder("Dispatcher");
    builder.Method("Initialize", &Dispatcher::Initialize, {"Parent", "VBProject"})
        .Method("TearDown", &Dispatcher::TearDown)
        .Method("Initialize2", &Dispatcher::Initialize2, {"ProblemLog"})
        .Get("VBProject", &Dispatcher::VBProject);
    [&]<size_t... K>(std::index_sequence<K...>) {
      using contracts::kComponentKinds;
      (builder.Method(std::string(kComponentKinds[K].enumeration), &Dispatcher::EnumKind<K>), ...);
      (builder.Method(std::string(kComponentKinds[K].factory), &Dispatcher::GetKind<K>,
                      {"Project", "ObjectName"}),
       ...);
    }
    (std::make_index_sequence<contracts::kComponentKinds.size()>());
    return builder.Build();
  }();
  return info;
}

void Dispatcher::Initialize(ObjectRef& parent, ObjectRef& vbProject) {
  Operation(kClass, "Initialize", [&] {
    parent_ = parent;
    vbProject_ = vbProject;
    link_ = contracts::ProblemLogLink::New().object();
  });
}

void Dispatcher::TearDown() {
  Operation(kClass, "TearDown", [&] {
    parent_.reset();
    vbProject_.reset();
    link_.reset();
    contracts::Tracer::Get().Finish();
  });
}

void Dispatcher::Initialize2(ObjectRef& problemLog) {
  Operation(kClass, "Initialize2", [&] { contracts::ProblemLogLink(link_).Link(problemLog); });
}

ObjectRef Dispatcher::VBProject() {
  return Operation(kClass, "VBProject", [&] { return vbProject_; });
}

Dispatcher::FileInfo Dispatcher::GetFileInfo(const std::string& file) {
  return Operation(kClass, "GetFileInfo", [&] {
    // A missing or unreadable file is no failure: it only empties the version and the flags.
    bool dated = false;
    platform::LocalTime modified{};
    try {
      modified = platform::FileDateTime(file);
      dated = true;
    } catch (...) {
      dated = false;
    }
    uint32_t attributes = 0;
    try {
      attributes = platform::GetAttr(file);
    } catch (...) {
      attributes = 0;
    }
    FileInfo info;
    if (!dated) return info;
    info.version = VersionText(modified);
    info.flag = true;
    info.writable = (attributes & platform::kAttrReadOnly) == 0;
    return info;
  });
}

std::string Dispatcher::Enumerate(const contracts::ComponentKind& kind) {
  return Operation(kClass, kind.enumeration, [&] {
    std::string result;
    bool first = true;
    const Dispatch components(Dispatch(vbProject_).Get("VBComponents").ToObject());
    const int32_t count = components.Get("Count").ToLong();
    for (int32_t index = 1; index <= count; ++index) {
      const ObjectRef component = components.Call("Item", index).ToObject();
      const Dispatch read(component);
      const auto designerId = [&] { return read.Get("DesignerID").ToString(); };
      if (!contracts::TakesComponent(kind, read.Get("Type").ToLong(), designerId)) continue;
      const std::string name = read.Get("Name").ToString();
      const FileInfo info = GetFileInfo(read.GetAt("FileNames", int16_t{1}).ToString());
      if (!first) result += "\r\n";
      first = false;
      result += name + "\t" + std::to_string(kind.bitmapId) + "\t" + info.version + "\t" +
                (info.flag ? "1" : "0") + "\t" + (info.writable ? "1" : "0") + "\t1\t0";
    }
    return result;
  });
}

ObjectRef Dispatcher::Build(const contracts::ComponentKind& kind, ObjectRef& project,
                            const std::string& objectName) {
  return Operation(kClass, kind.factory, [&]() -> ObjectRef {
    const auto found = Factories().find(kind.component);
    ObjectRef object = found != Factories().end() ? found->second() : nullptr;
    if (!object) {
      const std::string name(kind.component);
      foundation::RaiseUserError("The driver cannot open a " + name + " yet: its " + name +
                                 " class is not available.");
    }
    // The name is not checked here: the object looks its component up when it needs it.
    automation::Args args{project, vbProject_, objectName};
    Dispatch(object).CallArgs("Initialize", args);
    return object;
  });
}

}  // namespace project
