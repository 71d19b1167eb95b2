#include "platform/paths.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "platform/folder_listing.h"
#include "support/temp_home.h"
#include "test_files.h"

namespace fs = std::filesystem;
using platform::ToNative;

namespace {

class CurrentFolder {
 public:
  explicit CurrentFolder(const fs::path& folder) : previous_(fs::current_path()) {
    fs::current_path(folder);
  }
  ~CurrentFolder() { fs::current_path(previous_); }

 private:
  fs::path previous_;
};

TEST(Paths, SeparatorsDrivesAndRelativePaths) {
  qxtest::TempHome home;
  EXPECT_EQ(ToNative("z:\\usr\\bin"), fs::path("/usr/bin"));
  EXPECT_EQ(ToNative("Z:/usr//bin\\"), fs::path("/usr/bin"));
  EXPECT_EQ(ToNative("c:\\windows\\vbaddin.ini"), home.path() / "drive_c/windows/vbaddin.ini");
  EXPECT_EQ(ToNative("D:/Src/x.vbp"), home.path() / "drive_d/Src/x.vbp");
  EXPECT_EQ(ToNative("\\etc\\hostname"), fs::path("/etc/hostname"));
  {
    CurrentFolder cd(home.path());
    EXPECT_EQ(ToNative("proj\\a.frm"), fs::current_path() / "proj/a.frm");
  }
  EXPECT_EQ(ToNative(""), fs::path());
}

TEST(Paths, EachPartThatExistsResolvesIgnoringCase) {
  qxtest::TempHome home;
  const fs::path root = home.path();
  platformtest::WriteBytes(root / "Proj/Forms/Main.frm", "x");
  const std::string windows = root.string() + "\\PROJ\\forms\\MAIN.FRM";
  EXPECT_EQ(ToNative(windows), root / "Proj/Forms/Main.frm");

  // Several spellings on disk: an exact match wins, else the first in byte order.
  platformtest::WriteBytes(root / "Proj/Readme", "1");
  platformtest::WriteBytes(root / "Proj/README", "2");
  EXPECT_EQ(ToNative(root.string() + "/proj/Readme"), root / "Proj/Readme");
  EXPECT_EQ(ToNative(root.string() + "/proj/readme"), root / "Proj/README");

  // Letters beyond ASCII fold too (Cyrillic file names are common in real projects).
  platformtest::WriteBytes(root / "Проект/Форма.frm", "x");
  EXPECT_EQ(ToNative(root.string() + "\\пРОЕКТ\\форма.FRM"), root / "Проект/Форма.frm");

  // Parts that are not there are kept as written.
  EXPECT_EQ(ToNative(root.string() + "\\PROJ\\New\\File.txt"), root / "Proj/New/File.txt");
  EXPECT_EQ(ToNative(root.string() + "\\Nowhere\\proj"), root / "Nowhere/proj");
}

// A folder's listing is kept between look-ups once the folder has not changed for a while; every
// change to its entries must still show, however soon it comes.
TEST(Paths, ASettledFolderStillShowsEveryChangeToItsEntries) {
  qxtest::TempHome home;
  const fs::path folder = home.path() / "Proj";
  platformtest::WriteBytes(folder / "Main.bas", "x");
  const auto settle = [&] {
    fs::last_write_time(folder, fs::last_write_time(folder) - std::chrono::seconds(10));
  };
  settle();
  EXPECT_EQ(ToNative(folder.string() + "\\MAIN.BAS"), folder / "Main.bas");

  platformtest::WriteBytes(folder / "Other.cls", "x");  // added
  EXPECT_EQ(ToNative(folder.string() + "\\other.CLS"), folder / "Other.cls");
  settle();
  EXPECT_EQ(ToNative(folder.string() + "\\main.bas"), folder / "Main.bas");

  fs::rename(folder / "Main.bas", folder / "MAIN.bas");  // renamed
  EXPECT_EQ(ToNative(folder.string() + "\\main.bas"), folder / "MAIN.bas");
  settle();

  fs::remove(folder / "MAIN.bas");  // removed: kept as written
  EXPECT_EQ(ToNative(folder.string() + "\\main.bas"), folder / "main.bas");
}

// A form's companions are the entries beside it with its stem; the listing they come from follows
// the folder from the moment it is read, without waiting for its time to settle.
TEST(Paths, TheEntriesOfAStemFollowTheFolderAtOnce) {
  qxtest::TempHome home;
  const fs::path folder = home.path() / "Forms";
  for (const char* name : {"Main.frm", "MAIN.frx", "main.log", "Main.frm.bak", "Other.frm"})
    platformtest::WriteBytes(folder / name, "x");
  using Names = std::vector<std::string>;
  EXPECT_EQ(platform::EntriesWithStem(folder, "main"), (Names{"MAIN.frx", "Main.frm", "main.log"}));
  EXPECT_EQ(platform::EntriesWithStem(folder / "none", "main"), Names{});

  platformtest::WriteBytes(folder / "Main.frx", "x");
  fs::remove(folder / "MAIN.frx");
  fs::rename(folder / "main.log", folder / "Other.log");
  EXPECT_EQ(platform::EntriesWithStem(folder, "MAIN"), (Names{"Main.frm", "Main.frx"}));
  EXPECT_EQ(platform::EntriesWithStem(folder, "other"), (Names{"Other.frm", "Other.log"}));

  fs::remove_all(folder);  // made anew at the same path
  platformtest::WriteBytes(folder / "main.FRM", "x");
  EXPECT_EQ(platform::EntriesWithStem(folder, "Main"), Names{"main.FRM"});
  EXPECT_EQ(platform::EntryNoCase(folder, "MAIN.frm"), "main.FRM");
}

TEST(Paths, SeparatorsAndWindowsForm) {
  EXPECT_EQ(platform::LastSeparator("a\\b/c"), 3u);
  EXPECT_EQ(platform::LastSeparator("c:\\x\\y.frm"), 4u);
  EXPECT_EQ(platform::LastSeparator("abc"), std::string::npos);
  EXPECT_EQ(platform::ToWindows("/opt/qx/bin/qxvb6.exe"), "z:\\opt\\qx\\bin\\qxvb6.exe");
  EXPECT_EQ(platform::ToWindows("/opt/qx/"), "z:\\opt\\qx");
  EXPECT_EQ(platform::ToWindows("/"), "z:\\");
  // The two directions agree.
  EXPECT_EQ(ToNative(platform::ToWindows("/usr/bin")), fs::path("/usr/bin"));
}

}  // namespace
