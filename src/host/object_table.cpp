#include "host/object_table.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <unordered_map>
#include <vector>

#include "automation/casefold.h"
#include "automation/error.h"
#include "automation/peer.h"
#include "automation/remote.h"
#include "platform/files.h"
#include "platform/home.h"
#include "platform/paths.h"

namespace host {
namespace {

namespace fs = std::filesystem;
using automation::ObjectRef;

// How a process is told apart from a later one that got the same number: the time it started,
// in clock ticks since boot, as /proc shows it.
struct ProcessStamp {
  bool alive = false;
  std::string start;
};

ProcessStamp StampOf(long pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
  std::string stat;
  if (!in || !std::getline(in, stat)) return {};
  // "pid (command) state ppid ...": the command may hold anything, so fields count from the
  // last ")". The state is field 3, the start time field 22.
  const size_t close = stat.rfind(')');
  if (close == std::string::npos) return {};
  std::istringstream fields(stat.substr(close + 1));
  std::string field;
  std::vector<std::string> values;
  while (fields >> field)
    values.push_back(field);
  if (values.size() < 20) return {};
  ProcessStamp stamp;
  stamp.alive = values[0] != "Z" && values[0] != "X";  // a zombie has ended
  stamp.start = values[19];
  return stamp;
}

const std::string& OwnStart() {
  static const std::string start = StampOf(::getpid()).start;
  return start;
}

int64_t Now() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

// One registration as its entry file records it.
struct Entry {
  long pid = 0;
  std::string start;
  std::string socket;
  int64_t stamp = 0;
  int32_t cookie = 0;
  std::string key;
};

std::optional<Entry> ReadEntry(const fs::path& file) {
  std::ifstream in(file);
  std::string line;
  if (!std::getline(in, line) || line != "qx-object 1") return std::nullopt;
  Entry entry;
  try {
    while (std::getline(in, line)) {
      const size_t space = line.find(' ');
      const std::string field = line.substr(0, space);
      const std::string value = space == std::string::npos ? "" : line.substr(space + 1);
      if (field == "pid") entry.pid = std::stol(value);
      if (field == "start") entry.start = value;
      if (field == "socket") entry.socket = value;
      if (field == "stamp") entry.stamp = std::stoll(value);
      if (field == "cookie") entry.cookie = std::stoi(value);
      if (field == "name") entry.key = value;
    }
  } catch (const std::exception&) {
    return std::nullopt;  // half-written or foreign: not an entry
  }
  if (entry.pid <= 0 || entry.socket.empty()) return std::nullopt;
  return entry;
}

// Written beside the target and renamed, so that readers never see half an entry.
void WriteEntry(const fs::path& file, const Entry& entry) {
  const fs::path temporary = file.parent_path() / ("." + file.filename().string() + ".tmp");
  std::ostringstream out;
  out << "qx-object 1\npid " << entry.pid << "\nstart " << entry.start << "\nsocket "
      << entry.socket << "\nstamp " << entry.stamp << "\ncookie " << entry.cookie << "\nname "
      << entry.key << "\n";
  platform::WritePrivateFile(temporary, out.str());
  std::error_code ec;
  fs::rename(temporary, file, ec);
  if (ec) automation::Raise(automation::err::kPathFileAccess, file.string() + ": " + ec.message());
}

void RemoveQuietly(const fs::path& file) {
  std::error_code ec;
  fs::remove(file, ec);
}

struct Registration {
  int32_t cookie;
  std::string key;
  ObjectRef object;
  int64_t stamp;
  fs::path file;  // empty for a private registration
};

// What this process holds: its registrations, and one socket per run folder serving them.
struct State {
  std::vector<Registration> registrations;
  int32_t next = 1;
  int64_t lastStamp = 0;
  std::map<fs::path, std::unique_ptr<automation::Listener>> listeners;
  std::function<void(const std::string& key)> lookupObserver;

  // At exit the entry files go; the listeners remove their sockets.
  ~State() {
    for (const auto& r : registrations)
      RemoveQuietly(r.file);
  }

