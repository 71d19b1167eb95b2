#pragma once
// The nine kinds of component, written once. Every layer reads this table: the project creates
// its collections from it and lists from the project file with its keys and bitmaps, the
// collections and the dispatcher take their names and operations from it, the dispatcher picks
// the IDE's components of a kind by their types, the component objects take their collection
// name and refusal from it, and qx names its kinds by it. The order is the order in which a
// project creates its collections and the dispatcher declares its members.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace contracts {

// The IDE's component type of a designer (vbext_ct_ActiveXDesigner): a kind of designers is told
// apart by the designer's identifier.
inline constexpr int32_t kDesignerType = 11;

struct ComponentKind {
  std::string_view collection;      // the collection class, also its key in the project: "Forms"
  std::string_view component;       // the component class the dispatcher builds: "Form"
  std::string_view projectFileKey;  // the key of its lines in the project file: "Form"
  int32_t bitmapId;                 // its bitmap code in the enumeration string
  std::string_view enumeration;     // the dispatcher's listing of the kind: "EnumForms"
  std::string_view factory;         // the dispatcher's maker of its objects: "GetForm"
  // The IDE's component type (vbext_ComponentType) of the kind, and a second one it also takes
  // (an MDI form's), or 0.
  int32_t type;
  int32_t otherType;
  // For a kind of designers: the designer identifier it takes (compared exactly), or empty for
  // every designer that no other kind takes.
  std::string_view designerId;
  // Whether its collection and component classes are creatable from outside, by programmatic
  // identifier ("qxvb60." and the class name).
  bool creatable;
  // What the component is called in the sentence that refuses a switch to writing while the IDE
  // holds unsaved changes for it (RefusalOf).
  std::string_view refusalName;
};

// The IDE's component types: 1 standard module, 2 class module, 5 form, 6 MDI form, 7 property
// page, 8 user control, 9 user document, 11 designer.
inline constexpr std::array<ComponentKind, 9> kComponentKinds = {{
    {"ClassModules", "ClassModule", "Class", 2, "EnumClassModules", "GetClassModule", 2, 0, "",
     false, "class module"},
    {"Designers", "Designer", "Designer", 3, "EnumDesigners", "GetDesigner", kDesignerType, 0, "",
     false, "designer"},
    {"DHTMLPages", "DHTMLPage", "DHTMLPage", 3, "EnumDHTMLPages", "GetDHTMLPage", kDesignerType, 0,
     "DHTMLPageDesigner.DHTMLPage", true, "DHTML page"},
    {"Forms", "Form", "Form", 4, "EnumForms", "GetForm", 5, 6, "", false, "form"},
    {"Modules", "Module", "Module", 5, "EnumModules", "GetModule", 1, 0, "", false, "module"},
    {"PropertyPages", "PropertyPage", "PropertyPage", 6, "EnumPropertyPages", "GetPropertyPage", 7,
     0, "", false, "property page"},
    {"UserConnections", "UserConnection", "UserConnection", 3, "EnumUserConnections",
     "GetUserConnection", kDesignerType, 0, "ConnectionDesigner.UserConnection", true,
     "user connection"},
    {"UserControls", "UserControl", "UserControl", 7, "EnumUserControls", "GetUserControl", 8, 0,
     "", false, "user control"},
    {"UserDocuments", "UserDocument", "UserDocument", 8, "EnumUserDocuments", "GetUserDocument", 9,
     0, "", false, "user document"},
}};

// "Couldn't save changes safely because the form is already open and has pending changes."
std::string RefusalOf(const ComponentKind& kind);

// The kind whose collection ("Forms") or component class ("Form") has that name, compared
// exactly; null for none.
const ComponentKind* FindCollectionKind(std::string_view collection);
const ComponentKind* FindComponentKind(std::string_view component);

// Whether the kind takes an IDE component of that type; a designer's identifier is asked for
// only when the type is a designer's.
template <class DesignerId>
bool TakesComponent(const ComponentKind& kind, int32_t type, DesignerId designerId) {
  if (type == 0 || (type != kind.type && type != kind.otherType)) return false;
  if (type != kDesignerType) return true;
  const auto id = designerId();
  if (!kind.designerId.empty()) return id == kind.designerId;
  for (const ComponentKind& other : kComponentKinds) {
    if (!other.designerId.empty() && id == other.designerId) return false;
  }
  return true;
}

}  // namespace contracts
