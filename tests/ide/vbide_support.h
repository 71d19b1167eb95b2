#pragma once
// What the tests of the IDE's automation objects share: the IDE started on a private copy of a
// fixture project, add-ins registered as test classes that write what the IDE calls into one
// log, the vbaddin.ini that names them, and error catching.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "automation/error.h"
#include "automation/object.h"
#include "fixture_copy.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/vbproject.h"
#include "platform/home.h"
#include "support/errors.h"

namespace vbidetest {

using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;

// Everything the test add-ins saw, in order, as "<add-in>.<call> <details>".
inline std::vector<std::string>& Log() {
  static std::vector<std::string> log;
  return log;
}

// An add-in as the driver's will be: keeps the IDE from OnConnection to OnDisconnection and
// listens to the project events by advising itself.
class Recorder : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<Recorder>("Recorder")
            .Method("ItemAdded", &Recorder::ItemAdded, {"VBProject"})
            .Method("ItemRemoved", &Recorder::ItemRemoved, {"VBProject"})
            .Implements("IDTExtensibility")
            .Method("OnConnection", &Recorder::OnConnection,
                    {"VBE", "ConnectMode", "AddInInst", "custom"})
            .Method("OnDisconnection", &Recorder::OnDisconnection, {"RemoveMode", "custom"})
            .Method("OnStartupComplete", &Recorder::OnStartupComplete, {"custom"})
            .Method("OnAddInsUpdate", &Recorder::OnAddInsUpdate, {"custom"})
            .Build();
    return info;
  }

  void OnConnection(const ObjectRef& vbe, int32_t mode, const ObjectRef& addInInst,
                    const Variant& custom) {
    vbe_ = vbe;
    Dispatch inst(addInInst);
    Log().push_back("Recorder.OnConnection mode=" + std::to_string(mode) +
                    " version=" + Dispatch(vbe).Get("Version").ToString() + " progid=" +
                    inst.Get("ProgId").ToString() + " connect=" + inst.Get("Connect").ToString() +
                    " custom=" + (custom.IsEmpty() ? "Empty" : custom.ToString()));
    const ObjectRef events = Dispatch(vbe).Get("Events").ToObject();
    Dispatch(Dispatch(events).Get("VBProjectsEvents").ToObject())
        .Call("Advise", shared_from_this());
  }
  void OnDisconnection(int32_t mode, const Variant&) {
    Log().push_back("Recorder.OnDisconnection mode=" + std::to_string(mode));
    vbe_.reset();
  }
  void OnStartupComplete(const Variant&) { Log().push_back("Recorder.OnStartupComplete"); }
  void OnAddInsUpdate(const Variant&) { Log().push_back("Recorder.OnAddInsUpdate"); }
  void ItemAdded(const ObjectRef& project) {
    Log().push_back("Recorder.ItemAdded " + Dispatch(project).Get("FileName").ToString());
  }
  void ItemRemoved(const ObjectRef& project) {
    Log().push_back("Recorder.ItemRemoved " + Dispatch(project).Get("FileName").ToString());
  }

 private:
  ObjectRef vbe_;
};

// Fails in its ItemAdded handler; has no ItemRemoved handler at all.
class Grumpy : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<Grumpy>("Grumpy")
            .Method("ItemAdded", &Grumpy::ItemAdded, {"VBProject"})
            .Implements("IDTExtensibility")
            .Method("OnConnection", &Grumpy::OnConnection,
                    {"VBE", "ConnectMode", "AddInInst", "custom"})
            .Method("OnDisconnection", &Grumpy::OnDisconnection, {"RemoveMode", "custom"})
            .Method("OnStartupComplete", &Grumpy::OnStartupComplete, {"custom"})
            .Build();
    return info;
  }
  void OnConnection(const ObjectRef& vbe, int32_t, const ObjectRef&, const Variant&) {
    const ObjectRef events = Dispatch(vbe).Get("Events").ToObject();
    Dispatch(Dispatch(events).Get("VBProjectsEvents").ToObject())
        .Call("Advise", shared_from_this());
  }
  void OnDisconnection(int32_t, const Variant&) { Log().push_back("Grumpy.OnDisconnection"); }
  void OnStartupComplete(const Variant&) { Log().push_back("Grumpy.OnStartupComplete"); }
  void ItemAdded(const ObjectRef&) {
    Log().push_back("Grumpy.ItemAdded");
    automation::RaiseMessage(5, "grumpy does not like projects");
  }
};

// Refuses to connect.
class Refuses : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<Refuses>("Refuses")
            .Implements("IDTExtensibility")
            .Method("OnConnection", &Refuses::OnConnection,
                    {"VBE", "ConnectMode", "AddInInst", "custom"})
            .Method("OnStartupComplete", &Refuses::OnStartupComplete, {"custom"})
            .Build();
    return info;
  }
  void OnConnection(const ObjectRef&, int32_t, const ObjectRef&, const Variant&) {
    automation::RaiseMessage(-32767, "no, thank you");
  }
  void OnStartupComplete(const Variant&) { Log().push_back("Refuses.OnStartupComplete"); }
};

// How many times the add-in listed with "0" was created (it never should be).
inline int& OffCreated() {
  static int count = 0;
  return count;
}

inline void RegisterTestAddIns() {
  automation::RegisterClass("VbideTest.Recorder", [] { return std::make_shared<Recorder>(); });
  automation::RegisterClass("VbideTest.Grumpy", [] { return std::make_shared<Grumpy>(); });
  automation::RegisterClass("VbideTest.Refuses", [] { return std::make_shared<Refuses>(); });
  automation::RegisterClass("VbideTest.Off", [] {
    ++OffCreated();
    return std::make_shared<Recorder>();
  });
  Log().clear();
  OffCreated() = 0;
}

// Writes c:\windows\vbaddin.ini of the current qx home with exactly these bytes.
inline void WriteAddInIni(const std::string& bytes) {
  const auto folder = platform::QxHome() / "drive_c" / "windows";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "vbaddin.ini", std::ios::binary) << bytes;
}

using qxtest::ErrorOf;

// The IDE on a private copy of a fixture project, without add-ins, and the project's components.
class IdeOnCopy : public ::testing::Test {
 protected:
  void Open(const std::string& fixture, const std::string& projectFile) {
    copy_ = std::make_unique<idetest::FixtureCopy>(fixture);
    projectFile_ = projectFile;
    Restart();
  }
  // Starts the IDE for the copy again: what it knows comes from the files.
  void Restart() {
    ide_.reset();
    ide_ = ide::Ide::Start(Path(projectFile_));
    components_ = Dispatch(Dispatch(ide_->VBProject()).Get("VBComponents").ToObject());
  }
  Dispatch Component(const Variant& index) const {
    return Dispatch(components_.Call("Item", index).ToObject());
  }
  std::string Path(const std::string& file) const { return copy_->Path(file); }

  std::unique_ptr<idetest::FixtureCopy> copy_;
  std::string projectFile_;
  std::unique_ptr<ide::Ide> ide_;
  Dispatch components_{nullptr};
};

}  // namespace vbidetest
