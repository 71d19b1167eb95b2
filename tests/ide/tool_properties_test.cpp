// qxvb6.exe's property commands: dump --properties (every property of the forms, designers and
// controls as JSON lines) and set (one property written and the component saved).

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "fixture_copy.h"
#include "ide/tool/commands.h"

namespace {

namespace fs = std::filesystem;
using idetest::FixtureCopy;
using idetest::ReadBytes;
using idetest::Snapshot;
using Json = nlohmann::ordered_json;  // keeps the order the properties come in

struct Outcome {
  int status;
  std::vector<Json> lines;
  std::string err;
};

Outcome DumpProperties(const std::string& project, const std::string& component = "") {
  std::ostringstream out, err;
  ide::tool::DumpOptions options{project, component, true};
  const int status = ide::tool::RunDump(options, out, err);
  Outcome outcome{status, {}, err.str()};
  std::istringstream lines(out.str());
  for (std::string line; std::getline(lines, line);)
    outcome.lines.push_back(Json::parse(line));
  return outcome;
}

// The status and what went to standard error.
std::pair<int, std::string> Set(const std::string& project, const std::string& target,
                                const std::string& property, const std::string& value) {
  std::ostringstream err;
  const int status = ide::tool::RunSet({project, target, property, value}, err);
  return {status, err.str()};
}

const Json& ControlOf(const Json& component, const std::string& name) {
  for (const Json& control : component["controls"]) {
    if (control["name"] == name) return control;
  }
  static const Json none;
  ADD_FAILURE() << "no control " << name;
  return none;
}

TEST(DumpProperties, FormsAndControlsAnswerAsTheirPropertiesCollectionsDo) {
  FixtureCopy copy("controls");
  const std::string vbp = copy.Path("Controls.vbp");
  const Outcome run = DumpProperties(vbp);
  ASSERT_EQ(run.status, ide::tool::kExitOk) << run.err;
  ASSERT_EQ(run.lines.size(), 1u);  // the module has no designer
  const Json& form = run.lines[0];
  EXPECT_EQ(form["component"], "frmControls");
  EXPECT_EQ(form["type"], 5);
  const Json& own = form["properties"];
  EXPECT_EQ(own.begin().key(), "Name");  // in the collection's order
  EXPECT_EQ(own["Caption"], "Controls");
  EXPECT_EQ(own["Enabled"], true);
  EXPECT_EQ(own["Icon"], nullptr);  // no picture
  EXPECT_EQ(own["Font"], (Json{{"Name", "Tahoma"},
                               {"Size", 9},
                               {"Bold", false},
                               {"Italic", false},
                               {"Underline", false},
                               {"Strikethrough", false},
                               {"Weight", 400},
                               {"Charset", 0}}));

  ASSERT_EQ(form["controls"].size(), 11u);  // in the order of VBControls (VbControls)
  EXPECT_EQ(form["controls"][0]["name"], "fraOuter");
  EXPECT_EQ(form["controls"][10]["name"], "mnuFileOpen");
  const Json& list = ControlOf(form, "lstItems");
  EXPECT_EQ(list["progId"], "VB.ListBox");
  EXPECT_EQ(list["properties"]["List"], (Json{"Apple", "Banana", "Cherry"}));
  EXPECT_EQ(list["properties"]["ItemData"], (Json{10, 20, 30}));
  EXPECT_EQ(ControlOf(form, "Option1(2)")["properties"]["Index"], 2);
  EXPECT_EQ(ControlOf(form, "mnuFileOpen")["properties"]["Shortcut"], "^O");
  const Json& bar = ControlOf(form, "barProgress");
  EXPECT_EQ(bar["progId"], "MSComctlLib.ProgressBar");
  EXPECT_EQ(bar["properties"]["Visible"], true);  // the extender's, not stored
  EXPECT_EQ(ControlOf(form, "txtInner")["properties"]["DataFormat"], nullptr);  // an object

  // One component by name, also a module (which has no properties).
  EXPECT_EQ(DumpProperties(vbp, "FRMCONTROLS").lines, run.lines);
  const Outcome module = DumpProperties(vbp, "modMain");
  ASSERT_EQ(module.lines.size(), 1u);
  EXPECT_EQ(module.lines[0]["type"], 1);
  EXPECT_EQ(module.lines[0]["properties"], Json::object());
  EXPECT_EQ(module.lines[0]["controls"], Json::array());
  const Outcome absent = DumpProperties(vbp, "frmNowhere");
  EXPECT_EQ(absent.status, ide::tool::kExitError);
  EXPECT_EQ(absent.err.rfind("qxvb6: error 9: ", 0), 0u) << absent.err;
}

TEST(DumpProperties, PicturesGiveTheirSizeAndABrokenComponentDoesNotStopTheRest) {
  FixtureCopy copy("pics");
  const std::string image = "GIF89a-image";

  const Outcome run = DumpProperties(copy.Path("Pics.vbp"));
  EXPECT_EQ(run.status, ide::tool::kExitComponentProblem);
  EXPECT_EQ(run.err.rfind("qxvb6: Gone: error 53: ", 0), 0u) << run.err;
  ASSERT_EQ(run.lines.size(), 1u);
  EXPECT_EQ(run.lines[0]["properties"]["Icon"], (Json{{"picture", image.size()}}));
  EXPECT_EQ(ControlOf(run.lines[0], "imgLogo")["properties"]["Picture"], nullptr);
}

// A designer of its own kind (.dsr): its settings, and no controls.
TEST(DumpProperties, DesignersGiveTheirSettings) {
  qxtest::TempHome home;
  fs::copy(fs::path(QX_FIXTURES) / "basic", home.path() / "basic", fs::copy_options::recursive);
  const std::string vbp = (home.path() / "basic" / "Basic.vbp").string();
  const Outcome run = DumpProperties(vbp, "DHTMLPage1");
  ASSERT_EQ(run.status, ide::tool::kExitOk) << run.err;
  ASSERT_EQ(run.lines.size(), 1u);
  EXPECT_EQ(run.lines[0]["type"], 11);
  EXPECT_EQ(run.lines[0]["properties"]["SourceFile"], "DHTMLPage1.htm");
  EXPECT_EQ(run.lines[0]["properties"]["ShowBorder"], false);
  EXPECT_EQ(run.lines[0]["controls"], Json::array());
  // Setting one of them goes through the same collection.
  std::ostringstream err;
  ASSERT_EQ(ide::tool::RunSet({vbp, "DHTMLPage1", "ShowBorder", "true"}, err), ide::tool::kExitOk)
      << err.str();
  EXPECT_EQ(DumpProperties(vbp, "DHTMLPage1").lines.at(0)["properties"]["ShowBorder"], true);
  EXPECT_EQ(ide::tool::RunSet({vbp, "DHTMLPage1.x", "Caption", "\"x\""}, err),
            ide::tool::kExitError);
}

class SetProperty : public ::testing::Test {
 protected:
  SetProperty() : copy_("props") {}
  std::string Vbp() const { return copy_.Path("Props.vbp"); }
  std::string Frm() const { return ReadBytes(copy_.Path("frmProps.frm")); }
  std::string Frx() const { return ReadBytes(copy_.Path("frmProps.frx")); }
  Json Dumped() const { return DumpProperties(Vbp(), "frmProps").lines.at(0); }

