#include "automation/remote_object.h"

#include <unistd.h>

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "automation/apartment.h"
#include "automation/error.h"
#include "automation/marshal.h"
#include "automation/peer.h"
#include "automation/process.h"
#include "automation/remote.h"

namespace automation {
namespace {

wire::Kind ToWire(MemberKind kind) {
  switch (kind) {
    case MemberKind::Get:
      return wire::Kind::GET;
    case MemberKind::Put:
      return wire::Kind::PUT;
    case MemberKind::Method:
      break;
  }
  return wire::Kind::METHOD;
}

MemberKind FromWire(wire::Kind kind) {
  switch (kind) {
    case wire::Kind::GET:
      return MemberKind::Get;
    case wire::Kind::PUT:
      return MemberKind::Put;
    case wire::Kind::METHOD:
      break;
  }
  return MemberKind::Method;
}

class ObjectServer;

// Our objects that other processes hold, by the number they travel under.
struct Exports {
  std::unordered_map<uint64_t, ObjectServer*> servers;
  uint64_t next = 1;
};

std::function<void(const Object&)>& IncomingCallObserver() {
  static std::function<void(const Object&)> observer;
  return observer;
}

Exports& TheExports() {
  static Exports* exports = new Exports();  // outlives servers released at exit
  return *exports;
}

// Cap'n Proto's servers have no virtual destructor; kj::heap remembers the real type instead.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Serves one of our objects to another process. Capabilities are reference counted: the server
// (and with it our reference to the object) goes when the last reference elsewhere is dropped or
// the connection ends.
class ObjectServer final : public wire::Dispatch::Server {
 public:
  explicit ObjectServer(ObjectRef object) : object_(std::move(object)), id_(TheExports().next++) {
    TheExports().servers.emplace(id_, this);
  }
  // The other side dropped its last reference, or its connection ended. This runs inside an
  // event callback, where nothing may wait; the object's own destructor may call other
  // processes (a problem context closes its context in the log), so the object is released as
  // a job.
  ~ObjectServer() {
    TheExports().servers.erase(id_);
    Apartment::Get().Post([object = std::move(object_)]() mutable { object.reset(); });
  }

  const ObjectRef& Object() const { return object_; }
  uint64_t Id() const { return id_; }

 protected:
  kj::Promise<void> invoke(InvokeContext context) override {
    auto params = context.getParams();
    Args args;
    args.reserve(params.getArgs().size());
    for (auto value : params.getArgs())
      args.push_back(automation::FromWire(value));
    // The call runs as a job of the apartment, not inside this event callback, so that it can
    // call other processes and wait for them.
    auto paf = kj::newPromiseAndFulfiller<void>();
    Apartment::Get().Post([object = object_, interfaceName = std::string(params.getInterface()),
                           memberName = std::string(params.getMember()),
                           kind = FromWire(params.getKind()), args = std::move(args), context,
                           fulfiller = kj::mv(paf.fulfiller)]() mutable {
      const Args given = args;
      Variant result;
      std::optional<Error> fault;
      // The call runs in the (simulated) process that made the object, with its values.
      std::optional<Process::Scope> scope;
      if (auto owner = object->Owner()) scope.emplace(std::move(owner));
      if (const auto& observer = IncomingCallObserver()) observer(*object);
      try {
        result = object->Invoke(interfaceName, memberName, kind, args);
      } catch (...) {
        fault = CurrentError();
      }
      // The caller is gone (its process ended or it dropped the call): nobody reads an answer.
      if (!fulfiller->isWaiting()) return;
      auto results = context.getResults();
      size_t changed = 0;
      for (size_t i = 0; i < args.size(); ++i) {
        if (i >= given.size() || !(args[i] == given[i])) ++changed;
      }
      auto written = results.initWritten(static_cast<unsigned>(changed));
      unsigned slot = 0;
      for (size_t i = 0; i < args.size(); ++i) {
        if (i < given.size() && args[i] == given[i]) continue;
        written[slot].setIndex(static_cast<uint32_t>(i));
        automation::ToWire(args[i], written[slot].initValue());
        ++slot;
      }
      if (fault) {
        automation::ToWire(*fault, results.initFault());
      } else {
        automation::ToWire(result, results.initResult());
      }
      fulfiller->fulfill();
    });
    return kj::mv(paf.promise);
  }

