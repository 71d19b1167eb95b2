#include "foundation/probe.h"

#include <gtest/gtest.h>

#include <sstream>

#include "foundation/globals.h"
#include "foundation/operation.h"
#include "host/tracer.h"
#include "support/driver_env.h"
#include "support/errors.h"

namespace {

using foundation::Operation;

class Tracing : public ::testing::Test {
 protected:
  void SetUp() override {
    tracer_ = host::Tracer::Instance();
    tracer_->SetEnabled(true);
    tracer_->SetSink(&trace_);
  }
  void TearDown() override { tracer_->SetSink(nullptr); }

  qxtest::DriverEnv env_;
  std::shared_ptr<host::Tracer> tracer_;
  std::ostringstream trace_;
};

TEST_F(Tracing, EntriesNestLikeCallsAndAFailureStillLeaves) {
  Operation("Forms", "ICollection_EnumObjects", [] {});  // nothing while the flag is off
  EXPECT_EQ(trace_.str(), "");
  foundation::GetGlobals().traceFlag = true;
  auto inner = [] { Operation("Project", "EnumObjects", [] { automation::Raise(53); }); };
  qxtest::Caught([&] { Operation("Forms", "ICollection_EnumObjects", inner); });
  Operation("Forms", "ICollection_EnumObjects", [] {});
  EXPECT_EQ(trace_.str(),
            "> qxvb60.Forms.ICollection_EnumObjects\n"
            "  > qxvb60.Project.EnumObjects\n"
            "    > qxvb60.vxhandler.Promote\n"
            "    < qxvb60.vxhandler.Promote\n"
            "  < qxvb60.Project.EnumObjects\n"
            "  > qxvb60.vxhandler.Promote\n"
            "  < qxvb60.vxhandler.Promote\n"
            "< qxvb60.Forms.ICollection_EnumObjects\n"
            "> qxvb60.Forms.ICollection_EnumObjects\n"
            "< qxvb60.Forms.ICollection_EnumObjects\n");
}

}  // namespace
