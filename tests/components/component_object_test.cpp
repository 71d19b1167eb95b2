// The component object protocol on Module and ClassModule: built by the dispatcher, the modes
// and their transitions, the refusal to write over unsaved IDE changes, the clean-up of a failed
// switch, renames, and the scan that hands the object to the host's scanner.

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>

#include "automation/error.h"
#include "ide/vbide/vbproject.h"
#include "platform/files.h"
#include "support/errors.h"
#include "support/fault_hook.h"
#include "tests/components/component_env.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using qxtest::Caught;
using qxtest::DriverEnv;

constexpr const char* kModuleRefusal =
    "Couldn't save changes safely because the module is already open and has pending changes.";

std::string Trail(const std::string& className, const std::string& operation) {
  return "qxvb60." + className + "." + operation + ".1  (4.1.475)";
}

class ComponentObjectTest : public qxtest::ComponentEnv {
 protected:
  // Changes the module in the IDE behind the object's back, as a user typing in it would.
  void TypeInto(const std::string& name) {
    Dispatch(IdeComponent(name).Get("CodeModule").ToObject())
        .Call("InsertLines", 3, "' typed in the IDE");
  }
};

TEST_F(ComponentObjectTest, TheDispatcherBuildsModulesAndClassModulesThatStartIdle) {
  const ObjectRef module = Module("Code");
  EXPECT_EQ(module->Class().name, "Module");
  EXPECT_EQ(ModeOf(module), 0);
  const Dispatch object(module, "IObject");
  EXPECT_EQ(object.Get("Name").ToString(), "Code");
  EXPECT_EQ(object.Get("ShortName").ToString(), "Code");
  object.Call("Reconstitute");
  EXPECT_EQ(ModeOf(module), 0);
  EXPECT_EQ(Get("GetClassModule", "Thing")->Class().name, "ClassModule");

  // Nothing is looked up before the first switch: an unknown name fails there, and the object
  // stays idle.
  const ObjectRef missing = Module("NoSuchModule");
  const automation::Error e = Caught([&] { SetMode(missing, 1); });
  EXPECT_NE(e.Number(), 0);
  EXPECT_NE(e.Description().find(Trail("Module", "SetMode") + "\r\n" +
                                 Trail("Module", "IObject_SetMode")),
            std::string::npos);
  EXPECT_EQ(ModeOf(missing), 0);

  // Every kind is built.
  EXPECT_EQ(Get("GetDHTMLPage", "Page1")->Class().name, "DHTMLPage");
  EXPECT_EQ(Get("GetForm", "Form1")->Class().name, "Form");

  // An idle object has no component to read or rename. The rename has no failure path of its
  // own: the error comes as the IDE call raised it.
  const automation::Error procedures = Caught([&] { Procedures(module); });
  EXPECT_EQ(procedures.Number(), automation::err::kObjectNotSet);
  EXPECT_NE(procedures.Description().find(Trail("Module", "Procedures")), std::string::npos);
  const automation::Error rename = Caught([&] { Dispatch(module).Put("Name", "Other"); });
  EXPECT_EQ(rename.Number(), automation::err::kObjectNotSet);
  EXPECT_EQ(rename.Description().find("PROGRAM CONTEXT:"), std::string::npos);
  EXPECT_EQ(Dispatch(module).Get("Name").ToString(), "Code");
}

TEST_F(ComponentObjectTest, WritingIsRefusedOverUnsavedChangesWhichAreSavedOnTheWayOut) {
  const ObjectRef module = Module("Code");
  TypeInto("Code");
  SetMode(module, 1);  // reading tolerates them
  EXPECT_EQ(ModeOf(module), 1);
  Procedures(module);

  const automation::Error e = Caught([&] { SetMode(module, 2); });
  EXPECT_EQ(e.Number(), -32767);
  EXPECT_EQ(e.Source(), "");
  EXPECT_EQ(e.Description(), std::string(kModuleRefusal) + "\r\n\r\nPROGRAM CONTEXT:\r\n" +
                                 Trail("Module", "SetMode") + "\r\n" +
                                 Trail("Module", "IObject_SetMode"));
  EXPECT_EQ(ModeOf(module), 0);
  EXPECT_NE(Bytes("Code.bas").find("' typed in the IDE\r\n"), std::string::npos);
  EXPECT_FALSE(IdeComponent("Code").Get("IsDirty").ToBool());
  EXPECT_EQ(Caught([&] { Procedures(module); }).Number(), automation::err::kObjectNotSet);

  // The class module's refusal names its own kind.
  const ObjectRef thing = Get("GetClassModule", "Thing");
  TypeInto("Thing");
  EXPECT_EQ(Caught([&] { SetMode(thing, 2); })
                .Description()
                .rfind("Couldn't save changes safely because the class module is already open "
                       "and has pending changes.\r\n\r\nPROGRAM CONTEXT:\r\n" +
                           Trail("ClassModule", "SetMode"),
                       0),
            0u);
}

