#include "host/scan/scanner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "automation/error.h"
#include "automation/object.h"
#include "host/register.h"
#include "host/scan/scan_buffer.h"
#include "scan_harness.h"
#include "support/errors.h"
#include "support/stand_in_list.h"

namespace {

using automation::ObjectRef;
using json = nlohmann::json;
using qxtest::Caught;

constexpr int32_t kProcedureListCheck = 5000;
constexpr const char* kPendingChanges =
    "Couldn't save changes safely because the module is already open and has pending changes.";
constexpr const char* kListCheckMessage =
    "This replacement would have changed the total number of procedures in the module. Perhaps "
    "you deleted the procedure heading, created an additional procedure heading, or used "
    "incorrect syntax in the procedure heading.";

class StandInModule;

// A procedure of the stand-in module: Name, and Text read and written, counted.
class StandInProcedure : public automation::Object {
 public:
  StandInProcedure(StandInModule& module, std::string name, std::string text)
      : text_(std::move(text)), module_(module), name_(std::move(name)) {}

  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<StandInProcedure>("Procedure")
            .Get("Name", &StandInProcedure::Name)
            .Get("Text", &StandInProcedure::Text)
            .Put("Text", &StandInProcedure::SetText)
            .Build();
    return info;
  }

  std::string Name() const { return name_; }
  std::string Text();
  void SetText(std::string text);

  std::string text_;
  int reads = 0;
  int writes = 0;
  bool failListCheck = false;  // a write raises the procedure-list check

 private:
  StandInModule& module_;
  std::string name_;
};

using StandInProcedures = qxtest::StandInList<StandInProcedure>;

// A component object as the driver makes one: Name (read and written) and Procedures on its own
// interface, SetMode on IObject. Mode 2 is refused while `pendingChanges` is set, which leaves
// the object idle with its procedures gone, as the driver's component objects do.
class StandInModule : public automation::Object {
 public:
  explicit StandInModule(std::string name) : name_(std::move(name)) {}

  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<StandInModule>("Module")
            .Get("Name", &StandInModule::Name)
            .Put("Name", &StandInModule::SetName)
            .Get("Procedures", &StandInModule::Procedures)
            .Implements("IObject")
            .Get("Name", &StandInModule::Name)
            .Method("SetMode", &StandInModule::SetMode, {"Mode"})
            .Build();
    return info;
  }

  std::string Name() {
    ++nameReads;
    return name_;
  }
  void SetName(std::string name) {
    RequireWriting();
    name_ = std::move(name);
    ++nameWrites;
  }
  ObjectRef Procedures() {
    if (mode == 0) automation::Raise(automation::err::kObjectNotSet);
    return procedures;
  }
  void SetMode(int32_t newMode) {
    modeCalls.push_back(newMode);
    if (newMode == 2 && pendingChanges) {
      mode = 0;
      procedures->items.clear();
      automation::RaiseMessage(automation::err::kUserError, kPendingChanges);
    }
    mode = newMode;
  }
  void RequireWriting() const {
    if (mode != 2) automation::RaiseMessage(51, "written outside mode 2");
  }

  void Add(std::string name, std::string text) {
    procedures->items.push_back(
        std::make_shared<StandInProcedure>(*this, std::move(name), std::move(text)));
  }
  StandInProcedure& Procedure(size_t i) { return *procedures->items.at(i); }

  std::shared_ptr<StandInProcedures> procedures = std::make_shared<StandInProcedures>();
  int32_t mode = 1;
  bool pendingChanges = false;
  std::vector<int32_t> modeCalls;
  int nameReads = 0;
  int nameWrites = 0;

 private:
  std::string name_;
};

std::string StandInProcedure::Text() {
  if (module_.mode == 0) automation::Raise(automation::err::kObjectNotSet);
  ++reads;
  return text_;
}

void StandInProcedure::SetText(std::string text) {
  module_.RequireWriting();
  if (failListCheck) automation::RaiseMessage(kProcedureListCheck, kListCheckMessage);
  text_ = std::move(text);
  ++writes;
}

class ScannerTest : public ::testing::Test {
 protected:
  ScannerTest() {
    module->Add("<declarations>", "Option Explicit\r\nPrivate mTotal As Long");
    module->Add("AddItem", "Public Sub AddItem()\r\n  mTotal = mTotal + 1\r\nEnd Sub");
    module->Add("Total.Get",
                "Public Property Get Total() As Long\r\n  Total = mTotal\r\nEnd Property");
    module->Add("Reset", "Public Sub Reset()\r\n  Debug.Print \"reset\"\r\nEnd Sub");
  }

