// The running IDE: add-ins from vbaddin.ini, the project events, ending, and 462 afterwards.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "automation/process.h"
#include "fixture_copy.h"
#include "ide/vbide/add_in.h"
#include "ide/vbide/events.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbproject.h"
#include "ide/vbide/vbprojects_events.h"
#include "platform/windows.h"
#include "vbide_support.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using idetest::FixtureCopy;
using vbidetest::ErrorOf;
using vbidetest::Log;

TEST(VbideLifetime, AddInsSeeConnectionProjectEventsAndShutdownInOrder) {
  vbidetest::RegisterTestAddIns();
  FixtureCopy copy("ledger");
  // Grumpy's handler fails before Recorder's runs; Off is listed but switched off; the last
  // one names no class at all.
  vbidetest::WriteAddInIni(
      "[Add-Ins32]\r\n"
      "VbideTest.Grumpy=1\r\n"
      "VbideTest.Refuses=1\r\n"
      "VbideTest.Recorder=1\r\n"
      "VbideTest.Off=0\r\n"
      "No.Such.AddIn=1\r\n"
      "[Other]\r\n"
      "VbideTest.Off=1\r\n");
  const std::string vbp = copy.Path("Ledger.vbp");

  auto ide = ide::Ide::Start(vbp);
  EXPECT_EQ(Log(), (std::vector<std::string>{
                       "Recorder.OnConnection mode=1 version=6.00 "
                       "progid=VbideTest.Recorder connect=True custom=Empty",
                       "Grumpy.ItemAdded",
                       "Recorder.ItemAdded " + vbp,
                       "Grumpy.OnStartupComplete",
                       "Recorder.OnStartupComplete",
                   }));
  EXPECT_EQ(vbidetest::OffCreated(), 0);

  // The IDE went on past every failure and kept a note of each.
  std::vector<std::string> problems;
  for (const auto& problem : ide->Problems())
    problems.push_back(problem.Text());
  EXPECT_EQ(problems,
            (std::vector<std::string>{
                "connecting the add-in VbideTest.Refuses: no, thank you (error -32767)",
                "loading the add-in No.Such.AddIn: ActiveX component can't create object: "
                "No.Such.AddIn (error 429)",
                "the ItemAdded handler of Grumpy: grumpy does not like projects (error 5)",
            }));
  ASSERT_EQ(ide->AddIns().size(), 3u);  // created: Grumpy, Refuses, Recorder
  EXPECT_TRUE(ide->AddIns()[0]->Connect());
  EXPECT_FALSE(ide->AddIns()[1]->Connect());
  EXPECT_EQ(Dispatch(ide->AddIns()[2]).Get("ProgId").ToString(), "VbideTest.Recorder");
  EXPECT_EQ(Dispatch(ide->VBProject()).Get("FileName").ToString(), vbp);

  Log().clear();
  ide->End();
  EXPECT_EQ(Log(), (std::vector<std::string>{
                       "Recorder.ItemRemoved " + vbp,  // Grumpy has no handler for it
                       "Grumpy.OnDisconnection",
                       "Recorder.OnDisconnection mode=0",
                   }));
  ide->End();  // a second End does nothing
  EXPECT_EQ(Log().size(), 3u);
}

// Without a vbaddin.ini the IDE opens with no add-ins and no problems: see VbideObjects.
TEST(VbideLifetime, TheIdeRecordsAProjectItCannotOpen) {
  vbidetest::RegisterTestAddIns();
  FixtureCopy copy("ledger");
  vbidetest::WriteAddInIni("[Add-Ins32]\r\nVbideTest.Recorder=1\r\n");
  auto ide = ide::Ide::Start(copy.Path("Nowhere.vbp"));
  ASSERT_EQ(ide->Problems().size(), 1u);
  EXPECT_EQ(ide->Problems()[0].error.Number(), 53);
  EXPECT_EQ(ide->VBProject(), nullptr);
  Dispatch vbe(ide->VBE());
  EXPECT_EQ(Dispatch(vbe.Get("VBProjects").ToObject()).Get("Count").ToLong(), 0);
  EXPECT_EQ(vbe.Get("ActiveVBProject").ToObject(), nullptr);
  // No project, so no ItemAdded: connected, then started.
  ASSERT_EQ(Log().size(), 2u);
  EXPECT_EQ(Log()[1], "Recorder.OnStartupComplete");
}