TEST_F(ComponentObjectTest, EachSwitchIntoWritingChecksOnceAndReturningSavesOnlyChanges) {
  const ObjectRef module = Module("Code");
  const auto saved = std::filesystem::last_write_time(File("Code.bas"));
  SetMode(module, 1);
  SetMode(module, 0);  // nothing changed: nothing saved
  SetMode(module, 0);  // already idle: nothing at all
  EXPECT_EQ(std::filesystem::last_write_time(File("Code.bas")), saved);
  EXPECT_EQ(ModeOf(module), 0);

  // From 1 to 2 the component is fetched again and checked.
  SetMode(module, 1);
  TypeInto("Code");
  EXPECT_EQ(Caught([&] { SetMode(module, 2); }).Number(), -32767);

  // 2 to 2 does not look again: the object's own writes do not stop it.
  SetMode(module, 2);
  Item(module, "Alpha").Put("Text", "Sub Alpha()\r\nEnd Sub");
  SetMode(module, 2);
  EXPECT_EQ(ModeOf(module), 2);
  SetMode(module, 0);
  EXPECT_NE(Bytes("Code.bas").find("\r\nSub Alpha()\r\nEnd Sub\r\n"), std::string::npos);
  EXPECT_FALSE(IdeComponent("Code").Get("IsDirty").ToBool());
}

TEST_F(ComponentObjectTest, AnUnknownModeFailsAndEndsIdle) {
  const ObjectRef module = Module("Code");
  for (const int32_t mode : {3, -1}) {
    SetMode(module, 1);
    const automation::Error e = Caught([&] { SetMode(module, mode); });
    EXPECT_EQ(e.Number(), -32753);
    EXPECT_EQ(
        e.Description().rfind("Invalid case selector (" + std::to_string(mode) +
                                  ").\r\n\r\nPROGRAM CONTEXT:\r\n" + Trail("Module", "SetMode"),
                              0),
        0u);
    EXPECT_EQ(ModeOf(module), 0);
  }
}

TEST_F(ComponentObjectTest, ARenameIsSavedAndTheNextSwitchFindsTheNewName) {
  const ObjectRef module = Module("Code");
  SetMode(module, 1);
  Dispatch(module).Put("Name", "Renamed");
  EXPECT_EQ(Dispatch(module, "IObject").Get("Name").ToString(), "Renamed");
  EXPECT_EQ(Dispatch(module, "IObject").Get("ShortName").ToString(), "Renamed");
  SetMode(module, 0);
  EXPECT_NE(Bytes("Code.bas").find("Attribute VB_Name = \"Renamed\"\r\n"), std::string::npos);

  SetMode(module, 2);
  EXPECT_EQ(Dispatch(Procedures(module)).Get("Count").ToLong(), 3);
  SetMode(module, 0);
  // An object made for the old name no longer finds its component.
  EXPECT_NE(Caught([&] { SetMode(Module("Code"), 1); }).Number(), 0);
}

TEST_F(ComponentObjectTest, DisposeReleasesTheProjectsButNotTheComponent) {
  const ObjectRef module = Module("Code");
  SetMode(module, 1);
  Dispatch(module, "IObject").Call("Dispose");
  EXPECT_EQ(ModeOf(module), 1);
  EXPECT_EQ(Dispatch(Procedures(module)).Get("Count").ToLong(), 3);
  // Without its IDE project it can no longer fetch the component.
  EXPECT_EQ(Caught([&] { SetMode(module, 2); }).Number(), automation::err::kObjectNotSet);
  EXPECT_EQ(ModeOf(module), 0);
}

