#pragma once
// Events: VBE.Events, where the IDE's event sources are found. This IDE raises the events of its
// project collection (VBProjectsEvents); the other sources of VB6's IDE (components, controls,
// references, command bars, file control) are not offered.

#include <memory>

#include "automation/object.h"
#include "ide/vbide/vbprojects_events.h"

namespace ide::vbide {

class Events : public automation::Object {
 public:
  Events();

  const automation::ClassInfo& Class() const override;

  const std::shared_ptr<vbide::VBProjectsEvents>& VBProjectsEvents() const { return projects_; }

  void TearDown();

 private:
  std::shared_ptr<vbide::VBProjectsEvents> projects_;
};

}  // namespace ide::vbide
