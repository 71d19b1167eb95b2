// Properties, control names, DHTML and qx rename end to end, through a real IDE process, on the
// fixture ide/scan: a form with a caption, a tool tip, a list box whose items live in the .frx, a
// text and a long caption kept there too, a control array with event procedures, and a DHTML
// page whose HTML is a file of its own.

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "ide_process/ide_processes.h"
#include "support/json_lines.h"

namespace {

namespace fs = std::filesystem;
using qxtest::Diff;
using qxtest::IdeProcesses;
using qxtest::ReadBytes;
using qxtest::Replaced;

class ScanFixture : public IdeProcesses {
 protected:
  ScanFixture() {
    Fresh();
    frm_ = File("frmScan.frm");
    frx_ = File("frmScan.frx");
  }

  // The list box's item data (three Longs) is the companion's first record; writing the list
  // clears it, and its line goes.
  static constexpr std::size_t kItemDataBytes = 16;
  static std::string WithoutItemData(std::string frm) {
    frm = Replaced(frm, "      ItemData        =   \"frmScan.frx\":0000\r\n", "");
    return Replaced(frm, "frx\":0010", "frx\":0000");
  }

  // A fresh copy of the fixture in the project's folder.
  void Fresh() {
    fs::remove_all(folder_);
    fs::copy(fs::path(QX_FIXTURES) / "ide" / "scan", folder_, fs::copy_options::recursive);
  }

  std::string File(const std::string& name) const { return ReadBytes(folder_ / name); }

  // The places of the JSON matches, as "component control.property" or "component procedure".
  static std::set<std::string> Places(const std::string& out) {
    std::set<std::string> places;
    for (const nlohmann::json& record : qxtest::JsonLines(out)) {
      if (record["type"] != "match") continue;
      const nlohmann::json& data = record["data"];
      std::string place = data["component"].get<std::string>() + " ";
      if (data.contains("property")) {
        if (!data["control"].is_null()) place += data["control"].get<std::string>() + ".";
        place += data["property"].get<std::string>();
      } else if (!data["procedure"].is_null()) {
        place += data["procedure"].get<std::string>();
      }
      places.insert(place);
    }
    return places;
  }

