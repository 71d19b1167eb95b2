#include "project/project.h"

#include <utility>

#include "automation/casefold.h"
#include "contracts/component_kinds.h"
#include "contracts/host_classes.h"
#include "foundation/globals.h"
#include "foundation/operation.h"
#include "foundation/vxhandler.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/project_lines.h"
#include "project/ide_settings.h"
#include "project/project_file_check.h"
#include "project/utility.h"

namespace project {
namespace {

using automation::Dispatch;
using automation::ObjectRef;
using foundation::Operation;

constexpr const char* kClass = "Project";

bool IsReadOnly(const std::string& file) {
  return (platform::GetAttr(file) & platform::kAttrReadOnly) != 0;
}

std::string VersionOf(const std::string& file) {
  return VersionText(platform::FileDateTime(file));
}

// A component file named relative to the project folder, or an absolute one, as a full path.
std::string Resolve(const std::string& folder, const std::string& file) {
  const bool absolute = (!file.empty() && (file.front() == '\\' || file.front() == '/')) ||
                        (file.size() >= 2 && file[1] == ':');
  return absolute ? file : folder + file;
}

CollectionFactory& Factory() {
  static CollectionFactory factory;
  return factory;
}

}  // namespace

void SetCollectionFactory(CollectionFactory factory) {
  Factory() = std::move(factory);
}

const automation::ClassInfo& Project::Class() const {
  static const automation::ClassInfo info = [] {
    automation::ClassBuilder<Project> builder("Project");
    builder.Method("Initialize", &Project::Initialize, {"ProjectName", "Parameters"})
        .Method("TearDown", &Project::TearDown)
        .Get("FileName", &Project::FileName);
    [&]<size_t... K>(std::index_sequence<K...>) {
      (builder.Get(std::string(contracts::kComponentKinds[K].collection),
                   &Project::CollectionOf<K>),
       ...);
    }
    (std::make_index_sequence<contracts::kComponentKinds.size()>());
    return builder.Get("IsActive", &Project::IsActive)
        .Get("Dispatcher", &Project::Dispatcher)
        .Method("EnumObjects", &Project::EnumObjects, {"ClassName", "BitmapID"})
        .Method("GetObjectInfo", &Project::GetObjectInfo,
                {"ClassName", "ObjectName", "Version", "IsUpdatable"})
        .Implements("IProject")
        .Method("UpdateName", &Project::IProject_UpdateName, {"ProjectName"})
        .Method("EnumCollections", &Project::IProject_EnumCollections)
        .Method("GetCollection", &Project::IProject_GetCollection, {"CollectionName"})
        .Method("Deactivate", &Project::IProject_Deactivate)
        .Method("ResetActivationFlags", &Project::IProject_ResetActivationFlags)
        .Method("EnumCommands", &Project::IProject_EnumCommands)
        .Method("ExecuteCommand", &Project::IProject_ExecuteCommand, {"Index"})
        .Build();
  }();
  return info;
}

void Project::Initialize(const std::string& projectName, const std::string& parameters) {
  Operation(kClass, "Initialize", [&] {
    projectName_ = projectName;
    contracts::ParameterList list = contracts::ParameterList::New();
    list.Parse(parameters);
    const std::string path = list.Value("FileName", "");
    if (!contracts::HostUtility::Get().FileExists(path)) {
      foundation::RaiseUserError("File not found: " + path);
    }
    fileName_ = path;
  });
}

void Project::TearDown() {
  Operation(kClass, "TearDown", [&] {
    if (!collections_) return;
    const contracts::KeyedList list(collections_);
    for (int32_t position = 0; position < list.Count(); ++position) {
      Dispatch(list.ItemAt(list.Find(position)).ToObject()).Call("TearDown");
    }
  });
}

std::string Project::FileName() {
  return Operation(kClass, "FileName", [&] { return fileName_; });
}

ObjectRef Project::Collection(std::string_view key) {
  return Operation(kClass, key, [&] {
    if (!collections_) automation::Raise(automation::err::kObjectNotSet);
    const contracts::KeyedList list(collections_);
    return list.ItemAt(list.Find(std::string(key))).ToObject();
  });
}

bool Project::IsActive() {
  return Operation(kClass, "IsActive", [&] {
    return contracts::HostUtility::Get().GetRegisteredObject(fileName_) != nullptr;
  });
}

bool Project::DispatcherAnswers() const {
  try {
    Dispatch(Dispatch(dispatcher_).Get("VBProject").ToObject()).Get("FileName");
    return true;
  } catch (...) {
    return false;
  }
}

ObjectRef Project::Dispatcher() {
  return Operation(kClass, "Dispatcher", [&] {
    if (!dispatcher_ || !DispatcherAnswers()) Activate();
    return dispatcher_;
  });
}

void Project::Activate() {
  Operation(kClass, "Activate", [&] {
    if (dispatcher_ && DispatcherAnswers()) return;
    const contracts::HostUtility host = contracts::HostUtility::Get();
    if (!host.FileExists(fileName_)) {
      foundation::RaiseUserError("File '" + fileName_ + "' not found.");
    }
    CheckBackgroundLoading();
    CheckProjectFile(fileName_);
    automation::ObjectRef log = foundation::GetGlobals().problemLog;
    if (ObjectRef registered = host.GetRegisteredObject(fileName_)) {
      dispatcher_ = registered;
      Dispatch(dispatcher_).Call("Initialize2", log);
      return;
    }
    AdjustWindowState(fileName_);
    const std::string exe = VB6EXEPath();
    if (!host.FileExists(exe)) foundation::RaiseUserError("File '" + exe + "' not found.");
    WriteAddInEntry();
    const std::string commandLine = "\"" + exe + "\" \"" + fileName_ + "\"";
    dispatcher_ = host.LaunchAndConnect(commandLine, fileName_, 30000);
    if (!dispatcher_) {
      foundation::RaiseUserError("Quarrix was unable to start and/or communicate with VB6.");
    }
    Dispatch(dispatcher_).Call("Initialize2", log);
    const ObjectRef vbProject = Dispatch(dispatcher_).Get("VBProject").ToObject();
    const ObjectRef vbe = Dispatch(vbProject).Get("VBE").ToObject();
    Dispatch(Dispatch(vbe).Get("MainWindow").ToObject()).Put("WindowState", 1);
    activated_ = true;
  });
}

Project::Kind* Project::KindOf(const std::string& className) {
  const std::optional<platform::FileStamp> stamp = platform::StampOf(fileName_);
  if (!listing_ || !stamp || listing_->stamp != *stamp) {
    listing_.reset();
    // The stamp is taken before the bytes are read: a change made while reading shows as a
    // newer stamp on the next call, which reads the file again.
    const std::string bytes = platform::ReadFile(fileName_);
    const auto separator = platform::LastSeparator(fileName_);
    const std::string folder =
        separator == std::string::npos ? std::string() : fileName_.substr(0, separator + 1);
    Listing listing;
    listing.stamp = stamp.value_or(platform::FileStamp{});
    platform::ProjectLineReader reader(bytes, platform::CurrentCodePage(), fileName_);
    while (reader.Next()) {
      const platform::ProjectLine& line = reader.Line();
      if (!line.hasKey) continue;
      const platform::ComponentValue value = platform::SplitComponentValue(line.value);
      Entry entry;
      entry.hasName = value.hasName;
      entry.name = value.name;
      entry.written = value.file;
      entry.file = folder + entry.written;
      entry.resolved = Resolve(folder, entry.written);
      listing.kinds[automation::LowerAscii(line.key)].entries.push_back(listing.entries.size());
      listing.entries.push_back(std::move(entry));
    }
    listing_ = std::move(listing);
  }
  const auto found = listing_->kinds.find(automation::LowerAscii(className));
  return found == listing_->kinds.end() ? nullptr : &found->second;
}

bool Project::RefreshName(Entry& entry) {
  if (entry.hasName) return false;
  const std::optional<platform::FileStamp> stamp = platform::StampOf(entry.file);
  if (stamp && entry.nameStamp == stamp) return false;
  const std::optional<std::string> named = platform::ComponentNameFromFile(entry.file);
  const bool namedFromFile = named.has_value();
  std::string name = named.value_or(std::string());
  // A file that could not be read is read again next time.
  entry.nameStamp = namedFromFile ? stamp : std::nullopt;
  const bool changed = name != entry.name || namedFromFile != entry.namedFromFile;
  entry.name = std::move(name);
  entry.namedFromFile = namedFromFile;
  return changed;
}

Project::Entry* Project::FindEntry(Kind& kind, const std::string& objectName) {
  const std::string wanted = automation::VbNameKey(objectName);
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (!kind.indexed || attempt > 0) {
      kind.byName.clear();
      for (const std::size_t index : kind.entries) {
        Entry& entry = listing_->entries[index];
        RefreshName(entry);
        kind.byName.try_emplace(automation::VbNameKey(entry.name), index);
      }
      kind.indexed = true;
      attempt = 1;
    }
    const auto found = kind.byName.find(wanted);
    if (found != kind.byName.end()) {
      Entry& entry = listing_->entries[found->second];
      // A component file may have renamed its component since the index was made.
      if (!RefreshName(entry) || automation::SameVbName(entry.name, objectName)) return &entry;
    }
  }
  return nullptr;
}

