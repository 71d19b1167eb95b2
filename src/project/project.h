#pragma once
// Project: the host's view of one VB6 project file. It owns the nine component collections,
// lists components straight from the project file while no IDE has the project open, and holds
// the connection to the IDE's dispatcher once one is needed.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "automation/object.h"
#include "contracts/component_kinds.h"
#include "platform/files.h"

namespace project {

// Makes the collection of that key ("Forms") for a project. The collections' layer sets it when
// the driver loads: the collections are the component's own classes, made without the public
// class registry.
using CollectionFactory = std::function<automation::ObjectRef(std::string_view key)>;
void SetCollectionFactory(CollectionFactory factory);

class Project : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override;

  // Default interface.
  void Initialize(const std::string& projectName, const std::string& parameters);
  void TearDown();
  std::string FileName();
  // Then one property per collection (ClassModules ... UserDocuments), made from the kinds'
  // table (contracts/component_kinds.h) in its order: CollectionOf below.
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
  // One "key=value" line of the project file, as the listing reads it.
  struct Entry {
    std::string name;      // the name part of "name; file", or the name read from the file
    std::string written;   // the file as the project file writes it
    std::string file;      // the project folder followed by the file as written
    std::string resolved;  // the file as a full path (absolute paths kept as they are)
    bool hasName = false;  // the line names its component
    bool namedFromFile = false;
    std::optional<platform::FileStamp> nameStamp;  // the component file when its name was read
  };
  // The lines of one key, in file order, and the first of them for each component name.
  struct Kind {
    std::vector<std::size_t> entries;
    std::unordered_map<std::string, std::size_t> byName;  // folded name -> entry
    bool indexed = false;
  };
  // The project file as last read, kept while its size and last-modified time stay the same.
  struct Listing {
    platform::FileStamp stamp;
    std::vector<Entry> entries;
    std::unordered_map<std::string, Kind> kinds;  // folded key -> its lines
  };

  void Activate();
  void InitCollections();
  // The collection stored under the key; raises 91 before the collections are made.
  automation::ObjectRef Collection(std::string_view key);
  template <size_t K>
  automation::ObjectRef CollectionOf() {
    return Collection(contracts::kComponentKinds[K].collection);
  }
  bool DispatcherAnswers() const;
  // The lines of the key in the project file as it is now; null when there are none. Raises
  // when the project file cannot be read.
  Kind* KindOf(const std::string& className);
  // Reads the name of a component whose line gives none from its file, unless the file is the
  // one it was read from last time. True when the name changed.
  bool RefreshName(Entry& entry);
  // The first line of the key whose component has this name; null when there is none.
  Entry* FindEntry(Kind& kind, const std::string& objectName);

  std::string projectName_;
  std::string fileName_;
  automation::ObjectRef collections_;  // a KeyedList, absent until InitCollections
  bool activated_ = false;
  automation::ObjectRef dispatcher_;
  std::optional<Listing> listing_;
};

}  // namespace project