  const fs::path folder_ = work() / "Scan";
  const std::string vbp_ = (folder_ / "Scan.vbp").string();
  std::string frm_;
  std::string frx_;
};

TEST_F(ScanFixture, SearchFindsCaptionsToolTipsListItemsControlNamesAndHtml) {
  const auto run = Qx({"search", "--json", "-i", "-e", "stock", "-e", "Pears", "-e", "optSize",
                       "-e", "Second line", "-e", "far too long", vbp_});
  ASSERT_EQ(run.status, 0) << run.err;
  const std::set<std::string> places = Places(run.out);
  for (const char* expected :
       {"frmScan Caption", "frmScan cmdOk.ToolTipText", "frmScan lstItems.List",
        "frmScan txtNotes.Text", "frmScan lblLong.Caption", "frmScan optSize(0).Name",
        "frmScan optSize(1).Name", "frmScan optSize_Click", "frmScan optSize_KeyPress",
        "pgStock HTML", "pgStock DHTMLPage_Load", "pgStock "}) {
    EXPECT_TRUE(places.contains(expected)) << expected << "\n" << run.out;
  }
  EXPECT_EQ(Qx({"ide", "list"}).out, "");
}

TEST_F(ScanFixture, RefusedNamesAreReportedWithTheirMessageAndTheRestIsWritten) {
  // One replacement for all: it empties a list item (a list box may hold an empty item: it is
  // written in its place), cuts the index of each option button's name short (refused by the
  // driver) and shortens the tool tip.
  const auto run = Qx({"replace", "--write", "--in", "properties,names", "-e", "^Pears$", "-e",
                       "\\)$", "-e", "stock ", "", vbp_});
  EXPECT_EQ(run.status, 2);
  for (const char* element : {"optSize(0)", "optSize(1)"}) {
    EXPECT_NE(run.err.find(std::string("frmScan.") + element +
                           ": error -32767: Invalid control name syntax.\n"),
              std::string::npos)
        << run.err;
  }
  EXPECT_NE(run.out.find("frmScan.lstItems: ItemData (3 values) is reset by this change\n"
                         "4 replacements in 1 file, 2 places refused; written\n"),
            std::string::npos)
      << run.out;
  EXPECT_EQ(
      File("frmScan.frm"),
      Replaced(Replaced(Replaced(WithoutItemData(frm_), "Close the stock list", "Close the list"),
                        "frx\":002A", "frx\":0015"),
               "frx\":0042", "frx\":002D"));
  EXPECT_EQ(File("frmScan.frx"),
            Replaced(frx_.substr(kItemDataBytes), std::string("\x05\x00Pears", 7),
                     std::string("\x00\x00", 2)));

  // The preview says it too, and JSON carries it in the match and in a record of its own, both
  // with the place.
  Fresh();
  const auto json = Qx({"replace", "--json", "--in", "properties", "Pears", "Plums", vbp_});
  EXPECT_EQ(json.status, 0) << json.out;
  std::string matchPlace, resetPlace;
  for (const nlohmann::json& record : qxtest::JsonLines(json.out)) {
    if (record["type"] == "match" && record["data"].value("resets", "") == "ItemData (3 values)")
      matchPlace = record["data"]["place"];
    if (record["type"] == "reset" && record["data"]["control"] == "lstItems" &&
        record["data"]["resets"] == "ItemData (3 values)") {
      resetPlace = record["data"]["place"];
    }
  }
  EXPECT_FALSE(matchPlace.empty()) << json.out;
  EXPECT_EQ(resetPlace, matchPlace) << json.out;

  // A name that is no VB name: the IDE's refusal.
  const auto invalid = Qx({"replace", "--write", "--in", "names", "lstItems", "1st", vbp_});
  EXPECT_EQ(invalid.status, 2);
  EXPECT_NE(invalid.err.find("frmScan.lstItems: error 380: Invalid property value\n"),
            std::string::npos)
      << invalid.err;
}

TEST_F(ScanFixture, RenameRenamesAControlArrayWithItsEventProceduresAndPreviewIsWrite) {
  // A reference that cannot be changed (its module is read-only) stops the whole rename.
  const fs::path moduleFile = folder_ / "modMain.bas";
  fs::permissions(moduleFile, fs::perms::owner_write, fs::perm_options::remove);
  const auto stopped = Qx({"rename", "--write", vbp_, "frmScan.OPTSIZE", "optChoice"});
  EXPECT_EQ(stopped.status, 2);
  EXPECT_NE(stopped.err.find("error 5: nothing is written"), std::string::npos) << stopped.err;
  EXPECT_NE(stopped.out.find("; nothing written"), std::string::npos) << stopped.out;
  EXPECT_EQ(File("frmScan.frm"), frm_);
  fs::permissions(moduleFile, fs::perms::owner_write, fs::perm_options::add);

  const auto shown = Qx({"rename", vbp_, "frmScan.OPTSIZE", "optChoice"});
  ASSERT_EQ(shown.status, 0) << shown.err;
  EXPECT_EQ(File("frmScan.frm"), frm_);
  EXPECT_NE(shown.out.find("+Private Sub optChoice_KeyPress(Index As Integer, KeyAscii As "
                           "Integer)\r\n"),
            std::string::npos)
      << shown.out;
  EXPECT_NE(shown.out.find("7 replacements in 2 files; nothing written"), std::string::npos);

  const std::string module = File("modMain.bas");
  const auto written = Qx({"rename", "--write", vbp_, "frmScan.OPTSIZE", "optChoice"});
  ASSERT_EQ(written.status, 0) << written.err;
  EXPECT_EQ(Diff(written.out), Diff(shown.out));
  // Another component's reference through the form's name is renamed; its comment and a string
  // that names the control are not, and the string is said to be a possible reference.
  EXPECT_EQ(File("modMain.bas"),
            Replaced(module, "frmScan.optSize(1).Value", "frmScan.optChoice(1).Value"));
  EXPECT_NE(written.err.find("modMain: ChooseLarge: \"optSize\" in a string may name "
                             "frmScan.OPTSIZE; it is left as it is\n"),
            std::string::npos)
      << written.err;
  // Every element, both event procedures and the references; the comment and the string keep
  // the old name.
  std::string expected = Replaced(frm_, "optSize", "optChoice");
  expected = Replaced(expected, "' optChoice: Enter", "' optSize: Enter");
  expected = Replaced(expected, "\"optChoice chosen\"", "\"optSize chosen\"");
  EXPECT_EQ(File("frmScan.frm"), expected);
  EXPECT_EQ(File("frmScan.frx"), frx_);
  EXPECT_EQ(Qx({"ide", "list"}).out, "");

  // Refused, changing nothing: a name taken by another control (each reason's message is pinned
  // by the rename plan's own cases); the name it has already is nothing to rename.
  const std::string before = File("frmScan.frm");
  const auto rename = [&](const std::string& name) {
    return Qx({"rename", "--write", vbp_, "frmScan.optChoice", name});
  };
  const auto taken = rename("LSTITEMS");
  EXPECT_EQ(taken.status, 2);
  EXPECT_EQ(taken.err, "qx: " + vbp_ +
                           ": line 2: frmScan: error 5: frmScan.optChoice -> LSTITEMS: frmScan "
                           "already has a control named lstItems\n");
  const auto same = rename("optChoice");
  EXPECT_EQ(same.status, 1);
  EXPECT_EQ(same.err, "qx: frmScan.optChoice is named optChoice already: nothing to rename\n");
  EXPECT_EQ(File("frmScan.frm"), before);

  // --interactive: q writes nothing; a, for each of the two files, writes what --write wrote.
  Fresh();
  const std::vector<std::string> ask{"rename", "--interactive", vbp_, "frmScan.optSize",
                                     "optChoice"};
  EXPECT_EQ(QxAnswering("q\n", ask).status, 1);
  EXPECT_EQ(File("frmScan.frm"), frm_);
  const auto all = QxAnswering("a\na\n", ask);
  EXPECT_EQ(all.status, 0) << all.err;
  EXPECT_EQ(File("frmScan.frm"), expected);
  EXPECT_EQ(File("modMain.bas"),
            Replaced(module, "frmScan.optSize(1).Value", "frmScan.optChoice(1).Value"));
}

TEST_F(ScanFixture, RenamingAComponentFollowsItsReferencesAndItsProjectFileLines) {
  const std::string module = File("modMain.bas");
  const std::string project = File("Scan.vbp");
  const auto shown = Qx({"rename", vbp_, "frmScan", "frmPick"});
  ASSERT_EQ(shown.status, 0) << shown.err;
  EXPECT_EQ(File("frmScan.frm"), frm_);
  const auto written = Qx({"rename", "--write", vbp_, "frmScan", "frmPick"});
  ASSERT_EQ(written.status, 0) << written.err;
  EXPECT_EQ(Diff(written.out), Diff(shown.out));
  // The form's Begin line and name; the code that names it, not the comment; the startup form.
  EXPECT_EQ(File("frmScan.frm"),
            Replaced(Replaced(frm_, "Begin VB.Form frmScan ", "Begin VB.Form frmPick "),
                     "VB_Name = \"frmScan\"", "VB_Name = \"frmPick\""));
  EXPECT_EQ(File("modMain.bas"), Replaced(Replaced(module, "frmScan.", "frmPick."),
                                          "as frmPick.optSize", "as frmScan.optSize"));
  EXPECT_EQ(File("Scan.vbp"), Replaced(project, "Startup=\"frmScan\"", "Startup=\"frmPick\""));

  // Refused, changing nothing: another component's name, a keyword.
  const std::string before = File("modMain.bas");
  const std::string place = "qx: " + vbp_ + ": error 5: ";
  const struct {
    std::string component, name, err;
  } refusals[] = {
      {"frmPick", "MODMAIN", "frmPick -> MODMAIN: the project already has a component modMain"},
      {"frmPick", "Select",
       "frmPick -> Select: not a name VB allows (a letter, then letters, digits and underscores, "
       "40 at most, not a keyword)"},
  };
  for (const auto& r : refusals) {
    SCOPED_TRACE(r.name);
    const auto run = Qx({"rename", "--write", vbp_, r.component, r.name});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, place + r.err + "\n");
    EXPECT_EQ(File("modMain.bas"), before);
  }
}

