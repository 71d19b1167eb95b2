#pragma once
// Project: the host's view of one VB6 project file. It owns the nine component collections,
// lists components straight from the project file while no IDE has the project open, and holds
// the connection to the IDE's dispatcher once one is needed.

#include <cstdint>
#include <functional>
#include <string>

#include "automation/object.h"

namespace project {

class Project : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override;

  // Default interface.
  void Initialize(const std::string& projectName, const std::string& parameters);
  void TearDown();
  std::string FileName();
  automation::ObjectRef ClassModules();
  automation::ObjectRef Designers();
  automation::ObjectRef DHTMLPages();
  automation::ObjectRef Forms();
  automation::ObjectRef Modules();
  automation::ObjectRef PropertyPages();
  automation::ObjectRef UserConnections();
  automation::ObjectRef UserControls();
  automation::ObjectRef UserDocuments();
  bool IsActive();
  automation::ObjectRef Dispatcher();
  std::string EnumObjects(const std::string& className, int32_t bitmapId);
  void GetObjectInfo(const std::string& className, const std::string& objectName,
                     std::string& version, bool& isUpdatable);

  // IProject.
  void IProject_UpdateName(const std::string& projectName);
  std::string IProject_EnumCollections();
  automation::ObjectRef IProject_GetCollection(const std::string& collectionName);
  void IProject_Deactivate();
  void IProject_ResetActivationFlags() {}
  std::string IProject_EnumCommands() { return {}; }
  void IProject_ExecuteCommand(int32_t) {}

  const std::string& ProjectName() const { return projectName_; }

 private:
  // One component line of the project file, as the listing reads it.
  struct Entry {
    std::string name;
    std::string written;   // the file as the project file writes it
    std::string file;      // the project folder followed by the file as written
    std::string resolved;  // the file as a full path (absolute paths kept as they are)
    bool namedFromFile = false;
  };

  void Activate();
  void InitCollections();
  automation::ObjectRef Collection(const char* key);
  bool DispatcherAnswers() const;
  // Calls `visit` for each line of the key, in file order, until it returns false.
  void ForEachEntry(const std::string& className,
                    const std::function<bool(const Entry&)>& visit) const;

  std::string projectName_;
  std::string fileName_;
  automation::ObjectRef collections_;  // a KeyedList, absent until InitCollections
  bool activated_ = false;
  automation::ObjectRef dispatcher_;
};

}  // namespace project
