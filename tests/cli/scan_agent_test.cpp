// The scan agent and qx's side of it, in one process: the agent makes each component through the
// dispatcher's factory and scans it through its own buffer, says where each failure came from,
// stops at the end of its time slice, scans the rest ahead while nothing calls, and qx's side
// hands it the rest as each component's turn comes.

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "automation/apartment.h"
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
    ++scans;
    if (name_ == "Broken") automation::RaiseMessage(70, "Permission denied");
    if (name_ == "Slow") std::this_thread::sleep_for(host::scan::ScanAgent::kSlice * 3 / 2);
    const ObjectRef buffer = host::HostUtility::Instance()->GetRegisteredObject(bufferName);
    host::scan::ComponentScan result;
    result.collection = updatable ? "updatable" : "read-only";
    result.component = name;
    Dispatch(buffer).Call("AddResult", host::scan::EncodeScan(result));
  }

  static inline int scans = 0;

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
  const ObjectRef agent = automation::CreateObject("qxlib41.ScanAgent");
  const std::vector<host::scan::AgentOutcome> first = host::scan::DecodeOutcomes(
      Dispatch(agent)
          .Call("ScanComponents", dispatcher, ObjectRef(), "Inventory",
                R"([{"factory":"GetModule","name":"Slow","updatable":true},
                    {"factory":"GetModule","name":"Module1","updatable":true}])",
                R"({"patterns":["x"]})")
          .ToString());
  ASSERT_EQ(first.size(), 1u);
  EXPECT_EQ(first[0].scans[0].component, "Slow");

  // While nothing calls, the agent scans the rest ahead; the next call that asks for it gets the
  // outcome at once, without a second scan, though the project comes as another object (a
  // caller's project reaches the IDE as a proxy made anew for each call).
  const int scansBefore = StandInComponent::scans;
  const bool stop = false;
  automation::Apartment::Get().ServeFor(std::chrono::milliseconds(50), stop);
  EXPECT_EQ(StandInComponent::scans, scansBefore + 1);
  const std::vector<host::scan::AgentOutcome> ahead = host::scan::DecodeOutcomes(
      Dispatch(agent)
          .Call("ScanComponents", dispatcher, std::make_shared<StandInComponent>("Inventory"),
                "Inventory", R"([{"factory":"GetModule","name":"Module1","updatable":true}])",
                R"({"patterns":["x"]})")
          .ToString());
  ASSERT_EQ(ahead.size(), 1u);
  EXPECT_EQ(ahead[0].scans[0].component, "Module1");
  EXPECT_EQ(StandInComponent::scans, scansBefore + 1);

  // qx's side asks for the rest as each component's turn comes, in order; a component whose
  // object could not be made is left to be scanned on its own, which says why.
  const std::string request = R"({"patterns":["x"]})";
  cli::ScanBatches batches(request);
  batches.Start(dispatcher, nullptr, "Inventory");
  batches.Scan({{"Modules", "Slow", true},
                {"Modules", "Missing", true},
                {"Modules", "Broken", false},
                {"Modules", "Module1", false}});
  const auto slow = batches.Take("Modules", "Slow", request);
  ASSERT_TRUE(slow);
  EXPECT_EQ((*slow)[0].component, "Slow");
  EXPECT_EQ((*slow)[0].collection, "updatable");
  EXPECT_FALSE(batches.Take("Modules", "Missing", request));
  try {
    batches.Take("Modules", "Broken", request);
    ADD_FAILURE() << "the scan's error is raised";
  } catch (const automation::Error& e) {
    EXPECT_EQ(e.Number(), 70);
    EXPECT_EQ(e.Description(), "Permission denied");
  }
  const auto module1 = batches.Take("Modules", "Module1", request);
  ASSERT_TRUE(module1);
  EXPECT_EQ((*module1)[0].collection, "read-only");
}

}  // namespace
