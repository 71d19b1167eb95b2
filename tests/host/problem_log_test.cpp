#include "host/problem_log.h"

#include <gtest/gtest.h>

#include "automation/object.h"
#include "automation/process.h"
#include "host/problem.h"
#include "host/problem_context.h"
#include "host/register.h"
#include "support/errors.h"

namespace {

using automation::Args;
using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;
using qxtest::Caught;

class ProblemLogTest : public ::testing::Test {
 protected:
  void SetUp() override { host::RegisterClasses(); }

  static int32_t Open(const Dispatch& log, const std::string& proc) {
    Args args{"qxvb60", "Connection", proc, true, true};
    return log.CallArgs("OpenContext", args).ToLong();
  }
  static ObjectRef Attach(ObjectRef log, int32_t cookie) {
    ObjectRef context = automation::CreateObject("qxlib41.ProblemContext");
    Args args{log, cookie};
    Dispatch(context).CallArgs("Attach", args);
    return context;
  }
};

TEST_F(ProblemLogTest, RecordsProblemsWithSiteAndContextAndIsHeldByALink) {
  ObjectRef logRef = automation::CreateObject("qxlib41.ProblemLog");
  Dispatch log(logRef);
  // A log link holds the log it is given.
  Dispatch link(automation::CreateObject("qxlib41.ProblemLogLink"));
  EXPECT_EQ(link.Get("ProblemLog").ToObject(), nullptr);
  Args linked{logRef};
  link.CallArgs("Link", linked);
  EXPECT_EQ(link.Get("ProblemLog").ToObject(), logRef);

  ObjectRef problem = automation::CreateObject("qxlib41.Problem");
  Dispatch(problem).Call("SetError", -32767, "It failed.", "help.chm", 12, "qxvb60", "Form",
                         "IObject_Scan", 7);
  Args add{problem, "qxvb60.Form.IObject_Scan", 0, Variant()};
  log.CallArgs("AddProblem", add);
  EXPECT_EQ(add[3].ToLong(), 1);  // the result is the problem's index

  const int32_t cookie = Open(log, "IDTExtensibility_OnConnection");
  EXPECT_NE(cookie, 0);
  log.Call("ReportRuntimeError", 91, "Object variable not set", "", 0, "qxvb60", "Connection",
           "ProjectEvents_ItemAdded", 0);
  log.Call("CloseContext", cookie);
  log.Call("ReportRuntimeError", 5, "late", "", 0, "qxvb60", "Dispatcher", "TearDown", 3);

  ASSERT_EQ(log.Get("Count").ToLong(), 3);
  Dispatch first(log.Call("Item", 1).ToObject());
  EXPECT_EQ(first.object(), problem);  // our own problem object is kept as given
  EXPECT_EQ(first.Get("Number").ToLong(), -32767);
  EXPECT_EQ(first.Get("Description").ToString(), "It failed.");
  EXPECT_EQ(first.Get("HelpFile").ToString(), "help.chm");
  EXPECT_EQ(first.Get("HelpContext").ToLong(), 12);
  EXPECT_EQ(first.Get("ProjectName").ToString(), "qxvb60");
  EXPECT_EQ(first.Get("ClassName").ToString(), "Form");
  EXPECT_EQ(first.Get("ProcName").ToString(), "IObject_Scan");
  EXPECT_EQ(first.Get("Line").ToLong(), 7);
  EXPECT_EQ(first.Get("SiteName").ToString(), "qxvb60.Form.IObject_Scan");
  EXPECT_EQ(first.Get("Context").ToString(), "");

  Dispatch second(log.Call("Item", 2).ToObject());
  EXPECT_EQ(second.Get("Number").ToLong(), 91);
  EXPECT_EQ(second.Get("SiteName").ToString(), "qxvb60.Connection.ProjectEvents_ItemAdded");
  EXPECT_EQ(second.Get("Context").ToString(), "qxvb60.Connection.IDTExtensibility_OnConnection");
  Dispatch third(log.Call("Item", 3).ToObject());
  EXPECT_EQ(third.Get("Context").ToString(), "");  // after the context closed
  EXPECT_EQ(third.Get("Line").ToLong(), 3);

  EXPECT_EQ(Caught([&] { log.Call("Item", 0); }).Number(), 9);
  EXPECT_EQ(Caught([&] { log.Call("Item", 4); }).Number(), 9);
  EXPECT_EQ(Caught([&] { Dispatch(problem).Put("Number", 1); }).Number(), 383);
  Args nothing{ObjectRef(), "site", 0, Variant()};
  EXPECT_EQ(Caught([&] { log.CallArgs("AddProblem", nothing); }).Number(), 91);
}

TEST_F(ProblemLogTest, ContextObjectClosesItsContextWhenReleased) {
  auto log = std::make_shared<host::ProblemLog>();
  ObjectRef outer = Attach(log, Open(Dispatch(log), "Outer"));
  {
    ObjectRef inner = Attach(log, Open(Dispatch(log), "Inner"));
    EXPECT_EQ(log->OpenContextCount(), 2);
    log->ReportRuntimeError(1, "in inner", "", 0, "p", "c", "x", 1);
  }
  EXPECT_EQ(log->OpenContextCount(), 1);
  log->ReportRuntimeError(2, "in outer", "", 0, "p", "c", "y", 1);
  outer.reset();
  EXPECT_EQ(log->OpenContextCount(), 0);
  ASSERT_EQ(log->Count(), 2);
  EXPECT_EQ(log->Problems()[0]->Context(), "qxvb60.Connection.Inner");
  EXPECT_EQ(log->Problems()[1]->Context(), "qxvb60.Connection.Outer");

  // Closing twice, or a log that is gone, is harmless.
  log->CloseContext(1);
  ObjectRef orphan = Attach(std::make_shared<host::ProblemLog>(), 1);
  orphan.reset();
}

TEST_F(ProblemLogTest, ProblemFromAnotherProcessIsCopied) {
  // A problem object that is not ours (as one reached through another process would be) is
  // read through its members and copied.
  class ForeignProblem : public automation::Object {
   public:
    const automation::ClassInfo& Class() const override {
      static const automation::ClassInfo info =
          automation::ClassBuilder<ForeignProblem>("ForeignProblem")
              .Get("Number", &ForeignProblem::Number)
              .Get("Description", &ForeignProblem::Text)
              .Get("HelpFile", &ForeignProblem::Text)
              .Get("HelpContext", &ForeignProblem::Number)
              .Get("ProjectName", &ForeignProblem::Text)
              .Get("ClassName", &ForeignProblem::Text)
              .Get("ProcName", &ForeignProblem::Text)
              .Get("Line", &ForeignProblem::Number)
              .Build();
      return info;
    }
    int32_t Number() const { return 75; }
    std::string Text() const { return "far"; }
  };
  host::ProblemLog log;
  ObjectRef foreign = std::make_shared<ForeignProblem>();
  Variant result;
  log.AddProblem(foreign, "far.site", 0, result);
  ASSERT_EQ(log.Count(), 1);
  EXPECT_NE(log.Item(1), foreign);
  EXPECT_EQ(log.Problems()[0]->Number(), 75);
  EXPECT_EQ(log.Problems()[0]->ProcName(), "far");
  EXPECT_EQ(log.Problems()[0]->SiteName(), "far.site");
}

}  // namespace
