#pragma once
// Dispatcher: the host's access to one project that the IDE loaded from a file. The add-in makes
// one per such project inside the IDE's process and registers it under the project file's path;
// the host-side Project finds it there and calls it across the process boundary. It lists the
// project's components of each kind as an enumeration string and builds the component objects
// that the host then works with.
//
// The enumeration string: entries joined by CR LF, each of seven tab-separated fields: name,
// bitmap code, version ("yyyymmddhhnnss" of the file's last-modified time, or empty), whether
// the file's time could be read ("1"/"0"), whether the file is writable ("1"/"0"), "1", "0".

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "automation/object.h"
#include "contracts/component_kinds.h"

namespace project {

// Makes a new, uninitialised component object of one class ("Module"). The layers of the
// component classes register theirs when the driver loads: they are the component's own
// classes, made without the public class registry. A class without a factory is one the
// driver cannot open yet.
using ComponentFactory = std::function<automation::ObjectRef()>;
void RegisterComponentClass(std::string className, ComponentFactory factory);

class Dispatcher : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxvb60.Dispatcher";

  const automation::ClassInfo& Class() const override;

  // Keeps the add-in that made it and the IDE project; creates the link to the host's log.
  void Initialize(automation::ObjectRef& parent, automation::ObjectRef& vbProject);
  // Releases the add-in, the IDE project and the link, then finishes the process's trace.
  void TearDown();
  // Hands the host's problem log to the link, so that problems found here reach the host.
  void Initialize2(automation::ObjectRef& problemLog);
  automation::ObjectRef VBProject();

  // Then the members of the kinds, made from their table (contracts/component_kinds.h) in its
  // order: EnumClassModules ... EnumUserDocuments, each returning its kind's enumeration string,
  // then GetClassModule ... GetUserDocument, each (Project, ObjectName) returning a new
  // component object of its kind (EnumKind and GetKind below).

  // What the enumeration string says of one component file.
  struct FileInfo {
    std::string version;  // empty when the file's time could not be read
    bool flag = false;    // the file's time could be read
    bool writable = false;
  };

 private:
  FileInfo GetFileInfo(const std::string& file);
  std::string Enumerate(const contracts::ComponentKind& kind);
  automation::ObjectRef Build(const contracts::ComponentKind& kind, automation::ObjectRef& project,
                              const std::string& objectName);
  // The members of the kind at position K of the table.
  template <size_t K>
  std::string EnumKind() {
    return Enumerate(contracts::kComponentKinds[K]);
  }
  template <size_t K>
  automation::ObjectRef GetKind(automation::ObjectRef& project, const std::string& objectName) {
    return Build(contracts::kComponentKinds[K], project, objectName);
  }

  automation::ObjectRef parent_;     // the Connection that made this dispatcher
  automation::ObjectRef vbProject_;  // the IDE's project
  automation::ObjectRef link_;       // the ProblemLogLink
};

}  // namespace project
