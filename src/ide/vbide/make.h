#pragma once
// Creating the IDE's objects where they belong. Every object of the IDE belongs to the IDE's
// process, also one made later on a caller's behalf (a code module asked for the first time, a
// designer window opened by a call from the host), so that it stops answering when the IDE ends.

#include <memory>
#include <utility>

#include "automation/error.h"
#include "automation/object.h"
#include "automation/process.h"

namespace ide::vbide {

// A new T owned by the process that owns `sibling`. Raises 462 when that process is gone.
template <class T, class... A>
std::shared_ptr<T> MakeBeside(const automation::Object& sibling, A&&... args) {
  std::shared_ptr<automation::Process> process = sibling.Owner();
  if (!process) automation::Raise(automation::err::kServerUnavailable);
  automation::Process::Scope scope(std::move(process));
  return std::make_shared<T>(std::forward<A>(args)...);
}

// A sub-object made on first use and kept only while someone holds it: the same object each
// time while it is held, and nothing kept once nobody holds it. A sub-object holds its parent, so
// a parent that held its sub-objects would keep a whole form's controls alive, all together, for
// as long as the IDE runs.
template <class T, class Make>
std::shared_ptr<T> HeldOrMade(std::weak_ptr<T>& slot, Make&& make) {
  if (std::shared_ptr<T> held = slot.lock()) return held;
  std::shared_ptr<T> made = make();
  slot = made;
  return made;
}

}  // namespace ide::vbide