  json Scan(const json& request, bool updatable = true) {
    return scan.Scan(request, module, "Modules", "Stock", updatable);
  }

  static std::vector<std::string> Names(const json& result) {
    std::vector<std::string> names;
    for (const auto& place : result["places"])
      names.push_back(place["name"]);
    return names;
  }

  qxtest::ScanHarness scan{"qx-scan-test-1"};
  std::shared_ptr<StandInModule> module = std::make_shared<StandInModule>("Stock");
};

TEST_F(ScannerTest, RecordsEachMatchWithItsPlaceLineAndBytesAndReadsEachValueOnce) {
  const json result = Scan({{"patterns", {"mTotal"}}});
  EXPECT_EQ(result["collection"], "Modules");
  EXPECT_EQ(result["component"], "Stock");
  EXPECT_THAT(Names(result), ::testing::ElementsAre("<declarations>", "AddItem", "Total.Get"));

  const json& addItem = result["places"][1];
  EXPECT_EQ(addItem["kind"], "procedure");
  EXPECT_EQ(addItem["text"], module->Procedure(1).text_);
  EXPECT_EQ(addItem["matches"], json::parse(R"([{"line": 2, "start": 2, "end": 8, "text": "mTotal"},
                            {"line": 2, "start": 11, "end": 17, "text": "mTotal"}])"));
  EXPECT_EQ(addItem["replacement"], nullptr);
  EXPECT_EQ(addItem["written"], false);
  EXPECT_EQ(addItem["error"], nullptr);
  EXPECT_TRUE(result["problems"].empty());

  for (size_t i = 0; i < 4; ++i)
    EXPECT_EQ(module->Procedure(i).reads, 1) << i;
  EXPECT_EQ(module->nameReads, 1);
  EXPECT_TRUE(module->modeCalls.empty());
}

TEST_F(ScannerTest, ScopesChooseBetweenTheNameAndTheCode) {
  const json both = Scan({{"patterns", {"(?i)stock|reset"}}});
  EXPECT_THAT(Names(both), ::testing::ElementsAre("Stock", "Reset"));
  EXPECT_EQ(both["places"][0]["kind"], "name");
  EXPECT_EQ(both["places"][0]["matches"][0]["end"], 5);

  EXPECT_THAT(Names(Scan({{"patterns", {"(?i)stock|reset"}}, {"scope", {"names"}}})),
              ::testing::ElementsAre("Stock"));
  EXPECT_THAT(Names(Scan({{"patterns", {"(?i)stock|reset"}}, {"scope", {"code"}}})),
              ::testing::ElementsAre("Reset"));
  EXPECT_EQ(module->nameReads, 2);  // the code scope never reads the name
}

// Replacing without writing, or in a component that cannot be written, shows the new text and
// changes nothing.
TEST_F(ScannerTest, ReplacingWithoutWritingShowsTheNewTextAndChangesNothing) {
  const json preview = Scan({{"patterns", {"m(Total)"}}, {"replacement", "count$1"}});
  EXPECT_EQ(preview["places"][1]["replacement"],
            "Public Sub AddItem()\r\n  countTotal = countTotal + 1\r\nEnd Sub");
  EXPECT_EQ(preview["places"][1]["written"], false);

  // Asked to write a component that cannot be written (its file is read-only), each change is
  // the error of its place: never skipped without a word.
  const json result =
      Scan({{"patterns", {"mTotal"}}, {"replacement", "x"}, {"write", true}}, false);
  EXPECT_EQ(result["places"][1]["replacement"], "Public Sub AddItem()\r\n  x = x + 1\r\nEnd Sub");
  EXPECT_EQ(result["places"][1]["written"], false);
  EXPECT_EQ(result["places"][1]["error"]["number"], automation::err::kPathFileAccess);
  EXPECT_TRUE(module->modeCalls.empty());
  EXPECT_EQ(module->Procedure(1).writes, 0);
}

