// qx search and qx replace end to end, through a real IDE process: the matches that an
// independent count finds, a preview that is exactly what --write then does, and no IDE left
// behind by a run that started it.

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "ide_process/ide_processes.h"
#include "support/json_lines.h"

namespace {

namespace fs = std::filesystem;
using qxtest::Diff;
using qxtest::IdeProcesses;
using qxtest::Joined;
using qxtest::Occurrences;
using qxtest::ReadBytes;
using qxtest::Replaced;
using qxtest::Snapshot;

// The verb with the rest of its arguments, narrowed to the kinds whose components qx can open.
std::vector<std::string> InCode(const std::string& verb, const std::vector<std::string>& rest) {
  return Joined({verb, "--kind", "Modules,ClassModules"}, rest);
}

// A search finds what a count of the files finds. By default a run keeps the IDE it started warm
// for the next run, which then answers from it; --no-keep ends it; a setting that is no number
// stops the run before anything starts.
TEST_F(IdeProcesses, SearchFindsWhatACountFindsAndKeepsItsIdeWarmUnlessToldNot) {
  const fs::path folder = work() / "Inventory";
  const size_t expected = Occurrences(ReadBytes(folder / "CStockItem.cls"), "oldValue") +
                          Occurrences(ReadBytes(folder / "modGlobals.bas"), "oldValue");
  ::unsetenv("QX_KEEP_IDES");
  const auto first = Qx(InCode("search", {"--json", "oldValue", vbp_}));
  ASSERT_EQ(first.status, 0) << first.err;
  // One "match" message a line, with one submatch for each match in it, as ripgrep prints.
  EXPECT_EQ(Occurrences(first.out, R"({"match":{"text":"oldValue"})"), expected) << first.out;
  EXPECT_NE(first.out.find("\"procedure\":\"Value.Let\""), std::string::npos) << first.out;
  EXPECT_NE(first.out.find("\"ides_kept\":1"), std::string::npos) << first.out;
  const auto list = Qx({"ide", "list"});
  ASSERT_NE(list.out.find(vbp_), std::string::npos) << list.out;
  const long pid = std::stol(list.out);
  const auto second = Qx(InCode("search", {"--json", "oldValue", vbp_}));
  EXPECT_EQ(Occurrences(second.out, "\"type\":\"match\""),
            Occurrences(first.out, "\"type\":\"match\""));
  EXPECT_NE(second.out.find("\"ides_kept\":0"), std::string::npos) << "not started by this run";
  EXPECT_EQ(std::stol(Qx({"ide", "list"}).out), pid) << "the warm IDE answered";

  ASSERT_EQ(Qx({"ide", "stop", "--all"}).status, 0);
  ASSERT_EQ(Qx(InCode("search", {"--no-keep", "-q", "oldValue", vbp_})).status, 0);
  EXPECT_EQ(Qx({"ide", "list"}).out, "");
  ::setenv("QX_KEEP_IDES", "few", 1);
  const auto bad = Qx(InCode("search", {"oldValue", vbp_}));
  EXPECT_EQ(bad.status, 2);
  EXPECT_EQ(bad.err,
            "qx: error 5: Invalid procedure call or argument: QX_KEEP_IDES must be a whole number, "
            "not \"few\"\n");
}

// The project's code page is taken before anything of it is read, in every project of a folder
// run: the preview then finds the very files the write changes, in every code page and in a folder
// that mixes them (the last project's code page is not the next one's).
TEST_F(IdeProcesses, PreviewAndWriteShowTheSameFilesInEveryCodePage) {
  fs::copy(fs::path(QX_FIXTURES) / "codepage", work() / "cp", fs::copy_options::recursive);
  const auto summary = [](const std::string& out) {
    const std::string last = out.substr(out.rfind('\n', out.size() - 2) + 1);
    return last.substr(0, last.find(';'));
  };
  for (const std::string path : {"cp/gbk", "cp/sjis", "cp/cyrillic", "cp/german", "cp"}) {
    SCOPED_TRACE(path);
    const auto before = Snapshot(work() / "cp");
    const std::vector<std::string> args{"-F", "Option Explicit", "Option  Explicit", path};
    const auto preview = Qx(Joined({"replace"}, args), work().string());
    ASSERT_EQ(preview.status, 0) << preview.err;
    EXPECT_EQ(preview.err, "");
    EXPECT_EQ(Snapshot(work() / "cp"), before);
    const auto write = Qx(Joined({"replace", "--write"}, args), work().string());
    ASSERT_EQ(write.status, 0) << write.err;
    EXPECT_EQ(Diff(write.out), Diff(preview.out));
    EXPECT_EQ(summary(write.out), summary(preview.out));
    // Every file the write changed is one the preview showed.
    for (const auto& [file, bytes] : Snapshot(work() / "cp")) {
      if (bytes == before.at(file) || file.ends_with(".vbw")) continue;
      EXPECT_NE(preview.out.find("+++ b/cp/" + file + "\n"), std::string::npos) << file;
    }
    // Back to the fixtures for the next path.
    fs::remove_all(work() / "cp");
    fs::copy(fs::path(QX_FIXTURES) / "codepage", work() / "cp", fs::copy_options::recursive);
  }
}

// Renaming a module renames its entry in the project file: the preview shows that change too, and
// the write makes exactly it.
TEST_F(IdeProcesses, ARenamedModulesProjectFileLineIsInThePreview) {
  const fs::path folder = work() / "Inventory";
  const auto preview = Qx({"replace", "--in", "names", "^modGlobals$", "modShared", vbp_});
  ASSERT_EQ(preview.status, 0) << preview.err;
  EXPECT_NE(preview.out.find("-Module=modGlobals; modGlobals.bas\r\n+Module=modShared; "
                             "modGlobals.bas\r\n"),
            std::string::npos)
      << preview.out;
  EXPECT_NE(preview.out.find("2 files"), std::string::npos) << preview.out;
  const std::string vbp = ReadBytes(folder / "Inventory.vbp");
  const auto write = Qx({"replace", "--write", "--in", "names", "^modGlobals$", "modShared", vbp_});
  ASSERT_EQ(write.status, 0) << write.err;
  EXPECT_EQ(ReadBytes(folder / "Inventory.vbp"),
            Replaced(vbp, "Module=modGlobals", "Module=modShared"));
}

// Nothing is skipped without a word: a read-only component asked to change is an error naming
// it, in the preview and the write alike; a file the IDE cannot read (a database table saved as
// .frm) is an error of its own, also as the first component, and the rest is searched.
TEST_F(IdeProcesses, ReadOnlyAndUnreadableComponentsAreErrorsNamingThem) {
  const fs::path folder = work() / "Inventory";
  const fs::path module = folder / "modGlobals.bas";
  fs::permissions(module, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
  const std::string before = ReadBytes(module);
  for (const bool write : {false, true}) {
    std::vector<std::string> args{"replace", "--kind", "Modules", "MAX_QUANTITY", "MAX_QTY", vbp_};
    if (write) args.insert(args.begin() + 1, "--write");
    const auto run = Qx(args);
    EXPECT_EQ(run.status, 2) << run.out;
    EXPECT_NE(run.err.find("modGlobals.bas:"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("error 75: The component's file is read-only"), std::string::npos)
        << run.err;
    EXPECT_EQ(ReadBytes(module), before);
  }

  const fs::path table = folder / "Table.frm";
  std::ofstream(table, std::ios::binary) << std::string("\xFE\x01\x00\x00Customers\x00", 14);
  std::string vbp = ReadBytes(folder / "Inventory.vbp");
  vbp.insert(vbp.find("Form=mdiMain.frm"), "Form=Table.frm\r\n");
  std::ofstream(folder / "Inventory.vbp", std::ios::binary) << vbp;
  const auto run = Qx({"search", "-c", "MAX_QUANTITY", vbp_});
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("Table.frm not searched"), std::string::npos) << run.err;
  EXPECT_NE(run.out.find("modGlobals.bas:"), std::string::npos) << run.out;
}

// A warm IDE (started before the runs) after a write that failed: the file is as it was, the
// next search shows the disk, the next replace writes its own change alone, and the IDE still
// ends when idle. After an edit of the project file, the very next run sees the new component
// list.
TEST_F(IdeProcesses, AWarmIdeKeepsNothingOfAFailedWriteAndFollowsItsProjectFile) {
  ::setenv("QX_IDE_IDLE_SECONDS", "5", 1);
  const fs::path folder = work() / "Inventory";
  const std::string cls = ReadBytes(folder / "CStockItem.cls");
  const auto start = Qx({"ide", "start", vbp_});
  ASSERT_EQ(start.status, 0) << start.err;
  const long pid = PidIn(start.out);

  // Windows-1252, the project's code page, has no Chinese.
  const auto failed = Qx(InCode("replace", {"--write", "oldValue", "\xE6\x97\xA7", vbp_}));
  EXPECT_EQ(failed.status, 2) << failed.out << failed.err;
  EXPECT_EQ(ReadBytes(folder / "CStockItem.cls"), cls);
  const auto search = Qx(InCode("search", {"-c", "oldValue", vbp_}));
  EXPECT_NE(search.out.find("CStockItem.cls:3\n"), std::string::npos) << search.out << search.err;
  const auto write = Qx(InCode("replace", {"--write", "NewDescription", "NewText", vbp_}));
  EXPECT_EQ(write.status, 0) << write.out << write.err;
  EXPECT_EQ(ReadBytes(folder / "CStockItem.cls"), Replaced(cls, "NewDescription", "NewText"));

  // The class leaves the project: the next run no longer finds it.
  std::string project = ReadBytes(folder / "Inventory.vbp");
  project.erase(project.find("Class=CStockItem; CStockItem.cls\r\n"), 34);
  std::ofstream(folder / "Inventory.vbp", std::ios::binary) << project;
  const auto after = Qx(InCode("search", {"-l", "NewText", vbp_}));
  EXPECT_EQ(after.status, 1) << after.out << after.err;
  EXPECT_EQ(PidIn(Qx({"ide", "start", vbp_}).out), pid) << "one IDE served every run";

  // Nothing is left unsaved to keep it from ending once idle.
  EXPECT_TRUE(qxtest::WaitGone(pid, std::chrono::seconds(30)));
}

}  // namespace

// --in strings, comments and statements: each finds and changes only its part of the code; a
// string inside a comment is comment, and a name that only starts like the word is code.
TEST_F(IdeProcesses, CodePartsAreSearchedAndReplacedOnTheirOwn) {
  const fs::path cls = work() / "Inventory" / "CStockItem.cls";
  const std::string before = ReadBytes(cls);
  const auto count = [&](const std::string& part) {
    const auto run =
        Qx({"search", "-c", "-i", "--kind", "ClassModules", "--in", part, "quantity", vbp_});
    EXPECT_EQ(run.err, "");
    return run.out;
  };
  EXPECT_EQ(count("strings"), cls.string() + ":1\n");
  EXPECT_EQ(count("comments"), cls.string() + ":2\n");
  EXPECT_EQ(count("statements,comments"), cls.string() + ":11\n");
  EXPECT_EQ(count("code"), cls.string() + ":12\n");

  const auto write = Qx({"replace", "--write", "-i", "--kind", "ClassModules", "--in", "strings",
                         "quantity", "Amount", vbp_});
  ASSERT_EQ(write.status, 0) << write.err;
  std::string expected = before;
  const std::string was = "\"Quantity out of range\"";
  expected.replace(expected.find(was), was.size(), "\"Amount out of range\"");
  EXPECT_EQ(ReadBytes(cls), expected);
}

// replace --json gives each match its replacement and its place; --only PLACES then writes those
// places alone, and a place that has no match is an error that writes nothing.
TEST_F(IdeProcesses, ReplaceJsonNamesPlacesThatOnlyThenWrites) {
  const fs::path cls = work() / "Inventory" / "CStockItem.cls";
  const std::vector<std::string> args{"--kind", "ClassModules", "-i", "quantity", "Amount", vbp_};
  const auto replace = [&](const std::vector<std::string>& options) {
    return Qx(Joined(Joined({"replace"}, options), args));
  };
  const auto json = replace({"--json"});
  ASSERT_EQ(json.status, 0) << json.err;
  bool seen = false;
  for (const nlohmann::json& record : qxtest::JsonLines(json.out)) {
    if (record["type"] != "match" || record["data"]["line_number"] != 49) continue;
    seen = true;
    EXPECT_EQ(record["data"]["place"], "CStockItem/procedure/Value.Let");
    const auto& sub = record["data"]["submatches"][0];
    EXPECT_EQ(sub["replacement"]["text"], "Amount");
    EXPECT_EQ(sub["replacement"]["line"], "    mAmount = NewValue\n");
  }
  EXPECT_TRUE(seen) << json.out;

  const std::string before = ReadBytes(cls);
  const auto wrong = replace({"--write", "--only", "CStockItem/procedure/Nowhere"});
  EXPECT_EQ(wrong.status, 2);
  EXPECT_NE(wrong.err.find("CStockItem/procedure/Nowhere"), std::string::npos) << wrong.err;
  EXPECT_EQ(ReadBytes(cls), before);

  const auto only = replace({"--write", "--only", "CStockItem/procedure/Value.Let"});
  ASSERT_EQ(only.status, 0) << only.err;
  EXPECT_NE(only.out.find("5 replacements in 1 file; written"), std::string::npos) << only.out;
  const std::string after = ReadBytes(cls);
  EXPECT_NE(after.find("    mAmount = NewValue\r\n"), std::string::npos);
  EXPECT_NE(after.find("Private mQuantity As Long"), std::string::npos) << "not an --only place";

  // A place is named within its project: in a folder of two, --only could name either's.
  const fs::path both = work() / "Both";
  fs::create_directories(both);
  for (const char* copy : {"One", "Two"})
    fs::copy(work() / "Inventory", both / copy, fs::copy_options::recursive);
  const auto folder = Qx({"replace", "--write", "--only", "CStockItem/procedure/Value.Get", "-i",
                          "quantity", "Amount", both.string()});
  EXPECT_EQ(folder.status, 2);
  EXPECT_NE(folder.err.find("--only names the places of one project, and 2 were found"),
            std::string::npos)
      << folder.err;
  EXPECT_EQ(ReadBytes(both / "Two" / "CStockItem.cls"), after);
}

// replace --interactive shows each place's change and writes the places accepted: n, y, then d
// for the rest of the file; the end of the answers is q, and then nothing is written.
TEST_F(IdeProcesses, InteractiveReplaceWritesOnlyThePlacesAccepted) {
  const fs::path cls = work() / "Inventory" / "CStockItem.cls";
  const std::string before = ReadBytes(cls);
  const std::vector<std::string> args{"replace", "--interactive", "--kind", "ClassModules",
                                      "-i",      "quantity",      "Amount", vbp_};

  const auto none = QxAnswering("", args);
  EXPECT_EQ(none.status, 1) << none.err;
  EXPECT_NE(none.out.find("Replace here [y,n,a,d,q,?]? "), std::string::npos) << none.out;
  EXPECT_EQ(ReadBytes(cls), before);

  const auto some = QxAnswering("n\n?\ny\nd\n", args);
  ASSERT_EQ(some.status, 0) << some.err;
  EXPECT_NE(some.out.find(cls.string() + ": CStockItem.Value.Get\n@@ "), std::string::npos);
  EXPECT_NE(some.out.find("d - leave this place and every later place"), std::string::npos);
  EXPECT_NE(some.out.find("2 replacements in 1 file; written"), std::string::npos) << some.out;
  const std::string after = ReadBytes(cls);
  EXPECT_NE(after.find("    Value = mAmount\r\n"), std::string::npos) << "accepted";
  EXPECT_NE(after.find("Private mQuantity As Long"), std::string::npos) << "declined";
  EXPECT_NE(after.find("    mQuantity = NewValue"), std::string::npos) << "d: the rest declined";
  EXPECT_EQ(Qx({"ide", "list"}).out, "") << "the run ended the IDE it started";
}

// The same on a terminal: the questions come on it and the answers typed there are taken; a
// terminal that goes away in the middle (the user's window closed) writes nothing.
TEST_F(IdeProcesses, InteractiveReplaceOnATerminalAsksThereAndALostTerminalWritesNothing) {
  const fs::path cls = work() / "Inventory" / "CStockItem.cls";
  const std::string before = ReadBytes(cls);
  std::vector<std::string> argv{QX_BIN, "replace",  "--interactive", "--kind", "ClassModules",
                                "-i",   "quantity", "Amount",        vbp_};
  std::vector<char*> raw;
  for (std::string& arg : argv)
    raw.push_back(arg.data());
  raw.push_back(nullptr);

  // Starts qx on a new terminal and reads what it shows there until `wanted` (or 60 s pass).
  struct Terminal {
    int master = -1;
    pid_t pid = -1;
    std::string shown;
    bool Await(const std::string& wanted) {
      const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
      while (shown.find(wanted) == std::string::npos) {
        pollfd ready{master, POLLIN, 0};
        if (std::chrono::steady_clock::now() > deadline || ::poll(&ready, 1, 1000) < 0)
          return false;
        char buffer[4096];
        const ssize_t n = ready.revents != 0 ? ::read(master, buffer, sizeof buffer) : 0;
        if (n < 0) return false;  // the other side has closed
        shown.append(buffer, static_cast<size_t>(n));
      }
      return true;
    }
    int End() {
      if (master >= 0) ::close(master);
      master = -1;
      int status = 0;
      ::waitpid(pid, &status, 0);
      return status;
    }
    ~Terminal() {
      if (master >= 0) {
        ::kill(pid, SIGKILL);
        End();
      }
    }
  };
  const auto start = [&](Terminal& terminal) {
    terminal.pid = ::forkpty(&terminal.master, nullptr, nullptr, nullptr);
    ASSERT_GE(terminal.pid, 0);
    if (terminal.pid == 0) {
      ::execve(raw[0], raw.data(), environ);
      ::_exit(127);
    }
  };

  {
    Terminal terminal;
    start(terminal);
    ASSERT_TRUE(terminal.Await("Replace here [y,n,a,d,q,?]? ")) << terminal.shown;
    ::close(terminal.master);  // the terminal goes: qx is hung up on
    terminal.master = -1;
    int status = 0;
    ::waitpid(terminal.pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 128 + SIGHUP) << status;
    EXPECT_EQ(ReadBytes(cls), before);
  }
  Terminal terminal;
  start(terminal);
  ASSERT_TRUE(terminal.Await("Replace here [y,n,a,d,q,?]? ")) << terminal.shown;
  ASSERT_EQ(::write(terminal.master, "a\n", 2), 2);
  EXPECT_TRUE(terminal.Await("written")) << terminal.shown;
  EXPECT_EQ(WEXITSTATUS(terminal.End()), 0);
  EXPECT_EQ(ReadBytes(cls).find("mQuantity"), std::string::npos) << "a: every place of the file";
}

// A module that the project file names by an absolute path (a shared module outside the
// project's folder) cannot be put in the scratch copy that a replace is first made on: it is an
// error naming it and its line, and left as it is, while the rest of the project is replaced.
TEST_F(IdeProcesses, AComponentNamedByAnAbsolutePathIsReportedAndTheRestReplaced) {
  const fs::path shared = work() / "Shared" / "Shared.bas";
  fs::create_directories(shared.parent_path());
  fs::copy_file(fs::path(QX_FIXTURES) / "runs" / "shared" / "common" / "Shared.bas", shared);
  const std::string module = ReadBytes(shared);
  std::string project = ReadBytes(vbp_);
  const std::string after = "Class=CStockItem; CStockItem.cls\r\n";
  project.insert(project.find(after) + after.size(), "Module=Shared; " + shared.string() + "\r\n");
  std::ofstream(vbp_, std::ios::binary) << project;

  for (const bool write : {false, true}) {
    std::vector<std::string> args{"old(Value)", "previous$1", vbp_};
    if (write) args.insert(args.begin(), "--write");
    const auto run = Qx(InCode("replace", args));
    EXPECT_EQ(run.status, 2) << run.err;
    EXPECT_NE(run.err.find("line 9: Shared: error 5: " + shared.string() + " is not replaced"),
              std::string::npos)
        << run.err;
    EXPECT_NE(run.out.find("+    Dim previousValue As Long"), std::string::npos) << run.out;
  }
  EXPECT_EQ(ReadBytes(shared), module);
  EXPECT_EQ(Occurrences(ReadBytes(work() / "Inventory" / "CStockItem.cls"), "oldValue"), 0u);
}
