#include "automation/remote.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <limits>
#include <thread>

#include "automation/apartment.h"
#include "automation/error.h"
#include "automation/object.h"
#include "automation/peer.h"
#include "automation/remote_object.h"
#include "support/child_processes.h"
#include "support/errors.h"
#include "support/temp_home.h"

namespace {

using automation::Apartment;
using automation::Args;
using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;
using automation::VarType;
using qxtest::Caught;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

// An object of the test process that the peer calls back.
class Caller : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info = automation::ClassBuilder<Caller>("Caller")
                                                  .Method("Bounce", &Caller::Bounce)
                                                  .Get("Calls", &Caller::Calls)
                                                  .Build();
    return info;
  }
  int32_t Bounce(ObjectRef other, int32_t depth) {
    ++calls_;
    if (onBounce) onBounce();
    if (depth <= 0) return 0;
    return 1 + Dispatch(other).Call("Bounce", shared_from_this(), depth - 1).ToLong();
  }
  int32_t Calls() const { return calls_; }

  std::function<void()> onBounce;

 private:
  int32_t calls_ = 0;
};

class RemoteTest : public ::testing::Test {
 protected:
  // Starts the peer serving on a socket (by default in this test's home) and connects to it;
  // `as` runs it through another program first (setpriv, to be another user).
  ObjectRef StartPeer(std::string socket = {}, std::vector<std::string> as = {}) {
    if (socket.empty()) {
      fs::create_directories(home.path() / "run");
      socket = (home.path() / "run" / "peer.sock").string();
    }
    as.insert(as.end(), {QX_TEST_PEER, "serve", socket});
    pid = children.Start(as);
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    for (;;) {
      try {
        return automation::Connect(socket);
      } catch (const automation::Error& e) {
        if (e.Number() != 462 || std::chrono::steady_clock::now() > deadline) throw;
        Apartment::Get().ServeFor(10ms);
      }
    }
  }

  // Serves calls (releases among them) until the condition holds; false after five seconds.
  static bool ServeUntil(const std::function<bool()>& done) {
    return Apartment::Get().ServeUntil(done, std::chrono::steady_clock::now() + 5s, 5ms);
  }

  qxtest::TempHome home;
  qxtest::ChildProcesses children;
  pid_t pid = 0;
};

TEST_F(RemoteTest, EveryTypeCrossesWithItsTypeAndValue) {
  Dispatch peer(StartPeer());
  EXPECT_TRUE(automation::IsRemote(peer.object()));
  const Variant values[] = {
      Variant(),
      Variant(true),
      Variant(false),
      Variant::Byte(255),
      Variant::Integer(-32768),
      Variant::Long(std::numeric_limits<int32_t>::min()),
      Variant::Single(1.5f),
      Variant(-2.718281828459045),
      Variant::Cur(automation::Currency{std::numeric_limits<int64_t>::max()}),
      Variant(""),
      Variant(std::string("caf\xc3\xa9\0\x01\xff", 8)),  // any byte, NUL included
      Variant(ObjectRef()),
  };
  for (const Variant& value : values) {
    SCOPED_TRACE(automation::VarTypeName(value.Type()));
    EXPECT_EQ(peer.Call("Echo", value), value);
    EXPECT_EQ(peer.Call("TypeOf", value).ToLong(), static_cast<int>(value.Type()));
  }
  const std::string big(1 << 20, 'x');  // a whole module's text in one argument
  EXPECT_EQ(peer.Call("Echo", big).ToString(), big);
  peer.Put("Name", "renamed");  // properties both ways
  EXPECT_EQ(peer.Get("name").ToString(), "renamed");
}