// A place's id names it in every scan; a request that names ids writes those places only, and
// still shows every match.
TEST_F(ScannerTest, OnlyTheNamedPlacesAreWritten) {
  const json all = Scan({{"patterns", {"mTotal"}}, {"replacement", "x"}});
  ASSERT_EQ(all["places"].size(), 3U);
  EXPECT_EQ(all["places"][2]["id"], "Stock/procedure/Total.Get");
  const json result = Scan({{"patterns", {"mTotal"}},
                            {"replacement", "x"},
                            {"write", true},
                            {"only", {all["places"][2]["id"]}}});
  EXPECT_EQ(result["places"].size(), 3U);
  for (size_t i = 0; i < 3; ++i)
    EXPECT_EQ(result["places"][i]["written"], i == 2) << i;
  EXPECT_EQ(module->Procedure(1).writes, 0);
  EXPECT_EQ(module->Procedure(2).writes, 1);
}

// A pattern that needs more backtracking than PCRE2 allows on one place's text is that place's
// error, with the matches found before; the other places are searched and written as usual.
TEST_F(ScannerTest, APatternTooCostlyForOnePlaceIsThatPlacesError) {
  module->Add("Noise", "Sub Noise()\r\n  s = \"" + std::string(60, 'a') + "!\"\r\nEnd Sub");
  const json result =
      Scan({{"patterns", {"(a|aa)+$|mTotal"}}, {"replacement", "n"}, {"write", true}});
  ASSERT_EQ(result["places"].size(), 4U);
  const json& noise = result["places"][3];
  EXPECT_EQ(noise["name"], "Noise");
  EXPECT_EQ(noise["error"]["description"],
            "the pattern needs more backtracking than allowed; simplify it");
  EXPECT_EQ(noise["written"], false);
  EXPECT_EQ(result["places"][1]["written"], true);
  EXPECT_EQ(module->Procedure(4).writes, 0);
}

TEST_F(ScannerTest, WritesOnlyTheChangedPlacesAfterOneSwitchToWriting) {
  const json same = Scan({{"patterns", {"mTotal"}}, {"replacement", "${0}"}, {"write", true}});
  EXPECT_EQ(same["places"].size(), 3U);
  EXPECT_EQ(same["places"][1]["written"], false);
  EXPECT_TRUE(module->modeCalls.empty()) << "nothing changes, so the object stays in mode 1";

  // Only Audit spells "total" otherwise than "Total".
  module->Add("Audit", "Sub Audit()\r\n  total = 0\r\nEnd Sub");
  const json written = Scan({{"patterns", {"total"}},
                             {"case", "insensitive"},
                             {"replacement", "Total"},
                             {"write", true}});
  EXPECT_THAT(Names(written),
              ::testing::ElementsAre("<declarations>", "AddItem", "Total.Get", "Audit"));
  EXPECT_EQ(module->modeCalls, std::vector<int32_t>{2});
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(written["places"][i]["written"], i == 3) << i;
    EXPECT_EQ(written["places"][i]["error"], nullptr) << i;
  }
  EXPECT_EQ(module->Procedure(4).text_, "Sub Audit()\r\n  Total = 0\r\nEnd Sub");
  for (size_t i = 0; i < 4; ++i)
    EXPECT_EQ(module->Procedure(i).writes, 0) << i;
  EXPECT_EQ(module->Procedure(1).reads, 2);  // once per scan
}

TEST_F(ScannerTest, ARenameWritesTheComponentName) {
  const json result = Scan(
      {{"patterns", {"^Stock$"}}, {"replacement", "Store"}, {"write", true}, {"scope", {"names"}}});
  EXPECT_EQ(result["places"][0]["replacement"], "Store");
  EXPECT_EQ(result["places"][0]["written"], true);
  EXPECT_EQ(module->Name(), "Store");
  EXPECT_EQ(module->nameWrites, 1);
}

TEST_F(ScannerTest, AFailedWriteIsRecordedForItsPlaceAndTheNextIsStillWritten) {
  module->Procedure(1).failListCheck = true;
  const json result = Scan({{"patterns", {"mTotal"}}, {"replacement", "x"}, {"write", true}});
  const json& failed = result["places"][1];
  EXPECT_EQ(failed["written"], false);
  EXPECT_EQ(failed["error"]["number"], kProcedureListCheck);
  EXPECT_EQ(failed["error"]["description"], kListCheckMessage);
  EXPECT_EQ(result["places"][0]["written"], true);
  EXPECT_EQ(result["places"][2]["written"], true);
  EXPECT_EQ(module->Procedure(2).text_,
            "Public Property Get Total() As Long\r\n  Total = x\r\nEnd Property");
  EXPECT_EQ(module->modeCalls, std::vector<int32_t>{2});
}

