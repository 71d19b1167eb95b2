#pragma once
// The two ends of an object reference that crosses to another process: the server that serves
// one of our objects to the other process, and the proxy that stands for an object of another
// process here. The proxy is the only code that knows an object is remote: it is an Object
// whose Invoke carries the call over the wire and brings back the result, the by-reference
// arguments and the error, so callers cannot tell it from a local object.

#include <cstdint>
#include <string_view>

#include "automation/object.h"
#include "automation/remote.capnp.h"

namespace automation {

class RemoteObject final : public Object {
 public:
  RemoteObject(wire::Dispatch::Client client, uint64_t apartment, uint64_t id, long process);
  // Releases the far object (when this was the last reference to it from here).
  ~RemoteObject() noexcept override;

  // A proxy answers to calls only: it has no member tables of its own here.
  const ClassInfo& Class() const override;

  // Carries the call to the object's process and waits for the answer, serving calls into this
  // process meanwhile. Raises the callee's error with all its fields; 462 when the object's
  // process has ended or cannot answer (see peer.h).
  Variant Invoke(std::string_view interfaceName, std::string_view memberName, MemberKind kind,
                 Args& args) override;

  wire::Dispatch::Client& Client() { return client_; }
  uint64_t ApartmentId() const { return apartment_; }
  uint64_t Id() const { return id_; }
  long ProcessId() const { return process_; }

 private:
  wire::Dispatch::Client client_;
  uint64_t apartment_;
  uint64_t id_;
  long process_;
};

// Writes a reference to the object into a message: a proxy passes on the capability it holds; a
// local object gets a server that keeps it alive until the other side drops its reference.
void ExportObject(const ObjectRef& object, wire::ObjectRef::Builder out);
// The object a reference in a message stands for: our own object when it comes home, else a
// proxy.
ObjectRef ImportObject(wire::ObjectRef::Reader in);

// The number of our objects that other processes hold references to (for tests).
size_t ExportedObjectCount();

// A failure of the connection as an automation error: 462 when the other process is gone.
[[noreturn]] void RaiseTransportError(const kj::Exception& e);

}  // namespace automation
