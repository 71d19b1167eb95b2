#include "automation/remote.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <limits>

#include "automation/apartment.h"
#include "automation/error.h"
#include "automation/object.h"
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
  // Starts the peer serving on a socket of this test's home and connects to it.
  ObjectRef StartPeer() {
    fs::create_directories(home.path() / "run");
    const std::string socket = (home.path() / "run" / "peer.sock").string();
    pid = children.Start({QX_TEST_PEER, "serve", socket});
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