TEST_F(ScannerTest, ARefusedSwitchToWritingIsTheErrorOfEveryChangeAndNothingIsWritten) {
  module->pendingChanges = true;
  const json result = Scan({{"patterns", {"mTotal|Stock"}}, {"replacement", "x"}, {"write", true}});
  // Every place was read before the refusal left the object idle.
  EXPECT_THAT(Names(result),
              ::testing::ElementsAre("Stock", "<declarations>", "AddItem", "Total.Get"));
  for (const auto& place : result["places"]) {
    EXPECT_EQ(place["written"], false);
    EXPECT_EQ(place["error"]["number"], automation::err::kUserError);
    EXPECT_EQ(place["error"]["description"], kPendingChanges);
  }
  EXPECT_EQ(module->modeCalls, std::vector<int32_t>{2});
  EXPECT_EQ(module->nameWrites, 0);
  EXPECT_TRUE(result["problems"].empty());
}

TEST_F(ScannerTest, APlaceThatCannotBeReadIsAProblemAndTheWalkGoesOn) {
  // Procedures cannot be read in mode 0; the name still can.
  module->mode = 0;
  const json result = Scan({{"patterns", {"Stock|mTotal"}}});
  EXPECT_THAT(Names(result), ::testing::ElementsAre("Stock"));
  ASSERT_EQ(result["problems"].size(), 1U);
  EXPECT_EQ(result["problems"][0]["number"], automation::err::kObjectNotSet);
  EXPECT_EQ(result["problems"][0]["place"], "procedures");
}

TEST_F(ScannerTest, RaisesForAMissingBufferABadRequestOrABadPattern) {
  auto call = [&](const std::string& name) { scan.Call(module, "Modules", "Stock", true, name); };
  const automation::Error missing = Caught([&] { call("qx-scan-none"); });
  EXPECT_EQ(missing.Number(), automation::err::kUserError);
  EXPECT_EQ(missing.Description(), "No scan buffer is registered under the name \"qx-scan-none\".");

  for (const char* request :
       {"not json", R"({"patterns": []})", R"({"patterns": ["a"], "case": "upper"})",
        R"({"patterns": ["a"], "write": true})", R"({"patterns": ["a"], "scope": ["forms"]})"}) {
    scan.buffer->SetRequest(request);
    EXPECT_EQ(Caught([&] { call(scan.bufferName()); }).Number(), automation::err::kInvalidCall)
        << request;
  }
  scan.buffer->SetRequest(R"({"patterns": ["(a"]})");
  EXPECT_EQ(Caught([&] { call(scan.bufferName()); }).Number(), 93);
  EXPECT_EQ(scan.buffer->ResultCount(), 0);
}

TEST(ScanBufferTest, KeepsResultsInOrderAndTakesOnlyWholeResults) {
  host::RegisterClasses();
  auto created = automation::As<host::scan::ScanBuffer>(
      automation::CreateObject(host::scan::ScanBuffer::kProgId));
  ASSERT_TRUE(created);
  host::scan::ScanBuffer& buffer = *created;
  EXPECT_EQ(buffer.Results(), "");
  host::scan::ComponentScan a;
  a.component = "A";
  host::scan::ComponentScan b;
  b.component = "B";
  buffer.AddResult(host::scan::EncodeScan(a));
  buffer.AddResult(host::scan::EncodeScan(b));
  const std::vector<host::scan::ComponentScan> both = host::scan::DecodeScans(buffer.Results());
  ASSERT_EQ(both.size(), 2u);
  EXPECT_EQ(both[0].component, "A");
  EXPECT_EQ(both[1].component, "B");
  // Not a result, two results, a result cut short: refused.
  const std::string whole = host::scan::EncodeScan(a);
  for (const std::string& bad :
       {std::string("{\"component\": \"A\"}"), whole + whole, whole.substr(0, whole.size() - 8)}) {
    EXPECT_EQ(qxtest::ErrorOf([&] { buffer.AddResult(bad); }), automation::err::kInvalidCall);
  }
  buffer.Clear();
  EXPECT_EQ(buffer.Results(), "");
}

}  // namespace
