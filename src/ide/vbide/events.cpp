#include "ide/vbide/events.h"

namespace ide::vbide {

// Made in the IDE's process, like its event source.
Events::Events() : projects_(std::make_shared<vbide::VBProjectsEvents>()) {}

const automation::ClassInfo& Events::Class() const {
  static const automation::ClassInfo info = automation::ClassBuilder<Events>("Events")
                                                .Get("VBProjectsEvents", &Events::VBProjectsEvents)
                                                .Build();
  return info;
}

void Events::TearDown() {
  projects_->TearDown();
}

}  // namespace ide::vbide
