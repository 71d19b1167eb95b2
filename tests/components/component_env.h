#pragma once
// The setting of the component object tests: a project of our own written into a fresh work
// folder, the headless IDE started on it with the driver's add-in, the project's dispatcher as
// the host finds it, and a stand-in for the host's Scanner that records what it is handed and
// runs what the test tells it to.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "automation/object.h"
#include "automation/process.h"
#include "components/component_object.h"
#include "support/driver_ide.h"

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

class ComponentEnv : public DriverIde {
 protected:
  ComponentEnv() : DriverIde("sample", "Sample.vbp") {
    automation::RegisterClass("qxlib41.Scanner", [this] {
      return std::make_shared<RecordingScanner>(scans_, scanAction_);
    });
  }
  ~ComponentEnv() override { scanAction_ = nullptr; }

  automation::ObjectRef Module(const std::string& name) const { return Get("GetModule", name); }

  static int32_t ModeOf(const automation::ObjectRef& object) {
    return automation::As<components::ComponentObject>(object)->Mode();
  }
  static automation::ObjectRef Procedures(const automation::ObjectRef& object) {
    return automation::Dispatch(object).Get("Procedures").ToObject();
  }
  static automation::Dispatch Item(const automation::ObjectRef& object,
                                   const automation::Variant& index) {
    return automation::Dispatch(
        automation::Dispatch(Procedures(object)).Call("Item", index).ToObject());
  }

  // The whole text of the IDE's code module of that name.
  std::string IdeCode(const std::string& name) const {
    const automation::Dispatch code(IdeComponent(name).Get("CodeModule").ToObject());
    return code.GetAt("Lines", 1, code.Get("CountOfLines").ToLong()).ToString();
  }

  std::vector<ScanCall> scans_;
  std::function<void(const automation::ObjectRef&)> scanAction_;
};

}  // namespace qxtest