TEST_F(RemoteTest, ByReferenceArgumentsAndDefaultsComeBackIntoTheArgs) {
  Dispatch peer(StartPeer());
  Args args{Variant::Long(21)};
  peer.CallArgs("Twice", args);
  EXPECT_EQ(args[0], Variant::Long(42));

  args = {Variant("abc"), Variant("def")};
  peer.CallArgs("Append", args);
  EXPECT_EQ(args[0].ToString(), "abcdef");
  EXPECT_EQ(args[1].ToString(), "def");  // by value: unchanged

  // As in-process: the optional argument left out is filled in with its default.
  args = {Variant("first")};
  EXPECT_EQ(peer.CallArgs("Defaults", args).ToString(), "first,second");
  ASSERT_EQ(args.size(), 2u);
  EXPECT_EQ(args[1].ToString(), "second");
}

TEST_F(RemoteTest, ErrorsCrossWithAllSixFields) {
  Dispatch peer(StartPeer());
  auto e = Caught([&] { peer.Call("Fail", -32767, "qxvb60", "No way.", "qx.chm", 4711, 12); });
  EXPECT_EQ(e.Number(), -32767);
  EXPECT_EQ(e.Source(), "qxvb60");
  EXPECT_EQ(e.Description(), "No way.");
  EXPECT_EQ(e.HelpFile(), "qx.chm");
  EXPECT_EQ(e.HelpContext(), 4711);
  EXPECT_EQ(e.Line(), 12);

  // The runtime's own errors raised on the far side arrive as they were raised there.
  const auto local = Caught([] { automation::Raise(438, "Peer.Nope"); });
  const auto remote = Caught([&] { peer.Call("Nope"); });
  EXPECT_EQ(remote.Number(), 438);
  EXPECT_EQ(remote.Description(), local.Description());
  EXPECT_EQ(Caught([&] { peer.Call("Twice", "abc"); }).Number(), 13);
  EXPECT_EQ(Caught([&] { peer.Call("Echo", 1, 2); }).Number(), 450);
  // The connection survives errors.
  EXPECT_EQ(peer.Call("Echo", 5).ToLong(), 5);
}

TEST_F(RemoteTest, ObjectsCrossBothWaysAndAreReleasedWhereTheyLive) {
  Dispatch peer(StartPeer());
  EXPECT_EQ(peer.Get("Live").ToLong(), 1);

  // An object of the peer: a proxy here, released there when the proxy goes.
  ObjectRef child = peer.Call("Make", "child").ToObject();
  ASSERT_TRUE(child);
  EXPECT_TRUE(automation::IsRemote(child));
  EXPECT_EQ(Dispatch(child).Get("Name").ToString(), "child");
  EXPECT_EQ(peer.Get("Live").ToLong(), 2);
  // Going home, it is the peer's own object again, not a proxy of a proxy.
  EXPECT_TRUE(peer.Call("Same", child, child).ToBool());
  EXPECT_FALSE(peer.Call("IsRemote", child).ToBool());
  child.reset();
  EXPECT_EQ(peer.Get("Live").ToLong(), 1);

  // An object of ours: a proxy there, called back here, kept alive by the peer's reference.
  auto mine = std::make_shared<Caller>();
  std::weak_ptr<Caller> watch = mine;
  const size_t exportedBefore = automation::ExportedObjectCount();
  peer.Call("Keep", mine);
  EXPECT_TRUE(peer.Call("IsRemote", mine).ToBool());
  EXPECT_EQ(peer.Call("Kept").ToObject(), mine);  // back home: the object itself
  mine.reset();
  EXPECT_FALSE(watch.expired());
  peer.Call("Drop");
  EXPECT_TRUE(ServeUntil([&] { return watch.expired(); }));
  EXPECT_EQ(automation::ExportedObjectCount(), exportedBefore);
}

// An object whose destructor calls another process, as a problem context closes its context in
// the log.
class Closer : public automation::Object {
 public:
  Closer(ObjectRef peer, bool& closed) : peer_(std::move(peer)), closed_(closed) {}
  ~Closer() override { closed_ = Dispatch(peer_).Call("Echo", true).ToBool(); }
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info = automation::ClassBuilder<Closer>("Closer").Build();
    return info;
  }

 private:
  ObjectRef peer_;
  bool& closed_;
};

