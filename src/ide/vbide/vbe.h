#pragma once
// VBE: the root object of the IDE's extensibility model, which the IDE hands to its add-ins.

#include <memory>
#include <string>

#include "automation/object.h"

namespace ide::vbide {

class Events;
class VBProjects;
class Window;

class VBE : public automation::Object {
 public:
  // The IDE's root with its project collection, event sources and main window, owned by the
  // current process (the IDE's).
  static std::shared_ptr<VBE> Create();
  VBE();  // use Create

  const automation::ClassInfo& Class() const override;

  // "6.00": the version of VB6's IDE, which add-ins test against "6.*".
  std::string Version() const { return "6.00"; }
  const std::shared_ptr<vbide::VBProjects>& VBProjects() const { return projects_; }
  const std::shared_ptr<vbide::Events>& Events() const { return events_; }
  // The first open project (this IDE has no other notion of an active one); Nothing when none.
  automation::ObjectRef ActiveVBProject() const;
  const std::shared_ptr<vbide::Window>& MainWindow() const { return mainWindow_; }

  // Breaks the references among the IDE's objects (the IDE has ended).
  void TearDown();

 private:
  std::shared_ptr<vbide::VBProjects> projects_;
  std::shared_ptr<vbide::Events> events_;
  std::shared_ptr<vbide::Window> mainWindow_;
};

}  // namespace ide::vbide