std::string Project::EnumObjects(const std::string& className, int32_t bitmapId) {
  return Operation(kClass, "EnumObjects", [&] {
    std::string result;
    Kind* kind = KindOf(className);
    if (kind == nullptr) return result;
    for (const std::size_t index : kind->entries) {
      Entry& entry = listing_->entries[index];
      if (RefreshName(entry)) kind->indexed = false;
      bool writable = false;
      try {
        writable = !IsReadOnly(entry.file);
      } catch (...) {
        writable = false;
      }
      if (!result.empty()) result += "\r\n";  // every entry is a non-empty text
      result += entry.name + "\t" + std::to_string(bitmapId) + "\t\t" +
                (entry.namedFromFile ? "1" : "0") + "\t" + (writable ? "1" : "0") + "\t1\t0";
    }
    return result;
  });
}

void Project::GetObjectInfo(const std::string& className, const std::string& objectName,
                            std::string& version, bool& isUpdatable) {
  Operation(kClass, "GetObjectInfo", [&] {
    // The component is chosen by its name among the lines of its kind, and its file is
    // resolved against the project folder, as the listing does.
    Kind* kind = KindOf(className);
    const Entry* entry = kind == nullptr ? nullptr : FindEntry(*kind, objectName);
    if (entry == nullptr) return;
    try {
      version = VersionOf(entry->resolved);
      isUpdatable = !IsReadOnly(entry->resolved);
    } catch (...) {
      version.clear();
      isUpdatable = false;
    }
  });
}