TEST_F(RemoteTest, AReleasedObjectMayCallOtherProcessesAsItGoes) {
  auto peer = StartPeer();
  bool closed = false;
  Dispatch(peer).Call("Keep", std::make_shared<Closer>(peer, closed));
  Dispatch(peer).Call("Drop");
  EXPECT_TRUE(ServeUntil([&] { return closed; }));
}

TEST_F(RemoteTest, CallsBackIntoTheCallerAreServedWhileItWaits) {
  auto peer = StartPeer();
  auto mine = std::make_shared<Caller>();
  // Test process -> peer -> test process -> peer ..., each waiting for the next: ten calls
  // nested through both processes' waiting loops.
  EXPECT_EQ(Dispatch(mine).Call("Bounce", peer, 10).ToLong(), 10);
  EXPECT_EQ(mine->Calls(), 6);
}

TEST_F(RemoteTest, CallsIntoAKilledProcessRaise462) {
  auto root = StartPeer();
  Dispatch peer(root);
  ObjectRef child = peer.Call("Make", "child").ToObject();
  // An object of ours that the peer holds is released when the peer dies.
  auto held = std::make_shared<Caller>();
  std::weak_ptr<Caller> watchHeld = held;
  peer.Call("Keep", held);
  held.reset();

  // The peer dies in the middle of a call: the peer calls back, and while this process serves
  // that call the peer is killed. The outer call, still waiting for its answer, fails.
  auto mine = std::make_shared<Caller>();
  mine->onBounce = [&] { qxtest::ChildProcesses::End(pid); };
  auto e = Caught([&] { peer.Call("Bounce", mine, 2); });
  EXPECT_EQ(e.Number(), 462);
  EXPECT_EQ(e.Description(), "The remote server machine does not exist or is unavailable");

  // Every later call into the ended process, through any proxy, fails the same way.
  EXPECT_EQ(Caught([&] { peer.Get("Name"); }).Number(), 462);
  EXPECT_EQ(Caught([&] { Dispatch(child).Get("Name"); }).Number(), 462);
  EXPECT_EQ(
      Caught([&] { automation::Connect((home.path() / "run" / "peer.sock").string()); }).Number(),
      462);
  child.reset();  // dropping proxies of an ended process is harmless
  EXPECT_TRUE(ServeUntil([&] { return watchHeld.expired(); }));
}

// A peer that is stopped, or busy for longer than a call may take, fails the call with 462
// instead of keeping the caller waiting; later calls to it fail at once while it stays so.
TEST_F(RemoteTest, AStoppedOrSilentPeerFailsTheCallAndIsNotCalledAgain) {
  Dispatch stopped(StartPeer());
  ASSERT_EQ(stopped.Get("Name").ToString(), "root");
  ::kill(pid, SIGSTOP);
  auto start = std::chrono::steady_clock::now();
  auto e = Caught([&] { stopped.Get("Name"); });
  EXPECT_EQ(e.Number(), 462);
  EXPECT_NE(e.Description().find("is stopped and does not answer"), std::string::npos)
      << e.Description();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
  start = std::chrono::steady_clock::now();
  EXPECT_EQ(Caught([&] { stopped.Get("Name"); }).Number(), 462);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 100ms);
  // Running again (fg after Ctrl-Z), it is called again.
  ::kill(pid, SIGCONT);
  ServeUntil([&] { return automation::StateOf(pid) == automation::ProcessState::Running; });
  EXPECT_EQ(stopped.Get("Name").ToString(), "root");
  qxtest::ChildProcesses::End(pid);

  ::setenv(automation::kCallTimeoutVariable, "1", 1);
  Dispatch busy(StartPeer((home.path() / "busy.sock").string()));
  start = std::chrono::steady_clock::now();
  e = Caught([&] { busy.Call("Sleep", 20000); });
  EXPECT_EQ(e.Number(), 462);
  EXPECT_NE(e.Description().find("did not answer within 1 seconds"), std::string::npos)
      << e.Description();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
  ::setenv(automation::kCallTimeoutVariable, "soon", 1);
  EXPECT_EQ(Caught([] { automation::CallTimeout(); }).Number(), 5);
  ::unsetenv(automation::kCallTimeoutVariable);
}

