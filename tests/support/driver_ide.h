#pragma once
// The setting of a test of the driver's IDE side in one process: the driver's add-in registered
// and listed as the driver lists it before it starts an IDE, a fixture project copied, the
// headless IDE started on it, and the project's dispatcher as the host finds it; with the calls
// that the component tests make of both.

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "automation/object.h"
#include "contracts/host_classes.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/vbproject.h"
#include "project/ide_settings.h"
#include "special/qxvb60.h"
#include "support/driver_env.h"

namespace qxtest {

class DriverIde : public ::testing::Test {
 protected:
  // Copies the fixture and, unless told to wait, starts the IDE on its project file.
  DriverIde(const std::string& fixture, const std::string& projectFile, bool start = true) {
    special::RegisterAddIn();
    project::WriteAddInEntry();
    folder_ = env_.CopyFixture(fixture);
    vbp_ = File(projectFile).string();
    if (start) StartIde();
  }
  ~DriverIde() override {
    if (ide_) ide_->End();
  }

  void StartIde() {
    ide_ = ide::Ide::Start(vbp_);
    dispatcher_ = contracts::HostUtility::Get().GetRegisteredObject(vbp_);
  }

  std::filesystem::path File(const std::string& name) const { return folder_ / name; }
  std::string Bytes(const std::string& name) const { return ReadBytes(File(name)); }

  // A component object built by the dispatcher, as a collection's GetObject asks for it.
  automation::ObjectRef Get(const char* factory, const std::string& name) const {
    return automation::Dispatch(dispatcher_)
        .Call(factory, automation::ObjectRef(), name)
        .ToObject();
  }
  static void SetMode(const automation::ObjectRef& object, int32_t mode) {
    automation::Dispatch(object, "IObject").Call("SetMode", mode);
  }
  // The IDE's component of that name.
  automation::Dispatch IdeComponent(const std::string& name) const {
    const automation::Dispatch components(
        automation::Dispatch(ide_->VBProject()).Get("VBComponents").ToObject());
    return automation::Dispatch(components.Call("Item", name).ToObject());
  }

  DriverEnv env_;
  std::filesystem::path folder_;
  std::string vbp_;
  std::unique_ptr<ide::Ide> ide_;
  automation::ObjectRef dispatcher_;
};

}  // namespace qxtest
