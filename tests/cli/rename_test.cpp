// qx rename's requests without an IDE: what an inventory of a component lets through, and what
// the rename request, matched and replaced as the scanner does it, makes of the component's
// control names and code.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "automation/error.h"
#include "cli/declared_names.h"
#include "cli/rename_plan.h"
#include "host/scan/matcher.h"
#include "host/scan/replacement.h"
#include "host/scan/scan_request.h"

namespace {

using cli::ComponentScan;
using cli::RenameTarget;

cli::ScanPlace Place(std::string kind, std::string name) {
  cli::ScanPlace place;
  place.kind = std::move(kind);
  place.name = std::move(name);
  return place;
}

ComponentScan Inventory(const std::vector<std::string>& controls,
                        const std::vector<std::string>& procedures) {
  ComponentScan scan;
  scan.component = "frmMain";
  scan.places.push_back(Place("name", "frmMain"));
  for (const std::string& control : controls)
    scan.places.push_back(Place("controlName", control));
  for (const std::string& procedure : procedures)
    scan.places.push_back(Place("procedure", procedure));
  return scan;
}

std::string Refusal(const ComponentScan& inventory, const RenameTarget& target) {
  try {
    cli::RenameRequest(inventory, target);
  } catch (const automation::Error& e) {
    return std::to_string(e.Number()) + " " + e.Description();
  }
  return "accepted";
}

// Applies a request to a text as the scanner does: its patterns and options, its replacement.
std::string Apply(const std::string& json, const std::string& text) {
  const host::scan::ScanRequest request = host::scan::ScanRequest::Parse(json);
  host::scan::Matcher matcher(request.patterns, request.options);
  std::string out = text;
  host::scan::ReplaceAll(matcher, text, host::scan::Replacement(*request.replacement, matcher),
                         out);
  return out;
}

TEST(RenamePlan, TargetsAndNamesThatCannotBeRenamedAreRefusedWithTheirReason) {
  for (const std::string& bad :
       std::vector<std::string>{"1abc", "a b", "Choice(2)", "", std::string(41, 'x'), "dim"}) {
    try {
      cli::ParseRenameTarget("frmMain.Option1", bad);
      ADD_FAILURE() << bad;
    } catch (const automation::Error& e) {
      EXPECT_EQ(e.Description(), "frmMain.Option1 -> " + bad + ": Invalid control name syntax.");
    }
  }
  for (const std::string bad : {"1frm", ".Option1", "frmMain.", "a.b.c"})
    EXPECT_THROW(cli::ParseRenameTarget(bad, "Choice"), automation::Error) << bad;
  EXPECT_EQ(cli::ParseRenameTarget("frmMain.Option1", "Choice").component, "frmMain");
  // A target without a control is the component itself.
  EXPECT_EQ(cli::ParseRenameTarget("frmMain", "frmStart").oldName, "");

  const ComponentScan form = Inventory({"Option1(0)", "Option1(1)", "lstItems", "cmd_Ok"},
                                       {"<declarations>", "Option1_Click", "Choice_Helper",
                                        "Pick_Click", "Pick_Load.Get", "cmd_Ok_Click"});
  const auto target = [](std::string from, std::string to) {
    return RenameTarget{"frmMain", std::move(from), std::move(to)};
  };
  EXPECT_EQ(Refusal(form, target("Option9", "Choice")),
            "5 frmMain.Option9 -> Choice: frmMain has no control named Option9");
  EXPECT_EQ(Refusal(form, target("Option1", "LSTITEMS")),
            "5 frmMain.Option1 -> LSTITEMS: frmMain already has a control named lstItems");
  EXPECT_EQ(Refusal(form, target("option1", "pick")),
            "5 frmMain.option1 -> pick: frmMain already has a procedure Pick_Click");
  ComponentScan declaring = form;
  declaring.places[7].text = "Private Sub Choice_Helper(ByVal chosen As Long)\r\nEnd Sub";
  EXPECT_EQ(Refusal(declaring, target("Option1", "Chosen")),
            "5 frmMain.Option1 -> Chosen: frmMain.Choice_Helper declares chosen");
  EXPECT_EQ(Refusal(form, target("Option1", "FRMMAIN")),
            "5 frmMain.Option1 -> FRMMAIN: FRMMAIN is the name of the component itself");
  // A procedure of the new name that the rename would not make is no obstacle, nor one of
  // another control whose name begins the same.
  EXPECT_EQ(Refusal(form, target("Option1", "Choice")), "accepted");
  EXPECT_EQ(Refusal(form, target("cmd_Ok", "cmd")), "accepted");
  // The very name: nothing to do; another spelling of it: the spelling changes.
  EXPECT_FALSE(cli::RenameRequest(form, target("OPTION1", "Option1")));
  EXPECT_TRUE(cli::RenameRequest(form, target("Option1", "OPTION1")));
}

TEST(RenamePlan, TheRequestRenamesNamesEventsAndReferencesOutsideLiteralsAndComments) {
  const ComponentScan form =
      Inventory({"Option1(0)", "Option1(1)", "Option10"},
                {"Option1_Click", "Option1_KeyPress", "Option10_Click", "Option1_Got_Focus"});
  const auto request = cli::RenameRequest(form, {"frmMain", "option1", "Choice"});
  ASSERT_TRUE(request);
  const host::scan::ScanRequest parsed = host::scan::ScanRequest::Parse(*request);
  // Only the control's elements and the code: the form's own name and properties are left out.
  EXPECT_TRUE(parsed.WantsControl("option1(1)"));
  EXPECT_FALSE(parsed.WantsControl("Option10"));
  EXPECT_TRUE(parsed.Wants("code"));
  EXPECT_FALSE(parsed.Wants("properties"));
  EXPECT_TRUE(parsed.write);

  EXPECT_EQ(Apply(*request, "Option1(1)"), "Choice(1)");
  const std::string code =
      "Private Sub Option1_KeyPress(Index As Integer, KeyAscii As Integer)\r\n"
      "    option1(Index).Caption = \"Option1 pressed\" ' Option1\r\n"
      "    Set x = Option1: With Me.Option1(3): .Value = True: End With\r\n"
      "    Call OPTION1_Click(0): Other.Option1.Value = FrmMain.Option1(1).Value\r\n"
      "    Option1_Got_Focus: Option1_Load: Option1x = 1\r\n"
      "Rem Option1 here\r\n"
      "End Sub";
  EXPECT_EQ(Apply(*request, code),
            "Private Sub Choice_KeyPress(Index As Integer, KeyAscii As Integer)\r\n"
            "    Choice(Index).Caption = \"Option1 pressed\" ' Option1\r\n"
            "    Set x = Choice: With Me.Choice(3): .Value = True: End With\r\n"
            "    Call Choice_Click(0): Other.Option1.Value = FrmMain.Choice(1).Value\r\n"
            "    Option1_Got_Focus: Option1_Load: Option1x = 1\r\n"
            "Rem Option1 here\r\n"
            "End Sub");
}

TEST(RenamePlan, TheNamesCodeDeclaresAreFoundInItsStatementsAlone) {
  const struct {
    std::string code;
    std::vector<std::string> names;
  } cases[] = {
      {"Dim a As Long, b(1 To 3, 2) As String, c", {"a", "b", "c"}},
      {"Private WithEvents mItem As CStockItem", {"mItem"}},
      {"Public Const MAX = 3: Static s", {"MAX", "s"}},
      {"Private Function F(ByVal x As Long, Optional y = \"a, b\") As Long", {"x", "y"}},
      {"Private Declare Function T Lib \"k\" Alias \"G\" (ByRef p As Any) As Long", {"p"}},
      {"Public Type Row\r\n  Id As Long\r\nEnd Type", {"Row"}},
      {"ReDim Preserve arr(10)\r\nDim a, _\r\n    b As Long", {"arr", "a", "b"}},
      {"Dim t As String ' Dim u\r\nx = \"Dim v\"\r\nRem Dim w", {"t"}},
      {"private enum Kinds\r\nPublic Event Changed\r\nProperty Let V(ParamArray rest())",
       {"Kinds", "rest"}},
  };
  for (const auto& c : cases)
    EXPECT_EQ(cli::DeclaredNames(c.code), c.names) << c.code;
}

TEST(RenamePlan, AComponentsRenameIsRefusedWhereCodeCouldTakeItForAnotherThing) {
  ComponentScan form = Inventory({"Option1(0)", "lstItems"}, {"Form_Load"});
  form.collection = "Forms";
  ComponentScan module;
  module.component = "modMain";
  module.collection = "Modules";
  module.places.push_back(Place("procedure", "<declarations>"));
  module.places.back().text = "Option Explicit\r\nPublic gCount As Long ' frmOld";
  module.places.push_back(Place("procedure", "Main"));
  module.places.back().text = "Sub Main(ByVal mode As Long)\r\n  frmMain.Show\r\nEnd Sub";
  ComponentScan control;
  control.component = "ctlGauge";
  control.collection = "UserControls";
  const std::vector<ComponentScan> project{form, module, control};
  const auto check = [&](std::string component, std::string name) -> std::string {
    try {
      return cli::CheckComponentRename(project, {component, "", name}) ? "accepted" : "same";
    } catch (const automation::Error& e) {
      return e.Description();
    }
  };
  EXPECT_EQ(check("frmMain", "frmStart"), "accepted");
  EXPECT_EQ(check("FRMMAIN", "frmMain"), "same");
  EXPECT_EQ(check("frmMain", "FRMMAIN"), "accepted");
  EXPECT_EQ(check("frmMain", "ModMain"),
            "frmMain -> ModMain: the project already has a component modMain");
  EXPECT_EQ(check("frmMain", "lstItems"),
            "frmMain -> lstItems: frmMain has a control named lstItems");
  EXPECT_EQ(check("frmMain", "option1"), "frmMain -> option1: frmMain has a control named Option1");
  EXPECT_EQ(check("frmMain", "main"), "frmMain -> main: modMain has a procedure Main");
  EXPECT_EQ(check("frmMain", "GCOUNT"),
            "frmMain -> GCOUNT: modMain.<declarations> declares gCount");
  EXPECT_EQ(check("frmMain", "Mode"), "frmMain -> Mode: modMain.Main declares mode");
  EXPECT_EQ(check("modMain", "frmOld"), "accepted");  // only a comment names it
  EXPECT_EQ(check("ctlGauge", "ctlMeter"),
            "ctlGauge -> ctlMeter: only forms, modules and classes are renamed; ctlGauge is named "
            "in the descriptions of what holds it");
  EXPECT_EQ(check("frmGone", "frmHere"),
            "frmGone -> frmHere: the project has no component frmGone");
  // The name as a whole word in statements, never another object's member.
  const std::string request = cli::ComponentRenameRequest({"frmMain", "", "frmStart"}, false);
  EXPECT_EQ(Apply(request, "frmMain.Show: Set f = New FRMMAIN: x.frmMain = frmMain2 ' frmMain"),
            "frmStart.Show: Set f = New frmStart: x.frmMain = frmMain2 ' frmMain");
}

}  // namespace
