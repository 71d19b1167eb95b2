#include "platform/folder_listing.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <memory>
#include <mutex>
#include <set>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

#include "automation/casefold.h"

namespace fs = std::filesystem;

namespace platform {
namespace {

using automation::FoldCaseUnicode;

int64_t Nanoseconds(const timespec& time) {
  return static_cast<int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

// Whether every change made from now on will show in a folder whose modification time says
// `modified`. Times finer than a millisecond come from a file system that stamps them from the
// kernel's coarse clock or a finer one: once that clock has passed the time, a later change
// shows. Other times are trusted once two seconds old (FAT keeps times of two seconds).
bool Settled(const timespec& modified) {
  timespec now{};
  if (modified.tv_nsec % 1000000 != 0) {
    ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return Nanoseconds(now) > Nanoseconds(modified);
  }
  constexpr int64_t kCoarseSettled = int64_t{2} * 1000000000;
  ::clock_gettime(CLOCK_REALTIME, &now);
  return Nanoseconds(now) - Nanoseconds(modified) >= kCoarseSettled;
}

using Names = std::set<std::string>;  // in byte order
using Index = std::unordered_map<std::string, Names>;

void Insert(Index& index, std::string key, const std::string& name) {
  index[std::move(key)].insert(name);
}

void Erase(Index& index, const std::string& key, const std::string& name) {
  const auto found = index.find(key);
  if (found == index.end()) return;
  found->second.erase(name);
  if (found->second.empty()) index.erase(found);
}

// One folder's names, by their folded names and their folded stems.
struct Listing {
  ino_t inode = 0;  // a folder made anew at the same path is another folder
  int64_t modifiedNs = 0;
  int watch = -1;  // the inotify watch that follows the folder; without one, its time does
  Index byName;
  Index byStem;

  void Add(const std::string& name) {
    Insert(byName, FoldCaseUnicode(name), name);
    Insert(byStem, FoldCaseUnicode(fs::path(name).stem().string()), name);
  }
  void Remove(const std::string& name) {
    Erase(byName, FoldCaseUnicode(name), name);
    Erase(byStem, FoldCaseUnicode(fs::path(name).stem().string()), name);
  }
};

class Listings {
 public:
  static Listings& Get() {
    // Never destroyed: paths are looked up while other statics go at exit.
    static Listings* listings = new Listings();
    return *listings;
  }

  // Answers from the folder's listing, made current first; `answer` is not called when the
  // folder cannot be read.
  template <class Answer>
  void With(const fs::path& folder, Answer&& answer) {
    const std::lock_guard<std::mutex> lock(mutex_);
    TakeChanges();
    struct stat st {};
    if (::stat(folder.c_str(), &st) != 0) return;
    const std::string key = folder.string();
    if (const auto found = listings_.find(key); found != listings_.end()) {
      const Listing& known = *found->second;
      if (known.inode == st.st_ino &&
          (known.watch >= 0 || known.modifiedNs == Nanoseconds(st.st_mtim))) {
        answer(known);
        return;
      }
      Drop(key);
    }
    if (listings_.size() >= kKept) DropAll();
    auto listing = std::make_unique<Listing>();
    listing->inode = st.st_ino;
    listing->modifiedNs = Nanoseconds(st.st_mtim);
    // A folder listed a second time is followed from then on. Not the first time: ending a
    // process that holds watches waits for the kernel (milliseconds), which a short run that
    // lists each folder once need not pay.
    if (!listedOnce_.insert(key).second) {
      Watch(key, *listing);  // before the listing is read, so that no change falls between
    } else if (listedOnce_.size() > kRemembered) {
      listedOnce_ = {key};
    }
    if (!Read(folder, *listing)) {
      Unwatch(key, *listing);
      return;
    }
    answer(*listing);
    if (listing->watch >= 0 || Settled(st.st_mtim)) {
      listings_.insert_or_assign(key, std::move(listing));
    } else {
      Unwatch(key, *listing);
    }
  }

 private:
  static constexpr size_t kKept = 64;
  static constexpr size_t kRemembered = 1024;
  static constexpr int kNoWatchesYet = -2;
  static constexpr uint32_t kEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                      IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

  Listings() = default;

  static bool Read(const fs::path& folder, Listing& listing) {
    std::error_code ec;
    fs::directory_iterator it(folder, ec);
    if (ec) return false;
    for (; it != fs::directory_iterator(); it.increment(ec)) {
      if (ec) break;
      listing.Add(it->path().filename().string());
    }
    return true;
  }

  void Watch(const std::string& key, Listing& listing) {
    if (events_ == kNoWatchesYet) events_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (events_ < 0) return;
    const int watch = ::inotify_add_watch(events_, key.c_str(), kEvents);
    // A folder reached by two paths has one watch; the second path goes by its time.
    if (watch < 0 || byWatch_.count(watch) != 0) return;
    listing.watch = watch;
    byWatch_.emplace(watch, key);
  }

  void Unwatch(const std::string& key, const Listing& listing) {
    if (listing.watch < 0) return;
    const auto watched = byWatch_.find(listing.watch);
    if (watched == byWatch_.end() || watched->second != key) return;
    ::inotify_rm_watch(events_, listing.watch);
    byWatch_.erase(watched);
  }

  void Drop(const std::string& key) {
    const auto found = listings_.find(key);
    if (found == listings_.end()) return;
    Unwatch(key, *found->second);
    listings_.erase(found);
  }

  void DropAll() {
    for (const auto& [key, listing] : listings_)
      Unwatch(key, *listing);
    listings_.clear();
  }

  // Takes in the names added to and removed from the watched folders since the last look.
  void TakeChanges() {
    if (events_ < 0 || byWatch_.empty()) return;
    alignas(inotify_event) char buffer[16384];
    for (;;) {
      const ssize_t got = ::read(events_, buffer, sizeof buffer);
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) return;  // EAGAIN: nothing more
      for (const char* at = buffer; at < buffer + got;) {
        const auto* event = reinterpret_cast<const inotify_event*>(at);
        at += sizeof(inotify_event) + event->len;
        if ((event->mask & IN_Q_OVERFLOW) != 0) {
          DropAll();  // changes were lost: each folder is listed again
          continue;
        }
        const auto watched = byWatch_.find(event->wd);
        if (watched == byWatch_.end()) continue;
        const std::string key = watched->second;
        const auto found = listings_.find(key);
        if (found == listings_.end()) {
          byWatch_.erase(watched);
          continue;
        }
        if ((event->mask & (IN_IGNORED | IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT)) != 0) {
          Drop(key);
          continue;
        }
        if (event->len == 0) continue;
        const std::string name(event->name);  // the kernel pads it with NULs
        if ((event->mask & (IN_CREATE | IN_MOVED_TO)) != 0) found->second->Add(name);
        if ((event->mask & (IN_DELETE | IN_MOVED_FROM)) != 0) found->second->Remove(name);
      }
    }
  }

  std::mutex mutex_;
  int events_ = kNoWatchesYet;  // the inotify instance, made for the first watch
  std::unordered_set<std::string> listedOnce_;
  std::unordered_map<std::string, std::unique_ptr<Listing>> listings_;
  std::unordered_map<int, std::string> byWatch_;
};

}  // namespace

std::optional<std::string> EntryNoCase(const fs::path& folder, std::string_view name) {
  std::optional<std::string> entry;
  Listings::Get().With(folder, [&](const Listing& listing) {
    const auto found = listing.byName.find(FoldCaseUnicode(name));
    if (found != listing.byName.end()) entry = *found->second.begin();
  });
  return entry;
}

std::vector<std::string> EntriesWithStem(const fs::path& folder, std::string_view stem) {
  std::vector<std::string> entries;
  Listings::Get().With(folder, [&](const Listing& listing) {
    const auto found = listing.byStem.find(FoldCaseUnicode(stem));
    if (found != listing.byStem.end()) entries.assign(found->second.begin(), found->second.end());
  });
  return entries;
}

}  // namespace platform
