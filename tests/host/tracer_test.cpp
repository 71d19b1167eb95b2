#include "host/tracer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>

#include "automation/object.h"
#include "automation/process.h"
#include "host/register.h"
#include "support/temp_home.h"

namespace {

using automation::Args;
using automation::Dispatch;

// Sets an environment variable for one scope.
class EnvVar {
 public:
  EnvVar(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value) {
      ::setenv(name, value, 1);
    } else {
      ::unsetenv(name);
    }
  }
  ~EnvVar() {
    if (old_) {
      ::setenv(name_, old_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

void Enter(const Dispatch& tracer, const std::string& site) {
  Args args{site};
  tracer.CallArgs("Enter", args);
  EXPECT_EQ(args[0].ToString(), site);
}

TEST(Tracer, WritesTheNestedCallTree) {
  EnvVar trace("QX_TRACE", "1");
  EnvVar file("QX_TRACE_FILE", nullptr);
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

TEST(Tracer, SwitchedByTheEnvironmentAndOnePerProcess) {
  host::RegisterClasses();
  qxtest::TempDir dir;
  const std::string traceFile = (dir.path() / "trace.txt").string();
  {
    EnvVar trace("QX_TRACE", "0");
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
    EnvVar trace("QX_TRACE", "1");
    EnvVar file("QX_TRACE_FILE", traceFile.c_str());
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
