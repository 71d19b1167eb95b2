#pragma once
// What sets the nine component classes apart in the component object protocol: the class name
// (also the name their failures carry in the "PROGRAM CONTEXT:" trail), the collection name the
// scanner is told, and the sentence that refuses a switch to writing while the IDE holds unsaved
// changes for the component.

#include <span>
#include <string_view>

namespace components {

struct ComponentKind {
  std::string_view className;       // "Module"
  std::string_view collectionName;  // "Modules"
  std::string_view refusal;         // "Couldn't save changes safely because the module is ..."
};

// The nine kinds: Module, ClassModule, Form, Designer, UserControl, UserDocument, PropertyPage,
// DHTMLPage, UserConnection.
std::span<const ComponentKind> ComponentKinds();

// The kind of that class name (exact), or null.
const ComponentKind* FindComponentKind(std::string_view className);

}  // namespace components
