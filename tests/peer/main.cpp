// qx_test_peer: the far side of the cross-process tests.
//
//   qx_test_peer serve SOCKET     serves a Peer object on the socket until killed
//   qx_test_peer register NAME [LOG]
//                                 registers a Peer object under NAME in the object table of
//                                 $QX_HOME and serves until killed; first, with LOG, reports
//                                 "starting" to the problem log registered under LOG
//   qx_test_peer exit CODE        ends at once with that exit status
//
// The peer ends with the test process that started it (a parent-death signal), so a test that
// dies without cleaning up leaves nothing behind.

#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include "automation/apartment.h"
#include "automation/error.h"
#include "automation/object.h"
#include "automation/remote.h"
#include "automation/remote_object.h"
#include "host/host_utility.h"
#include "host/register.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;

int liveObjects = 0;

// The object the tests call: every argument type, by-reference arguments, errors, objects in
// both directions and calls back into the caller.
class Peer : public automation::Object {
 public:
  explicit Peer(std::string name) : name_(std::move(name)) { ++liveObjects; }
  ~Peer() override { --liveObjects; }

  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<Peer>("Peer")
            .Get("Name", &Peer::Name)
            .Put("Name", &Peer::SetName)
            .Method("Echo", &Peer::Echo, {"Value"})
            .Method("TypeOf", &Peer::TypeOf, {"Value"})
            .Method("Twice", &Peer::Twice, {"Value"})
            .Method("Append", &Peer::Append, {"Text", "Tail"})
            .Method("Defaults", &Peer::Defaults,
                    {"First", automation::Optional("Second", "second")})
            .Method("Fail", &Peer::Fail,
                    {"Number", "Source", "Description", "HelpFile", "HelpContext", "Line"})
            .Method("Report", &Peer::Report, {"Log", "Text"})
            .Method("Bounce", &Peer::Bounce, {"Other", "Depth"})
            .Method("Make", &Peer::Make, {"Name"})
            .Method("Keep", &Peer::Keep, {"Object"})
            .Method("Kept", &Peer::Kept)
            .Method("Drop", &Peer::Drop)
            .Method("Same", &Peer::Same, {"A", "B"})
            .Method("IsRemote", &Peer::IsRemote, {"Object"})
            .Get("Live", &Peer::Live)
            .Get("Exported", &Peer::Exported)
            .Get("Pid", &Peer::Pid)
            .Method("Register", &Peer::Register, {"Name"})
            .Method("Revoke", &Peer::Revoke, {"Cookie"})
            .Method("Lookup", &Peer::Lookup, {"Name"})
            .Method("Sleep", &Peer::Sleep, {"Milliseconds"})
            .Build();
    return info;
  }

  std::string Name() const { return name_; }
  // Busy without serving, as a process that never answers.
  void Sleep(int32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
  void SetName(std::string name) { name_ = std::move(name); }
  Variant Echo(const Variant& value) { return value; }
  int16_t TypeOf(const Variant& value) { return static_cast<int16_t>(value.Type()); }
  void Twice(int32_t& value) { value *= 2; }
  void Append(std::string& text, std::string tail) { text += tail; }
  std::string Defaults(std::string first, std::string second) { return first + "," + second; }
  void Fail(int32_t number, std::string source, std::string description, std::string helpFile,
            int32_t helpContext, int32_t line) {
    throw automation::Error(number, source, description, helpFile, helpContext, line);
  }
  // Calls back into the caller's problem log while the caller waits for this call.
  int32_t Report(ObjectRef log, std::string text) {
    Dispatch(log).Call("ReportRuntimeError", -32767, text, "", 0, "Peer", "Peer", "Report", 7);
    return Dispatch(log).Get("Count").ToLong();
  }
  // Calls Other.Bounce(Me, Depth - 1): calls nested through both processes.
  int32_t Bounce(ObjectRef other, int32_t depth) {
    if (depth <= 0) return 0;
    return 1 + Dispatch(other).Call("Bounce", shared_from_this(), depth - 1).ToLong();
  }
  ObjectRef Make(std::string name) { return std::make_shared<Peer>(std::move(name)); }
  void Keep(ObjectRef object) { kept_ = std::move(object); }
  ObjectRef Kept() { return kept_; }
  void Drop() { kept_.reset(); }
  bool Same(ObjectRef a, ObjectRef b) { return a == b; }
  bool IsRemote(ObjectRef object) { return automation::IsRemote(object); }
  int32_t Live() const { return liveObjects; }
  int32_t Exported() const { return static_cast<int32_t>(automation::ExportedObjectCount()); }
  int32_t Pid() const { return static_cast<int32_t>(::getpid()); }
  int32_t Register(std::string name) {
    return host::HostUtility::Instance()->RegisterObject(name, std::make_shared<Peer>(name));
  }
  void Revoke(int32_t cookie) { host::HostUtility::Instance()->RevokeObject(cookie); }
  ObjectRef Lookup(std::string name) {
    return host::HostUtility::Instance()->GetRegisteredObject(name);
  }

 private:
  std::string name_;
  ObjectRef kept_;
};

[[noreturn]] void ServeForever() {
  for (;;)
    automation::Apartment::Get().ServeFor(std::chrono::hours(1));
}

}  // namespace

int main(int argc, char** argv) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  const std::string verb = argc > 1 ? argv[1] : "";
  if (argc < 3 || argc > (verb == "register" ? 4 : 3) ||
      (verb != "serve" && verb != "register" && verb != "exit")) {
    std::cerr << "usage: qx_test_peer serve SOCKET | register NAME [LOG] | exit CODE\n";
    return 2;
  }
  if (verb == "exit") return std::atoi(argv[2]);
  host::RegisterClasses();
  try {
    if (verb == "serve") {
      automation::Listener listener(argv[2], std::make_shared<Peer>("root"));
      ServeForever();
    }
    auto utility = host::HostUtility::Instance();
    if (argc == 4) {
      Dispatch(utility->GetRegisteredObject(argv[3]))
          .Call("ReportRuntimeError", 0, "starting", "", 0, "Peer", "Peer", "main", 0);
    }
    utility->RegisterObject(argv[2], std::make_shared<Peer>(argv[2]));
    ServeForever();
  } catch (const automation::Error& e) {
    std::cerr << "qx_test_peer: " << e.Number() << " " << e.Description() << "\n";
    return 2;
  }
}