  ObjectRef Lookup(int32_t cookie) const {
    for (const auto& r : registrations) {
      if (r.cookie == cookie) return r.object;
    }
    return nullptr;
  }
};

State& TheState() {
  static State state;
  return state;
}

// What the socket serves: this process's registrations, by cookie (Nothing once revoked).
class Registrations : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<Registrations>("Registrations")
            .Method("Find", &Registrations::Find, {"Cookie"})
            .Build();
    return info;
  }
  ObjectRef Find(int32_t cookie) {
    if (const auto& observer = TheState().lookupObserver) {
      for (const auto& r : TheState().registrations) {
        if (r.cookie != cookie) continue;
        const std::string key = r.key;  // the observer may withdraw the registration
        observer(key);
        break;
      }
    }
    return TheState().Lookup(cookie);
  }
};

const std::string& SocketFor(const fs::path& run) {
  auto& listeners = TheState().listeners;
  auto it = listeners.find(run);
  if (it == listeners.end()) {
    const fs::path socket = run / (std::to_string(::getpid()) + ".sock");
    it = listeners
             .emplace(run, std::make_unique<automation::Listener>(
                               socket.string(), std::make_shared<Registrations>()))
             .first;
  }
  return it->second->Path();
}

}  // namespace

namespace {

// An entry of another live process, with its file.
struct LiveEntry {
  Entry entry;
  fs::path file;
};

// An entry as read from its file, remembered by the file's path and inode: an entry file is
// renamed into place whole and never changed, so each is read once by each process, however
// often the table is looked at.
std::optional<Entry> EntryOf(const fs::path& run, std::string_view name, ino_t inode) {
  struct Read {
    ino_t inode;
    std::optional<Entry> entry;
  };
  static std::mutex lock;
  static std::unordered_map<std::string, Read> read;
  std::string file = (run / std::string(name)).string();
  const std::lock_guard<std::mutex> hold(lock);
  if (const auto known = read.find(file); known != read.end() && known->second.inode == inode)
    return known->second.entry;
  if (read.size() > 4096) read.clear();  // of files long gone, mostly
  std::optional<Entry> entry = ReadEntry(file);
  read.insert_or_assign(std::move(file), Read{inode, entry});
  return entry;
}

// The registrations of the other processes that are still running, of one key only when one is
// given. Entries (and sockets) left by processes that have ended are removed on the way; with a
// key, only its own entries are checked, so that a look-up asks the process table about the
// processes that registered the name rather than about every process of the home. An entry's
// file name carries the tag of its key (PID-COOKIE-TAG.entry), so that a look-up reads only the
// entries of its own name: an IDE holding a group of hundreds of projects has one for each.
std::vector<LiveEntry> OtherLiveEntries(const std::string* key = nullptr) {
  std::vector<LiveEntry> live;
  const fs::path run = platform::RunFolder();
  const std::string ownTag = key != nullptr ? "-" + ObjectTable::KeyTag(*key) + ".entry" : "";
  // Each process is asked about once per listing, however many names it registered.
  std::map<long, ProcessStamp> processes;
  const auto stampOf = [&processes](long pid) -> const ProcessStamp& {
    auto known = processes.find(pid);
    if (known == processes.end()) known = processes.emplace(pid, StampOf(pid)).first;
    return known->second;
  };
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(run.c_str()), &::closedir);
  if (!folder) return live;
  while (const dirent* item = ::readdir(folder.get())) {
    const std::string_view name = item->d_name;
    const bool isEntry = name.ends_with(".entry");
    if (key != nullptr) {
      if (!isEntry) continue;
      const bool tagged = std::count(name.begin(), name.end(), '-') == 2;
      if (tagged && !name.ends_with(ownTag)) continue;
    }
    if (name.ends_with(".sock")) {
      // The socket of a process that ended without registrations left.
      const std::string_view stem = name.substr(0, name.size() - 5);
      if (!stem.empty() && stem.find_first_not_of("0123456789") == std::string::npos &&
          stem.size() < 10 && !stampOf(std::stol(std::string(stem))).alive) {
        RemoveQuietly(run / std::string(name));
      }
      continue;
    }
    if (name.front() == '.' && name.ends_with(".entry.tmp")) {
      // An entry being written ("." PID "-" COOKIE ".entry.tmp") by a process that ended first.
      const long pid = std::strtol(item->d_name + 1, nullptr, 10);
      if (pid > 0 && !stampOf(pid).alive) RemoveQuietly(run / std::string(name));
      continue;
    }
    if (!isEntry) continue;
    std::optional<Entry> entry = EntryOf(run, name, item->d_ino);
    if (!entry || (key != nullptr && entry->key != *key)) continue;
    if (entry->pid == ::getpid() && entry->start == OwnStart()) continue;  // ours: in memory
    const ProcessStamp& process = stampOf(entry->pid);
    const fs::path file = run / std::string(name);
    if (!process.alive || process.start != entry->start) {
      // Left by a process that has ended: clean up after it.
      RemoveQuietly(file);
      if (fs::path(entry->socket).parent_path() == run) RemoveQuietly(entry->socket);
      continue;
    }
    live.push_back(LiveEntry{std::move(*entry), file});
  }
  return live;
}

}  // namespace

