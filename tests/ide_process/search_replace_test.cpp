// qx search and qx replace end to end, through a real IDE process: the matches that an
// independent count finds, a preview that is exactly what --write then does, and no IDE left
// behind by a run that started it.

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "ide_process/ide_processes.h"

namespace {

namespace fs = std::filesystem;
using qxtest::IdeProcesses;
using qxtest::ReadAll;

// The verb with the rest of its arguments, narrowed to the kinds whose components qx can open.
std::vector<std::string> InCode(const std::string& verb, const std::vector<std::string>& rest) {
  std::vector<std::string> args{verb, "--kind", "Modules,ClassModules"};
  args.insert(args.end(), rest.begin(), rest.end());
  return args;
}

// Every file of the folder, by its path inside it.
std::map<std::string, std::string> Snapshot(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) {
      files[fs::relative(entry.path(), folder).string()] = ReadAll(entry.path());
    }
  }
  return files;
}

size_t Count(const std::string& text, const std::string& word) {
  size_t count = 0;
  for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
    ++count;
  return count;
}

TEST_F(IdeProcesses, SearchFindsWhatACountOfTheFilesFindsAndEndsTheIdeItStarted) {
  const fs::path folder = work() / "Inventory";
  const size_t expected = Count(ReadAll(folder / "CStockItem.cls"), "oldValue") +
                          Count(ReadAll(folder / "modGlobals.bas"), "oldValue");
  ASSERT_GT(expected, 0u);

  const auto count = Qx(InCode("search", {"--json", "oldValue", vbp_}));
  ASSERT_EQ(count.status, 0) << count.err;
  // One "match" message a line, with one submatch for each match in it, as ripgrep prints.
  EXPECT_EQ(Count(count.out, R"({"match":{"text":"oldValue"})"), expected) << count.out;
  EXPECT_NE(count.out.find("\"procedure\":\"Value.Let\""), std::string::npos) << count.out;
  EXPECT_EQ(Qx({"ide", "list"}).out, "") << "the run ended the IDE it started";

  const auto none = Qx(InCode("search", {"NoSuchWordAnywhere", vbp_}));
  EXPECT_EQ(none.status, 1) << none.err;
  EXPECT_EQ(none.out.find("NoSuchWordAnywhere"), std::string::npos);

  // An IDE that was running before the run stays.
  const auto start = Qx({"ide", "start", vbp_});
  ASSERT_EQ(start.status, 0) << start.err;
  ASSERT_EQ(Qx(InCode("search", {"-q", "oldValue", vbp_})).status, 0);
  EXPECT_NE(Qx({"ide", "list"}).out.find(vbp_), std::string::npos);
}

TEST_F(IdeProcesses, ReplaceWritesExactlyWhatItsPreviewShowed) {
  const fs::path folder = work() / "Inventory";
  const auto before = Snapshot(folder);

  const auto preview = Qx(InCode("replace", {"old(Value)", "previous$1", vbp_}));
  ASSERT_EQ(preview.status, 0) << preview.err;
  EXPECT_EQ(Snapshot(folder), before) << "a preview writes nothing";
  EXPECT_NE(preview.out.find("+    Dim previousValue As Long"), std::string::npos) << preview.out;
  EXPECT_EQ(Qx({"ide", "list"}).out, "") << "the preview's IDE has ended";

  const auto write = Qx(InCode("replace", {"--write", "old(Value)", "previous$1", vbp_}));
  ASSERT_EQ(write.status, 0) << write.err;
  // The same diff, then a summary line that says whether it was written.
  const auto diff = [](const std::string& out) {
    return out.substr(0, out.rfind('\n', out.size() - 2) + 1);
  };
  EXPECT_EQ(diff(preview.out), diff(write.out));
  EXPECT_NE(diff(write.out), "");

  const auto after = Snapshot(folder);
  for (const auto& [file, bytes] : before) {
    // Opening the project in the IDE marks its windows closed in the window-state file, as the
    // driver's start-up does for every project it opens.
    if (file == "CStockItem.cls" || file == "Inventory.vbw") continue;
    EXPECT_EQ(after.at(file), bytes) << file << " changed";
  }
  EXPECT_EQ(Count(after.at("CStockItem.cls"), "oldValue"), 0u);
  EXPECT_EQ(Count(after.at("CStockItem.cls"), "previousValue"),
            Count(before.at("CStockItem.cls"), "oldValue"));

  const auto again = Qx(InCode("replace", {"--write", "old(Value)", "previous$1", vbp_}));
  EXPECT_EQ(again.status, 1) << "nothing left to replace";
}

// A warm IDE (started before the runs) after a write that failed: the file is as it was, the
// next search shows the disk, the next replace writes its own change alone, and the IDE still
// ends when idle. After an edit of the project file, the very next run sees the new component
// list.
TEST_F(IdeProcesses, AWarmIdeKeepsNothingOfAFailedWriteAndFollowsItsProjectFile) {
  ::setenv("QX_IDE_IDLE_SECONDS", "5", 1);
  const fs::path folder = work() / "Inventory";
  const std::string cls = ReadAll(folder / "CStockItem.cls");
  const auto start = Qx({"ide", "start", vbp_});
  ASSERT_EQ(start.status, 0) << start.err;
  const long pid = PidIn(start.out);

  // Windows-1252, the project's code page, has no Chinese.
  const auto failed = Qx(InCode("replace", {"--write", "oldValue", "\xE6\x97\xA7", vbp_}));
  EXPECT_EQ(failed.status, 2) << failed.out << failed.err;
  EXPECT_EQ(ReadAll(folder / "CStockItem.cls"), cls);
  const auto search = Qx(InCode("search", {"-c", "oldValue", vbp_}));
  EXPECT_NE(search.out.find("CStockItem.cls:3\n"), std::string::npos) << search.out << search.err;
  const auto write = Qx(InCode("replace", {"--write", "NewDescription", "NewText", vbp_}));
  EXPECT_EQ(write.status, 0) << write.out << write.err;
  std::string expected = cls;
  for (size_t at = expected.find("NewDescription"); at != std::string::npos;
       at = expected.find("NewDescription", at)) {
    expected.replace(at, 14, "NewText");
  }
  EXPECT_EQ(ReadAll(folder / "CStockItem.cls"), expected);

  // The class leaves the project: the next run no longer finds it.
  std::string project = ReadAll(folder / "Inventory.vbp");
  project.erase(project.find("Class=CStockItem; CStockItem.cls\r\n"), 34);
  std::ofstream(folder / "Inventory.vbp", std::ios::binary) << project;
  const auto after = Qx(InCode("search", {"-l", "NewText", vbp_}));
  EXPECT_EQ(after.status, 1) << after.out << after.err;
  EXPECT_EQ(PidIn(Qx({"ide", "start", vbp_}).out), pid) << "one IDE served every run";

  // Nothing is left unsaved to keep it from ending once idle.
  EXPECT_TRUE(qxtest::WaitGone(pid, std::chrono::seconds(30)));
}

}  // namespace
