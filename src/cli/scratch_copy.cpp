#include "cli/scratch_copy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <system_error>

#include "automation/error.h"
#include "platform/descriptor.h"
#include "platform/os_error.h"
#include "platform/private_folders.h"

namespace cli {
namespace fs = std::filesystem;
namespace {

using platform::Descriptor;

[[noreturn]] void Refuse(int err, const fs::path& at) {
  platform::RaiseOsError(err, at.string(), automation::err::kPathNotFound);
}

}  // namespace

ScratchCopy::ScratchCopy(const fs::path& project, const std::vector<ComponentFile>& files) {
  std::vector<fs::path> copied;
  for (const ComponentFile& file : files) {
    if (!fs::exists(file.file)) continue;
    const std::vector<CompanionFile> companions = CompanionFiles(file.file);
    if (file.absolute || std::any_of(companions.begin(), companions.end(),
                                     [](const CompanionFile& c) { return c.absolute; })) {
      leftOut_.push_back(file);
      continue;
    }
    copied.push_back(file.file);
    for (const CompanionFile& companion : companions)
      copied.push_back(companion.file);
  }
  root_ = platform::MakeTempFolder(fs::temp_directory_path(), "qx-preview-");
  try {
    std::set<fs::path> done;
    Copy(project);
    done.insert(Inside(project));
    for (const fs::path& file : copied) {
      if (done.insert(Inside(file)).second) Copy(file);
    }
  } catch (...) {
    std::error_code ec;
    fs::remove_all(root_, ec);
    throw;
  }
  project_ = Inside(project);
}

ScratchCopy::~ScratchCopy() {
  std::error_code ec;
  fs::remove_all(root_, ec);
}

fs::path ScratchCopy::Inside(const fs::path& file) const {
  return root_ / fs::absolute(file).lexically_normal().relative_path();
}

fs::path ScratchCopy::Outside(const fs::path& file) const {
  const fs::path relative = file.lexically_normal().lexically_relative(root_);
  if (relative.empty() || *relative.begin() == "..") return file;
  return fs::path("/") / relative;
}

// Walks down from the copy's root one folder at a time, each made here (0700) or made here
// before, and opened without following a link; the file is then created new in the last one.
void ScratchCopy::Copy(const fs::path& file) {
  const fs::path relative = Inside(file).lexically_relative(root_);
  auto folder = std::make_unique<Descriptor>(
      ::open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (folder->get() < 0) Refuse(errno, root_);
  fs::path at = root_;
  for (auto part = relative.begin(); part != relative.end(); ++part) {
    if (std::next(part) == relative.end()) break;
    at /= *part;
    if (::mkdirat(folder->get(), part->c_str(), 0700) != 0 && errno != EEXIST) Refuse(errno, at);
    auto next = std::make_unique<Descriptor>(
        ::openat(folder->get(), part->c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (next->get() < 0) Refuse(errno, at);
    folder = std::move(next);
  }
  const Descriptor source(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (source.get() < 0) Refuse(errno, file);
  struct stat st;
  if (::fstat(source.get(), &st) != 0) Refuse(errno, file);
  const fs::path target = Inside(file);
  const Descriptor out(::openat(folder->get(), target.filename().c_str(),
                                O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (out.get() < 0) Refuse(errno, target);
  char buffer[65536];
  for (;;) {
    const ssize_t got = ::read(source.get(), buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) Refuse(errno, file);
    if (got == 0) break;
    for (ssize_t put = 0; put < got;) {
      const ssize_t n = ::write(out.get(), buffer + put, static_cast<size_t>(got - put));
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) Refuse(errno, target);
      put += n;
    }
  }
  // The copy keeps the file's permissions: a read-only file stays one, as the write would find.
  if (::fchmod(out.get(), st.st_mode & 0777) != 0) Refuse(errno, target);
}

}  // namespace cli
