#pragma once
// Connection: the add-in that the VB6 IDE loads at its start ("qxvb60.Connection", "Quarrix VB
// AddIn"). It runs in the IDE's process and listens to the IDE's project events: for every
// project that the IDE loads from a file it makes a Dispatcher and registers it with the host
// library under the project file's path, so that the host-side Project can find it; when the
// IDE removes the project, it tears the dispatcher down and withdraws the registration.

#include <cstdint>
#include <string>
#include <vector>

#include "automation/object.h"

namespace project {

class Connection : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxvb60.Connection";

  // One project the IDE loaded from a file, with its registered dispatcher.
  struct Entry {
    std::string fileName;  // the project file's path as the IDE reported it
    int32_t cookie = 0;    // of the registration
    automation::ObjectRef dispatcher;
  };

  const automation::ClassInfo& Class() const override;

  // IDTExtensibility. Connecting keeps the IDE's root and binds the project events;
  // disconnecting releases the root and leaves the binding, the table and the registrations.
  void IDTExtensibility_OnConnection(const automation::ObjectRef& vbe, int32_t connectMode,
                                     const automation::ObjectRef& addInInst,
                                     const automation::Variant& custom);
  void IDTExtensibility_OnDisconnection(int32_t removeMode, const automation::Variant& custom);
  void IDTExtensibility_OnStartupComplete(const automation::Variant&) {}
  void IDTExtensibility_OnAddInsUpdate(const automation::Variant&) {}

  // The handlers of the IDE's project events. Their failures go into the current problem log.
  void ProjectEvents_ItemAdded(const automation::ObjectRef& vbProject);
  void ProjectEvents_ItemRemoved(const automation::ObjectRef& vbProject);

  // The valid entries of the table, in the order the projects were added.
  std::vector<Entry> Entries() const { return {entries_.begin(), entries_.begin() + count_}; }

 private:
  // Whether the IDE is VB6's ("6.*").
  bool IsVb6() const;

  automation::ObjectRef vbe_;
  std::vector<Entry> entries_;  // positions 0 to count_ - 1 are valid; one spare may follow
  int32_t count_ = 0;
  automation::ObjectRef projectEvents_;  // the VBProjectsEvents source the handlers are bound to
  automation::ObjectRef sink_;           // what the source calls for the handlers
};

}  // namespace project
