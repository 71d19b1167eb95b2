// What a search run does with the IDE processes: a folder of projects keeps few IDEs alive, one
// per project or one for a group of them, and leaves only the warm ones and nothing else in the
// run folder; a file that several projects share is searched once; Ctrl-C ends the IDE the run
// started, and a reader that has gone stops the run; JSON's "begin" says the code page;
// components whose bytes cannot match are passed over, printing what a full run prints.

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "bench/generator/project_generator.h"
#include "ide_process/ide_processes.h"

namespace {

namespace fs = std::filesystem;
using qxtest::ChildProcesses;
using qxtest::IdeProcesses;
using qxtest::JsonLines;
using qxtest::ReadBytes;

// What the IDE processes left in the run folder of the qx home.
std::vector<std::string> RunFolder(const fs::path& home) {
  std::vector<std::string> files;
  std::error_code ec;
  for (fs::directory_iterator it(home / "run", ec), end; !ec && it != end; it.increment(ec))
    files.push_back(it->path().filename().string());
  return files;
}

class SearchRuns : public IdeProcesses {
 protected:
  // `count` small generated projects (a module, a class and a form each) under work/folder.
  fs::path Folder(size_t count) {
    const fs::path folder = work() / "folder";
    qxbench::GeneratorOptions options;
    options.totalLines = 60;
    options.proceduresPerComponent = 2;
    for (size_t i = 0; i < count; ++i)
      qxbench::GenerateProject(folder / ("p" + std::to_string(i)), options);
    return folder;
  }

