#pragma once
// Where the Scanner looks in a component: a table of place kinds. A place is one string
// property of one object reached from the component object (a procedure's Text, the
// component's Name); each kind says which scope it belongs to and how to enumerate its places.
// Every place is read and written the same way, through its holder's property by name, so a
// new kind of place (string properties of the component and its controls, list items, control
// names, HTML) joins the walk as one more row of the table.
//
// The objects are reached only through their automation members, by name: the component object
// may be a proxy to another process, whose class information is not at hand.

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "automation/error.h"
#include "automation/object.h"

namespace host::scan {

struct Place {
  std::string_view kind;            // "procedure", "name", ...
  std::string name;                 // how results name it: "<declarations>", "Value.Get", ...
  automation::ObjectRef holder;     // the object whose property holds the text
  std::string property;             // that property: "Text", "Name", ...
  std::optional<std::string> text;  // the value, when enumerating has read it already

  // The text: the one enumerating read, else the property's value (read once by the caller).
  std::string Read() const;
  // Writes a new value into the property.
  void Write(const std::string& value) const;
};

// What enumerating a kind gives its caller: each place, in the order of the component's file,
// and each problem met on the way (with the name of the place it concerns, when known); a
// problem with one place does not end the enumeration.
struct PlaceSink {
  std::function<void(Place)> place;
  std::function<void(const automation::Error&, const std::string& where)> problem;
};

struct PlaceKind {
  std::string_view kind;
  std::string_view scope;
  // Enumerates the kind's places in the component; a failure that ends it (the object has no
  // such member, the collection cannot be read) is raised to the caller.
  void (*enumerate)(const automation::ObjectRef& component, const PlaceSink& sink);
};

// Every kind of place, in the order their places come in a component's file.
std::span<const PlaceKind> PlaceKinds();

}  // namespace host::scan
