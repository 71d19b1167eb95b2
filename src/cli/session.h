#pragma once
// One run of qx as the driver's host: the driver loaded into this process, initialised with
// qx's own problem log, and shut down at the end.

#include <string>
#include <vector>

#include "automation/object.h"
#include "cli/results.h"
#include "platform/codepage_detect.h"

namespace cli {

class Session {
 public:
  Session();
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // The project of that file (IDriver.GetProject with a parameter string naming it), after
  // taking its code page (UseCodePageOf) unless the code page taken last is that file's. The
  // session tears it down when it ends, as a host does when it is done with a project.
  automation::ObjectRef OpenProject(const std::string& projectFile);

  // The code page for the project's files from now on: given to the run, or detected from its
  // files; taken before anything of the project is read, its project file included.
  const platform::ProjectCodePage& UseCodePageOf(const std::string& projectFile);
  // The code page taken last.
  const platform::ProjectCodePage& CodePage() const { return codePage_; }

  // The problems that the driver reported into the log instead of failing a call.
  std::vector<Problem> Problems() const;

 private:
  automation::ObjectRef driver_;
  automation::ObjectRef problemLog_;
  std::vector<automation::ObjectRef> projects_;
  platform::ProjectCodePage codePage_;
  std::string codePageOf_;  // the project file whose code page was taken last
};

}  // namespace cli
