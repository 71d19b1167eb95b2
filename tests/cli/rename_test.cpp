// qx rename's requests without an IDE: what an inventory of a component lets through, and what
// the rename request, matched and replaced as the scanner does it, makes of the component's
// control names and code.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "automation/error.h"
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
       std::vector<std::string>{"1abc", "a b", "Choice(2)", "", std::string(41, 'x')}) {
    try {
      cli::ParseRenameTarget("frmMain.Option1", bad);
      ADD_FAILURE() << bad;
    } catch (const automation::Error& e) {
      EXPECT_EQ(e.Description(), "frmMain.Option1 -> " + bad + ": Invalid control name syntax.");
    }
  }
  for (const std::string bad : {"frmMain", ".Option1", "frmMain.", "a.b.c"})
    EXPECT_THROW(cli::ParseRenameTarget(bad, "Choice"), automation::Error) << bad;
  EXPECT_EQ(cli::ParseRenameTarget("frmMain.Option1", "Choice").component, "frmMain");

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

}  // namespace
