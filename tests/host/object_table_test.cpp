#include "host/object_table.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "automation/apartment.h"
#include "automation/remote.h"
#include "host/host_utility.h"
#include "host/launch.h"
#include "host/problem_log.h"
#include "host/register.h"
#include "platform/paths.h"
#include "support/child_processes.h"
#include "support/errors.h"
#include "support/temp_home.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using qxtest::Caught;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

class ObjectTableTest : public ::testing::Test {
 protected:
  static ObjectRef Make() {
    host::RegisterClasses();
    return automation::CreateObject("qxlib41.HostUtility");
  }

  ObjectRef Find(const std::string& name) {
    return utility.Call("GetRegisteredObject", name).ToObject();
  }

  // Starts a peer that registers itself under the name, and waits for it.
  ObjectRef StartRegisteredPeer(const std::string& name) {
    children.Start({QX_TEST_PEER, "register", name});
    ObjectRef found;
    automation::Apartment::Get().ServeUntil([&] { return (found = Find(name)) != nullptr; },
                                            std::chrono::steady_clock::now() + 20s);
    return found;
  }

  // The entry files of the table in this home.
  size_t EntryFiles() const {
    size_t count = 0;
    for (const auto& file : fs::directory_iterator(home.path() / "run"))
      count += file.path().extension() == ".entry";
    return count;
  }

  qxtest::TempHome home;
  qxtest::ChildProcesses children;
  Dispatch utility{Make()};
};

TEST_F(ObjectTableTest, RegistrationsAreSharedBetweenProcessesUntilRevokedOrEnded) {
  ObjectRef peerObject = StartRegisteredPeer("c:\\Proj\\A.vbp");
  ASSERT_TRUE(peerObject);
  Dispatch peer(peerObject);
  EXPECT_TRUE(automation::IsRemote(peerObject));
  EXPECT_TRUE(automation::IsRemote(Find("C:/proj/./sub/../A.VBP")));
  const pid_t peerPid = peer.Get("Pid").ToLong();

  // Ours, seen from the peer, comes back here as the object itself.
  auto log = std::make_shared<host::ProblemLog>();
  const int32_t mine = utility.Call("RegisterObject", "z:\\srv\\Log", log).ToLong();
  EXPECT_EQ(peer.Call("Lookup", "/SRV/log").ToObject(), log);
  EXPECT_EQ(peer.Call("Lookup", "/srv/other").ToObject(), nullptr);
  // The peer reports into our log while we wait for its answer, and reads the count back.
  EXPECT_EQ(peer.Call("Report", log, "first").ToLong(), 1);
  EXPECT_EQ(peer.Call("Report", log, "second").ToLong(), 2);
  ASSERT_EQ(log->Count(), 2);
  EXPECT_EQ(Dispatch(log->Item(2)).Get("Description").ToString(), "second");
  EXPECT_EQ(Dispatch(log->Item(2)).Get("Line").ToLong(), 7);

  // The latest registration of a name answers, whichever process made it.
  auto newer = std::make_shared<host::ProblemLog>();
  const int32_t local = utility.Call("RegisterObject", "C:\\PROJ\\a.vbp", newer).ToLong();
  EXPECT_EQ(Find("c:\\proj\\a.vbp"), newer);
  utility.Call("RevokeObject", local);
  EXPECT_TRUE(automation::IsRemote(Find("c:\\proj\\a.vbp")));

  // The peer's own registrations come and go.
  const int32_t cookie = peer.Call("Register", "c:\\Proj\\B.vbp").ToLong();
  EXPECT_EQ(Dispatch(Find("c:/proj/b.vbp")).Get("Name").ToString(), "c:\\Proj\\B.vbp");
  peer.Call("Revoke", cookie);
  EXPECT_EQ(Find("c:/proj/b.vbp"), nullptr);

  // A private registration is ours alone: found here, unknown to the peer, with no entry file.
  const int32_t own = host::ObjectTable::Get().AddPrivate("qx-agent-1", newer);
  EXPECT_EQ(Find("QX-AGENT-1"), newer);
  EXPECT_EQ(peer.Call("Lookup", "qx-agent-1").ToObject(), nullptr);
  EXPECT_TRUE(host::ObjectTable::Get().Remove(own));
  EXPECT_EQ(Find("qx-agent-1"), nullptr);

  // A killed process's registrations are ignored and their entries removed when their name is
  // looked up; a socket that an ended process left without entries, at the next registration.
  EXPECT_EQ(EntryFiles(), 2u);  // the peer's A.vbp and our log
  qxtest::ChildProcesses::End(peerPid);
  std::ofstream(home.path() / "run" / "999999999.sock");  // left by some ended process
  EXPECT_EQ(Find("c:\\Proj\\A.vbp"), nullptr);
  EXPECT_EQ(EntryFiles(), 1u);
  EXPECT_FALSE(fs::exists(home.path() / "run" / (std::to_string(peerPid) + ".sock")));
  EXPECT_EQ(Caught([&] { peer.Get("Name"); }).Number(), 462);
  utility.Call("RevokeObject", utility.Call("RegisterObject", "z:\\srv\\Other", log));
  EXPECT_FALSE(fs::exists(home.path() / "run" / "999999999.sock"));

  utility.Call("RevokeObject", mine);
  EXPECT_EQ(EntryFiles(), 0u);
}

