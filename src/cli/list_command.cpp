#include "cli/commands.h"
#include "cli/listing.h"
#include "cli/session.h"

namespace cli {

int RunList(const ListOptions& options, Printer& printer) {
  try {
    Session session;
    const automation::ObjectRef project = session.OpenProject(options.projectFile);
    const std::vector<CollectionEnumeration> collections = EnumerateCollections(project);
    std::optional<size_t> total;
    if (options.raw) {
      for (const CollectionEnumeration& collection : collections)
        printer.Enumeration(collection.name, collection.text);
    } else {
      const ProjectListing listing = ListComponents(project, collections);
      total = 0;
      for (const CollectionListing& collection : listing.collections) {
        printer.Collection(collection);
        *total += collection.components.size();
      }
      for (const Problem& problem : listing.problems)
        printer.Problem(problem);
    }
    for (const Problem& problem : session.Problems())
      printer.Problem(problem);
    if (total) printer.Summary({total, session.CodePage()});
    return kExitMatch;
  } catch (const automation::Error& e) {
    printer.Error(e);
    return kExitError;
  }
}

}  // namespace cli
