#include "components/component_kinds.h"

#include <array>

namespace components {
namespace {

constexpr std::array<ComponentKind, 9> kKinds = {{
    {"Module", "Modules",
     "Couldn't save changes safely because the module is already open and has pending changes."},
    {"ClassModule", "ClassModules",
     "Couldn't save changes safely because the class module is already open and has pending "
     "changes."},
    {"Form", "Forms",
     "Couldn't save changes safely because the form is already open and has pending changes."},
    {"Designer", "Designers",
     "Couldn't save changes safely because the designer is already open and has pending "
     "changes."},
    {"UserControl", "UserControls",
     "Couldn't save changes safely because the user control is already open and has pending "
     "changes."},
    {"UserDocument", "UserDocuments",
     "Couldn't save changes safely because the user document is already open and has pending "
     "changes."},
    {"PropertyPage", "PropertyPages",
     "Couldn't save changes safely because the property page is already open and has pending "
     "changes."},
    {"DHTMLPage", "DHTMLPages",
     "Couldn't save changes safely because the DHTML page is already open and has pending "
     "changes."},
    {"UserConnection", "UserConnections",
     "Couldn't save changes safely because the user connection is already open and has pending "
     "changes."},
}};

}  // namespace

std::span<const ComponentKind> ComponentKinds() {
  return kKinds;
}

const ComponentKind* FindComponentKind(std::string_view className) {
  for (const ComponentKind& kind : kKinds) {
    if (kind.className == className) return &kind;
  }
  return nullptr;
}

}  // namespace components