 private:
  ObjectRef object_;
  uint64_t id_;
};

#pragma GCC diagnostic pop

}  // namespace

RemoteObject::RemoteObject(wire::Dispatch::Client client, uint64_t apartment, uint64_t id,
                           long process)
    : client_(kj::mv(client)), apartment_(apartment), id_(id), process_(process) {}

RemoteObject::~RemoteObject() noexcept = default;

const ClassInfo& RemoteObject::Class() const {
  static const ClassInfo info = [] {
    ClassInfo i;
    i.name = "RemoteObject";
    i.defaultInterface.Index();
    return i;
  }();
  return info;
}

namespace {
// While a step of idle work runs, no call goes out: the other process is not waiting for us and
// may not serve us until it next calls; the step is told and leaves the work for a call.
struct IdleStep {
  bool running = false;
  bool calledOut = false;
};
IdleStep& CurrentIdleStep() {
  static IdleStep step;
  return step;
}
}  // namespace

Variant RemoteObject::Invoke(std::string_view interfaceName, std::string_view memberName,
                             MemberKind kind, Args& args) {
  if (CurrentIdleStep().running) {
    CurrentIdleStep().calledOut = true;
    Raise(err::kInvalidCall, "no call to another process from idle work");
  }
  try {
    auto request = client_.invokeRequest();
    request.setInterface(std::string(interfaceName));
    request.setMember(std::string(memberName));
    request.setKind(ToWire(kind));
    auto wireArgs = request.initArgs(static_cast<unsigned>(args.size()));
    for (size_t i = 0; i < args.size(); ++i)
      automation::ToWire(args[i], wireArgs[static_cast<unsigned>(i)]);
    auto response = AwaitFrom(process_, request.send());
    for (auto slot : response.getWritten()) {
      const size_t index = slot.getIndex();
      if (index >= args.size()) args.resize(index + 1);
      args[index] = automation::FromWire(slot.getValue());
    }
    if (response.hasFault()) throw automation::FromWire(response.getFault());
    return automation::FromWire(response.getResult());
  } catch (const kj::Exception& e) {
    RaiseTransportError(e);
  }
}

void ExportObject(const ObjectRef& object, wire::ObjectRef::Builder out) {
  if (auto* proxy = dynamic_cast<RemoteObject*>(object.get())) {
    out.setCap(proxy->Client());
    out.setApartment(proxy->ApartmentId());
    out.setId(proxy->Id());
    out.setProcess(static_cast<uint32_t>(proxy->ProcessId()));
    return;
  }
  auto server = kj::heap<ObjectServer>(object);
  out.setApartment(Apartment::Get().Id());
  out.setId(server->Id());
  out.setProcess(static_cast<uint32_t>(::getpid()));
  out.setCap(kj::mv(server));
}

ObjectRef ImportObject(wire::ObjectRef::Reader in) {
  if (in.getApartment() == Apartment::Get().Id()) {
    auto it = TheExports().servers.find(in.getId());
    if (it != TheExports().servers.end()) return it->second->Object();
  }
  return std::make_shared<RemoteObject>(in.getCap(), in.getApartment(), in.getId(),
                                        static_cast<long>(in.getProcess()));
}

void SetIncomingCallObserver(std::function<void(const Object&)> observer) {
  IncomingCallObserver() = std::move(observer);
}

void SetIdleWork(const std::shared_ptr<Object>& object, std::function<bool()> step) {
  if (!step) {
    Apartment::Get().SetIdleWork({});
    return;
  }
  Apartment::Get().SetIdleWork([weak = std::weak_ptr<Object>(object), step = std::move(step)] {
    const std::shared_ptr<Object> alive = weak.lock();
    if (!alive) return false;
    std::optional<Process::Scope> scope;
    if (auto owner = alive->Owner()) scope.emplace(std::move(owner));
    if (const auto& observer = IncomingCallObserver()) observer(*alive);
    IdleStep& current = CurrentIdleStep();
    current = {true, false};
    struct Done {
      IdleStep& step;
      ~Done() { step.running = false; }
    } done{current};
    return step();
  });
}

bool IdleStepCalledOut() {
  return CurrentIdleStep().calledOut;
}

size_t ExportedObjectCount() {
  return TheExports().servers.size();
}

void RaiseTransportError(const kj::Exception& e) {
  if (e.getType() == kj::Exception::Type::DISCONNECTED) Raise(err::kServerUnavailable);
  Raise(err::kInternal, std::string(e.getDescription().cStr()));
}

}  // namespace automation
