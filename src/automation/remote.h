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

// True when the object is a proxy for an object of another process (for tests and diagnostics:
// callers need not care).
bool IsRemote(const ObjectRef& object);

// The process that serves the object, for a proxy; none for an object of this process.
std::optional<long> ServingProcess(const ObjectRef& object);

}  // namespace automation
