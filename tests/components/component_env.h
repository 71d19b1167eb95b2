#pragma once
// The setting of the component object tests: a project of our own written into a fresh work
// folder, the headless IDE started on it with the driver's add-in, the project's dispatcher as
// the host finds it, and a stand-in for the host's Scanner that records what it is handed and
// runs what the test tells it to.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "automation/object.h"
#include "automation/process.h"
#include "components/component_object.h"
#include "contracts/host_classes.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/vbproject.h"
#include "project/ide_settings.h"
#include "special/qxvb60.h"
#include "support/driver_env.h"

namespace qxtest {

// What one ScanObject call was given: its text arguments, "|"-separated, and the object.
struct ScanCall {
  std::string arguments;
  automation::ObjectRef object;
};

class RecordingScanner : public automation::Object {
 public:
  RecordingScanner(std::vector<ScanCall>& calls,
                   std::function<void(const automation::ObjectRef&)>& action)
      : calls_(calls), action_(action) {}
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<RecordingScanner>("Scanner")
            .Method("ScanObject", &RecordingScanner::ScanObject,
                    {"ProjectName", "CollectionName", "ObjectName", "ObjectIsUpdatable", "Object",
                     "ScanBufferName"})
            .Build();
    return info;
  }
  void ScanObject(const std::string& projectName, const std::string& collectionName,
                  const std::string& objectName, bool objectIsUpdatable,
                  const automation::ObjectRef& object, const std::string& scanBufferName) {
    calls_.push_back({projectName + "|" + collectionName + "|" + objectName + "|" +
                          (objectIsUpdatable ? "updatable" : "read-only") + "|" + scanBufferName,
                      object});
    if (action_) action_(object);
  }

 private:
  std::vector<ScanCall>& calls_;
  std::function<void(const automation::ObjectRef&)>& action_;
};

class ComponentEnv : public ::testing::Test {
 protected:
  ComponentEnv() {
    special::RegisterAddIn();
    project::WriteAddInEntry();
    automation::RegisterClass("qxlib41.Scanner", [this] {
      return std::make_shared<RecordingScanner>(scans_, scanAction_);
    });
    folder_ = env_.CopyFixture("sample");
    ide_ = ide::Ide::Start(File("Sample.vbp").string());
    dispatcher_ = contracts::HostUtility::Get().GetRegisteredObject(File("Sample.vbp").string());
  }
  ~ComponentEnv() override {
    scanAction_ = nullptr;
    if (ide_) ide_->End();
  }

  std::filesystem::path File(const std::string& name) const { return folder_ / name; }
  std::string Bytes(const std::string& name) const { return qxtest::ReadBytes(File(name)); }

  // A component object built by the dispatcher, as a collection's GetObject asks for it.
  automation::ObjectRef Get(const char* factory, const std::string& name) const {
    return automation::Dispatch(dispatcher_)
        .Call(factory, automation::ObjectRef(), name)
        .ToObject();
  }
  automation::ObjectRef Module(const std::string& name) const { return Get("GetModule", name); }

  static int32_t ModeOf(const automation::ObjectRef& object) {
    return automation::As<components::ComponentObject>(object)->Mode();
  }
  static void SetMode(const automation::ObjectRef& object, int32_t mode) {
    automation::Dispatch(object, "IObject").Call("SetMode", mode);
  }
  static automation::ObjectRef Procedures(const automation::ObjectRef& object) {
    return automation::Dispatch(object).Get("Procedures").ToObject();
  }
  static automation::Dispatch Item(const automation::ObjectRef& object,
                                   const automation::Variant& index) {
    return automation::Dispatch(
        automation::Dispatch(Procedures(object)).Call("Item", index).ToObject());
  }

  // The IDE's component of that name, and the whole text of its code module.
  automation::Dispatch IdeComponent(const std::string& name) const {
    const automation::Dispatch components(
        automation::Dispatch(ide_->VBProject()).Get("VBComponents").ToObject());
    return automation::Dispatch(components.Call("Item", name).ToObject());
  }
  std::string IdeCode(const std::string& name) const {
    const automation::Dispatch code(IdeComponent(name).Get("CodeModule").ToObject());
    return code.GetAt("Lines", 1, code.Get("CountOfLines").ToLong()).ToString();
  }

  DriverEnv env_;
  std::filesystem::path folder_;
  std::unique_ptr<ide::Ide> ide_;
  automation::ObjectRef dispatcher_;
  std::vector<ScanCall> scans_;
  std::function<void(const automation::ObjectRef&)> scanAction_;
};

}  // namespace qxtest
