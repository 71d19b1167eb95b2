#pragma once
// File-system calls with Windows-style paths (see paths.h) and VB's error numbers: 53 file not
// found, 76 path not found, 70 permission denied, 75 path/file access error, 57 device I/O
// error, 61 disk full.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// VB's attribute bits as GetAttr returns them.
inline constexpr uint32_t kAttrNormal = 0;
inline constexpr uint32_t kAttrReadOnly = 1;
inline constexpr uint32_t kAttrDirectory = 16;

// A regular file (symbolic links followed).
bool FileExists(std::string_view path);
// A folder (symbolic links followed).
bool FolderExists(std::string_view path);
bool IsFolder(std::string_view path);

// kAttrDirectory for a folder; for a file kAttrReadOnly when nobody has write permission on it
// or we may not write it, else kAttrNormal. Raises 53 when the path does not exist.
uint32_t GetAttr(std::string_view path);

struct LocalTime {
  int year, month, day, hour, minute, second;
};

// Last-modified time in local time. Raises 53 when the path does not exist.
LocalTime FileDateTime(std::string_view path);

// What tells one version of a file from another without reading it: its size, its
// last-modified time to the nanosecond, its inode (a file replaced by a rename is another one)
// and its status-change time, which every write moves and which, unlike the modified time, no
// program can set back (`touch -r` after an edit of the same size).
struct FileStamp {
  int64_t size = 0;
  int64_t modifiedNs = 0;
  uint64_t device = 0;
  uint64_t inode = 0;
  int64_t changedNs = 0;
  bool operator==(const FileStamp&) const = default;
};

// The stamp of a regular file (symbolic links followed); nullopt when there is none.
std::optional<FileStamp> StampOf(std::string_view path);

// Whether a stamp just taken tells this version of the file from every later one. The file
// system's clock moves in ticks of some milliseconds: a file changed moments ago may change
// again within the same tick, its size kept, and keep its stamp. Whoever holds a stamp that is
// not settled compares the file's bytes at its next look instead of trusting the stamp.
bool IsSettled(const FileStamp& stamp);

// The most ReadFile reads unless told otherwise: far beyond any VB source or companion file.
inline constexpr std::size_t kReadLimit = std::size_t{512} << 20;

// The whole file as bytes. Only regular files are read: a FIFO, a device or a socket raises 75
// saying what it is, without waiting on it or reading from it; so does a file larger than limit.
// Raises 53 when missing, 70 when not readable, 75 for a folder.
std::string ReadFile(std::string_view path, std::size_t limit = kReadLimit);

// Replaces the file so that readers see either the old or the new contents, never a part:
// writes a temporary file beside the target (".<name>.qx-<12 hex digits>"), flushes it to disk,
// renames it over the target. The target keeps its permission bits (a new file gets the usual
// ones). A symbolic link is followed and the file it names is replaced. Raises 70 for a
// read-only target, 75 for a folder, 76 when the folder is missing, 61 when the disk is full;
// on any failure the target is as it was and the temporary file is gone.
//
// beforeReplace, when given, runs with the new contents flushed, immediately before the rename,
// while this process holds the folder's save lock (an advisory lock that every save of ours
// takes): a check there (has someone else changed the file?) cannot be overtaken by another of
// our writers. Raising from it abandons the write.
//
// Temporary files of earlier saves of the same target that no live writer holds (a save killed
// half way) are removed first.
void WriteFileAtomic(std::string_view path, std::string_view bytes,
                     const std::function<void()>& beforeReplace = {});

// Writes a file of the qx home's state: created or truncated, mode 0600, never through a link.
void WritePrivateFile(const std::filesystem::path& file, std::string_view bytes);

// When WriteFileAtomic waits for the disk. Immediately (the default): the new contents, and then
// the rename, are flushed to disk before it returns. Deferred: it writes and renames without
// waiting, and whoever ends the batch of writes calls FlushFileSystem; a replace across
// thousands of files would otherwise spend most of its time waiting for flushes, one pair per
// file. Either way a reader, or a writer that dies half way, sees the old file or the new one.
void SetDeferredFlush(bool deferred);

// Flushes to disk everything written so far on the file system that holds `path` (a file or a
// folder). Raises 57 when the disk reports an error.
void FlushFileSystem(std::string_view path);

// Removes what WriteFileAtomic removes before writing: temporary files of earlier saves of this
// file that no live writer holds. For a save that finds nothing to write.
void RemoveStaleTemporaries(std::string_view path);

// A test seam: the steps of WriteFileAtomic where a failure can strike.
enum class WriteStep : uint8_t {
  kCreate,   // creating the temporary file
  kWrite,    // each write of its contents
  kFlush,    // flushing it to disk (skipped when flushes are deferred)
  kReplace,  // renaming it over the target
};
// Called at every step before it is taken; a nonzero result makes the step fail with that errno
// (a write then fails part way through, as on a full disk). The hook may also act (change the
// target, end the process) to stand for what happens meanwhile. An empty hook removes it.
void SetWriteFaultHook(std::function<int(WriteStep)> hook);

// VB's Dir listing. pattern is folder & "\" & name, where name may hold the Windows wildcards
// "*" and "?" (matched case-insensitively; "*.*" matches every name, with or without a dot;
// "x.*" also matches "x"; "*." matches names without a dot); an empty name lists everything.
// Returns entry names (not paths): regular files, and also folders when includeFolders, with
// "." and ".." when the pattern matches them, as Windows lists them. Names beginning with a dot
// are hidden files, as Wine shows them, and are left out. A missing folder gives an empty list.
// Sorted case-insensitively.
std::vector<std::string> Dir(std::string_view pattern, bool includeFolders);

// Whether name matches a Windows wildcard pattern (the matching rule of Dir).
bool WildcardMatch(std::string_view pattern, std::string_view name);

}  // namespace platform
