// The progress line of a long run: on a terminal only, after a second, never among JSON lines,
// and gone before anything else is printed. Time is moved by hand.

#include <gtest/gtest.h>

#include <sstream>

#include "cli/printer.h"
#include "cli/progress.h"

namespace {

using cli::ProgressLine;
using namespace std::chrono_literals;

// A clock that stands still until the test moves it.
struct StoppedClock {
  ProgressLine::Clock::time_point now{};
  ProgressLine::Now Now() {
    return [this] { return now; };
  }
};

cli::FileMatches Matches() {
  cli::FileMatches file;
  file.path = "p/Module1.bas";
  file.matches = 1;
  cli::SearchHit hit;
  hit.component = "Module1";
  hit.procedure = "Foo";
  hit.line = 3;
  hit.text = "x = 1";
  hit.submatches = {{0, 1, "x"}};
  file.hits.push_back(hit);
  return file;
}

constexpr const char* kClear = "\r\x1b[K";

TEST(ProgressLine, OnATerminalAfterASecondThenClearedBeforeResultsAndAtTheEnd) {
  std::ostringstream out, err;
  const auto printer = cli::MakeTextPrinter(out, err, {false, true, false});
  StoppedClock clock;
  {
    ProgressLine progress(*printer, 3, clock.Now());
    progress.Project("a/A.vbp");
    progress.ComponentDone();
    clock.now += 900ms;
    progress.ComponentDone();
    EXPECT_EQ(err.str(), "") << "a run under a second shows nothing";

    clock.now += 200ms;
    progress.ComponentDone();
    EXPECT_EQ(err.str(), "searching: 0 of 3 projects, 3 components done; a/A.vbp");

    // Redrawn at most every tenth of a second, but at once for a new project.
    clock.now += 50ms;
    progress.ComponentDone();
    EXPECT_EQ(err.str().find(kClear), std::string::npos);
    progress.Project("b/B.vbp");
    EXPECT_TRUE(err.str().ends_with(std::string(kClear) +
                                    "searching: 1 of 3 projects, 4 components done; b/B.vbp"));

    // Results and errors start on a clean line.
    err.str("");
    printer->SearchFile(Matches(), cli::SearchStyle::Grouped);
    printer->Error(automation::Error(53, "qx", "File not found: x"));
    EXPECT_EQ(err.str(), std::string(kClear) + "qx: error 53: File not found: x\n");
    EXPECT_EQ(out.str(), "p/Module1.bas\n[Module1.Foo]\n3:1:x = 1\n");

    clock.now += 1s;
    err.str("");
    progress.ComponentDone();
    EXPECT_FALSE(err.str().empty());
    err.str("");
  }
  EXPECT_EQ(err.str(), kClear) << "the end of the run clears the line";
}

TEST(ProgressLine, NeverWhenStandardErrorIsNoTerminalNorInJson) {
  std::ostringstream out, err;
  const auto notTerminal = cli::MakeTextPrinter(out, err, {true, false, false});
  const auto json = cli::MakeJsonPrinter(out, {true, true, false});
  for (cli::Printer* printer : {notTerminal.get(), json.get()}) {
    StoppedClock clock;
    ProgressLine progress(*printer, 1, clock.Now());
    clock.now += 10s;
    progress.Project("a/A.vbp");
    progress.ComponentDone();
    progress.Clear();
  }
  EXPECT_EQ(err.str(), "");
  EXPECT_EQ(out.str(), "");
}

// Wider than the terminal, the line would wrap and clearing it would leave a part behind: a long
// path keeps its end, counted in characters.
TEST(ProgressLine, ALongPathKeepsItsEndWithinTheWidth) {
  std::ostringstream out, err;
  const auto printer = cli::MakeTextPrinter(out, err, {false, true, false});
  StoppedClock clock;
  ProgressLine progress(*printer, 300, clock.Now());
  clock.now += 2s;
  std::string path;
  for (int i = 0; i < 30; ++i)
    path += "フォルダ/";
  path += "顧客管理.vbp";
  progress.Project(path);
  const std::string line = err.str();
  size_t characters = 0;
  for (const char c : line)
    characters += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  EXPECT_EQ(characters, ProgressLine::kWidth);
  EXPECT_TRUE(line.ends_with("/顧客管理.vbp")) << line;
  EXPECT_NE(line.find("; ..."), std::string::npos) << line;
}

}  // namespace