TEST_F(ScanFixture, APreviewShowsTheCompanionsItChangesAndWriteChangesThemAlike) {
  // As the project came from Windows: the companion in upper case, the page's HTML in a folder
  // of its own.
  fs::rename(folder_ / "frmScan.frx", folder_ / "FRMSCAN.FRX");
  fs::create_directory(folder_ / "pages");
  fs::rename(folder_ / "pgStock.htm", folder_ / "pages" / "Stock.htm");
  const std::string dsr = File("pgStock.Dsr");
  std::ofstream(folder_ / "pgStock.Dsr", std::ios::binary) << Replaced(
      dsr, "SourceFile      =   \"pgStock.htm\"", "SourceFile      =   \"pages\\Stock.htm\"");
  const std::string html = File("pages/Stock.htm");

  const std::vector<std::string> replace{"replace",  "-e",       "far too", "-e",
                                         "stock of", "much too", vbp_};
  const auto shown = Qx(replace);
  ASSERT_EQ(shown.status, 0) << shown.err;
  const std::string frx = (folder_ / "FRMSCAN.FRX").relative_path().string();
  EXPECT_NE(shown.out.find("Binary files a/" + frx + " and b/" + frx + " differ\n"),
            std::string::npos)
      << shown.out;
  EXPECT_NE(shown.out.find("+<P id=Greeting>The much too the day.</P>\r\n"), std::string::npos)
      << shown.out;
  EXPECT_EQ(File("FRMSCAN.FRX"), frx_) << "a preview writes nothing";
  EXPECT_EQ(File("pages/Stock.htm"), html);

  auto write = replace;
  write.insert(write.begin() + 1, "--write");
  const auto written = Qx(write);
  ASSERT_EQ(written.status, 0) << written.err;
  EXPECT_EQ(Diff(written.out), Diff(shown.out));
  EXPECT_EQ(File("frmScan.frm"), frm_);
  EXPECT_EQ(File("FRMSCAN.FRX"), Replaced(Replaced(frx_, std::string("\x86\x00\x00\x00", 4),
                                                   std::string("\x87\x00\x00\x00", 4)),
                                          "far too", "much too"));
  EXPECT_EQ(File("pages/Stock.htm"), Replaced(html, "stock of", "much too"));
}

}  // namespace
