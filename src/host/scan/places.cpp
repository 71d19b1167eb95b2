#include "host/scan/places.h"

#include <array>

#include "host/scan/scan_request.h"

namespace host::scan {
namespace {

using automation::Dispatch;
using automation::ObjectRef;

// The component's own name ("names"): the object's Name, which a replacement writes back to
// rename the component.
void EnumerateName(const ObjectRef& component, const PlaceSink& sink) {
  std::string name = Dispatch(component).Get("Name").ToString();
  sink.place(Place{"name", name, component, "Name", std::move(name)});
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
      sink.place(Place{"procedure", std::move(name), std::move(procedure), "Text", std::nullopt});
    } catch (const automation::Error& error) {
      sink.problem(error, "procedure " + std::to_string(i));
    }
  }
}

constexpr std::array kKinds = {
    PlaceKind{"name", kScopeNames, &EnumerateName},
    PlaceKind{"procedure", kScopeCode, &EnumerateProcedures},
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
