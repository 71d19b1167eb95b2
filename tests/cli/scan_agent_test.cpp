// The scan agent and qx's side of it, in one process: the agent makes each component through the
// dispatcher's factory and scans it through its own buffer, says where each failure came from,
// stops at the end of its time slice, and qx's side hands it the rest until all are done.

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "automation/error.h"
#include "cli/scan_agent.h"
#include "host/host_utility.h"
#include "host/register.h"
#include "host/scan/scan_agent.h"
#include "host/scan/scan_result.h"
#include "support/temp_home.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;

// A component object whose IObject.Scan answers one empty result document into the buffer it
// is named, as the Scanner would; "Broken" raises instead, "Slow" takes longer than a slice.
class StandInComponent : public automation::Object {
 public:
  explicit StandInComponent(std::string name) : name_(std::move(name)) {}
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<StandInComponent>("Module")
            .Implements("IObject")
            .Method("Scan", &StandInComponent::Scan,
                    {"ProjectName", "ObjectName", "ObjectIsUpdatable", "ScanBufferName"})
            .Build();
    return info;
  }
  // Its result carries the flag it was handed where a collection's name goes.
  void Scan(const std::string&, const std::string& name, bool updatable,
            const std::string& bufferName) {
    if (name_ == "Broken") automation::RaiseMessage(70, "Permission denied");
    if (name_ == "Slow") std::this_thread::sleep_for(host::scan::ScanAgent::kSlice * 3 / 2);
    const ObjectRef buffer = host::HostUtility::Instance()->GetRegisteredObject(bufferName);
    host::scan::ComponentScan result;
    result.collection = updatable ? "updatable" : "read-only";
    result.component = name;
    Dispatch(buffer).Call("AddResult", host::scan::EncodeScan(result));
  }

 private:
  std::string name_;
};

// The dispatcher's factory for modules; "Missing" is not in the project.
class StandInDispatcher : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<StandInDispatcher>("Dispatcher")
            .Method("GetModule", &StandInDispatcher::GetModule, {"Project", "ModuleName"})
            .Build();
    return info;
  }
  ObjectRef GetModule(const ObjectRef&, const std::string& name) {
    if (name == "Missing") automation::RaiseMessage(35, "Sub or Function not defined");
    return std::make_shared<StandInComponent>(name);
  }
};

TEST(ScanAgent, ScansEachComponentInItsTurnAndSaysWhereEachFailureCameFrom) {
  qxtest::TempHome home;
  host::RegisterClasses();
  const ObjectRef dispatcher = std::make_shared<StandInDispatcher>();
  const std::vector<cli::AgentItem> items = {{"GetModule", "Slow", true},
                                             {"GetModule", "Missing", true},
                                             {"GetModule", "Broken", false},
                                             {"GetModule", "Module1", false}};

  // One call ends with the component that spent the slice.
  const std::vector<host::scan::AgentOutcome> first = host::scan::DecodeOutcomes(
      Dispatch(automation::CreateObject("qxlib41.ScanAgent"))
          .Call("ScanComponents", dispatcher, ObjectRef(), "Inventory",
                R"([{"factory":"GetModule","name":"Slow","updatable":true},
                    {"factory":"GetModule","name":"Module1","updatable":true}])",
                R"({"patterns":["x"]})")
          .ToString());
  ASSERT_EQ(first.size(), 1u);
  EXPECT_EQ(first[0].scans[0].component, "Slow");

  // qx's side hands it the rest until every component is done, in order.
  const cli::ScanAgentView agent(dispatcher, nullptr, "Inventory");
  const std::vector<cli::AgentOutcome> outcomes = agent.Scan(items, R"({"patterns":["x"]})");
  ASSERT_EQ(outcomes.size(), items.size());
  ASSERT_EQ(outcomes[0].scans.size(), 1u);
  EXPECT_EQ(outcomes[0].scans[0].component, "Slow");
  EXPECT_EQ(outcomes[0].scans[0].collection, "updatable");
  ASSERT_TRUE(outcomes[1].error);
  EXPECT_EQ(outcomes[1].error->Number(), 35);
  EXPECT_TRUE(outcomes[1].atFactory);
  ASSERT_TRUE(outcomes[2].error);
  EXPECT_EQ(outcomes[2].error->Number(), 70);
  EXPECT_EQ(outcomes[2].error->Description(), "Permission denied");
  EXPECT_FALSE(outcomes[2].atFactory);
  ASSERT_EQ(outcomes[3].scans.size(), 1u);
  EXPECT_EQ(outcomes[3].scans[0].component, "Module1");
  EXPECT_EQ(outcomes[3].scans[0].collection, "read-only");
}

}  // namespace
