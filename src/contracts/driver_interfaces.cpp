#include "contracts/driver_interfaces.h"

namespace contracts {

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
