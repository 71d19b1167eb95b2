#pragma once
// A project opened in the driver for the length of one pass over it, and let go afterwards with
// the IDE that the pass started for it.

#include <filesystem>
#include <functional>

#include "automation/object.h"
#include "cli/session.h"
#include "cli/warm_ides.h"

namespace cli {

// Opens the project of the file in the session, hands it to the body, then deactivates it. An
// IDE that this pass starts for the project is kept warm when the project is done, within the
// run's count and budget (`warm`), or, with no `warm` (a scratch copy, which is about to go),
// ended at once; one that was running before is left running. What fails while letting go is
// not the pass's: the results are in.
void WithProject(Session& session, const std::filesystem::path& projectFile, WarmIdes* warm,
                 const std::function<void(const automation::ObjectRef& project)>& body);

// Connects the opened project to its IDE, starting one if need be (reads its Dispatcher): a
// failure here (the IDE cannot be started, the project cannot be opened) is the project's.
automation::ObjectRef ReachIde(const automation::ObjectRef& project);

}  // namespace cli
