#pragma once
// The four interfaces of the host's type library that the driver implements, and the members of
// the driver's Project that a host reads beside them, as the host calls them: by name, so a proxy
// can stand in for the object.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace contracts {

using automation::ObjectRef;

class IDriver {
 public:
  explicit IDriver(ObjectRef object) : d_(std::move(object), "IDriver") {}

  void Initialize(ObjectRef& problemLog) const;
  void Shutdown() const { d_.Call("Shutdown"); }
  ObjectRef GetProject(const std::string& projectName, int32_t projectType,
                       const std::string& parameters) const {
    return d_.Call("GetProject", projectName, projectType, parameters).ToObject();
  }

 private:
  automation::Dispatch d_;
};

class IProject {
 public:
  explicit IProject(ObjectRef object) : d_(std::move(object), "IProject") {}

  void UpdateName(const std::string& projectName) const { d_.Call("UpdateName", projectName); }
  std::string EnumCollections() const { return d_.Call("EnumCollections").ToString(); }
  ObjectRef GetCollection(const std::string& name) const {
    return d_.Call("GetCollection", name).ToObject();
  }
  void Deactivate() const { d_.Call("Deactivate"); }
  void ResetActivationFlags() const { d_.Call("ResetActivationFlags"); }
  std::string EnumCommands() const { return d_.Call("EnumCommands").ToString(); }
  void ExecuteCommand(int32_t index) const { d_.Call("ExecuteCommand", index); }
  const ObjectRef& object() const { return d_.object(); }

 private:
  automation::Dispatch d_;
};

// The driver's Project through its default interface (`_Project`): what a host reads of the
// project file itself, without the IDE.
class ProjectObject {
 public:
  explicit ProjectObject(ObjectRef object) : d_(std::move(object)) {}

  std::string EnumObjects(const std::string& className, int32_t bitmapId) const {
    return d_.Call("EnumObjects", className, bitmapId).ToString();
  }
  // Version and IsUpdatable are in/out: when the kind has no line in the project file they keep
  // the values passed in.
  void GetObjectInfo(const std::string& className, const std::string& objectName,
                     std::string& version, bool& isUpdatable) const;

 private:
  automation::Dispatch d_;
};

class ICollection {
 public:
  explicit ICollection(ObjectRef object) : d_(std::move(object), "ICollection") {}

  std::string EnumObjects() const { return d_.Call("EnumObjects").ToString(); }
  ObjectRef GetObject(const std::string& name) const {
    return d_.Call("GetObject", name).ToObject();
  }
  std::string EnumCommands() const { return d_.Call("EnumCommands").ToString(); }
  void ExecuteCommand(int32_t index) const { d_.Call("ExecuteCommand", index); }
  std::string EnumObjectCommands(const std::string& name) const {
    return d_.Call("EnumObjectCommands", name).ToString();
  }
  void ExecuteObjectCommand(const std::string& name, int32_t index) const {
    d_.Call("ExecuteObjectCommand", name, index);
  }

 private:
  automation::Dispatch d_;
};

class IObject {
 public:
  explicit IObject(ObjectRef object) : d_(std::move(object), "IObject") {}

  std::string Name() const { return d_.Get("Name").ToString(); }
  std::string ShortName() const { return d_.Get("ShortName").ToString(); }
  void SetMode(int32_t mode) const { d_.Call("SetMode", mode); }
  void Scan(const std::string& projectName, const std::string& objectName, bool updatable,
            const std::string& scanBufferName) const {
    d_.Call("Scan", projectName, objectName, updatable, scanBufferName);
  }
  void Reconstitute() const { d_.Call("Reconstitute"); }
  void Dispose() const { d_.Call("Dispose"); }
  const ObjectRef& object() const { return d_.object(); }

 private:
  automation::Dispatch d_;
};

}  // namespace contracts
