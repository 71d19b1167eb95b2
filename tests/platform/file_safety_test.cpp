// What the file layer does against hostile conditions: files that are not files, a disk that
// fills, flushes and renames that fail, a save killed at any step, leftovers of killed saves,
// and a second writer.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "platform/files.h"
#include "support/errors.h"
#include "support/fault_hook.h"
#include "support/temp_home.h"
#include "test_files.h"

namespace fs = std::filesystem;

namespace {

using platform::WriteStep;
using platformtest::Names;
using qxtest::Caught;
using qxtest::ErrorOf;

// Removes the fault hook when the test ends, also when it fails.
using qxtest::FaultHook;

TEST(FileSafety, OnlyRegularFilesAreRead) {
  qxtest::TempDir dir;
  const fs::path fifo = dir.path() / "Pipe.bas";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  // Would wait for a writer forever if it were opened for reading.
  EXPECT_EQ(ErrorOf([&] { platform::ReadFile(fifo.string()); }), 75);
  EXPECT_NE(Caught([&] { platform::ReadFile(fifo.string()); }).Description().find("FIFO"),
            std::string::npos);
  // Would fill memory if it were read to its end; reached through ".." as a project can name it.
  std::string zero = dir.path().string();
  for (auto it = dir.path().begin(); it != dir.path().end(); ++it)
    zero += "/..";
  zero += "/dev/zero";
  EXPECT_NE(Caught([&] { platform::ReadFile(zero); }).Description().find("a device"),
            std::string::npos);
  EXPECT_EQ(ErrorOf([&] { platform::WriteFileAtomic(fifo.string(), "x"); }), 75);

  platformtest::WriteBytes(dir.path() / "big.frx", std::string(100, 'x'));
  EXPECT_EQ(ErrorOf([&] { platform::ReadFile((dir.path() / "big.frx").string(), 99); }), 75);
  // The bytes read hold no more memory than the file.
  const std::string bytes = platform::ReadFile((dir.path() / "big.frx").string(), 100);
  EXPECT_EQ(bytes.size(), 100u);
  EXPECT_LT(bytes.capacity(), 128u);
}

TEST(FileSafety, FailingStepsLeaveTheOldFileWhole) {
  qxtest::TempDir dir;
  const fs::path file = dir.path() / "Module1.bas";
  const std::string old(100000, 'o');
  platformtest::WriteBytes(file, old);
  const struct {
    WriteStep step;
    int error;
    int number;
  } cases[] = {
      {WriteStep::kCreate, ENOSPC, 61},  {WriteStep::kWrite, ENOSPC, 61},
      {WriteStep::kWrite, EDQUOT, 61},   {WriteStep::kFlush, EIO, 57},
      {WriteStep::kReplace, EACCES, 70},
  };
  for (const auto& c : cases) {
    FaultHook hook([&](WriteStep step) { return step == c.step ? c.error : 0; });
    EXPECT_EQ(ErrorOf([&] { platform::WriteFileAtomic(file.string(), std::string(200000, 'n')); }),
              c.number)
        << static_cast<int>(c.step);
    EXPECT_EQ(platformtest::ReadBytes(file), old);
    EXPECT_EQ(Names(dir.path()), std::vector<std::string>{"Module1.bas"});
  }
}

// Deferred flushes: a save writes and replaces without waiting for the disk (no flush step is
// taken), and the flush of the file system comes when asked for, naming a missing place.
TEST(FileSafety, DeferredFlushesReplaceAtOnceAndFlushWhenAsked) {
  qxtest::TempDir dir;
  const fs::path file = dir.path() / "Module1.bas";
  platformtest::WriteBytes(file, "old");
  struct Deferred {
    Deferred() { platform::SetDeferredFlush(true); }
    ~Deferred() { platform::SetDeferredFlush(false); }
  } deferred;
  std::vector<WriteStep> steps;
  FaultHook hook([&](WriteStep step) {
    steps.push_back(step);
    return 0;
  });
  platform::WriteFileAtomic(file.string(), "new");
  EXPECT_EQ(platformtest::ReadBytes(file), "new");
  EXPECT_EQ(std::count(steps.begin(), steps.end(), WriteStep::kFlush), 0);
  EXPECT_EQ(Names(dir.path()), std::vector<std::string>{"Module1.bas"});
  platform::FlushFileSystem(file.string());
  platform::FlushFileSystem(dir.path().string());
  EXPECT_EQ(ErrorOf([&] { platform::FlushFileSystem((dir.path() / "Gone" / "x.bas").string()); }),
            76);
}

TEST(FileSafety, AKillAtAnyStepLeavesOldOrNewAndTheNextSaveClearsUp) {
  qxtest::TempDir dir;
  const fs::path file = dir.path() / "Module1.bas";
  const std::string old = "Attribute VB_Name = \"Module1\"\r\n' old\r\n";
  const std::string next = "Attribute VB_Name = \"Module1\"\r\n' new\r\n";
  for (WriteStep kill :
       {WriteStep::kCreate, WriteStep::kWrite, WriteStep::kFlush, WriteStep::kReplace}) {
    platformtest::WriteBytes(file, old);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      platform::SetWriteFaultHook([&](WriteStep step) {
        if (step == kill) ::raise(SIGKILL);
        return 0;
      });
      try {
        platform::WriteFileAtomic(file.string(), next);
      } catch (...) {
        ::_exit(2);
      }
      ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(platformtest::ReadBytes(file), old);
    // A killed save leaves its temporary file (all but one killed before it existed)...
    const std::size_t left = Names(dir.path()).size();
    EXPECT_EQ(left, kill == WriteStep::kCreate ? 1u : 2u);
    // ...which the next save of that file removes.
    platform::WriteFileAtomic(file.string(), next);
    EXPECT_EQ(platformtest::ReadBytes(file), next);
    EXPECT_EQ(Names(dir.path()), std::vector<std::string>{"Module1.bas"});
  }
}

TEST(FileSafety, OnlyStaleTemporariesOfThatFileAreRemoved) {
  qxtest::TempDir dir;
  const fs::path folder = dir.path();
  platformtest::WriteBytes(folder / "Module1.bas", "old");
  const std::vector<std::string> others = {
      ".Module1.bas.qx-live00000000",  // a live writer's, see below
      ".Module2.bas.qx-0123456789ab",  // another file's
      ".Module1.bas.qx-notours",       // not a name we make
      "Module1.bas.qx-0123456789ab",   // not hidden
  };
  for (const std::string& name : others)
    platformtest::WriteBytes(folder / name, "x");
  fs::rename(folder / others[0], folder / ".Module1.bas.qx-11110000aaaa");
  const std::string live = ".Module1.bas.qx-11110000aaaa";
  platformtest::WriteBytes(folder / ".Module1.bas.qx-0123456789ab", "stale");
  const int held = ::open((folder / live).c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(held, 0);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);

  platform::WriteFileAtomic((folder / "Module1.bas").string(), "new");
  ::close(held);
  std::vector<std::string> expected = {live, others[1], others[2], others[3], "Module1.bas"};
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(Names(folder), expected);
}

// A batch of saves (flushes deferred) lists a folder once, not once a save; what it found is
// still removed file by file, and a folder changed by someone else since is listed again.
TEST(FileSafety, InABatchOfSavesEachSaveStillClearsOldAndNewLeftovers) {
  qxtest::TempDir dir;
  const fs::path folder = dir.path();
  struct Deferred {
    Deferred() { platform::SetDeferredFlush(true); }
    ~Deferred() { platform::SetDeferredFlush(false); }
  } deferred;
  for (const char* name : {"Module1.bas", "Module2.bas", ".Module1.bas.qx-0123456789ab",
                           ".Module2.bas.qx-0123456789ab"}) {
    platformtest::WriteBytes(folder / name, "x");
  }
  platform::WriteFileAtomic((folder / "Module1.bas").string(), "new");
  EXPECT_EQ(Names(folder), (std::vector<std::string>{".Module2.bas.qx-0123456789ab", "Module1.bas",
                                                     "Module2.bas"}));
  // Another program leaves a temporary file: the folder's time changes, so it is listed again.
  platformtest::WriteBytes(folder / ".Module1.bas.qx-aaaaaaaaaaaa", "x");
  const timespec past[2] = {{1000000000, 0}, {1000000000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, folder.c_str(), past, 0), 0);
  platform::WriteFileAtomic((folder / "Module1.bas").string(), "newer");
  platform::WriteFileAtomic((folder / "Module2.bas").string(), "new");
  EXPECT_EQ(Names(folder), (std::vector<std::string>{"Module1.bas", "Module2.bas"}));
  EXPECT_EQ(platformtest::ReadBytes(folder / "Module1.bas"), "newer");

  // A live writer's file outlives a save; once its writer is gone, the next save removes it,
  // though nothing changed the folder in between.
  const std::string live = ".Module1.bas.qx-11110000aaaa";
  platformtest::WriteBytes(folder / live, "x");
  const int held = ::open((folder / live).c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(held, 0);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  platform::WriteFileAtomic((folder / "Module1.bas").string(), "again");
  EXPECT_EQ(Names(folder), (std::vector<std::string>{live, "Module1.bas", "Module2.bas"}));
  ::close(held);
  platform::WriteFileAtomic((folder / "Module1.bas").string(), "last");
  EXPECT_EQ(Names(folder), (std::vector<std::string>{"Module1.bas", "Module2.bas"}));
}

TEST(FileSafety, TheCheckBeforeReplacingHoldsTheFolderLock) {
  qxtest::TempDir dir;
  const fs::path file = dir.path() / "Module1.bas";
  platformtest::WriteBytes(file, "old");
  int toParent[2];
  int toChild[2];
  ASSERT_EQ(::pipe(toParent), 0);
  ASSERT_EQ(::pipe(toChild), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    try {
      platform::WriteFileAtomic(file.string(), "new", [&] {
        char c = 'c';
        if (::write(toParent[1], &c, 1) != 1 || ::read(toChild[0], &c, 1) != 1) ::_exit(1);
      });
    } catch (...) {
      ::_exit(2);
    }
    ::_exit(0);
  }
  char c = 0;
  ASSERT_EQ(::read(toParent[0], &c, 1), 1);
  // Another save of ours would wait here: the lock is taken.
  const int folder = ::open(dir.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  EXPECT_NE(::flock(folder, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(errno, EWOULDBLOCK);
  ASSERT_EQ(::write(toChild[1], &c, 1), 1);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(::flock(folder, LOCK_EX | LOCK_NB), 0);
  ::close(folder);
  for (int fd : {toParent[0], toParent[1], toChild[0], toChild[1]})
    ::close(fd);
  EXPECT_EQ(platformtest::ReadBytes(file), "new");
}

}  // namespace
