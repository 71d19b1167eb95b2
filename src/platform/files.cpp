#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <random>
#include <system_error>

#include "automation/casefold.h"
#include "automation/error.h"
#include "automation/utf8.h"
#include "platform/os_error.h"
#include "platform/paths.h"

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

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return fd_; }
  // Closes now and reports the result; a failing close can mean the data did not reach disk.
  int Close() {
    const int result = ::close(fd_);
    fd_ = -1;
    return result;
  }

 private:
  int fd_;
};

void WriteAll(int fd, std::string_view bytes, const std::string& shownPath) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      RaiseOsError(errno, shownPath, err::kPathNotFound);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
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

std::string TemporaryName(const std::string& target) {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string suffix;
  auto value = random();
  for (int i = 0; i < 12; ++i, value >>= 4)
    suffix += kDigits[value & 15];
  return "." + target + ".qx-" + suffix;
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
  return FileStamp{static_cast<int64_t>(st.st_size),
                   static_cast<int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec};
}

std::string ReadFile(std::string_view path) {
  const fs::path native = ToNative(path);
  if (path.empty()) automation::Raise(err::kFileNotFound, path);
  Descriptor fd(::open(native.c_str(), O_RDONLY | O_CLOEXEC));
  if (fd.get() < 0) RaiseOsError(errno, path, err::kFileNotFound);
  struct stat st;
  if (::fstat(fd.get(), &st) != 0) RaiseOsError(errno, path, err::kFileNotFound);
  if (S_ISDIR(st.st_mode)) automation::Raise(err::kPathFileAccess, path);

  std::string bytes;
  std::size_t size = 0;
  // The size is a hint: a file that grows while we read is read to its end.
  std::size_t capacity = S_ISREG(st.st_mode) ? static_cast<std::size_t>(st.st_size) + 1 : 65536;
  for (;;) {
    if (bytes.size() < size + 1) bytes.resize(std::max(capacity, size + 65536));
    const ssize_t got = ::read(fd.get(), bytes.data() + size, bytes.size() - size);
    if (got < 0) {
      if (errno == EINTR) continue;
      RaiseOsError(errno, path, err::kFileNotFound);
    }
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
  }
  bytes.resize(size);
  return bytes;
}

void WriteFileAtomic(std::string_view path, std::string_view bytes) {
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

  const fs::path folder = target.parent_path();
  const fs::path temporary = folder / TemporaryName(target.filename().string());
  const mode_t mode = exists ? (st.st_mode & 07777) : 0666;
  Descriptor fd(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  if (fd.get() < 0) RaiseOsError(errno, shown, err::kPathNotFound);
  try {
    // open() applied the umask; an existing target's bits are restored exactly, and its owner
    // too where we are allowed to set it.
    if (exists) {
      if (::fchmod(fd.get(), mode) != 0) RaiseOsError(errno, shown, err::kPathNotFound);
      if (::fchown(fd.get(), st.st_uid, st.st_gid) != 0) {
        // Not permitted for an ordinary user; the file then belongs to us, as after any save.
      }
    }
    WriteAll(fd.get(), bytes, shown);
    if (::fsync(fd.get()) != 0) RaiseOsError(errno, shown, err::kPathNotFound);
    if (fd.Close() != 0) RaiseOsError(errno, shown, err::kPathNotFound);
    if (::rename(temporary.c_str(), target.c_str()) != 0) {
      RaiseOsError(errno, shown, err::kPathNotFound);
    }
  } catch (...) {
    ::unlink(temporary.c_str());
    throw;
  }
  // Make the rename itself durable; a failure here no longer affects the contents.
  Descriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (dir.get() >= 0) ::fsync(dir.get());
}

void WriteFile(std::string_view path, std::string_view bytes) {
  const std::string shown(path);
  if (path.empty()) automation::Raise(err::kPathNotFound, path);
  const fs::path target = ToNative(path);
  struct stat st;
  CheckWritable(target, shown, st);
  Descriptor fd(::open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (fd.get() < 0) RaiseOsError(errno, shown, err::kPathNotFound);
  WriteAll(fd.get(), bytes, shown);
  if (fd.Close() != 0) RaiseOsError(errno, shown, err::kPathNotFound);
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
