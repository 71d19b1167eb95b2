#include "automation/remote.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <capnp/rpc-twoparty.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <vector>

#include "automation/apartment.h"
#include "automation/error.h"
#include "automation/peer.h"
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

// The process at the other end of a connected socket, as the kernel knows it.
ucred PeerOf(kj::AsyncIoStream& stream) {
  ucred peer{};
  kj::uint length = sizeof peer;
  stream.getsockopt(SOL_SOCKET, SO_PEERCRED, &peer, &length);
  return peer;
}

// One connection to another process's socket, shared by every proxy that came through it.
struct Connection {
  long peer = 0;  // the serving process
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

// A socket path as bind and connect take it. A Unix socket's address holds at most 107 bytes;
// a longer path is reached through its folder, opened here for as long as this lives
// (/proc/self/fd/N/NAME names the same file in few bytes), so a qx home may be as deep as any.
class SocketAddress {
 public:
  explicit SocketAddress(const std::string& path) : text_(path) {
    if (path.size() < sizeof(sockaddr_un::sun_path)) return;
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "."
                               : slash == 0               ? "/"
                                                          : path.substr(0, slash);
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    folder_ = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (folder_ < 0) Raise(err::kPathFileAccess, path + ": " + std::strerror(errno));
    text_ = "/proc/self/fd/" + std::to_string(folder_) + "/" + name;
    if (text_.size() >= sizeof(sockaddr_un::sun_path)) {
      Raise(err::kPathFileAccess, "the socket's file name is longer than the system allows (" +
                                      std::to_string(sizeof(sockaddr_un::sun_path) - 1) +
                                      " bytes with its folder): " + path);
    }
  }
  ~SocketAddress() {
    if (folder_ >= 0) ::close(folder_);
  }
  SocketAddress(const SocketAddress&) = delete;
  SocketAddress& operator=(const SocketAddress&) = delete;

  kj::Own<kj::NetworkAddress> Parse() {
    Apartment& apartment = Apartment::Get();
    return apartment.Await(apartment.Io().getNetwork().parseAddress("unix:" + text_));
  }

 private:
  std::string text_;
  int folder_ = -1;
};

// Whether a connection can carry a new call. Its end is noticed in an event-loop turn, which may
// not have come since the peer went (an IDE ended by Ctrl-C): the events that are ready are
// handled first, and a peer that has gone or cannot answer ends it too. A call begun on a
// connection whose other end has shut down fails inside Cap'n Proto in a way that ends this
// process, so it must never be begun.
bool Usable(Connection& connection) {
  Apartment::Get().WaitScope().poll();
  if (!connection.broken && (StateOf(connection.peer) == ProcessState::Gone ||
                             Unresponsive(connection.peer).has_value())) {
    connection.broken = true;
  }
  return !connection.broken;
}

Connection& ConnectionTo(const std::string& path) {
  Connections& connections = TheConnections();
  auto it = connections.live.find(path);
  if (it != connections.live.end()) {
    if (Usable(*it->second)) return *it->second;
    connections.ended.push_back(std::move(it->second));
    connections.live.erase(it);
  }
  Apartment& apartment = Apartment::Get();
  SocketAddress address(path);
  auto connection = std::make_unique<Connection>();
  connection->stream = apartment.Await(address.Parse()->connect());
  // Only a process of our own user may serve us: it will be handed our objects.
  const ucred peer = PeerOf(*connection->stream);
  if (peer.uid != ::geteuid()) {
    Raise(err::kPermissionDenied, path + " is served by a process of another user (uid " +
                                      std::to_string(peer.uid) + "); qx does not connect to it");
  }
  connection->peer = peer.pid;
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

  // Serves each connection of a process of our own user; another user's is closed at once.
  kj::Promise<void> Accept() {
    return receiver->accept().then([this](kj::Own<kj::AsyncIoStream>&& stream) {
      if (PeerOf(*stream).uid == ::geteuid()) server->accept(kj::mv(stream));
      return Accept();
    });
  }
};

Listener::Listener(std::string socketPath, ObjectRef root) : impl_(std::make_unique<Impl>()) {
  impl_->path = std::move(socketPath);
  SocketAddress address(impl_->path);
  ::unlink(impl_->path.c_str());  // a socket left by an ended process of the same number
  try {
    impl_->receiver = address.Parse()->listen();
    // Only its owner may connect, whatever the umask said when it was made.
    if (::chmod(impl_->path.c_str(), 0600) != 0) {
      Raise(err::kPathFileAccess, impl_->path + ": " + std::strerror(errno));
    }
    impl_->server = kj::heap<capnp::TwoPartyServer>(kj::heap<RootServer>(std::move(root)));
    impl_->task = impl_->Accept().eagerlyEvaluate([](kj::Exception&&) {
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
  try {
    Connection& connection = ConnectionTo(socketPath);
    auto root = connection.client->bootstrap().castAs<wire::Root>();
    auto response = AwaitFrom(connection.peer, root.rootRequest().send());
    return ImportObject(response.getObject());
  } catch (const kj::Exception&) {
    Raise(err::kServerUnavailable, socketPath);
  }
}

bool IsRemote(const ObjectRef& object) {
  return dynamic_cast<const RemoteObject*>(object.get()) != nullptr;
}

std::optional<long> ServingProcess(const ObjectRef& object) {
  if (const auto* proxy = dynamic_cast<const RemoteObject*>(object.get()))
    return proxy->ProcessId();
  return std::nullopt;
}

}  // namespace automation