// A project group opens its projects in its order, each with its ItemAdded; one that cannot be
// opened is a problem, as it is alone; the start-up project is the IDE's project.
TEST(VbideLifetime, AGroupOpensItsProjectsInOrder) {
  vbidetest::RegisterTestAddIns();
  FixtureCopy ledger("ledger");
  FixtureCopy array("array");
  vbidetest::WriteAddInIni("[Add-Ins32]\r\nVbideTest.Recorder=1\r\n");
  qxtest::WriteBytes(ledger.dir() / "All.vbg",
                     "VBGROUP 5.0\r\nProject=" + array.Path("Array.vbp") +
                         "\r\nProject=Gone\\Nowhere.vbp\r\nStartupProject=Ledger.vbp\r\n");
  auto ide = ide::Ide::Start(ledger.Path("All.vbg"));
  EXPECT_EQ(Log(), (std::vector<std::string>{
                       "Recorder.OnConnection mode=1 version=6.00 "
                       "progid=VbideTest.Recorder connect=True custom=Empty",
                       "Recorder.ItemAdded " + array.Path("Array.vbp"),
                       "Recorder.ItemAdded " + ledger.Path("Ledger.vbp"),
                       "Recorder.OnStartupComplete",
                   }));
  ASSERT_EQ(ide->Problems().size(), 1u);
  EXPECT_EQ(ide->Problems()[0].error.Number(), 53);
  EXPECT_EQ(Dispatch(ide->VBProject()).Get("FileName").ToString(), ledger.Path("Ledger.vbp"));
}

TEST(VbideLifetime, EveryObjectOfAnEndedIdeRaises462) {
  vbidetest::RegisterTestAddIns();
  FixtureCopy copy("ledger");
  vbidetest::WriteAddInIni("[Add-Ins32]\r\nVbideTest.Recorder=1\r\n");
  auto ide = ide::Ide::Start(copy.Path("Ledger.vbp"));
  // Objects made before and after the start, asked for from the caller's process: all of them
  // belong to the IDE.
  Dispatch vbe(ide->VBE());
  const ObjectRef components = Dispatch(ide->VBProject()).Get("VBComponents").ToObject();
  const ObjectRef account = Dispatch(components).Call("Item", "CAccount").ToObject();
  const ObjectRef code = Dispatch(account).Get("CodeModule").ToObject();
  const ObjectRef form = Dispatch(components).Call("Item", "frmMain").ToObject();
  const ObjectRef designer = Dispatch(form).Call("DesignerWindow").ToObject();
  const ObjectRef mainWindow = vbe.Get("MainWindow").ToObject();
  const int32_t hWnd = Dispatch(mainWindow).Get("hWnd").ToLong();
  const ObjectRef addIn = ide->AddIns().front();
  const ObjectRef recorder = ide->AddIns().front()->Instance();
  EXPECT_EQ(code->Owner(), ide->Process());
  EXPECT_EQ(designer->Owner(), ide->Process());
  EXPECT_EQ(recorder->Owner(), ide->Process());
  EXPECT_NE(automation::Process::CurrentRef(), ide->Process());
  EXPECT_EQ(Dispatch(code).Get("CountOfLines").ToLong(), 23);
  EXPECT_TRUE(platform::ShowWindow(hWnd, platform::kSwMinimize));

  ide->End();
  EXPECT_EQ(ErrorOf([&] { vbe.Get("Version"); }), 462);
  // The process's end is one check in every call: a sample of the kinds of objects shows it.
  EXPECT_EQ(ErrorOf([&] { Dispatch(code).Call("InsertLines", 1, "'x"); }), 462);
  EXPECT_EQ(ErrorOf([&] { Dispatch(designer).Call("Close"); }), 462);
  EXPECT_EQ(ErrorOf([&] { Dispatch(mainWindow).Put("WindowState", 0); }), 462);
  EXPECT_EQ(ErrorOf([&] { Dispatch(addIn).Get("ProgId"); }), 462);
  EXPECT_EQ(ErrorOf([&] { Dispatch(recorder, "IDTExtensibility").Call("OnAddInsUpdate", 0); }),
            462);
  EXPECT_FALSE(platform::ShowWindow(hWnd, platform::kSwRestore));  // the handle is dead
}