class ScanTest : public ComponentObjectTest {
 protected:
  void Scan(const ObjectRef& object, const std::string& name) {
    Dispatch(object, "IObject").Call("Scan", "Sample", name, true, "qx-scan-1");
  }
};

TEST_F(ScanTest, TheScannerGetsTheObjectInReadingModeAndTheChangesAreSavedAfter) {
  const ObjectRef module = Module("Code");
  int32_t modeDuringScan = -1;
  std::string alphaText;
  scanAction_ = [&](const ObjectRef& object) {
    modeDuringScan = ModeOf(object);
    alphaText = Item(object, "Alpha").Get("Text").ToString();
    // A writer asks for mode 2 first, then writes.
    Dispatch(object, "IObject").Call("SetMode", 2);
    Item(object, "Alpha").Put("Text", "Sub Alpha()\r\n    Counter = 2\r\nEnd Sub");
  };
  Scan(module, "Code");
  ASSERT_EQ(scans_.size(), 1u);
  EXPECT_EQ(scans_.front().arguments, "Sample|Modules|Code|updatable|qx-scan-1");
  EXPECT_EQ(scans_.front().object, module);
  EXPECT_EQ(modeDuringScan, 1);
  EXPECT_EQ(alphaText, "Sub Alpha()\r\n    Counter = 1\r\nEnd Sub");
  EXPECT_EQ(ModeOf(module), 0);
  EXPECT_NE(Bytes("Code.bas").find("    Counter = 2\r\n"), std::string::npos);

  // A class module; a scan tolerates unsaved changes and saves them.
  scans_.clear();
  scanAction_ = nullptr;
  TypeInto("Thing");
  Scan(Get("GetClassModule", "Thing"), "Thing");
  ASSERT_EQ(scans_.size(), 1u);
  EXPECT_EQ(scans_.front().arguments, "Sample|ClassModules|Thing|updatable|qx-scan-1");
  EXPECT_NE(Bytes("Thing.cls").find("' typed in the IDE\r\n"), std::string::npos);
}

TEST_F(ScanTest, AFailingScanReturnsTheObjectToIdleAndRaisesWithItsTrail) {
  const ObjectRef module = Module("Code");
  scanAction_ = [&](const ObjectRef& object) {
    Item(object, "Alpha").Put("Text", "Sub Alpha()\r\n    Counter = 3\r\nEnd Sub");
    automation::Raise(automation::err::kInvalidCall);
  };
  const automation::Error e = Caught([&] { Scan(module, "Code"); });
  EXPECT_EQ(e.Number(), automation::err::kInvalidCall);
  EXPECT_NE(e.Description().find("PROGRAM CONTEXT:\r\n" + Trail("Module", "IObject_Scan")),
            std::string::npos);
  EXPECT_EQ(ModeOf(module), 0);
  // What the scanner wrote before it failed is saved all the same.
  EXPECT_NE(Bytes("Code.bas").find("    Counter = 3\r\n"), std::string::npos);
}

// Removes the fault hook when the test ends, also when it fails.
using qxtest::FaultHook;

