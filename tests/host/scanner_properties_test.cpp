// The Scanner over a designed component's properties and controls, through stand-ins that
// declare their members as the driver's classes do: typed reads, gated reads refused with
// "Undefined property.", a List, control names with their array index, a read-only setting.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "automation/error.h"
#include "automation/object.h"
#include "scan_harness.h"
#include "support/stand_in_list.h"

namespace {

using automation::ObjectRef;
using json = nlohmann::json;

constexpr int32_t kUndefinedProperty = -32749;
constexpr const char* kInvalidName = "Invalid control name syntax.";

// A control: Name (with its index), Caption, Tag, Text (a text box's only: other types refuse
// it), List (list boxes only: other types flag it hidden, as the driver's controls do),
// Left (a number, never read for text).
class StandInControl : public automation::Object {
 public:
  StandInControl(std::string name, bool isList) : name_(std::move(name)), isList_(isList) {}

  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info = automation::ClassBuilder<StandInControl>("Control")
                                                  .Get("Name", &StandInControl::Name)
                                                  .Put("Name", &StandInControl::SetName)
                                                  .Get("Caption", &StandInControl::Caption)
                                                  .Put("Caption", &StandInControl::SetCaption)
                                                  .Get("Left", &StandInControl::Left)
                                                  .Get("List", &StandInControl::List)
                                                  .Put("List", &StandInControl::SetList)
                                                  .Get("Tag", &StandInControl::Tag)
                                                  .Put("Tag", &StandInControl::SetTag)
                                                  .Get("Text", &StandInControl::Text)
                                                  .Build();
    static const automation::ClassInfo withoutList = [] {
      automation::ClassInfo copy = info;
      for (automation::Member& member : copy.defaultInterface.members)
        member.hidden = member.name == "List";
      return copy;
    }();
    return isList_ ? info : withoutList;
  }

  std::string Name() const { return name_; }
  void SetName(std::string name) {
    if (name.find(' ') != std::string::npos) automation::RaiseMessage(380, kInvalidName);
    name_ = std::move(name);
  }
  std::string Caption() { return Read("Caption", isList_, caption); }
  void SetCaption(std::string value) { caption = std::move(value); }
  float Left() {
    Read("Left", false, "");
    return 120;
  }
  std::string List() { return Read("List", !isList_, list); }
  void SetList(std::string value) { list = std::move(value); }
  std::string Tag() { return Read("Tag", false, tag); }
  void SetTag(std::string value) { tag = std::move(value); }
  std::string Text() { return Read("Text", true, ""); }

  std::string caption, list, tag;
  std::map<std::string, int> reads;

 private:
  // A read, counted; `refused` as the control's type refuses it.
  std::string Read(const char* name, bool refused, const std::string& value) {
    ++reads[name];
    if (refused) automation::RaiseMessage(kUndefinedProperty, "Undefined property.");
    return value;
  }

  std::string name_;
  bool isList_;
};

using StandInControls = qxtest::StandInList<StandInControl>;
using StandInProcedures = qxtest::StandInList<automation::Object>;  // a form without code

// A form: Name, Caption, Tag, LinkTopic (read only here, as a user connection's settings are),
// ScaleWidth, Controls and Procedures; SetMode on IObject.
class StandInForm : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<StandInForm>("Form")
            .Get("Name", &StandInForm::Name)
            .Get("Caption", &StandInForm::Caption)
            .Put("Caption", &StandInForm::SetCaption)
            .Get("Controls", &StandInForm::Controls)
            .Get("LinkTopic", &StandInForm::LinkTopic)
            .Get("Procedures", &StandInForm::Procedures)
            .Get("ScaleWidth", &StandInForm::ScaleWidth)
            .Get("Tag", &StandInForm::Tag)
            .Put("Tag", &StandInForm::SetTag)
            .Implements("IObject")
            .Method("SetMode", &StandInForm::SetMode, {"Mode"})
            .Build();
    return info;
  }

  std::string Name() const { return "frmMain"; }
  std::string Caption() const { return caption; }
  void SetCaption(std::string value) { caption = std::move(value); }
  ObjectRef Controls() const { return controls; }
  std::string LinkTopic() const { return linkTopic; }
  ObjectRef Procedures() const { return std::make_shared<StandInProcedures>(); }
  float ScaleWidth() const { return 4800; }
  std::string Tag() const { return tag; }
  void SetTag(std::string value) { tag = std::move(value); }
  void SetMode(int32_t mode) { modes.push_back(mode); }

  std::shared_ptr<StandInControl> Add(std::string name, bool isList = false) {
    controls->items.push_back(std::make_shared<StandInControl>(std::move(name), isList));
    return controls->items.back();
  }

  std::string caption = "Stock list", tag = "stock", linkTopic = "Stock";
  std::shared_ptr<StandInControls> controls = std::make_shared<StandInControls>();
  std::vector<int32_t> modes;
};