ObjectTable& ObjectTable::Get() {
  static ObjectTable table;
  return table;
}

int32_t ObjectTable::Add(const std::string& name, automation::ObjectRef object) {
  // What ended processes left is cleared here, once per registration; a look-up checks the
  // registrations of its own name only.
  OtherLiveEntries();
  State& state = TheState();
  const fs::path run = platform::RunFolder();
  Entry entry;
  entry.pid = ::getpid();
  entry.start = OwnStart();
  entry.socket = SocketFor(run);
  entry.stamp = std::max(Now(), state.lastStamp + 1);
  entry.cookie = state.next;
  entry.key = Key(name);
  const fs::path file = run / (std::to_string(entry.pid) + "-" + std::to_string(entry.cookie) +
                               "-" + KeyTag(entry.key) + ".entry");
  WriteEntry(file, entry);
  state.next = state.next == std::numeric_limits<int32_t>::max() ? 1 : state.next + 1;
  state.lastStamp = entry.stamp;
  state.registrations.push_back(
      Registration{entry.cookie, entry.key, std::move(object), entry.stamp, file});
  return entry.cookie;
}

int32_t ObjectTable::AddPrivate(const std::string& name, automation::ObjectRef object) {
  State& state = TheState();
  const int32_t cookie = state.next;
  state.next = state.next == std::numeric_limits<int32_t>::max() ? 1 : state.next + 1;
  state.lastStamp = std::max(Now(), state.lastStamp + 1);
  state.registrations.push_back(
      Registration{cookie, Key(name), std::move(object), state.lastStamp, fs::path()});
  return cookie;
}

automation::ObjectRef ObjectTable::Find(const std::string& name) {
  const std::string key = Key(name);
  // This process's private registrations first: the latest of the name, if any.
  const auto& own = TheState().registrations;
  for (auto r = own.rbegin(); r != own.rend(); ++r) {
    if (r->file.empty() && r->key == key) return r->object;
  }
  struct Candidate {
    int64_t stamp;
    ObjectRef local;  // this process's own object
    Entry entry;      // else the registration in another process
    fs::path file;
  };
  // A registration may be withdrawn between reading its entry and asking its process for it
  // (the IDE reopens a project whose file changed when it is asked, and registers its
  // dispatcher anew): the table is then read once more.
  bool withdrawn = true;
  for (int pass = 0; pass < 2 && withdrawn; ++pass) {
    withdrawn = false;
    std::vector<Candidate> candidates;
    for (const auto& r : TheState().registrations) {
      if (r.key == key) candidates.push_back(Candidate{r.stamp, r.object, {}, {}});
    }
    for (LiveEntry& live : OtherLiveEntries(&key)) {
      if (live.entry.key == key)
        candidates.push_back(
            Candidate{live.entry.stamp, nullptr, std::move(live.entry), live.file});
    }

    std::sort(candidates.begin(), candidates.end(),
              [](const Candidate& a, const Candidate& b) { return a.stamp > b.stamp; });
    for (const Candidate& candidate : candidates) {
      if (candidate.local) return candidate.local;
      try {
        ObjectRef registrations = automation::Connect(candidate.entry.socket);
        ObjectRef found =
            automation::Dispatch(registrations).Call("Find", candidate.entry.cookie).ToObject();
        if (found) return found;
        withdrawn = true;
      } catch (const automation::Error& e) {
        // The process ended between the check and the call: its entry is stale. One that is
        // there but does not answer is no stale entry: the caller hears of it.
        if (e.Number() != automation::err::kServerUnavailable ||
            automation::StateOf(candidate.entry.pid) != automation::ProcessState::Gone) {
          throw;
        }
        RemoveQuietly(candidate.file);
      }
    }
  }
  return nullptr;
}

