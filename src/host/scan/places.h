#pragma once
// Where the Scanner looks in a component: a table of place kinds. A place is one string
// property of one object reached from the component object (a procedure's Text, the
// component's Name, a string property of the component or of one of its controls, a list
// box's List, a control's Name, a page's HTML); each kind says which scope it belongs to and how
// to enumerate its places. Every place is read and written the same way, through its holder's
// property by name, so a new kind of place joins the walk as one more row of the table.
//
// Names, procedures, controls and HTML are reached through their automation members by name.
// Which string properties an object has comes from its member table (its class information):
// the component objects and their controls live in the Scanner's own process, so their classes
// are at hand; an object seen through a proxy offers no member table and so no properties.

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "automation/error.h"
#include "automation/object.h"

namespace host::scan {

struct Place {
  std::string_view kind;            // "procedure", "name", "property", "list", ...
  std::string name;                 // how results name it: "<declarations>", "Value.Get", ...
  automation::ObjectRef holder;     // the object whose property holds the text
  std::string property;             // that property: "Text", "Name", "Caption", ...
  std::optional<std::string> text;  // the value, when enumerating has read it already
  std::string control;              // the control holding it ("Option1(2)"), or "" (component)
  bool writable = true;             // false: searched, never written (a read-only setting)

  // The text: the one enumerating read, else the property's value (read once by the caller).
  std::string Read() const;
  // Writes a new value into the property.
  void Write(const std::string& value) const;
};

// What enumerating a kind gives its caller: each place, in the order of the component's file,
// and each problem met on the way (with the name of the place it concerns, when known); a
// problem with one place does not end the enumeration. `wants` says whether a scope is searched,
// so that a kind spanning several scopes reads nothing for a scope left out; `wantsControl`
// whether a control ("Option1(2)") is walked at all.
struct PlaceSink {
  std::function<void(Place)> place;
  std::function<void(const automation::Error&, const std::string& where)> problem;
  std::function<bool(std::string_view scope)> wants;
  std::function<bool(std::string_view control)> wantsControl;
};

// Whose places a kind enumerates: the component's own (its name, properties, HTML), its
// controls' or its code's. A request narrowed to one control leaves the component's own out.
enum class PlaceOwner { kComponent, kControls, kCode };

struct PlaceKind {
  std::string_view kind;
  // The scope of the kind's places; "" when they belong to several (the enumeration asks).
  std::string_view scope;
  PlaceOwner owner;
  // Enumerates the kind's places in the component; a failure that ends it (the object has no
  // such member, the collection cannot be read) is raised to the caller.
  void (*enumerate)(const automation::ObjectRef& component, const PlaceSink& sink);
};

// Every kind of place, in the order their places come in a component's file.
std::span<const PlaceKind> PlaceKinds();

}  // namespace host::scan
