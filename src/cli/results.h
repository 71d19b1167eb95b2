#pragma once
// What the verbs of qx find, as records: the printer shows them as text or JSON.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/codepage_detect.h"

namespace cli {

// What can be done with a component's file.
enum class FileState {
  Writable,
  ReadOnly,
  Missing,
  // The listing said "not writable" and nothing could tell which of the two it is.
  ReadOnlyOrMissing,
};

struct Component {
  std::string name;     // empty when nothing names the component
  std::string version;  // the file's last change, "yyyymmddhhnnss"; empty when unknown
  FileState state = FileState::Missing;
  std::vector<std::string> problems;  // what is wrong with it, in words
};

struct CollectionListing {
  std::string name;                   // "Forms"
  std::vector<Component> components;  // in the project's order
};

// Something wrong that did not stop the run.
struct Problem {
  std::optional<int32_t> number;  // the driver's error number; none for qx's own findings
  std::string description;
};

// How a run that went through ended.
struct Summary {
  std::optional<size_t> components;  // how many components were listed
  // The code page the project's files were read in, and how it was chosen.
  std::optional<platform::ProjectCodePage> codePage;
};

// An IDE process of this qx home (qxvb6.exe serving projects).
struct IdeProcess {
  long pid = 0;
  std::vector<std::string> projects;  // the project files it has open, as it reports them
  int32_t idleSeconds = 0;            // since its last call
};

// What `qx ide start` did to have the project in an IDE.
struct IdeStart {
  std::string project;   // as given
  bool started = false;  // false: connected to an IDE that was running
  IdeProcess process;
};

}  // namespace cli
