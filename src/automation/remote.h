#pragma once
// Object references between processes of one machine. A process serves an object on a Unix
// socket; another process connects to the socket and gets a proxy for that object, through which
// it calls the object by name exactly as it calls its own objects. Objects passed in either
// direction become proxies on the far side, are called back where they live, and are released
// there when the proxy is dropped. Incoming calls are served while the process waits (see
// apartment.h): there are no threads.

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "automation/object.h"

namespace automation {

// Serves an object to other processes on a Unix socket, as long as it lives.
class Listener {
 public:
  // Listens on the socket path (a stale socket file there is replaced). Raises 75 when the
  // socket cannot be made there.
  Listener(std::string socketPath, ObjectRef root);
  // Stops serving: the socket file is removed and the connections made through it are closed.
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  const std::string& Path() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// The object served on the socket, as a proxy. One connection per socket is made and kept for
// the proxies that come through it. Raises 462 when no process serves there (any more).
ObjectRef Connect(const std::string& socketPath);

// Tells the observer of every call that another process makes into one of our objects, just
// before the call runs (a server that ends when it has been quiet counts them). One observer
// per process; an empty function removes it.
void SetIncomingCallObserver(std::function<void(const Object& callee)> observer);

// Idle work of one of our objects (Apartment::SetIdleWork): each step runs as a call that another
// process makes into the object would, in the process that made it and told to the observer of
// incoming calls, for as long as the object lives and the step answers true.
// A step may call nothing in another process (which is not waiting for it): such a call raises
// 5, and IdleStepCalledOut() then answers true until the next step, which should leave what it
// was doing to be done in a call.
void SetIdleWork(const std::shared_ptr<Object>& object, std::function<bool()> step);
bool IdleStepCalledOut();

// True when the object is a proxy for an object of another process (for tests and diagnostics:
// callers need not care).
bool IsRemote(const ObjectRef& object);

// The process that serves the object, for a proxy; none for an object of this process.
std::optional<long> ServingProcess(const ObjectRef& object);

}  // namespace automation
