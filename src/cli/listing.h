#pragma once
// What qx list shows of a project: its collections with their enumeration strings, and each
// component as a record with what is wrong about it said in words.

#include <string>
#include <vector>

#include "automation/object.h"
#include "cli/results.h"

namespace cli {

struct CollectionEnumeration {
  std::string name;  // "Forms"
  std::string text;  // the enumeration string, as ICollection.EnumObjects returned it
};

// Every collection of the project, in the project's order, with its enumeration string.
std::vector<CollectionEnumeration> EnumerateCollections(const automation::ObjectRef& project);

struct ProjectListing {
  std::vector<CollectionListing> collections;
  std::vector<Problem> problems;  // what is wrong with the project as a whole
};

// The components of each collection. Their file's time and state come from the project's
// GetObjectInfo, which picks a component by name: a name that two components of one kind share
// is not asked about, and its entry's own writable flag is all that is known.
ProjectListing ListComponents(const automation::ObjectRef& project,
                              const std::vector<CollectionEnumeration>& collections);

}  // namespace cli
