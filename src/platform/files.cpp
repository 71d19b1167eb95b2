#include "platform/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "automation/casefold.h"
#include "automation/error.h"
#include "automation/utf8.h"
#include "platform/descriptor.h"
#include "platform/os_error.h"
#include "platform/paths.h"
#include "platform/private_folders.h"

namespace fs = std::filesystem;

namespace platform {
namespace {

namespace err = automation::err;
namespace utf8 = automation::utf8;

bool StatPath(const fs::path& path, struct stat& st) {
  return ::stat(path.c_str(), &st) == 0;
}

bool IsReadOnly(const fs::path& path, const struct stat& st) {
  // Root may write anything, so the mode bits decide as well as access().
  return (st.st_mode & 0222) == 0 || ::access(path.c_str(), W_OK) != 0;
}

std::function<int(WriteStep)>& FaultHook() {
  static std::function<int(WriteStep)> hook;
  return hook;
}

// Whether WriteFileAtomic leaves flushing to FlushFileSystem.
bool& DeferredFlush() {
  static bool deferred = false;
  return deferred;
}

// The errno that the test seam injects at a step, 0 for none.
int Fault(WriteStep step) {
  const auto& hook = FaultHook();
  return hook ? hook(step) : 0;
}

void WriteAll(int fd, std::string_view bytes, const std::string& shownPath) {
  while (!bytes.empty()) {
    if (const int injected = Fault(WriteStep::kWrite)) {
      // A full disk takes part of a write before it refuses the rest.
      if (bytes.size() > 1 && ::write(fd, bytes.data(), bytes.size() / 2) < 0) {
        RaiseOsError(errno, shownPath, err::kPathNotFound);
      }
      RaiseOsError(injected, shownPath, err::kPathNotFound);
    }
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      RaiseOsError(errno, shownPath, err::kPathNotFound);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

// What a path that is not a regular file is, in an error that says so.
[[noreturn]] void RaiseNotRegular(const std::string& shown, mode_t mode) {
  const char* what = S_ISFIFO(mode)                   ? "a FIFO (named pipe)"
                     : S_ISCHR(mode) || S_ISBLK(mode) ? "a device"
                     : S_ISSOCK(mode)                 ? "a socket"
                                                      : "a special file";
  automation::Raise(err::kPathFileAccess,
                    shown + " is " + what + ", not a file; only regular files are read or written");
}

// The checks that come before writing a file: a folder gives 75, a read-only file 70.
// Returns whether the target exists, with its status in st.
bool CheckWritable(const fs::path& native, std::string_view shown, struct stat& st) {
  if (!StatPath(native, st)) {
    if (errno == ENOENT) return false;
    RaiseOsError(errno, shown, err::kPathNotFound);
  }
  if (S_ISDIR(st.st_mode)) automation::Raise(err::kPathFileAccess, shown);
  if (IsReadOnly(native, st)) automation::Raise(err::kPermissionDenied, shown);
  return true;
}

constexpr std::string_view kTemporaryMark = ".qx-";
constexpr std::size_t kTemporaryDigits = 12;

std::string TemporaryName(const std::string& target) {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string suffix;
  auto value = random();
  for (std::size_t i = 0; i < kTemporaryDigits; ++i, value >>= 4)
    suffix += kDigits[value & 15];
  return "." + target + std::string(kTemporaryMark) + suffix;
}

// Whether name is one of our temporary files for target.
bool IsTemporaryOf(std::string_view name, std::string_view target) {
  const std::size_t prefix = 1 + target.size() + kTemporaryMark.size();
  if (name.size() != prefix + kTemporaryDigits || name[0] != '.' ||
      name.substr(1, target.size()) != target ||
      name.substr(1 + target.size(), kTemporaryMark.size()) != kTemporaryMark) {
    return false;
  }
  return std::all_of(name.begin() + static_cast<std::ptrdiff_t>(prefix), name.end(),
                     [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

// A writer holds an exclusive lock on its temporary file from creating it until it has been
// renamed or removed; one that nobody holds was left by a save that died (killed, power cut).
// Such a file is removed; a live writer's is left alone. Whether the name is gone.
bool RemoveIfStale(int dirFd, const char* name) {
  Descriptor fd(::openat(dirFd, name, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
  struct stat held;
  struct stat named;
  if (fd.get() < 0) return errno == ENOENT;
  if (::fstat(fd.get(), &held) != 0 || !S_ISREG(held.st_mode)) return false;
  if (::flock(fd.get(), LOCK_EX | LOCK_NB) != 0) return false;  // a live writer's
  // Still the same file under that name (not replaced since we opened it).
  if (::fstatat(dirFd, name, &named, AT_SYMLINK_NOFOLLOW) == 0 && named.st_ino == held.st_ino &&
      named.st_dev == held.st_dev) {
    return ::unlinkat(dirFd, name, 0) == 0;
  }
  return false;
}

// The file a name of one of our temporary files belongs to ("" for other names).
std::string_view TemporaryTarget(std::string_view name) {
  const std::size_t suffix = kTemporaryMark.size() + kTemporaryDigits;
  if (name.size() <= 1 + suffix || name[0] != '.') return {};
  const std::string_view target = name.substr(1, name.size() - 1 - suffix);
  return IsTemporaryOf(name, target) ? target : std::string_view{};
}

// A batch of saves (flushes deferred) into a folder of thousands of components would list the
// folder for every save, which grows with the square of the folder. The batch lists a folder
// once, keeps the names of our temporary files there by the file they belong to, and lists it
// again only when its modification time says that something else changed it since: each save
// of ours notes the time it leaves. (A temporary file that another process leaves in the same
// clock tick as a save of ours waits for a later listing; a live writer's is never removed.)
class FolderTemporaries {
 public:
  static FolderTemporaries& Get() {
    static FolderTemporaries index;
    return index;
  }

  // The temporary files of `target` in `folder`, listing it if it is new or changed; they are
  // forgotten until the caller gives back (Keep) those it could not remove.
  std::vector<std::string> Take(const fs::path& folder, const std::string& target) {
    struct stat st;
    if (::stat(folder.c_str(), &st) != 0) return {};
    Folder& known = folders_[folder.string()];
    if (!known.listed || !SameTime(known.modified, st.st_mtim)) {
      known.byTarget.clear();
      DIR* dir = ::opendir(folder.c_str());
      if (dir == nullptr) return {};
      while (const dirent* entry = ::readdir(dir)) {
        if (entry->d_name[0] != '.') continue;
        const std::string_view name = entry->d_name;
        const std::string_view owner = TemporaryTarget(name);
        if (!owner.empty()) known.byTarget[std::string(owner)].emplace_back(name);
      }
      ::closedir(dir);
      known.listed = true;
      known.modified = st.st_mtim;
    }
    const auto found = known.byTarget.find(target);
    if (found == known.byTarget.end()) return {};
    std::vector<std::string> names = std::move(found->second);
    known.byTarget.erase(found);
    return names;
  }

  // Temporary files of `target` still there after Take (a live writer's, say).
  void Keep(const fs::path& folder, const std::string& target, std::vector<std::string> names) {
    if (names.empty()) return;
    std::vector<std::string>& known = folders_[folder.string()].byTarget[target];
    for (std::string& name : names)
      known.push_back(std::move(name));
  }

  // A change of ours to the folder: what it holds is still known.
  void Changed(const fs::path& folder) {
    const auto known = folders_.find(folder.string());
    struct stat st;
    if (known != folders_.end() && ::stat(folder.c_str(), &st) == 0) {
      known->second.modified = st.st_mtim;
    }
  }

 private:
  static bool SameTime(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
  }
  struct Folder {
    bool listed = false;
    timespec modified{};
    std::unordered_map<std::string, std::vector<std::string>> byTarget;
  };
  std::unordered_map<std::string, Folder> folders_;
};

// Removes the temporary files of target in folder that no live writer holds.
void RemoveStaleIn(const fs::path& folder, const std::string& target) {
  if (DeferredFlush()) {
    FolderTemporaries& temporaries = FolderTemporaries::Get();
    std::vector<std::string> names = temporaries.Take(folder, target);
    if (names.empty()) return;
    const Descriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.get() < 0) return;
    std::erase_if(names,
                  [&](const std::string& name) { return RemoveIfStale(dir.get(), name.c_str()); });
    temporaries.Changed(folder);
    temporaries.Keep(folder, target, std::move(names));
    return;
  }
  // readdir, not directory_iterator: this runs before every save, over folders of thousands of
  // files, and most names are rejected by their first byte without building a path.
  DIR* dir = ::opendir(folder.c_str());
  if (dir == nullptr) return;
  const int dirFd = ::dirfd(dir);
  while (const dirent* entry = ::readdir(dir)) {
    if (entry->d_name[0] != '.' || !IsTemporaryOf(entry->d_name, target)) continue;
    RemoveIfStale(dirFd, entry->d_name);
  }
  ::closedir(dir);
}

// An exclusive advisory lock on a folder, held by every save of ours between its last check of
// the target and the rename that replaces it.
class FolderLock {
 public:
  FolderLock(const fs::path& folder, const std::string& shown)
      : fd_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (fd_.get() < 0) RaiseOsError(errno, shown, err::kPathNotFound);
    while (::flock(fd_.get(), LOCK_EX) != 0) {
      if (errno != EINTR) RaiseOsError(errno, shown, err::kPathFileAccess);
    }
  }
  int get() const { return fd_.get(); }

 private:
  Descriptor fd_;
};

// Creates a new temporary file beside target and locks it (see RemoveStaleIn); fills
// in its path.
int CreateTemporary(const fs::path& folder, const std::string& target, mode_t mode,
                    const std::string& shown, fs::path& temporary) {
  for (;;) {
    temporary = folder / TemporaryName(target);
    if (const int injected = Fault(WriteStep::kCreate)) {
      RaiseOsError(injected, shown, err::kPathNotFound);
    }
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd < 0) {
      if (errno == EEXIST) continue;
      RaiseOsError(errno, shown, err::kPathNotFound);
    }
    struct stat st;
    if (::flock(fd, LOCK_EX) == 0 && ::fstat(fd, &st) == 0 && st.st_nlink > 0) return fd;
    // Another save's clean-up took it for a dead writer's in the instant before we locked it.
    ::close(fd);
  }
}

// The Windows wildcard match proper, on folded code points: "*" any run, "?" one character.
bool GlobMatch(const std::u32string& pattern, const std::u32string& name) {
  std::size_t p = 0;
  std::size_t n = 0;
  std::size_t star = std::u32string::npos;
  std::size_t resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == U'?' || pattern[p] == name[n])) {
      ++p, ++n;
    } else if (p < pattern.size() && pattern[p] == U'*') {
      star = p++;
      resume = n;
    } else if (star != std::u32string::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == U'*')
    ++p;
  return p == pattern.size();
}

std::u32string FoldedCodePoints(std::string_view text) {
  std::u32string out;
  out.reserve(text.size());
  std::size_t pos = 0;
  while (pos < text.size()) {
    const std::size_t start = pos;
    const char32_t cp = utf8::Next(text, pos);
    out += cp == utf8::kInvalid ? (0x80000000u | static_cast<unsigned char>(text[start]))
                                : automation::FoldCodePoint(cp);
  }
  return out;
}

}  // namespace

bool FileExists(std::string_view path) {
  struct stat st;
  return StatPath(ToNative(path), st) && S_ISREG(st.st_mode);
}

bool FolderExists(std::string_view path) {
  struct stat st;
  return StatPath(ToNative(path), st) && S_ISDIR(st.st_mode);
}

bool IsFolder(std::string_view path) {
  return FolderExists(path);
}

uint32_t GetAttr(std::string_view path) {
  const fs::path native = ToNative(path);
  struct stat st;
  if (path.empty()) automation::Raise(err::kFileNotFound, path);
  if (!StatPath(native, st)) RaiseOsError(errno, path, err::kFileNotFound);
  if (S_ISDIR(st.st_mode)) return kAttrDirectory;
  return IsReadOnly(native, st) ? kAttrReadOnly : kAttrNormal;
}

LocalTime FileDateTime(std::string_view path) {
  const fs::path native = ToNative(path);
  struct stat st;
  if (path.empty()) automation::Raise(err::kFileNotFound, path);
  if (!StatPath(native, st)) RaiseOsError(errno, path, err::kFileNotFound);
  std::tm tm{};
  const std::time_t seconds = st.st_mtim.tv_sec;
  if (localtime_r(&seconds, &tm) == nullptr) automation::Raise(err::kDeviceIo, path);
  return {tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec};
}

std::optional<FileStamp> StampOf(std::string_view path) {
  struct stat st;
  if (path.empty() || !StatPath(ToNative(path), st) || !S_ISREG(st.st_mode)) return std::nullopt;
  const auto nanoseconds = [](const timespec& time) {
    return static_cast<int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
  };
  return FileStamp{static_cast<int64_t>(st.st_size), nanoseconds(st.st_mtim),
                   static_cast<uint64_t>(st.st_dev), static_cast<uint64_t>(st.st_ino),
                   nanoseconds(st.st_ctim)};
}

bool IsSettled(const FileStamp& stamp) {
  // Far more than a tick of any local file system's clock.
  constexpr int64_t kTickNs = 100'000'000;
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const int64_t nowNs = static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
  return nowNs - stamp.changedNs > kTickNs;
}

std::string ReadFile(std::string_view path, std::size_t limit) {
  const fs::path native = ToNative(path);
  if (path.empty()) automation::Raise(err::kFileNotFound, path);
  const std::string shown(path);
  // Look before opening: opening a FIFO waits for a writer, opening a device can act on it.
  struct stat st;
  if (!StatPath(native, st)) RaiseOsError(errno, path, err::kFileNotFound);
  if (S_ISDIR(st.st_mode)) automation::Raise(err::kPathFileAccess, path);
  if (!S_ISREG(st.st_mode)) RaiseNotRegular(shown, st.st_mode);
  // Without blocking, in case it was swapped for a FIFO since; what was opened is checked again.
  Descriptor fd(::open(native.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (fd.get() < 0) RaiseOsError(errno, path, err::kFileNotFound);
  if (::fstat(fd.get(), &st) != 0) RaiseOsError(errno, path, err::kFileNotFound);
  if (S_ISDIR(st.st_mode)) automation::Raise(err::kPathFileAccess, path);
  if (!S_ISREG(st.st_mode)) RaiseNotRegular(shown, st.st_mode);
  const auto tooLarge = [&] {
    automation::Raise(err::kPathFileAccess, shown + " is larger than " + std::to_string(limit) +
                                                " bytes; it was not read");
  };
  if (static_cast<std::uintmax_t>(st.st_size) > limit) tooLarge();

  // The size is a hint: a file that grows while we read is read to its end (or the limit). One
  // byte more than the size lets the read that finds the end need no second buffer.
  std::string bytes;
  bytes.resize(static_cast<std::size_t>(st.st_size) + 1);
  std::size_t size = 0;
  for (;;) {
    if (size == bytes.size()) {
      if (size > limit) tooLarge();
      bytes.resize(std::min(std::max(size * 2, std::size_t{4096}), limit + 1));
    }
    const ssize_t got = ::read(fd.get(), bytes.data() + size, bytes.size() - size);
    if (got < 0) {
      if (errno == EINTR) continue;
      RaiseOsError(errno, path, err::kFileNotFound);
    }
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
  }
  if (size > limit) tooLarge();
  bytes.resize(size);
  // A file that grew gave a buffer larger than its bytes; those who keep the bytes keep only them.
  if (bytes.capacity() > size + size / 8 + 64) bytes.shrink_to_fit();
  return bytes;
}

void RemoveStaleTemporaries(std::string_view path) {
  if (path.empty()) return;
  const fs::path target = ToNative(path);
  RemoveStaleIn(target.parent_path(), target.filename().string());
}

void SetDeferredFlush(bool deferred) {
  DeferredFlush() = deferred;
}

void FlushFileSystem(std::string_view path) {
  const std::string shown(path);
  const Descriptor fd(::open(ToNative(path).c_str(), O_RDONLY | O_CLOEXEC));
  if (fd.get() < 0) RaiseOsError(errno, shown, err::kPathNotFound);
  if (::syncfs(fd.get()) != 0) RaiseOsError(errno, shown, err::kPathNotFound);
}

void SetWriteFaultHook(std::function<int(WriteStep)> hook) {
  FaultHook() = std::move(hook);
}

void WriteFileAtomic(std::string_view path, std::string_view bytes,
                     const std::function<void()>& beforeReplace) {
  const std::string shown(path);
  if (path.empty()) automation::Raise(err::kPathNotFound, path);
  fs::path target = ToNative(path);
  std::error_code ec;
  if (fs::is_symlink(fs::symlink_status(target, ec))) {
    const fs::path resolved = fs::weakly_canonical(target, ec);
    if (!ec) target = resolved;
  }
  struct stat st;
  const bool exists = CheckWritable(target, shown, st);
  if (exists && !S_ISREG(st.st_mode)) RaiseNotRegular(shown, st.st_mode);

  const fs::path folder = target.parent_path();
  const std::string name = target.filename().string();
  RemoveStaleIn(folder, name);
  // State of the qx home is private (0600) whatever the umask or the mode it had before.
  const bool state = IsPrivateState(folder);
  const mode_t mode = state ? 0600 : exists ? (st.st_mode & 07777) : 0666;
  fs::path temporary;
  Descriptor fd(CreateTemporary(folder, name, mode, shown, temporary));
  try {
    // open() applied the umask; an existing target's bits are restored exactly, and its owner
    // too where we are allowed to set it.
    if ((exists || state) && ::fchmod(fd.get(), mode) != 0)
      RaiseOsError(errno, shown, err::kPathNotFound);
    if (exists && ::fchown(fd.get(), st.st_uid, st.st_gid) != 0) {
      // Not permitted for an ordinary user; the file then belongs to us, as after any save.
    }
    WriteAll(fd.get(), bytes, shown);
    if (!DeferredFlush()) {
      if (const int injected = Fault(WriteStep::kFlush))
        RaiseOsError(injected, shown, err::kPathNotFound);
      if (::fsync(fd.get()) != 0) RaiseOsError(errno, shown, err::kPathNotFound);
    }
    // The temporary file stays open (and locked) until it has replaced the target: closing it
    // would let another save's clean-up take it for a dead writer's. fsync has reported any
    // error that writing it could give.
    FolderLock lock(folder, shown);
    if (beforeReplace) beforeReplace();
    if (const int injected = Fault(WriteStep::kReplace))
      RaiseOsError(injected, shown, err::kPathNotFound);
    if (::rename(temporary.c_str(), target.c_str()) != 0) {
      RaiseOsError(errno, shown, err::kPathNotFound);
    }
    // Make the rename itself durable; a failure here no longer affects the contents.
    if (!DeferredFlush()) {
      ::fsync(lock.get());
    } else {
      FolderTemporaries::Get().Changed(folder);
    }
  } catch (...) {
    ::unlink(temporary.c_str());
    throw;
  }
}

void WritePrivateFile(const fs::path& file, std::string_view bytes) {
  const Descriptor fd(
      ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (fd.get() < 0) RaiseOsError(errno, file.string(), err::kPathNotFound);
  if (::fchmod(fd.get(), 0600) != 0) RaiseOsError(errno, file.string(), err::kPathNotFound);
  // Not through WriteAll: the write-fault seam is for saves of components, not for state.
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) RaiseOsError(errno, file.string(), err::kPathNotFound);
    bytes.remove_prefix(static_cast<size_t>(written));
  }
}

bool WildcardMatch(std::string_view pattern, std::string_view name) {
  const std::u32string folded = FoldedCodePoints(name);
  const std::u32string glob = FoldedCodePoints(pattern);
  if (GlobMatch(glob, folded)) return true;
  const bool hasDot = folded.find(U'.') != std::u32string::npos;
  const std::size_t n = glob.size();
  // DOS rules: "x.*" also matches "x" (so "*.*" matches everything), "x." matches names
  // without an extension.
  if (n >= 2 && glob[n - 2] == U'.' && glob[n - 1] == U'*') {
    return GlobMatch(glob.substr(0, n - 2), folded);
  }
  if (n >= 1 && glob[n - 1] == U'.' && !hasDot) {
    return GlobMatch(glob.substr(0, n - 1), folded);
  }
  return false;
}

std::vector<std::string> Dir(std::string_view pattern, bool includeFolders) {
  std::vector<std::string> names;
  const auto separator = LastSeparator(pattern);
  std::string_view name = pattern;
  fs::path folder;
  if (separator == std::string_view::npos) {
    // "c:*.frm" names the drive's root folder here: there is no current folder per drive.
    if (pattern.size() >= 2 && pattern[1] == ':') {
      folder = ToNative(pattern.substr(0, 2));
      name = pattern.substr(2);
    } else {
      folder = ToNative(".");
    }
  } else {
    std::string_view folderPart = pattern.substr(0, separator);
    // "\x" and "c:\x" name the root; keep the separator so the folder is not empty.
    if (folderPart.empty() || (folderPart.size() == 2 && folderPart[1] == ':')) {
      folderPart = pattern.substr(0, separator + 1);
    }
    folder = ToNative(folderPart);
    name = pattern.substr(separator + 1);
  }
  const std::string wildcard = name.empty() ? std::string("*") : std::string(name);

  std::error_code ec;
  fs::directory_iterator it(folder, ec);
  if (ec) return names;
  if (includeFolders) {
    for (const char* special : {".", ".."}) {
      if (WildcardMatch(wildcard, special)) names.emplace_back(special);
    }
  }
  for (; it != fs::directory_iterator(); it.increment(ec)) {
    if (ec) break;
    std::string entry = it->path().filename().string();
    if (entry.empty() || entry[0] == '.') continue;
    std::error_code typeError;
    const bool isFile = it->is_regular_file(typeError);
    const bool isFolder = !isFile && it->is_directory(typeError);
    if (!isFile && !(includeFolders && isFolder)) continue;
    if (WildcardMatch(wildcard, entry)) names.push_back(std::move(entry));
  }
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    const int order = automation::CompareNoCaseUnicode(a, b);
    return order != 0 ? order < 0 : a < b;
  });
  return names;
}

}  // namespace platform