TEST(VbideLifetime, EventSinksComeAndGoByCookie) {
  FixtureCopy copy("ledger");
  const std::string vbp = copy.Path("Ledger.vbp");
  auto ide = ide::Ide::Start(vbp);
  Dispatch source(
      Dispatch(Dispatch(ide->VBE()).Get("Events").ToObject()).Get("VBProjectsEvents").ToObject());
  Log().clear();
  auto first = std::make_shared<vbidetest::Recorder>();
  auto second = std::make_shared<vbidetest::Recorder>();
  const int32_t one = source.Call("Advise", first).ToLong();
  const int32_t two = source.Call("Advise", second).ToLong();
  EXPECT_GT(one, 0);
  EXPECT_NE(one, two);
  EXPECT_EQ(ErrorOf([&] { source.Call("Advise", ObjectRef()); }), 91);
  source.Call("Unadvise", one);
  EXPECT_EQ(ErrorOf([&] { source.Call("Unadvise", one); }), 5);
  ide->End();
  EXPECT_EQ(Log(), (std::vector<std::string>{"Recorder.ItemRemoved " + vbp}));  // second only
  // The IDE let go of its sinks; these live in the caller's process and still answer.
  EXPECT_EQ(first.use_count(), 1);
  EXPECT_EQ(second.use_count(), 1);
  Dispatch(second, "IDTExtensibility").Call("OnStartupComplete", automation::Variant());
}

// A sink whose process has gone: asked for its class, it raises 462, as a proxy does.
class Vanished : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    if (gone) automation::Raise(automation::err::kServerUnavailable);
    return vbidetest::Recorder().Class();
  }
  bool gone = false;
};

TEST(VbideLifetime, ASinkThatFailsOddlyNeitherStopsTheEndNorOutlivesTheIde) {
  vbidetest::RegisterTestAddIns();
  FixtureCopy copy("ledger");
  auto ide = ide::Ide::Start(copy.Path("Ledger.vbp"));
  // Add-ins can hold the event source past the IDE's end.
  const std::shared_ptr<ide::vbide::VBProjectsEvents> events =
      ide->VBE()->Events()->VBProjectsEvents();
  auto vanished = std::make_shared<Vanished>();
  events->Advise(vanished);
  vanished->gone = true;

  // Its failure is recorded, and the end goes through: sinks dropped, projects and add-ins
  // torn down (LeakSanitizer reports the cycles otherwise).
  EXPECT_NO_THROW(ide->End());
  EXPECT_EQ(events->SinkCount(), 0u);
  EXPECT_EQ(vanished.use_count(), 1);
  ASSERT_EQ(ide->Problems().size(), 1u);
  EXPECT_EQ(ide->Problems()[0].Text(),
            "the ItemRemoved handler of an event sink: The remote server machine does not exist "
            "or is unavailable (error 462)");

  // With the IDE gone, a failing handler on the surviving source reaches no freed memory.
  ide.reset();
  events->Advise(std::make_shared<vbidetest::Grumpy>());
  events->Fire("ItemAdded", nullptr);
  EXPECT_EQ(Log().back(), "Grumpy.ItemAdded");
}

}  // namespace
