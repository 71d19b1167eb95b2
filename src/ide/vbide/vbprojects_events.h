#pragma once
// VBProjectsEvents: the event source of the IDE's project collection (VBE.Events.VBProjectsEvents).
//
// How a listener binds to it. COM's connection points, simplified to two calls:
//
//   cookie = source.Advise(sink)   ' sink: any automation object; returns a cookie (a Long > 0)
//   source.Unadvise(cookie)        ' stops the events to that sink; an unknown cookie raises 5
//
// When the IDE raises an event, it calls on each advised sink, in the order they were advised,
// the method named like the event, with the event's arguments, if the sink's class has a method
// of that name on its default interface; a sink without it is skipped for that event. The events
// of the project collection are:
//
//   ItemAdded(VBProject As Object)     a project was opened (raised once the project is loaded)
//   ItemRemoved(VBProject As Object)   a project is being removed (the project still answers)
//
// A sink's failure does not stop the IDE: VB6 would show it in a message box; this IDE hands
// the error to the failure handler (the IDE records it among its problems) and goes on with the
// next sink. The source holds its sinks until they are unadvised or the IDE ends. A sink may
// advise or unadvise sinks while it handles an event; that takes effect from the next event.

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "automation/error.h"
#include "automation/object.h"

namespace ide::vbide {

class VBProjectsEvents : public automation::Object {
 public:
  using FailureHandler = std::function<void(const automation::ObjectRef& sink,
                                            std::string_view event, const automation::Error&)>;

  const automation::ClassInfo& Class() const override;

  // Raises 91 for Nothing.
  int32_t Advise(const automation::ObjectRef& sink);
  void Unadvise(int32_t cookie);

  // Raises the event on every advised sink (see above).
  void Fire(std::string_view event, const automation::ObjectRef& project);
  void SetFailureHandler(FailureHandler handler) { onFailure_ = std::move(handler); }

  std::size_t SinkCount() const { return sinks_.size(); }
  // Drops every sink (the IDE has ended).
  void TearDown();

 private:
  std::map<int32_t, automation::ObjectRef> sinks_;  // by cookie, which grows: advise order
  int32_t nextCookie_ = 1;
  FailureHandler onFailure_;
};

}  // namespace ide::vbide