  // The IDE program in a wrapper that notes, as each IDE starts, how many of the IDEs started
  // before it are still alive, in the file returned.
  fs::path WatchIdeStarts() {
    const fs::path log = work() / "ides.log", wrapper = work() / "wrapper" / "qxvb6.exe";
    fs::create_directories(wrapper.parent_path());
    fs::copy_file(fs::path(QX_FIXTURES) / "runs" / "watch_ide_starts.sh", wrapper);
    ::setenv("QX_TEST_IDE_LOG", log.c_str(), 1);
    ::setenv("QX_TEST_IDE", QXVB6_BIN, 1);
    ::setenv("QX_VB6_EXE", wrapper.c_str(), 1);
    return log;
  }
  ~SearchRuns() override {
    ::unsetenv("QX_TEST_IDE_LOG");
    ::unsetenv("QX_TEST_IDE");
  }
};

TEST_F(SearchRuns, AFolderOfProjectsKeepsFewIdesAliveAndLeavesOnlyTheWarmOnes) {
  const fs::path folder = Folder(5);
  // Two more projects share one module, named from each by its own relative path.
  fs::copy(fs::path(QX_FIXTURES) / "runs" / "shared", folder, fs::copy_options::recursive);
  const fs::path log = WatchIdeStarts();

  ::setenv("QX_KEEP_IDES", "2", 1);
  const std::vector<std::string> search = {"search", "--json",     "-e",           "running",
                                           "-e",     "sharedword", folder.string()};
  ::setenv("QX_NO_GROUPS", "1", 1);  // first each project in an IDE of its own
  const auto run = Qx(search);
  ::unsetenv("QX_NO_GROUPS");
  ASSERT_EQ(run.status, 0) << run.err;
  // One IDE per project that had a component left to search (the second project of the shared
  // module has none), each started while at most two (the warm ones) were alive; the last two
  // are left running, and end when told.
  std::istringstream starts(ReadBytes(log));
  size_t ides = 0;
  std::vector<long> pids;
  for (long pid = 0, alive = 0; starts >> pid >> alive; ++ides) {
    EXPECT_LE(alive, 2) << "IDE " << pid << " started while more than two were alive";
    pids.push_back(pid);
  }
  EXPECT_EQ(ides, 6u) << ReadBytes(log);
  EXPECT_EQ(JsonLines(run.out).back()["data"]["ides_kept"], 2) << run.out;
  const auto list = Qx({"ide", "list"});
  EXPECT_EQ(std::count(list.out.begin(), list.out.end(), '\n'), 2) << list.out;
  ASSERT_EQ(Qx({"ide", "stop", "--all"}).status, 0);
  for (long pid : pids)
    EXPECT_TRUE(qxtest::ProcessGone(pid)) << "IDE " << pid << " outlived the stop";
  EXPECT_EQ(RunFolder(home()), std::vector<std::string>{}) << "left in the run folder";

  // Every component of the generated projects, and the shared module once.
  size_t begins = 0, sharedBegins = 0;
  for (const nlohmann::json& record : JsonLines(run.out)) {
    if (record["type"] != "begin") continue;
    ++begins;
    EXPECT_EQ(record["data"]["codepage"]["number"], 1252);  // JSON's "begin" says the code page
    sharedBegins += record["data"]["path"]["text"].get<std::string>().ends_with("Shared.bas");
  }
  EXPECT_EQ(begins, 5u * 3 + 1);
  EXPECT_EQ(sharedBegins, 1u);
  EXPECT_EQ(run.err, "");

  // Then in groups: the add-in is enabled now, so the six projects that need the IDE share one,
  // which is kept (that a group finds what single IDEs find, the prefilter case shows).
  const size_t startsBefore = ReadBytes(log).size();
  const auto grouped = Qx(search);
  ASSERT_EQ(grouped.status, 0) << grouped.err;
  const std::string groupStarts = ReadBytes(log).substr(startsBefore);
  EXPECT_EQ(std::count(groupStarts.begin(), groupStarts.end(), '\n'), 1) << groupStarts;
  EXPECT_EQ(JsonLines(grouped.out).back()["data"]["ides_kept"], 1) << grouped.out;
  ASSERT_EQ(Qx({"ide", "stop", "--all"}).status, 0);
  EXPECT_EQ(RunFolder(home()), std::vector<std::string>{}) << "left in the run folder";
}

TEST_F(SearchRuns, CtrlCEndsTheIdeTheRunStartedAndLeavesNothing) {
  const fs::path folder = Folder(40);
  const fs::path log = WatchIdeStarts();
  const pid_t qx = StartQx({"search", "running", folder.string()});
  // Wait for the run's first IDE.
  long ide = 0;
  for (int i = 0; i < 3000 && !(std::istringstream(ReadBytes(log)) >> ide); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  ASSERT_NE(ide, 0) << "qx started no IDE";
  ::kill(qx, SIGINT);
  int status = 0;
  ::waitpid(qx, &status, 0);
  const auto run = Collect(qx, status);
  EXPECT_EQ(run.status, 128 + SIGINT) << run.err;
  EXPECT_TRUE(qxtest::WaitGone(ide, std::chrono::seconds(10)));
  // The test adopts what qx leaves behind: nothing.
  EXPECT_TRUE(ChildProcesses::Children().empty()) << "an IDE outlived the run";
  EXPECT_EQ(RunFolder(home()), std::vector<std::string>{}) << "left in the run folder";
  EXPECT_EQ(run.err.find("error"), std::string::npos) << run.err;
}

// `qx search ... | head -1`: once the reader has gone, the run stops instead of searching on, and
// ends its IDE as usual; what it left unsearched on purpose is no error.
TEST_F(SearchRuns, AReaderThatHasGoneStopsTheRun) {
  const fs::path folder = Folder(20);
  const fs::path log = WatchIdeStarts();
  int fds[2];
  ASSERT_EQ(::pipe2(fds, O_CLOEXEC), 0);
  const pid_t qx = Start(QX_BIN, {"search", "running", folder.string()}, {}, fds[1]);
  ::close(fds[1]);
  char first = 0;
  ASSERT_EQ(::read(fds[0], &first, 1), 1);
  ::close(fds[0]);
  int status = 0;
  ::waitpid(qx, &status, 0);
  const auto run = Collect(qx, status);
  EXPECT_EQ(run.status, 0) << "it had matched";

  std::istringstream starts(ReadBytes(log));
  size_t ides = 0;
  for (long pid = 0, alive = 0; starts >> pid >> alive; ++ides)
    EXPECT_TRUE(qxtest::ProcessGone(pid)) << "IDE " << pid << " outlived the run";
  EXPECT_LT(ides, 20u) << "the run went on after its reader had gone";
  EXPECT_EQ(RunFolder(home()), std::vector<std::string>{}) << "left in the run folder";
  EXPECT_EQ(run.err, "");
}

// The run's JSON lines without their timings and the count of IDEs it kept (a run that needs no
// IDE starts none).
std::string Untimed(const std::string& out) {
  std::string kept;
  for (nlohmann::json record : JsonLines(out)) {
    if (record.contains("data") && record["data"].is_object()) {
      nlohmann::json& data = record["data"];
      data.erase("elapsed_total");
      data.erase("elapsed");
      data.erase("ides_kept");
      if (data.contains("stats")) data["stats"].erase("elapsed");
    }
    kept += record.dump() + "\n";
  }
  return kept;
}

// Needles where the presented text and the file's bytes differ: a caption's doubled quote, a
// control array member's index, a default property value, letters whose other case is not ASCII,
// a list item kept in the .frx alone, text in GBK and in Windows-1252, a regular expression, and
// a word found nowhere. Each run prints with the prefilter, the IDE's scan agent and the projects
// in a group's IDE what it prints with every project in an IDE of its own and every component
// asked of it one by one; a search also with the agent alone.
TEST_F(SearchRuns, PrefilteredAndBatchedRunsPrintWhatFullRunsPrint) {
  const fs::path all = work() / "all";
  fs::create_directories(all / "ide");
  for (const char* project : {"gbk", "sjis", "german"}) {
    fs::copy(fs::path(QX_FIXTURES) / "codepage" / project, all / project,
             fs::copy_options::recursive);
  }
  // array: a control array whose members the code never names with their index.
  for (const char* project : {"array", "controls", "gbk", "orders"}) {
    fs::copy(fs::path(QX_FIXTURES) / "ide" / project, all / "ide" / project,
             fs::copy_options::recursive);
  }
  std::ofstream(all / "ide" / "orders" / "Orders.vbp", std::ios::binary)
      << "Type=Exe\r\nForm=frmOrders.frm\r\nName=\"Orders\"\r\n";
  fs::copy(work() / "Inventory", all / "Inventory", fs::copy_options::recursive);
  qxbench::GeneratorOptions generated;
  generated.totalLines = 400;
  generated.proceduresPerComponent = 4;
  generated.controlsPerForm = 3;
  generated.rareEvery = 3;
  qxbench::GenerateProject(all / "generated", generated);
  // Warm IDEs keep the many runs short.
  ::setenv("QX_KEEP_IDES", "12", 1);

  const std::vector<std::vector<std::string>> needles = {
      {"-F", "\"open\""},
      {"--in", "code,names", "-F", "\"cash\""},
      {"--in", "names,code", "-F", "cmdGo(1)"},
      {"-i", "sans serif"},
      {"-i", "--in", "code,names", "STOCK"},
      {"-F", "Banana"},
      {"-F", "库存"},
      {"--in", "code", "-F", "Kundenübersicht"},
      {"Reconc[a-z]+"},
      {"--in", "names,code", "-i", "cmdgo\\(1\\)|\"op(en|n)\""},
      {"-i", "kunden(ü|u)bersicht|库.?存"},
      {"ZebraQuux"},
  };
  const auto both = [&](std::vector<std::string> args) {
    SCOPED_TRACE(::testing::PrintToString(args));
    args.push_back(all.string());
    const bool json = std::find(args.begin(), args.end(), "--json") != args.end();
    ::setenv("QX_NO_PREFILTER", "1", 1);
    ::setenv("QX_NO_BATCH", "1", 1);
    ::setenv("QX_NO_GROUPS", "1", 1);
    const auto full = Qx(args);
    ::unsetenv("QX_NO_GROUPS");
    ::unsetenv("QX_NO_BATCH");
    std::vector<qxtest::RunResult> runs;
    runs.push_back(Qx(args));
    ::unsetenv("QX_NO_PREFILTER");
    runs.push_back(Qx(args));
    for (const qxtest::RunResult& run : runs) {
      EXPECT_EQ(run.status, full.status) << full.err;
      EXPECT_EQ(json ? Untimed(run.out) : run.out, json ? Untimed(full.out) : full.out);
      EXPECT_EQ(run.err, full.err);
    }
  };
  for (const std::vector<std::string>& needle : needles)
    both(qxtest::Joined({"search", "--json"}, needle));
  // A replace's preview, from a few of them.
  for (const size_t n : {0, 4, 5, 6}) {
    const std::vector<std::string> options(needles[n].begin(), needles[n].end() - 1);
    both(qxtest::Joined(qxtest::Joined({"replace"}, options), {"-e", needles[n].back(), "Quux"}));
  }
  both({"search", "-c", "-i", "STOCK"});
  both({"search", "-l", "ZebraQuux"});
}

// A group's IDE holds projects of different code pages; a DHTML page's HTML, which the driver
// reads in the process's code page, is read in its own project's, as in an IDE of its own.
TEST_F(SearchRuns, AGroupReadsEachProjectInItsOwnCodePage) {
  const fs::path all = work() / "all";
  fs::create_directories(all);
  fs::copy(fs::path(QX_FIXTURES) / "pages", all / "a_pages", fs::copy_options::recursive);
  std::ofstream(all / "a_pages" / "html" / "Ext.htm", std::ios::binary)
      << "<html>\r\n<body>\r\nCaf\xE9 du march\xE9</body></html>\r\n";
  // The GBK project opens last, under a plain file name so that it joins the group.
  fs::copy(fs::path(QX_FIXTURES) / "codepage" / "gbk", all / "z_gbk", fs::copy_options::recursive);
  fs::rename(all / "z_gbk" / "客户管理.vbp", all / "z_gbk" / "Customers.vbp");
  const std::vector<std::string> args{"search", "-c", "-F", "Caf\u00e9", all.string()};
  ::setenv("QX_NO_GROUPS", "1", 1);
  const auto alone = Qx(args);
  ::unsetenv("QX_NO_GROUPS");
  // (The fixture's page "Gone" has lost its HTML file: an error either way.)
  ASSERT_NE(alone.out.find("Ext.Dsr:1"), std::string::npos) << alone.out << alone.err;
  const auto grouped = Qx(args);
  EXPECT_EQ(grouped.status, alone.status);
  EXPECT_EQ(grouped.out, alone.out) << grouped.err;
}

// A search whose word no file holds starts no IDE.
TEST_F(SearchRuns, ASearchForAWordNowhereStartsNoIde) {
  fs::copy(fs::path(QX_FIXTURES) / "codepage", work() / "cp", fs::copy_options::recursive);
  const fs::path log = WatchIdeStarts();
  const std::vector<std::string> args{"search", "--in",      "code,names",
                                      "-F",     "ZebraQuux", (work() / "cp").string()};
  const auto run = Qx(args);
  EXPECT_EQ(run.status, 1) << run.err;
  EXPECT_EQ(run.out, "");
  EXPECT_FALSE(fs::exists(log)) << ReadBytes(log);
  // Without the prefilter the same run asks the IDE.
  ::setenv("QX_NO_PREFILTER", "1", 1);
  EXPECT_EQ(Qx(args).status, 1);
  ::unsetenv("QX_NO_PREFILTER");
  EXPECT_TRUE(fs::exists(log));
}

}  // namespace
