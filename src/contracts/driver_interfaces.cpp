#include "contracts/driver_interfaces.h"

#include <map>

namespace contracts {

const std::vector<std::string_view>& InterfaceMembers(std::string_view interfaceName) {
  static const std::map<std::string_view, std::vector<std::string_view>> members = {
      {"IDriver", {"Initialize", "Shutdown", "GetProject"}},
      {"IProject",
       {"UpdateName", "EnumCollections", "GetCollection", "Deactivate", "ResetActivationFlags",
        "EnumCommands", "ExecuteCommand"}},
      {"ICollection",
       {"EnumObjects", "GetObject", "EnumCommands", "ExecuteCommand", "EnumObjectCommands",
        "ExecuteObjectCommand"}},
      {"IObject", {"Name", "ShortName", "SetMode", "Scan", "Reconstitute", "Dispose"}},
  };
  static const std::vector<std::string_view> none;
  auto it = members.find(interfaceName);
  return it == members.end() ? none : it->second;
}

void IDriver::Initialize(ObjectRef& problemLog) const {
  automation::Args args{problemLog};
  d_.CallArgs("Initialize", args);
  problemLog = args[0].ToObject();
}

void ProjectObject::GetObjectInfo(const std::string& className, const std::string& objectName,
                                  std::string& version, bool& isUpdatable) const {
  automation::Args args{className, objectName, version, isUpdatable};
  d_.CallArgs("GetObjectInfo", args);
  version = args[2].ToString();
  isUpdatable = args[3].ToBool();
}

}  // namespace contracts
