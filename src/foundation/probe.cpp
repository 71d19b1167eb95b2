#include "foundation/probe.h"

#include "contracts/host_classes.h"

namespace foundation {

const automation::ClassInfo& Probe::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<Probe>("Probe")
          .Method("Initialize", &Probe::Initialize, {"SiteName"})
          .Build();
  return info;
}

void Probe::Initialize(std::string& siteName) {
  contracts::Tracer::Get().Enter(siteName);
  entered_ = true;
}

Probe::~Probe() {
  if (!entered_) return;
  try {
    contracts::Tracer::Get().Leave();
  } catch (...) {
    // A destructor must not throw; a lost Leave only unbalances the trace.
  }
}

}  // namespace foundation
