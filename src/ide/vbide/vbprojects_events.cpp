#include "ide/vbide/vbprojects_events.h"

#include <utility>
#include <vector>

namespace ide::vbide {

const automation::ClassInfo& VBProjectsEvents::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<VBProjectsEvents>("VBProjectsEvents")
          .Method("Advise", &VBProjectsEvents::Advise, {"Sink"})
          .Method("Unadvise", &VBProjectsEvents::Unadvise, {"Cookie"})
          .Build();
  return info;
}

int32_t VBProjectsEvents::Advise(const automation::ObjectRef& sink) {
  if (!sink) automation::Raise(automation::err::kObjectNotSet, "no sink to advise");
  const int32_t cookie = nextCookie_++;
  sinks_.emplace(cookie, sink);
  return cookie;
}

void VBProjectsEvents::Unadvise(int32_t cookie) {
  if (sinks_.erase(cookie) == 0) {
    automation::Raise(automation::err::kInvalidCall,
                      "no sink is advised with the cookie " + std::to_string(cookie));
  }
}

void VBProjectsEvents::Fire(std::string_view event, const automation::ObjectRef& project) {
  // A handler may advise or unadvise: walk the sinks as they were when the event was raised.
  std::vector<automation::ObjectRef> sinks;
  sinks.reserve(sinks_.size());
  for (const auto& [cookie, sink] : sinks_)
    sinks.push_back(sink);
  for (const automation::ObjectRef& sink : sinks) {
    try {
      if (!sink->Class().defaultInterface.Find(event, automation::MemberKind::Method)) continue;
      automation::Dispatch(sink).Call(event, project);
    } catch (...) {
      const automation::Error error = automation::CurrentError();
      if (onFailure_) onFailure_(sink, event, error);
    }
  }
}

void VBProjectsEvents::TearDown() {
  auto sinks = std::move(sinks_);
  sinks_.clear();
  onFailure_ = nullptr;
}

}  // namespace ide::vbide