// Sockets are the owner's alone (0600 whatever the umask), at any depth of folder, and a
// process of another user can neither be served by nor serve this one.
TEST_F(RemoteTest, SocketsArePrivateAtAnyPathLengthAndForTheirUserOnly) {
  const mode_t umask = ::umask(0);
  fs::path deep = home.path();
  while (deep.string().size() < 150)
    deep /= "a-folder-of-some-length";
  fs::create_directories(deep);
  const std::string socket = (deep / "peer.sock").string();
  Dispatch peer(StartPeer(socket));
  EXPECT_EQ(peer.Get("Name").ToString(), "root");
  EXPECT_EQ(fs::status(socket).permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write);
  ::umask(umask);

  if (::geteuid() != 0 || !fs::exists("/usr/bin/setpriv")) GTEST_SKIP() << "needs root and setpriv";
  const std::vector<std::string> nobody{"/usr/bin/setpriv", "--reuid=65534", "--regid=65534",
                                        "--clear-groups"};
  fs::permissions(home.path(), fs::perms::all);  // the other user may reach the sockets
  // Another user's socket: not connected to.
  const std::string theirs = (home.path() / "theirs.sock").string();
  pid = children.Start({nobody[0], nobody[1], nobody[2], nobody[3], QX_TEST_PEER, "serve", theirs});
  const auto deadline = std::chrono::steady_clock::now() + 20s;
  while (!fs::exists(theirs) && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(10ms);
  ::chmod(theirs.c_str(), 0666);
  const auto refused = Caught([&] { automation::Connect(theirs); });
  EXPECT_EQ(refused.Number(), 70);
  EXPECT_NE(refused.Description().find("another user"), std::string::npos) << refused.Description();
  // A listener of ours that another user could reach: the connection is closed at once, while
  // a served one would stay open for the client's first message.
  const std::string ours = (home.path() / "ours.sock").string();
  auto mine = std::make_shared<Caller>();
  automation::Listener listener(ours, mine);
  ::chmod(ours.c_str(), 0666);
  const pid_t other = ::fork();
  if (other == 0) {
    if (::setresgid(65534, 65534, 65534) != 0 || ::setresuid(65534, 65534, 65534) != 0) _exit(3);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, ours.c_str(), sizeof address.sun_path - 1);
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) _exit(4);
    pollfd wait{fd, POLLIN, 0};
    char byte = 0;
    const bool closed = ::poll(&wait, 1, 3000) == 1 && ::read(fd, &byte, 1) <= 0;
    _exit(closed ? 0 : 1);
  }
  int status = -1;
  EXPECT_TRUE(ServeUntil([&] { return ::waitpid(other, &status, WNOHANG) == other; }));
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST_F(RemoteTest, AListenerServesUntilItGoesAndRefusesBadSockets) {
  fs::create_directories(home.path() / "run");
  const std::string socket = (home.path() / "run" / "self.sock").string();
  auto mine = std::make_shared<Caller>();
  {
    automation::Listener listener(socket, mine);
    EXPECT_TRUE(fs::exists(socket));
    // A process may connect to itself: the root comes home as the object itself.
    EXPECT_EQ(automation::Connect(socket), mine);
  }
  EXPECT_FALSE(fs::exists(socket));
  EXPECT_EQ(Caught([&] { automation::Connect(socket); }).Number(), 462);
  EXPECT_EQ(Caught([&] { automation::Listener(std::string(200, 'x'), mine); }).Number(), 75);
  EXPECT_EQ(Caught([&] { automation::Listener("/nonexistent/folder/x.sock", mine); }).Number(), 75);
}

}  // namespace