class ScannerPropertiesTest : public ::testing::Test {
 protected:
  ScannerPropertiesTest() {
    option = form->Add("Option1(2)");
    option->caption = "In stock";
    option->tag = "stock option";
    list = form->Add("lstItems", true);
    list->list = "Stock A\r\nStock B";
    list->tag = "Stock";
  }
  json Scan(const json& request) { return scan.Scan(request, form, "Forms", "frmMain"); }

  static std::vector<std::string> Names(const json& result) {
    std::vector<std::string> names;
    for (const auto& place : result["places"])
      names.push_back(place["kind"].get<std::string>() + " " + place["name"].get<std::string>());
    return names;
  }

  qxtest::ScanHarness scan{"qx-scan-properties-1"};
  std::shared_ptr<StandInForm> form = std::make_shared<StandInForm>();
  std::shared_ptr<StandInControl> option;
  std::shared_ptr<StandInControl> list;
};

TEST_F(ScannerPropertiesTest, FindsStringPropertiesControlNamesAndListsInFileOrderReadingEachOnce) {
  const json result = Scan({{"patterns", {"(?i)stock|Option"}}});
  EXPECT_THAT(Names(result),
              ::testing::ElementsAre("property Caption", "property LinkTopic", "property Tag",
                                     "controlName Option1(2)", "property Option1(2).Caption",
                                     "property Option1(2).Tag", "property lstItems.Tag",
                                     "list lstItems.List"));
  // The gated reads refused by the type are no problem; numbers are never read.
  EXPECT_TRUE(result["problems"].empty()) << result["problems"];
  EXPECT_EQ(option->reads["Caption"], 1);
  EXPECT_EQ(option->reads["Tag"], 1);
  EXPECT_EQ(option->reads.count("Left"), 0U);
  // A type without a list is not asked for one.
  EXPECT_EQ(option->reads.count("List"), 0U);
  EXPECT_EQ(list->reads["List"], 1);

  const json& caption = result["places"][4];
  EXPECT_EQ(caption["control"], "Option1(2)");
  EXPECT_EQ(caption["property"], "Caption");
  EXPECT_EQ(caption["matches"], json::parse(R"([{"line": 1, "start": 3, "end": 8,
                                                "text": "stock"}])"));
  EXPECT_EQ(result["places"][0]["control"], nullptr);
  EXPECT_EQ(result["places"][7]["matches"].size(), 2U);
  EXPECT_EQ(result["places"][7]["matches"][1]["line"], 2);
}

TEST_F(ScannerPropertiesTest, ScopesSeparatePropertiesFromNames) {
  EXPECT_THAT(Names(Scan({{"patterns", {"Option"}}, {"scope", {"names"}}})),
              ::testing::ElementsAre("controlName Option1(2)"));
  EXPECT_THAT(Names(Scan({{"patterns", {"Option"}}, {"scope", {"code"}}})), ::testing::IsEmpty());
  EXPECT_EQ(option->reads["Caption"], 0);
  EXPECT_THAT(Names(Scan({{"patterns", {"In stock"}}, {"scope", {"properties"}}})),
              ::testing::ElementsAre("property Option1(2).Caption"));
}

TEST_F(ScannerPropertiesTest, WritesThroughTheSameMembersAndRecordsEachRefusalForItsPlace) {
  const json result =
      Scan({{"patterns", {"Stock|Option"}}, {"replacement", "Store Choice"}, {"write", true}});
  EXPECT_EQ(form->modes, std::vector<int32_t>{2});
  EXPECT_EQ(form->caption, "Store Choice list");
  EXPECT_EQ(list->list, "Store Choice A\r\nStore Choice B");
  // A name with a space is refused by the control; the rest is written.
  EXPECT_EQ(option->Name(), "Option1(2)");
  for (const auto& place : result["places"]) {
    const std::string name = place["name"];
    if (name == "Option1(2)") {
      EXPECT_EQ(place["written"], false);
      EXPECT_EQ(place["error"]["description"], kInvalidName);
    } else if (name == "LinkTopic") {
      EXPECT_EQ(place["written"], false);
      EXPECT_EQ(place["error"]["number"], 383);
      EXPECT_EQ(form->linkTopic, "Stock");
    } else {
      EXPECT_EQ(place["written"], true) << name;
      EXPECT_EQ(place["error"], nullptr) << name;
    }
  }
}

TEST_F(ScannerPropertiesTest, AControlNarrowsTheRequestToItsElementsAndLeavesTheFormOut) {
  form->Add("option1(3)")->caption = "Stock three";
  form->Add("Option10")->caption = "Stock ten";
  EXPECT_THAT(Names(Scan({{"patterns", {"(?i)stock|Option"}}, {"control", "OPTION1"}})),
              ::testing::ElementsAre("controlName Option1(2)", "property Option1(2).Caption",
                                     "property Option1(2).Tag", "controlName option1(3)",
                                     "property option1(3).Caption"));
  EXPECT_THAT(
      Names(Scan({{"patterns", {"Option"}}, {"scope", {"names"}}, {"control", "Option10"}})),
      ::testing::ElementsAre("controlName Option10"));
  EXPECT_THROW(Scan({{"patterns", {"x"}}, {"control", ""}}), automation::Error);
}

}  // namespace
