// Real projects as they are, through real IDE processes: libraries registered only on their
// author's machine, component files that were never published, a reference to another project,
// a group naming a project that is gone, and files in several code pages, side by side in one
// folder. Everything a VB6 IDE could open is searched, every problem names its project, and
// nothing is written that the preview did not show.

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "ide_process/ide_processes.h"

namespace {

namespace fs = std::filesystem;
using qxtest::IdeProcesses;
using qxtest::Joined;
using qxtest::JsonLines;
using qxtest::Occurrences;
using qxtest::ReadBytes;

class Estate : public IdeProcesses {
 protected:
  Estate() {
    fs::copy(fs::path(QX_FIXTURES) / "estate", root_, fs::copy_options::recursive);
    fs::copy(fs::path(QX_FIXTURES) / "codepage", root_ / "codepage", fs::copy_options::recursive);
  }

  // The component files a VB6 IDE loads from the estate: all but the missing ones, and none of
  // the project that cannot be opened.
  std::vector<fs::path> Loadable() const {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(root_)) {
      const std::string extension = entry.path().extension().string();
      if ((extension == ".frm" || extension == ".bas" || extension == ".cls") &&
          entry.path().parent_path().filename() != "Linked") {
        files.push_back(entry.path());
      }
    }
    return files;
  }

  const fs::path root_ = work() / "estate";
};

TEST_F(Estate, AFolderRunSearchesEveryProjectAnIdeCouldOpenAndNamesEachProblemsPlace) {
  // An independent count: a plain byte search of the loadable files, where "End " (End Sub, End
  // If, ...) is only code; every code page fixture has some.
  size_t expected = 0;
  for (const fs::path& file : Loadable())
    expected += Occurrences(ReadBytes(file), "End ");
  ASSERT_GE(expected, 18u);

  const auto run = Qx({"search", "--json", "-F", "End ", "estate"}, work().string());
  EXPECT_EQ(run.status, 2) << "missing files are errors";
  EXPECT_EQ(run.err, "");
  size_t found = 0;
  std::set<std::string> problems;
  for (const nlohmann::json& record : JsonLines(run.out)) {
    if (record["type"] == "match") found += record["data"]["submatches"].size();
    if (record["type"] != "error" && record["type"] != "note") continue;
    problems.insert(record["type"].get<std::string>() + " " + record["project"].get<std::string>() +
                    ":" + std::to_string(record["line"].get<int>()) + " " +
                    (record["component"].is_null() ? "-" : record["component"].get<std::string>()));
  }
  EXPECT_EQ(found, expected) << run.out;
  EXPECT_EQ(problems, (std::set<std::string>{
                          "note estate/Orders/Orders.vbp:3 -",
                          "note estate/Orders/Orders.vbp:4 -",
                          "error estate/Gaps/Gaps.vbp:4 modShared",
                          "error estate/Empty/Empty.vbp:2 -",
                          "error estate/Empty/Empty.vbp:3 modStart",
                          "error estate/Linked/Linked.vbp:2 -",
                      }))
      << run.out;
  const nlohmann::json summary = JsonLines(run.out).back();
  // The five code page projects, Orders, Gaps and Empty (whose missing files are said); not
  // Linked.
  EXPECT_EQ(summary["data"]["projects"]["searched"], 8);
  EXPECT_EQ(summary["data"]["projects"]["with_notes"], 4);
  EXPECT_EQ(summary["data"]["projects"]["components_skipped"], 4);
  // The registry is the user's: the run's view of it is never written there.
  EXPECT_EQ(Occurrences(ReadBytes(home() / "registry.reg"), "6C3A0C1E"), 0u);

  // As text, each problem begins with its project; missing libraries do not change the status.
  const auto orders = Qx({"search", "-F", "Then", "estate/Orders"}, work().string());
  EXPECT_EQ(orders.status, 0) << orders.err;
  EXPECT_NE(orders.err.find("qx: estate/Orders/Orders.vbp: line 3: library "
                            "{6C3A0C1E-4B2D-4E8A-9A51-2F7D3B1C0E91}#1.1 (Vendor Library) not "
                            "registered on this machine; searched anyway\n"),
            std::string::npos)
      << orders.err;

  // A group naming a project that is gone: said with its line, the others searched.
  const auto group = Qx({"search", "-c", "Then", "estate/Estate.vbg"}, work().string());
  EXPECT_EQ(group.status, 2);
  EXPECT_NE(group.err.find("Archive.vbp (line 4 of"), std::string::npos) << group.err;
  EXPECT_NE(group.out.find("estate/Orders/modOrders.bas:"), std::string::npos) << group.out;
  EXPECT_NE(group.out.find("estate/Gaps/CCustomer.cls:"), std::string::npos) << group.out;
  EXPECT_NE(group.err.find("qx: 2 projects searched, 2 with notes, 1 component skipped; the "
                           "details are above, on standard error\n"),
            std::string::npos)
      << group.err;
  EXPECT_EQ(Qx({"ide", "list"}).out, "") << "each run ends the IDEs it started";
}

TEST_F(Estate, AProjectWithAMissingFileIsWrittenWhereItCanBeAndItsProjectFileKeepsTheLine) {
  const fs::path gaps = root_ / "Gaps";
  const std::string vbp = ReadBytes(gaps / "Gaps.vbp");
  const auto preview = Qx({"replace", "txtName", "txtFullName", "estate/Gaps"}, work().string());
  EXPECT_EQ(preview.status, 2);
  const auto write =
      Qx({"replace", "--write", "txtName", "txtFullName", "estate/Gaps"}, work().string());
  EXPECT_EQ(write.status, 2);
  EXPECT_EQ(write.err, preview.err);
  EXPECT_NE(write.err.find("qx: estate/Gaps/Gaps.vbp: line 4: modShared: error 53: File not "
                           "found: estate/Shared/modShared.bas"),
            std::string::npos)
      << write.err;
  EXPECT_EQ(Occurrences(ReadBytes(gaps / "frmMain.frm"), "txtFullName"), 3u);
  EXPECT_EQ(ReadBytes(gaps / "Gaps.vbp"), vbp);
}

// A place the driver refuses is never sent again by --write, so its file keeps every byte there
// (the driver's own undo would leave one more empty line); the rest is written, as the preview
// showed, and the refusal is said with its message.
TEST_F(Estate, ARefusedPlaceKeepsItsBytesAndTheWriteIsThePreview) {
  const fs::path module = root_ / "Orders" / "modOrders.bas";
  const std::string before = ReadBytes(module);
  const std::vector<std::string> args{
      "-e", "^Public Sub ClearOrders\\(\\)", "-e", "Price\\b", "", "estate/Orders"};
  const auto preview = Qx(Joined({"replace"}, args), work().string());
  EXPECT_EQ(preview.status, 2);
  EXPECT_EQ(ReadBytes(module), before);
  const auto write = Qx(Joined({"replace", "--write"}, args), work().string());
  EXPECT_EQ(write.status, 2);
  EXPECT_NE(write.err.find("modOrders.ClearOrders: error 5000: This replacement would have "
                           "changed the total number of procedures in the module."),
            std::string::npos)
      << write.err;
  EXPECT_EQ(ReadBytes(module), qxtest::Replaced(before, "Price", ""));
  EXPECT_EQ(qxtest::Diff(write.out), qxtest::Diff(preview.out));
  EXPECT_EQ(Occurrences(preview.out, "\n+\n"), 0u) << "no empty line the write would not make";
}

}  // namespace
