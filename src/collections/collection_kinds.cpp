#include "collections/collection_kinds.h"

namespace collections {

std::span<const CollectionKind> CollectionKinds() {
  static constexpr CollectionKind kinds[] = {
      {"ClassModules", "Class", 2, "EnumClassModules", "GetClassModule"},
      {"Designers", "Designer", 3, "EnumDesigners", "GetDesigner"},
      {"DHTMLPages", "DHTMLPage", 3, "EnumDHTMLPages", "GetDHTMLPage"},
      {"Forms", "Form", 4, "EnumForms", "GetForm"},
      {"Modules", "Module", 5, "EnumModules", "GetModule"},
      {"PropertyPages", "PropertyPage", 6, "EnumPropertyPages", "GetPropertyPage"},
      {"UserConnections", "UserConnection", 3, "EnumUserConnections", "GetUserConnection"},
      {"UserControls", "UserControl", 7, "EnumUserControls", "GetUserControl"},
      {"UserDocuments", "UserDocument", 8, "EnumUserDocuments", "GetUserDocument"},
  };
  return kinds;
}

}  // namespace collections
