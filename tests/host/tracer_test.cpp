#include "host/tracer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "automation/object.h"
#include "automation/process.h"
#include "host/register.h"
#include "support/temp_home.h"

namespace {

using automation::Args;
using automation::Dispatch;

// Each test sets the variables that switch tracing; they are cleared after it.
class Tracer : public ::testing::Test {
 protected:
  void TearDown() override {
    ::unsetenv("QX_TRACE");
    ::unsetenv("QX_TRACE_FILE");
  }
};

void Enter(const Dispatch& tracer, const std::string& site) {
  Args args{site};
  tracer.CallArgs("Enter", args);
  EXPECT_EQ(args[0].ToString(), site);
}

TEST_F(Tracer, WritesTheNestedCallTree) {
  ::setenv("QX_TRACE", "1", 1);
  auto tracer = std::make_shared<host::Tracer>();
  std::ostringstream out;
  tracer->SetSink(&out);
  Dispatch d(tracer);
  EXPECT_TRUE(d.Get("IsEnabled").ToBool());

  d.Call("Leave");  // nothing open: ignored
  Enter(d, "qxvb60.Forms.ICollection_GetObject");
  Enter(d, "qxvb60.Project.Activate");
  Enter(d, "qxvb60.vxhandler.Promote");
  d.Call("Leave");
  d.Call("Leave");
  Enter(d, "qxvb60.Project.Activate");
  d.Call("Leave");
  d.Call("Leave");
  d.Call("Leave");  // one too many: ignored
  EXPECT_EQ(out.str(),
            "> qxvb60.Forms.ICollection_GetObject\n"
            "  > qxvb60.Project.Activate\n"
            "    > qxvb60.vxhandler.Promote\n"
            "    < qxvb60.vxhandler.Promote\n"
            "  < qxvb60.Project.Activate\n"
            "  > qxvb60.Project.Activate\n"
            "  < qxvb60.Project.Activate\n"
            "< qxvb60.Forms.ICollection_GetObject\n");

  // Finish forgets open levels: the next Enter starts at the left margin again.
  out.str("");
  Enter(d, "a");
  Enter(d, "b");
  d.Call("Finish");
  Enter(d, "c");
  d.Call("Leave");
  d.Call("Leave");
  EXPECT_EQ(out.str(), "> a\n  > b\n> c\n< c\n");
  tracer->SetSink(nullptr);
}

TEST_F(Tracer, SwitchedByTheEnvironmentAndOnePerProcess) {
  host::RegisterClasses();
  qxtest::TempDir dir;
  const std::string traceFile = (dir.path() / "trace.txt").string();
  {
    ::setenv("QX_TRACE", "0", 1);
    auto off = std::make_shared<host::Tracer>();
    EXPECT_FALSE(off->IsEnabled());
    std::ostringstream out;
    off->SetSink(&out);
    std::string site = "x";
    off->Enter(site);
    off->Leave();
    EXPECT_EQ(out.str(), "");
  }
  {
    ::setenv("QX_TRACE", "1", 1);
    ::setenv("QX_TRACE_FILE", traceFile.c_str(), 1);
    auto process = automation::Process::Create("traced");
    automation::Process::Scope scope(process);
    auto tracer = automation::CreateObject("qxlib41.Tracer");
    EXPECT_EQ(automation::CreateObject("qxlib41.Tracer"), tracer);  // the process's one tracer
    Enter(Dispatch(tracer), "site");
    Dispatch(tracer).Call("Leave");
    Dispatch(tracer).Call("Finish");
    process->End();
  }
  std::ifstream in(traceFile);
  std::stringstream written;
  written << in.rdbuf();
  EXPECT_EQ(written.str(), "> site\n< site\n");
  // Another process has a tracer of its own.
  auto other = automation::Process::Create("other");
  automation::ObjectRef mine = automation::CreateObject("qxlib41.Tracer");
  automation::Process::Scope scope(other);
  EXPECT_NE(automation::CreateObject("qxlib41.Tracer"), mine);
  other->End();
}

}  // namespace
