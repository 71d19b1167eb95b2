#include "cli/listing.h"

#include <map>

#include "automation/casefold.h"
#include "contracts/component_kinds.h"
#include "contracts/driver_interfaces.h"
#include "contracts/enumeration.h"

namespace cli {
namespace {

std::string ProjectFileKey(const std::string& collectionName) {
  for (const auto& kind : contracts::kComponentKinds) {
    if (kind.collection == collectionName) return std::string(kind.projectFileKey);
  }
  return collectionName;
}

// Why a component has no name. The entry says whether its name was to come from its file.
std::string MissingName(const contracts::EnumerationEntry& entry, FileState state) {
  if (entry.flag) return "no name: its file has no Attribute VB_Name line";
  if (state == FileState::Missing) return "no name: its file, which would give it, is missing";
  return "no name: neither its line in the project file nor its file gives one";
}

struct NameUse {
  std::string name;  // as first seen
  size_t count = 0;
  std::vector<std::string> collections;
};

}  // namespace

std::vector<CollectionEnumeration> EnumerateCollections(const automation::ObjectRef& project) {
  std::vector<CollectionEnumeration> result;
  const contracts::IProject iproject(project);
  for (std::string& name : contracts::ParseCollectionNames(iproject.EnumCollections())) {
    std::string text = contracts::ICollection(iproject.GetCollection(name)).EnumObjects();
    result.push_back({std::move(name), std::move(text)});
  }
  return result;
}

ProjectListing ListComponents(const automation::ObjectRef& project,
                              const std::vector<CollectionEnumeration>& collections) {
  std::vector<std::vector<contracts::EnumerationEntry>> entries;
  // VB6 compares names without regard to letter case, and so does GetObjectInfo.
  std::map<std::string, NameUse> projectNames;
  for (const CollectionEnumeration& collection : collections) {
    entries.push_back(contracts::ParseEnumeration(collection.text));
    for (const contracts::EnumerationEntry& entry : entries.back()) {
      if (entry.name.empty()) continue;
      NameUse& use = projectNames[automation::VbNameKey(entry.name)];
      if (use.count++ == 0) use.name = entry.name;
      if (use.collections.empty() || use.collections.back() != collection.name)
        use.collections.push_back(collection.name);
    }
  }

  const contracts::ProjectObject projectObject(project);
  ProjectListing listing;
  for (size_t c = 0; c < collections.size(); ++c) {
    const std::string key = ProjectFileKey(collections[c].name);
    std::map<std::string, size_t> kindNames;
    for (const contracts::EnumerationEntry& entry : entries[c])
      ++kindNames[automation::VbNameKey(entry.name)];

    CollectionListing out{collections[c].name, {}};
    for (const contracts::EnumerationEntry& entry : entries[c]) {
      Component component;
      component.name = entry.name;
      if (!entry.version.empty()) {
        // An IDE that has the project open filled in the time itself.
        component.version = entry.version;
        component.state = entry.writable ? FileState::Writable : FileState::ReadOnly;
      } else if (kindNames[automation::VbNameKey(entry.name)] == 1) {
        std::string version;
        bool updatable = false;
        projectObject.GetObjectInfo(key, entry.name, version, updatable);
        component.version = version;
        component.state = version.empty() ? FileState::Missing
                          : updatable     ? FileState::Writable
                                          : FileState::ReadOnly;
      } else {
        component.state = entry.writable ? FileState::Writable : FileState::ReadOnlyOrMissing;
      }
      if (entry.name.empty()) {
        component.problems.push_back(MissingName(entry, component.state));
      } else if (const NameUse& use = projectNames[automation::VbNameKey(entry.name)];
                 use.count > 1) {
        component.problems.push_back("name used " + std::to_string(use.count) + " times");
      }
      out.components.push_back(std::move(component));
    }
    listing.collections.push_back(std::move(out));
  }

  for (const auto& [folded, use] : projectNames) {
    if (use.count < 2) continue;
    std::string where;
    for (const std::string& collection : use.collections)
      where += (where.empty() ? "" : ", ") + collection;
    listing.problems.push_back(
        {std::nullopt, "The project has " + std::to_string(use.count) + " components named " +
                           use.name + " (" + where +
                           "); VB6 will not load a project with two components of one name."});
  }
  return listing;
}

}  // namespace cli