void ObjectTable::SetLookupObserver(std::function<void(const std::string& key)> observer) {
  TheState().lookupObserver = std::move(observer);
}

bool ObjectTable::Registered(const std::string& name) {
  const std::string key = Key(name);
  for (const auto& r : TheState().registrations) {
    if (!r.file.empty() && r.key == key) return true;
  }
  return !OtherLiveEntries(&key).empty();
}

std::vector<std::string> ObjectTable::Names() {
  std::vector<std::string> names;
  for (const auto& r : TheState().registrations) {
    if (!r.file.empty()) names.push_back(r.key);
  }
  for (const LiveEntry& live : OtherLiveEntries())
    names.push_back(live.entry.key);
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

std::vector<std::string> ObjectTable::NamesOf(long pid) {
  std::vector<std::string> names;
  for (const LiveEntry& live : OtherLiveEntries()) {
    if (live.entry.pid == pid) names.push_back(live.entry.key);
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool ObjectTable::Remove(int32_t cookie) {
  auto& registrations = TheState().registrations;
  auto it = std::find_if(registrations.begin(), registrations.end(),
                         [&](const Registration& r) { return r.cookie == cookie; });
  if (it == registrations.end()) return false;
  // The object is released after the table is consistent again: its destructor may call back.
  ObjectRef removed = std::move(it->object);
  if (!it->file.empty()) RemoveQuietly(it->file);
  registrations.erase(it);
  return true;
}

size_t ObjectTable::Size() const {
  return TheState().registrations.size();
}

std::string ObjectTable::KeyTag(const std::string& key) {
  char tag[20];
  std::snprintf(tag, sizeof tag, "%016zx", std::hash<std::string>()(key));
  return tag;
}

std::string ObjectTable::Key(const std::string& name) {
  const bool relative = !(name.size() >= 2 && name[1] == ':') &&
                        !(!name.empty() && (name[0] == '\\' || name[0] == '/'));
  // A bare word (no extension, no folder: a scan buffer's "qx-scan-...") is a name, not a file:
  // looking it up in the current folder, case-insensitively, would read the whole folder at
  // every look-up, and a run looks its buffer up once per component.
  const bool bareWord = name.find_first_of(".\\/") == std::string::npos;
  if (relative && !bareWord && !name.empty()) {
    std::error_code ec;
    const fs::path native = platform::ToNative(name);
    if (fs::is_regular_file(native, ec)) {
      return ObjectTable::NormalizeName(platform::ToWindows(fs::absolute(native, ec)));
    }
  }
  return ObjectTable::NormalizeName(name);
}

std::string ObjectTable::NormalizeName(std::string_view name) {
  std::string root;
  std::string_view rest = name;
  bool absolute = false;
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  if (name.size() >= 2 && name[1] == ':' && isLetter(name[0])) {
    const char drive = static_cast<char>(name[0] | 0x20);
    if (drive != 'z') root = (platform::QxHome() / (std::string("drive_") + drive)).string();
    rest = name.substr(2);
    absolute = true;
  } else if (!name.empty() && (name[0] == '\\' || name[0] == '/')) {
    absolute = true;
  }

  std::vector<std::string_view> parts;
  size_t pos = 0;
  while (pos <= rest.size()) {
    size_t end = rest.find_first_of("\\/", pos);
    if (end == std::string_view::npos) end = rest.size();
    const std::string_view part = rest.substr(pos, end - pos);
    pos = end + 1;
    if (part.empty() || part == ".") continue;
    if (part == "..") {
      if (!parts.empty() && parts.back() != "..") {
        parts.pop_back();
        continue;
      }
      if (absolute) continue;  // above the root is the root
    }
    parts.push_back(part);
  }

  std::string out = root;
  for (size_t i = 0; i < parts.size(); ++i) {
    if (absolute || i > 0) out += '\\';
    out += parts[i];
  }
  if (absolute && parts.empty()) out += '\\';
  for (char& c : out) {
    if (c == '/') c = '\\';
  }
  return automation::FoldCaseUnicode(out);
}

}  // namespace host
