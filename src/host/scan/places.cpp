#include "host/scan/places.h"

#include <algorithm>
#include <array>

#include "automation/casefold.h"
#include "host/scan/scan_request.h"

namespace host::scan {
namespace {

using automation::Dispatch;
using automation::MemberKind;
using automation::ObjectRef;
using automation::VarType;

// The driver's refusal of a property that the object's type does not have: not a problem, the
// property is simply not there.
constexpr int32_t kUndefinedProperty = -32749;

Place Make(std::string_view kind, std::string name, ObjectRef holder, std::string property,
           std::optional<std::string> text, std::string control = {}) {
  Place place;
  place.kind = kind;
  place.name = std::move(name);
  place.holder = std::move(holder);
  place.property = std::move(property);
  place.text = std::move(text);
  place.control = std::move(control);
  return place;
}

// Members that are places of their own kind (or not text at all), never walked as properties.
constexpr std::array<std::string_view, 5> kOwnKinds = {"Name", "Procedures", "Controls", "List",
                                                       "HTML"};

bool IsOwnKind(std::string_view member) {
  return std::any_of(kOwnKinds.begin(), kOwnKinds.end(), [&](std::string_view own) {
    return automation::EqualsAsciiNoCase(own, member);
  });
}

// The object's own members (its default interface), or none for an object seen through a proxy.
const automation::Interface& MembersOf(const ObjectRef& object) {
  return object->Class().defaultInterface;
}

// Whether a read member's declared type can hold text: a String, or a Variant (whose value
// says, once read); a member the object flags hidden (a property its type lacks) holds none.
bool CanHoldText(const automation::Member& member) {
  return member.kind == MemberKind::Get && member.params.empty() && !member.hidden &&
         (member.type == VarType::String || member.type == VarType::Variant);
}

// Reads a property that may not exist on this object's type: nullopt when the driver says the
// type has no such property, or when the value read is not text.
std::optional<std::string> ReadText(const ObjectRef& holder, const std::string& property) {
  try {
    const automation::Variant value = Dispatch(holder).Get(property);
    if (!value.IsString()) return std::nullopt;
    return value.ToString();
  } catch (const automation::Error& error) {
    if (error.Number() == kUndefinedProperty) return std::nullopt;
    throw;
  }
}

// One place per string property of the object, in its member table's order, each read once; a
// property without a write is searched but not written.
void EnumerateStringProperties(const ObjectRef& holder, const std::string& control,
                               const std::string& prefix, const PlaceSink& sink) {
  const automation::Interface& members = MembersOf(holder);
  for (const automation::Member& member : members.members) {
    if (!CanHoldText(member) || IsOwnKind(member.name)) continue;
    try {
      std::optional<std::string> text = ReadText(holder, member.name);
      if (!text) continue;
      Place place =
          Make("property", prefix + member.name, holder, member.name, std::move(text), control);
      place.writable = members.Find(member.name, MemberKind::Put) != nullptr;
      sink.place(std::move(place));
    } catch (const automation::Error& error) {
      sink.problem(error, prefix + member.name);
    }
  }
}

// The component's own name ("names"): the object's Name, which a replacement writes back to
// rename the component.
void EnumerateName(const ObjectRef& component, const PlaceSink& sink) {
  std::string name = Dispatch(component).Get("Name").ToString();
  sink.place(Make("name", name, component, "Name", name));
}

// The component's string properties ("properties"): Caption, Tag, LinkTopic, a user
// connection's settings, ...
void EnumerateProperties(const ObjectRef& component, const PlaceSink& sink) {
  EnumerateStringProperties(component, "", "", sink);
}

// The controls: Controls -> Count and Item(0 .. Count - 1); for each its Name ("names", the
// name with its index in a control array: "Option1(2)"), its string properties and its List
// ("properties", the items joined by CR LF). A component without controls has no places here.
void EnumerateControls(const ObjectRef& component, const PlaceSink& sink) {
  const bool names = sink.wants(kScopeNames);
  const bool properties = sink.wants(kScopeProperties);
  if ((!names && !properties) || !MembersOf(component).Has("Controls")) return;
  const Dispatch controls(Dispatch(component).Get("Controls").ToObject());
  const int32_t count = controls.Get("Count").ToLong();
  for (int32_t i = 0; i < count; ++i) {
    std::string where = "control " + std::to_string(i);
    try {
      ObjectRef control = controls.Call("Item", i).ToObject();
      std::string name = Dispatch(control).Get("Name").ToString();
      where = name;
      if (!sink.wantsControl(name)) continue;
      if (names) {
        sink.place(Make("controlName", name, control, "Name", name, name));
      }
      if (!properties) continue;
      EnumerateStringProperties(control, name, name + ".", sink);
      // A control whose type has no list flags the member hidden, as it does its other
      // properties that the type lacks.
      const automation::Member* list = MembersOf(control).Find("List", MemberKind::Get);
      if (list == nullptr || list->hidden) continue;
      if (std::optional<std::string> items = ReadText(control, "List")) {
        sink.place(Make("list", name + ".List", control, "List", std::move(items), name));
      }
    } catch (const automation::Error& error) {
      sink.problem(error, where);
    }
  }
}

// A page's HTML ("html"), when the component has one.
void EnumerateHtml(const ObjectRef& component, const PlaceSink& sink) {
  if (!MembersOf(component).Has("HTML")) return;
  std::optional<std::string> html = ReadText(component, "HTML");
  if (!html) return;
  Place place = Make("html", "HTML", component, "HTML", std::move(html));
  place.writable = MembersOf(component).Find("HTML", MemberKind::Put) != nullptr;
  sink.place(std::move(place));
}

// The procedures ("code"): Procedures -> Count and Item(0 .. Count - 1), each with its Name; the
// declarations section comes first, then the procedures from top to bottom.
void EnumerateProcedures(const ObjectRef& component, const PlaceSink& sink) {
  const Dispatch procedures(Dispatch(component).Get("Procedures").ToObject());
  const int32_t count = procedures.Get("Count").ToLong();
  for (int32_t i = 0; i < count; ++i) {
    try {
      ObjectRef procedure = procedures.Call("Item", i).ToObject();
      std::string name = Dispatch(procedure).Get("Name").ToString();
      sink.place(Make("procedure", std::move(name), std::move(procedure), "Text", std::nullopt));
    } catch (const automation::Error& error) {
      sink.problem(error, "procedure " + std::to_string(i));
    }
  }
}

// In the order of a form's file: the component's name and properties, its controls, then the
// code.
constexpr std::array kKinds = {
    PlaceKind{"name", kScopeNames, PlaceOwner::kComponent, &EnumerateName},
    PlaceKind{"property", kScopeProperties, PlaceOwner::kComponent, &EnumerateProperties},
    PlaceKind{"control", "", PlaceOwner::kControls, &EnumerateControls},
    PlaceKind{"html", kScopeHtml, PlaceOwner::kComponent, &EnumerateHtml},
    PlaceKind{"procedure", kScopeCode, PlaceOwner::kCode, &EnumerateProcedures},
};

}  // namespace

std::string Place::Read() const {
  if (text) return *text;
  return Dispatch(holder).Get(property).ToString();
}

void Place::Write(const std::string& value) const {
  Dispatch(holder).Put(property, value);
}

std::span<const PlaceKind> PlaceKinds() {
  return kKinds;
}

}  // namespace host::scan