TEST_F(ObjectTableTest, LaunchAndConnectWaitsForTheRegistration) {
  // The started process calls into this one (the log) before it registers: that call is served
  // while LaunchAndConnect waits, or the registration would never come.
  auto log = std::make_shared<host::ProblemLog>();
  const int32_t cookie = utility.Call("RegisterObject", "c:\\qx\\log", log).ToLong();
  const std::string peer = platform::ToWindows(QX_TEST_PEER);  // "z:\...": mapped back
  const auto launch = [&](const std::string& commandLine, const std::string& name, int timeout) {
    return utility.Call("LaunchAndConnect", commandLine, name, "", "", 0, 0, timeout).ToObject();
  };

  ObjectRef found = launch("\"" + peer + "\" register \"c:\\Proj\\A.vbp\" \"c:\\qx\\log\"",
                           "C:/proj/a.vbp", 20000);
  ASSERT_TRUE(found);
  EXPECT_TRUE(automation::IsRemote(found));
  EXPECT_EQ(log->Count(), 1);
  // The started program got the Linux path of the project; its own session.
  const std::string registeredAs = Dispatch(found).Get("Name").ToString();
  EXPECT_EQ(registeredAs, (home.path() / "drive_c" / "Proj" / "A.vbp").string());
  const pid_t pid = Dispatch(found).Get("Pid").ToLong();
  EXPECT_EQ(::getsid(pid), pid);

  // A program that ends first: none, at once.
  auto started = std::chrono::steady_clock::now();
  EXPECT_EQ(launch("\"" + peer + "\" exit 3", "c:\\Proj\\C.vbp", 20000), nullptr);
  EXPECT_LT(std::chrono::steady_clock::now() - started, 10s);

  // A program that never registers the name: none at the time-out.
  started = std::chrono::steady_clock::now();
  EXPECT_EQ(launch("\"" + peer + "\" register \"c:\\Other.vbp\"", "c:\\Proj\\C.vbp", 300), nullptr);
  EXPECT_GE(std::chrono::steady_clock::now() - started, 300ms);

  // A program that cannot be started: none.
  EXPECT_EQ(launch("\"c:\\no\\such.exe\" x", "c:\\Proj\\C.vbp", 20000), nullptr);
  utility.Call("RevokeObject", cookie);
}

TEST(LaunchTest, CommandLinesSplitAsWindowsSplitsThem) {
  using V = std::vector<std::string>;
  EXPECT_EQ(host::SplitCommandLine("\"c:\\Program Files\\vb6.exe\" \"c:\\My Proj\\A.vbp\""),
            (V{"c:\\Program Files\\vb6.exe", "c:\\My Proj\\A.vbp"}));
  EXPECT_EQ(host::SplitCommandLine("  c:\\vb6.exe  a\tb  "), (V{"c:\\vb6.exe", "a", "b"}));
  EXPECT_EQ(host::SplitCommandLine("x a\\\\b \"c\\\\\" d\\\"e \"f\"\"g\""),
            (V{"x", "a\\\\b", "c\\", "d\"e", "f\"g"}));
  EXPECT_EQ(host::SplitCommandLine("x \"\" y"), (V{"x", "", "y"}));
  EXPECT_EQ(host::SplitCommandLine("   "), V{});
}

TEST(ObjectTableNames, MatchAsWindowsPaths) {
  qxtest::TempHome home;
  const auto same = [](const char* a, const char* b) {
    return host::ObjectTable::NormalizeName(a) == host::ObjectTable::NormalizeName(b);
  };
  EXPECT_TRUE(same("C:\\Proj\\A.vbp", "c:/proj/a.VBP"));
  EXPECT_TRUE(same("z:\\home\\ann\\A.vbp", "/home/ann/a.vbp"));
  EXPECT_TRUE(same("c:\\Proj\\Sub\\..\\.\\A.vbp", "c:\\proj\\a.vbp"));
  EXPECT_TRUE(same("c:\\..\\A.vbp", "c:\\a.vbp"));
  EXPECT_TRUE(same("c:\\Proj\\\\A.vbp", "c:\\Proj\\A.vbp"));
  EXPECT_TRUE(same(("z:" + (home.path() / "drive_c" / "A.vbp").string()).c_str(), "c:\\a.vbp"));
  EXPECT_FALSE(same("Proj\\A.vbp", "c:\\Proj\\A.vbp"));  // relative names stay relative
  EXPECT_FALSE(same("d:\\A.vbp", "c:\\A.vbp"));
  EXPECT_FALSE(same("..\\A.vbp", "A.vbp"));
  EXPECT_TRUE(same("x\\..\\..\\A.vbp", "..\\A.vbp"));
}

}  // namespace
