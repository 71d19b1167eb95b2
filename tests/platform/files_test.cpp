#include "platform/files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ctime>

#include "platform/home.h"
#include "platform/private_folders.h"
#include "support/errors.h"
#include "support/temp_home.h"
#include "test_files.h"

namespace fs = std::filesystem;

namespace {

using qxtest::Caught;
using qxtest::ErrorOf;

std::string Win(const fs::path& path) {
  std::string text = path.string();
  for (char& c : text) {
    if (c == '/') c = '\\';
  }
  return text;
}

TEST(Files, ExistenceAcceptsWindowsPathsInAnyCase) {
  qxtest::TempHome home;
  platformtest::WriteBytes(home.path() / "Proj/Main.frm", "x");
  EXPECT_TRUE(platform::FileExists(Win(home.path() / "proj/MAIN.FRM")));
  EXPECT_FALSE(platform::FileExists(Win(home.path() / "proj")));
  EXPECT_TRUE(platform::FolderExists(Win(home.path() / "PROJ")));
  EXPECT_FALSE(platform::FolderExists(Win(home.path() / "Proj/Main.frm")));
  EXPECT_FALSE(platform::FileExists(Win(home.path() / "Proj/Other.frm")));
  EXPECT_FALSE(platform::FileExists(""));
}

TEST(Files, AttributesAndTimes) {
  qxtest::TempHome home;
  const fs::path file = home.path() / "a.bas";
  platformtest::WriteBytes(file, "x");
  EXPECT_EQ(platform::GetAttr(file.string()), platform::kAttrNormal);
  EXPECT_EQ(platform::GetAttr(home.path().string()), platform::kAttrDirectory);
  // No write bit for anyone is read-only even for root, who could still write the file.
  fs::permissions(file, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  EXPECT_EQ(platform::GetAttr(file.string()), platform::kAttrReadOnly);

  std::tm tm{};
  tm.tm_year = 2021 - 1900, tm.tm_mon = 2, tm.tm_mday = 4, tm.tm_hour = 15, tm.tm_min = 6;
  tm.tm_sec = 7, tm.tm_isdst = -1;
  const timespec times[2] = {{std::mktime(&tm), 0}, {std::mktime(&tm), 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
  const platform::LocalTime t = platform::FileDateTime(Win(file));
  EXPECT_EQ((std::vector<int>{t.year, t.month, t.day, t.hour, t.minute, t.second}),
            (std::vector<int>{2021, 3, 4, 15, 6, 7}));

  const std::string missing = Win(home.path() / "gone.bas");
  EXPECT_EQ(ErrorOf([&] { platform::GetAttr(missing); }), 53);
  EXPECT_EQ(ErrorOf([&] { platform::FileDateTime(missing); }), 53);
}

TEST(Files, ReadFileGivesBytesOrVbErrors) {
  qxtest::TempHome home;
  const std::string bytes("A\0\xFF\r\nB", 6);
  platformtest::WriteBytes(home.path() / "f.frx", bytes);
  EXPECT_EQ(platform::ReadFile(Win(home.path() / "F.FRX")), bytes);
  platformtest::WriteBytes(home.path() / "empty", "");
  EXPECT_EQ(platform::ReadFile((home.path() / "empty").string()), "");
  EXPECT_EQ(ErrorOf([&] { platform::ReadFile(Win(home.path() / "none.frx")); }), 53);
  EXPECT_EQ(ErrorOf([&] { platform::ReadFile(home.path().string()); }), 75);
}

TEST(Files, AtomicWriteReplacesKeepsModeAndFailsCleanly) {
  qxtest::TempHome home;
  const qxtest::TempDir work;  // project files live outside the home
  const fs::path file = work.path() / "Proj/Main.frm";
  platformtest::WriteBytes(file, "old");
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  platform::WriteFileAtomic(Win(work.path() / "PROJ/main.frm"), "new contents");
  EXPECT_EQ(platformtest::ReadBytes(file), "new contents");
  EXPECT_EQ(fs::status(file).permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

  platform::WriteFileAtomic(Win(work.path() / "Proj/New.bas"), "created");
  EXPECT_EQ(platformtest::ReadBytes(work.path() / "Proj/New.bas"), "created");

  fs::permissions(file, fs::perms::owner_read);
  EXPECT_EQ(ErrorOf([&] { platform::WriteFileAtomic(file.string(), "lost"); }), 70);
  EXPECT_EQ(platformtest::ReadBytes(file), "new contents");
  EXPECT_EQ(ErrorOf([&] { platform::WriteFileAtomic(Win(work.path() / "Proj"), "x"); }), 75);
  EXPECT_EQ(ErrorOf([&] { platform::WriteFileAtomic(Win(work.path() / "No/Such/f.bas"), "x"); }),
            76);

  // No temporary file is left behind, whether the write worked or not.
  EXPECT_EQ(platformtest::Names(work.path() / "Proj"),
            (std::vector<std::string>{"Main.frm", "New.bas"}));
}

// The qx home's state is private whatever the umask: its folders 0700, its files 0600 (also one
// that was readable before), while a project's new file follows the umask; scratch folders are
// fresh and private; a folder that others may write is refused as state.
TEST(Files, TheHomesStateIsPrivateWhateverTheUmask) {
  const mode_t umask = ::umask(0);
  qxtest::TempHome home;
  const qxtest::TempDir work;
  const auto mode = [](const fs::path& path) {
    return fs::status(path).permissions() & fs::perms::all;
  };
  const fs::perms file = fs::perms::owner_read | fs::perms::owner_write;

  platform::WriteFileAtomic((home.path() / "state.ini").string(), "a");
  EXPECT_EQ(mode(home.path() / "state.ini"), file);
  fs::permissions(home.path() / "state.ini", fs::perms::owner_all | fs::perms::others_read);
  platform::WriteFileAtomic((home.path() / "state.ini").string(), "b");
  EXPECT_EQ(mode(home.path() / "state.ini"), file);
  platform::WritePrivateFile(home.path() / "entry", "c");
  EXPECT_EQ(mode(home.path() / "entry"), file);
  platform::WriteFileAtomic((work.path() / "New.bas").string(), "d");
  EXPECT_EQ(mode(work.path() / "New.bas"), fs::perms::all & ~fs::perms::owner_exec &
                                               ~fs::perms::group_exec & ~fs::perms::others_exec);

  platform::CreatePrivateFolders(home.path() / "a" / "b");
  EXPECT_EQ(mode(home.path() / "a"), fs::perms::owner_all);
  EXPECT_EQ(mode(home.path() / "a" / "b"), fs::perms::owner_all);
  EXPECT_EQ(mode(platform::RunFolder()), fs::perms::owner_all);
  const fs::path one = platform::MakeTempFolder(work.path(), "scratch-");
  const fs::path two = platform::MakeTempFolder(work.path(), "scratch-");
  EXPECT_NE(one, two);
  EXPECT_EQ(one.filename().string().rfind("scratch-", 0), 0u);
  EXPECT_EQ(mode(one), fs::perms::owner_all);
  ::umask(umask);

  fs::permissions(work.path(), fs::perms::all);
  const auto open = Caught([&] { platform::CheckPrivateFolder(work.path(), "the folder"); });
  EXPECT_EQ(open.Number(), 70);
  EXPECT_EQ(open.Description(), "Permission denied: the folder " + work.path().string() +
                                    " can be written by other users (mode 0777); qx keeps its "
                                    "state private: chmod go-w " +
                                    work.path().string() +
                                    ", or set QX_HOME to a folder of your own");
  ::setenv("QX_HOME", work.path().c_str(), 1);
  EXPECT_EQ(ErrorOf([] { platform::QxHome(); }), 70);
  fs::permissions(work.path(), fs::perms::owner_all);
  EXPECT_EQ(platform::QxHome(), work.path());
}

TEST(Files, DirListsLikeWindows) {
  qxtest::TempHome home;
  const fs::path p = home.path() / "Proj";
  for (const char* name : {"a.frm", "B.FRM", "c.bas", "noext", "x.frm.bak", ".hidden.frm"}) {
    platformtest::WriteBytes(p / name, "x");
  }
  fs::create_directories(p / "Sub.frm");
  const std::string folder = Win(home.path() / "PROJ");

  EXPECT_EQ(platform::Dir(folder + "\\*.frm", false), (std::vector<std::string>{"a.frm", "B.FRM"}));
  EXPECT_EQ(platform::Dir(folder + "\\*.FRM", true),
            (std::vector<std::string>{"a.frm", "B.FRM", "Sub.frm"}));
  EXPECT_EQ(platform::Dir(folder + "\\?.BAS", false), (std::vector<std::string>{"c.bas"}));
  EXPECT_EQ(platform::Dir(folder + "\\*.*", false),
            (std::vector<std::string>{"a.frm", "B.FRM", "c.bas", "noext", "x.frm.bak"}));
  EXPECT_EQ(platform::Dir(folder + "\\*.*", true),
            (std::vector<std::string>{".", "..", "a.frm", "B.FRM", "c.bas", "noext", "Sub.frm",
                                      "x.frm.bak"}));
  EXPECT_EQ(platform::Dir(folder + "\\*.", false), (std::vector<std::string>{"noext"}));
  EXPECT_EQ(platform::Dir(folder + "\\noext.*", false), (std::vector<std::string>{"noext"}));
  EXPECT_EQ(platform::Dir(folder + "\\", false).size(), 5u);
  EXPECT_TRUE(platform::Dir(folder + "\\Missing\\*.*", true).empty());
}

}  // namespace
