#include "components/designed_component.h"

#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "automation/error.h"
#include "foundation/operation.h"

namespace components {

using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;

namespace {

ControlsFactory& Factory() {
  static ControlsFactory factory;
  return factory;
}

automation::ClassInfo BuildClassInfo(const DesignedClass& designed) {
  using C = DesignedComponent;
  automation::ClassBuilder<C> builder{std::string(designed.className)};
  builder.Method("Initialize", &C::Initialize, {"Parent", "VBProject", "Name"});
  if (designed.hasTearDown) builder.Method("TearDown", &C::TearDown);
  builder.Put("Name", &C::SetName).Get("Name", &C::Name);
  if (designed.hasControls) builder.Get("Controls", &C::Controls);
  builder.Get("Procedures", &C::Procedures);
  AddPropertyMembers(
      builder, designed.properties,
      [](C& self, const ComponentProperty& row) { return self.ReadProperty(row); },
      [](C& self, const ComponentProperty& row, const Variant& value) {
        self.WriteProperty(row, value);
      });
  return ComponentObject::AddObjectInterface(builder).Build();
}

}  // namespace

void SetControlsFactory(ControlsFactory factory) {
  Factory() = std::move(factory);
}

DesignedComponent::DesignedComponent(const DesignedClass& designed)
    : ComponentObject(*contracts::FindComponentKind(designed.className)), designed_(designed) {}

const automation::ClassInfo& DesignedComponent::Class() const {
  static std::mutex mutex;
  static std::map<std::string_view, automation::ClassInfo> infos;
  const std::lock_guard lock(mutex);
  auto it = infos.find(designed_.className);
  if (it == infos.end()) it = infos.emplace(designed_.className, BuildClassInfo(designed_)).first;
  return it->second;
}

ObjectRef DesignedComponent::Controls() {
  return foundation::Operation(Kind().component, "Controls", [&] {
    if (!controls_) {
      // There is no designer to list without the component.
      if (!Component()) automation::Raise(automation::err::kObjectNotSet);
      const ControlsFactory& factory = Factory();
      if (!factory) {
        foundation::RaiseUserError(
            "The driver cannot list controls: its Controls class is not available.");
      }
      controls_ = factory();
      automation::Args args{Component()};
      Dispatch(controls_).CallArgs("Initialize", args);
    }
    return controls_;
  });
}

Variant DesignedComponent::ReadProperty(const ComponentProperty& property) {
  return ReadComponentProperty(Component(), property);
}

void DesignedComponent::WriteProperty(const ComponentProperty& property, const Variant& value) {
  WriteComponentProperty(Component(), property, value);
}

void DesignedComponent::ReleaseParts() {
  const ObjectRef controls = std::exchange(controls_, nullptr);
  if (controls) Dispatch(controls).Call("TearDown");
}

}  // namespace components
