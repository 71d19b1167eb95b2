#include "automation/remote.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <capnp/rpc-twoparty.h>

#include <map>
#include <vector>

#include "automation/apartment.h"
#include "automation/error.h"
#include "automation/remote_object.h"

namespace automation {
namespace {

// Cap'n Proto's servers have no virtual destructor; kj::heap remembers the real type instead.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// What a connection receives first: the object served on the socket.
class RootServer final : public wire::Root::Server {
 public:
  explicit RootServer(ObjectRef root) : root_(std::move(root)) {}

 protected:
  kj::Promise<void> root(RootContext context) override {
    ExportObject(root_, context.getResults().initObject());
    return kj::READY_NOW;
  }

 private:
  ObjectRef root_;
};

#pragma GCC diagnostic pop

// One connection to another process's socket, shared by every proxy that came through it.
struct Connection {
  kj::Own<kj::AsyncIoStream> stream;
  kj::Own<capnp::TwoPartyClient> client;
  bool broken = false;
  kj::Promise<void> watch = nullptr;
};

struct Connections {
  std::map<std::string, std::unique_ptr<Connection>> live;
  // Ended connections are kept: proxies that came through them may still be held, and they
  // answer 462 through what is left of their connection.
  std::vector<std::unique_ptr<Connection>> ended;
};

Connections& TheConnections() {
  static Connections* connections = new Connections();  // outlives proxies released at exit
  return *connections;
}

void CheckSocketPath(const std::string& path) {
  if (path.size() >= sizeof(sockaddr_un::sun_path)) {
    Raise(err::kPathFileAccess, "the socket path is longer than the system allows (" +
                                    std::to_string(sizeof(sockaddr_un::sun_path) - 1) +
                                    " bytes): " + path);
  }
}

Connection& ConnectionTo(const std::string& path) {
  Connections& connections = TheConnections();
  auto it = connections.live.find(path);
  if (it != connections.live.end()) {
    if (!it->second->broken) return *it->second;
    connections.ended.push_back(std::move(it->second));
    connections.live.erase(it);
  }
  Apartment& apartment = Apartment::Get();
  auto address = apartment.Await(apartment.Io().getNetwork().parseAddress("unix:" + path));
  auto connection = std::make_unique<Connection>();
  connection->stream = apartment.Await(address->connect());
  connection->client = kj::heap<capnp::TwoPartyClient>(*connection->stream);
  Connection* raw = connection.get();
  connection->watch =
      connection->client->onDisconnect()
          .then([raw] { raw->broken = true; }, [raw](kj::Exception&&) { raw->broken = true; })
          .eagerlyEvaluate(nullptr);
  return *connections.live.emplace(path, std::move(connection)).first->second;
}

}  // namespace

struct Listener::Impl {
  std::string path;
  kj::Own<kj::ConnectionReceiver> receiver;
  kj::Own<capnp::TwoPartyServer> server;
  kj::Promise<void> task = nullptr;
};

Listener::Listener(std::string socketPath, ObjectRef root) : impl_(std::make_unique<Impl>()) {
  CheckSocketPath(socketPath);
  impl_->path = std::move(socketPath);
  ::unlink(impl_->path.c_str());  // a socket left by an ended process of the same number
  Apartment& apartment = Apartment::Get();
  try {
    auto address = apartment.Await(apartment.Io().getNetwork().parseAddress("unix:" + impl_->path));
    impl_->receiver = address->listen();
    impl_->server = kj::heap<capnp::TwoPartyServer>(kj::heap<RootServer>(std::move(root)));
    impl_->task = impl_->server->listen(*impl_->receiver).eagerlyEvaluate([](kj::Exception&&) {
      // Accepting failed (the socket was closed): nothing more to serve.
    });
  } catch (const kj::Exception& e) {
    Raise(err::kPathFileAccess, impl_->path + ": " + e.getDescription().cStr());
  }
}

Listener::~Listener() {
  impl_->task = nullptr;
  impl_->server = nullptr;
  impl_->receiver = nullptr;
  ::unlink(impl_->path.c_str());
}

const std::string& Listener::Path() const {
  return impl_->path;
}

ObjectRef Connect(const std::string& socketPath) {
  CheckSocketPath(socketPath);
  Apartment& apartment = Apartment::Get();
  try {
    Connection& connection = ConnectionTo(socketPath);
    auto root = connection.client->bootstrap().castAs<wire::Root>();
    auto response = apartment.Await(root.rootRequest().send());
    return ImportObject(response.getObject());
  } catch (const kj::Exception&) {
    Raise(err::kServerUnavailable, socketPath);
  }
}

bool IsRemote(const ObjectRef& object) {
  return dynamic_cast<const RemoteObject*>(object.get()) != nullptr;
}

}  // namespace automation