void Project::IProject_UpdateName(const std::string& projectName) {
  Operation(kClass, "IProject_UpdateName", [&] {
    projectName_ = projectName;
    listing_.reset();
  });
}

void Project::InitCollections() {
  Operation(kClass, "InitCollections", [&] {
    if (collections_) return;
    const contracts::KeyedList list = contracts::KeyedList::New();
    for (const contracts::ComponentKind& kind : contracts::kComponentKinds) {
      const std::string key(kind.collection);
      if (!Factory()) automation::Raise(automation::err::kCantCreateObject, key);
      const ObjectRef collection = Factory()(key);
      Dispatch(collection).Call("Initialize", shared_from_this());
      list.Add(collection, key);
    }
    collections_ = list.object();
  });
}

std::string Project::IProject_EnumCollections() {
  return Operation(kClass, "IProject_EnumCollections", [&] {
    InitCollections();
    const contracts::KeyedList list(collections_);
    std::string result;
    for (int32_t position = 0; position < list.Count(); ++position) {
      if (position > 0) result += '\t';
      result += list.Key(list.Find(position));
    }
    return result;
  });
}

ObjectRef Project::IProject_GetCollection(const std::string& collectionName) {
  return Operation(kClass, "IProject_GetCollection", [&] {
    InitCollections();
    const contracts::KeyedList list(collections_);
    return list.ItemAt(list.Find(collectionName)).ToObject();
  });
}

void Project::IProject_Deactivate() {
  Operation(kClass, "IProject_Deactivate", [&] {
    if (!dispatcher_) return;
    if (activated_) {
      try {
        const ObjectRef vbProject = Dispatch(dispatcher_).Get("VBProject").ToObject();
        Dispatch(vbProject).Get("VBComponents");
      } catch (const automation::Error& e) {
        if (e.Number() != automation::err::kServerUnavailable) {
          throw automation::Error(e.Number(), {}, e.Description());
        }
      }
    }
    dispatcher_.reset();
  });
}

}  // namespace project