  FixtureCopy copy_;
};

// Text, numbers and Booleans as JSON; the saving itself is the model's (ObjectPropertiesTest).
TEST_F(SetProperty, JsonValuesOfEachKindAreWritten) {
  ASSERT_EQ(Set(Vbp(), "frmProps.cmdOk", "Caption", "\"Two\\r\\nlines\"").first,
            ide::tool::kExitOk);
  ASSERT_EQ(Set(Vbp(), "frmProps", "StartUpPosition", "2").first, ide::tool::kExitOk);
  ASSERT_EQ(Set(Vbp(), "frmProps.cmdOk", "Default", "false").first, ide::tool::kExitOk);
  EXPECT_EQ(Dumped()["properties"]["StartUpPosition"], 2);
  EXPECT_EQ(ControlOf(Dumped(), "cmdOk")["properties"]["Default"], false);
  EXPECT_EQ(ControlOf(Dumped(), "cmdOk")["properties"]["Caption"], "Two\r\nlines");
}

TEST_F(SetProperty, ListsAndWhatOnlyTheLiveControlHas) {
  ASSERT_EQ(Set(Vbp(), "frmProps.lstItems", "List", R"(["One", "Two"])").first, ide::tool::kExitOk);
  const Json list = ControlOf(Dumped(), "lstItems")["properties"];
  EXPECT_EQ(list["List"], (Json{"One", "Two"}));
  EXPECT_EQ(list["ItemData"], Json::array());  // the old items' data went with them
  EXPECT_EQ(Frm().find("ItemData"), std::string::npos);

  ASSERT_EQ(Set(Vbp(), "frmProps.cmdOk", "FontItalic", "true").first, ide::tool::kExitOk);
  EXPECT_EQ(ControlOf(Dumped(), "cmdOk")["properties"]["Font"]["Italic"], true);
}

TEST_F(SetProperty, RefusalsSayTheirErrorAndWriteNothing) {
  const auto before = Snapshot(copy_.dir());
  const struct {
    const char* target;
    const char* property;
    const char* value;
    const char* message;
  } cases[] = {
      {"frmNowhere", "Caption", "\"x\"", "qxvb6: error 9: "},
      {"frmProps.cmdNowhere", "Caption", "\"x\"", "qxvb6: error 9: "},
      {"frmProps", "Colour", "1", "qxvb6: error 9: "},
      {"frmProps.cmdOk", "Colour", "1", "qxvb6: error 438: "},
      {"frmProps", "StartUpPosition", "9", "qxvb6: error 380: "},
      {"frmProps", "Caption", "\"unterminated", "qxvb6: error 5: "},
      {"frmProps", "Caption", "null", "qxvb6: error 5: "},
      {"frmProps", "Caption", R"(["a"])", "qxvb6: error 380: "},
      {"frmProps.lstItems", "List", "[1, 2]", "qxvb6: error 5: "},
      {"modMain.x", "Caption", "\"x\"", "qxvb6: error 9: "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.target) + " " + c.property + " " + c.value);
    const auto [status, err] = Set(Vbp(), c.target, c.property, c.value);
    EXPECT_EQ(status, ide::tool::kExitError);
    EXPECT_EQ(err.rfind(c.message, 0), 0u) << err;
  }
  EXPECT_EQ(Snapshot(copy_.dir()), before);
}

}  // namespace
