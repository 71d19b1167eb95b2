#include "foundation/vxhandler.h"

#include <gtest/gtest.h>

#include "automation/object.h"
#include "foundation/globals.h"
#include "foundation/operation.h"
#include "support/driver_env.h"
#include "support/errors.h"

namespace {

using foundation::Operation;
using qxtest::Caught;

constexpr const char* kHeading = "\r\n\r\nPROGRAM CONTEXT:\r\n";

class VxHandler : public ::testing::Test {
 protected:
  // The problems the current problem log has received, as "number|description|class|proc".
  std::vector<std::string> Logged() const {
    std::vector<std::string> out;
    const automation::Dispatch log(foundation::GetGlobals().problemLog);
    for (int32_t i = 1; i <= log.Get("Count").ToLong(); ++i) {
      const automation::Dispatch p(log.Call("Item", i).ToObject());
      out.push_back(p.Get("Number").ToString() + "|" + p.Get("Description").ToString() + "|" +
                    p.Get("ClassName").ToString() + "|" + p.Get("ProcName").ToString());
    }
    return out;
  }

  qxtest::DriverEnv env_;
};

TEST_F(VxHandler, TrailGrowsOneLinePerOperationInnermostFirstUnderOneHeading) {
  auto inner = [] {
    Operation("Forms", "Plain", [] { throw automation::Error(53, "src", "File not found"); });
  };
  auto middle = [&] { Operation("Project", "EnumObjects", inner); };
  const auto e = Caught([&] { Operation("Forms", "ICollection_EnumObjects", middle); });
  EXPECT_EQ(e.Number(), 53);
  EXPECT_EQ(e.Description(), std::string("File not found") + kHeading +
                                 "qxvb60.Forms.Plain.1  (4.1.475)\r\n"
                                 "qxvb60.Project.EnumObjects.1  (4.1.475)\r\n"
                                 "qxvb60.Forms.ICollection_EnumObjects.1  (4.1.475)");
  EXPECT_EQ(e.Source(), "");

  // A heading from elsewhere is not repeated; an empty description still gets one.
  EXPECT_EQ(foundation::AddTrailLine("x PROGRAM CONTEXT: y", "C", "P", 0),
            "x PROGRAM CONTEXT: y\r\nqxvb60.C.P.1  (4.1.475)");
  EXPECT_EQ(foundation::AddTrailLine("", "C", "P", 7),
            std::string(kHeading) + "qxvb60.C.P.7  (4.1.475)");
  const auto numbered = Caught([] {
    Operation("Utility", "UpdateKey",
              [] { throw automation::Error(9, "s", "Subscript out of range", "h.chm", 42, 12); });
  });
  EXPECT_NE(numbered.Description().find("qxvb60.Utility.UpdateKey.12  (4.1.475)"),
            std::string::npos);
  EXPECT_EQ(numbered.HelpFile(), "");  // Promote drops source and help data
  EXPECT_EQ(numbered.HelpContext(), 0);
}

TEST_F(VxHandler, EntryPointRule) {
  for (const char* name : {"ProjectEvents_ItemRemoved", "Ix_Y", "I_"})
    EXPECT_TRUE(foundation::IsEntryPoint(name)) << name;
  for (const char* name : {"IObject_SetMode", "IDTExtensibility_OnConnection", "Main", "X", "_"})
    EXPECT_FALSE(foundation::IsEntryPoint(name)) << name;
}

TEST_F(VxHandler, EntryPointsLogAndKeepTheResultTheyHadSet) {
  const std::string result = foundation::OperationSettingResult<std::string>(
      "Connection", "ProjectEvents_ItemAdded", [](std::string& set) {
        set = "set before the failure";
        throw automation::Error(-32767, "", "Refused.");
      });
  EXPECT_EQ(result, "set before the failure");
  const auto logged = Logged();
  ASSERT_EQ(logged.size(), 1u);
  EXPECT_EQ(logged[0], std::string("-32767|Refused.") + kHeading +
                           "qxvb60.Connection.ProjectEvents_ItemAdded.1  (4.1.475)|Connection|"
                           "ProjectEvents_ItemAdded");
  // Main raises through Promote.
  EXPECT_EQ(Caught([] { Operation("vxhandler", "Main", [] { automation::Raise(5); }); }).Number(),
            5);
}

TEST_F(VxHandler, SaveErrorKeepsEveryFieldAndRunsUndoSteps) {
  int undone = 0;
  const auto e = Caught([&] {
    foundation::OperationWithUndo(
        "Form", "IObject_SetMode",
        [] { throw automation::Error(70, "VBIDE", "Permission denied", "vb.chm", 7); },
        [&] {
          ++undone;
          automation::Raise(5);  // ignored: the saved error stays the first one
        });
  });
  EXPECT_EQ(undone, 1);
  EXPECT_EQ(e.Number(), 70);
  EXPECT_EQ(e.Source(), "VBIDE");
  EXPECT_EQ(e.HelpFile(), "vb.chm");
  EXPECT_EQ(e.HelpContext(), 7);
  EXPECT_EQ(e.Description(), std::string("Permission denied") + kHeading +
                                 "qxvb60.Form.IObject_SetMode.1  (4.1.475)");

  // "Main" counts as an entry point for SaveError, and a name is cut at "(".
  foundation::SavedError main;
  foundation::SaveError(main, automation::Error(5, "", "x"), "M", "Main");
  EXPECT_TRUE(main.isEntryPoint);
  foundation::SavedError cut;
  foundation::SaveError(cut, automation::Error(5, "", "x"), "M", "Events_Fire(1)");
  EXPECT_TRUE(cut.isEntryPoint);
  cut.rollbackFailed = true;
  foundation::ReportSavedError(cut);  // logged, not raised
  const auto logged = Logged();
  ASSERT_EQ(logged.size(), 1u);
  EXPECT_NE(logged[0].find("qxvb60.M.Events_Fire(1).1  (4.1.475)\r\nOne or more additional "
                           "problems were encountered while attempting to roll back the "
                           "operation.|M|Events_Fire(1)"),
            std::string::npos);
}

TEST_F(VxHandler, FixedErrors) {
  auto e = Caught([] { foundation::RaiseInvalidCaseSelector(automation::Variant("abc")); });
  EXPECT_EQ(e.Number(), -32753);
  EXPECT_EQ(e.Description(), "Invalid case selector (\"abc\").");
  e = Caught([] { foundation::RaiseInvalidCaseSelector(automation::Variant(12)); });
  EXPECT_EQ(e.Description(), "Invalid case selector (12).");
  e = Caught([] { foundation::RaiseUndefinedProperty(); });
  EXPECT_EQ(e.Number(), -32749);
  EXPECT_EQ(e.Description(), "Undefined property.");
}

TEST_F(VxHandler, ContextsOpenInTheCurrentLog) {
  automation::ObjectRef context =
      foundation::CreateContext("qxvb60", "Connection", "ProjectEvents_ItemAdded", true, true);
  EXPECT_NE(context, nullptr);
  // A broken log costs the report, never the caller: the context is still made.
  foundation::GetGlobals().problemLog = nullptr;
  EXPECT_NE(foundation::CreateContext("qxvb60", "C", "P", true, true), nullptr);
  EXPECT_NO_THROW(foundation::LogRuntimeError(5, "x", "", 0, "qxvb60", "C", "P", 1));
}

}  // namespace