// A save that fails, whatever the failure and at whatever step, leaves the IDE holding what the
// disk holds: nothing left to save (which would keep an IDE from ending when idle, and refuse
// every later write of the component), a search shows the disk, and the next write writes its
// own change alone.
TEST_F(ScanTest, AFailedSaveLeavesTheIdeHoldingWhatTheDiskHolds) {
  const std::string original = Bytes("Code.bas");
  const std::string project = Bytes("Sample.vbp");
  const std::string otherProgram =
      std::string(original).replace(original.find("Counter = 1"), 11, "Counter = 7");
  const auto alpha = [](const std::string& value) {
    return "Sub Alpha()\r\n    Counter = " + value + "\r\nEnd Sub";
  };
  // Writes Alpha as a replace does, and with `rename` the module's name, which reaches the
  // project file; `meanwhile` stands for what happens before the save.
  const auto failingWrite = [&](const std::string& value, const std::function<void()>& meanwhile,
                                bool rename = false) {
    scanAction_ = [&, value, rename](const ObjectRef& object) {
      Dispatch(object, "IObject").Call("SetMode", 2);
      Item(object, "Alpha").Put("Text", alpha(value));
      if (rename) Dispatch(object).Put("Name", "Renamed");
      if (meanwhile) meanwhile();
    };
    const automation::Error e = Caught([&] { Scan(Module("Code"), "Code"); });
    scanAction_ = nullptr;
    return e;
  };
  const auto expectDiskInIde = [&](const std::string& what) {
    const std::string disk = Bytes("Code.bas");
    EXPECT_EQ(Bytes("Sample.vbp"), project) << what;
    EXPECT_FALSE(IdeComponent("Code").Get("IsDirty").ToBool()) << what;
    EXPECT_FALSE(ide_->VBProject()->IsDirty()) << what;  // what an idle IDE waits for to end
    EXPECT_EQ(IdeCode("Code") + "\r\n", disk.substr(disk.find("\r\n") + 2)) << what;
    // A search reads the disk's text.
    std::string read;
    scanAction_ = [&](const ObjectRef& object) {
      read = Item(object, "Alpha").Get("Text").ToString();
    };
    Scan(Module("Code"), "Code");
    EXPECT_EQ(read, disk.substr(disk.find("Sub Alpha"), alpha("1").size())) << what;
    // Another write writes its own change, and only that.
    scanAction_ = [&](const ObjectRef& object) {
      Dispatch(object, "IObject").Call("SetMode", 2);
      Item(object, "Gamma")
          .Put("Text", "Function Gamma() As Long\r\n    Gamma = 0\r\nEnd Function");
    };
    Scan(Module("Code"), "Code");
    scanAction_ = nullptr;
    // The tab-only line above Gamma is not blank to Text: the region written over starts
    // there, and the new text comes with the blank line a procedure's text is written after.
    std::string expected = disk;
    const std::string gamma = "\t\r\nFunction Gamma() As Long\r\n    Gamma = Counter";
    expected.replace(expected.find(gamma), gamma.size(),
                     "\r\nFunction Gamma() As Long\r\n    Gamma = 0");
    EXPECT_EQ(Bytes("Code.bas"), expected) << what;
    qxtest::WriteBytes(File("Code.bas"), original);
  };

  // A full disk at each step of writing the file, in turn, until the save has no step left to
  // fail.
  for (int failing = 1;; ++failing) {
    int step = 0;
    const FaultHook hook([&](platform::WriteStep) { return ++step == failing ? ENOSPC : 0; });
    const automation::Error e = failingWrite("2", nullptr);
    if (step < failing) {
      EXPECT_EQ(e.Number(), 0);
      EXPECT_EQ(failing - 1, 4) << "creating, writing, flushing and renaming each failed";
      break;
    }
    const std::string what = "step " + std::to_string(failing);
    EXPECT_EQ(e.Number(), 61) << what;  // disk full
    EXPECT_EQ(Bytes("Code.bas"), original) << what;
    expectDiskInIde(what);
  }
  qxtest::WriteBytes(File("Code.bas"), original);

  // The file changed on disk before the save, or while it was written.
  EXPECT_EQ(failingWrite("3", [&] { qxtest::WriteBytes(File("Code.bas"), otherProgram); }).Number(),
            automation::err::kPathFileAccess);
  EXPECT_EQ(Bytes("Code.bas"), otherProgram);
  expectDiskInIde("changed on disk");
  {
    const FaultHook hook([&](platform::WriteStep step) {
      if (step == platform::WriteStep::kFlush) qxtest::WriteBytes(File("Code.bas"), otherProgram);
      return 0;
    });
    EXPECT_EQ(failingWrite("4", nullptr).Number(), automation::err::kPathFileAccess);
  }
  EXPECT_EQ(Bytes("Code.bas"), otherProgram);
  expectDiskInIde("changed while written");

  // A character the project's code page cannot hold, with a rename: the project file's entry
  // is dropped with the rest.
  EXPECT_EQ(failingWrite("\xE6\x95\xB0", nullptr, true).Number(), automation::err::kInvalidCall);
  EXPECT_EQ(Bytes("Code.bas"), original);
  expectDiskInIde("code page");
}

}  // namespace
