#pragma once
// The registered-object table, shared by every process of one qx home folder, as Windows shares
// its running object table.
//
// A process that registers an object serves it on its own Unix socket under $QX_HOME/run/ and
// writes one entry file per registration beside it (its process, the socket, the time of
// registration, the cookie and the name), named by its process, cookie and the tag of its name. A
// look-up from any process reads the entries, skips (and removes, with their sockets) those of
// processes that have ended, and connects to the socket of the latest registration of the name,
// which hands out a proxy. A process finds its own registrations in memory and gets the object
// itself. A look-up asks the process table about the processes that registered its name only; the
// entries and sockets of every ended process are removed at each registration and each listing of
// names.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/object.h"

namespace host {

class ObjectTable {
 public:
  // The table as this process sees it.
  static ObjectTable& Get();

  // Registers the object under the name and returns its cookie (never 0).
  int32_t Add(const std::string& name, automation::ObjectRef object);
  // Registers the object for this process alone: no entry is written, no other process sees it,
  // and a look-up of the name here finds it first, without reading the table's entries. For an
  // object that only this process looks up, under a name only it uses, as often as once per
  // component scanned. Remove withdraws it as any other.
  int32_t AddPrivate(const std::string& name, automation::ObjectRef object);
  // The object registered latest under the name in any live process, or null.
  automation::ObjectRef Find(const std::string& name);
  // Whether a live process has registered the name for all to find (this one included), told
  // from the table's entries without calling the process.
  bool Registered(const std::string& name);
  // The names registered in live processes (this one included), as normalized, sorted, each
  // once.
  std::vector<std::string> Names();
  // The names that another live process has registered, as normalized, sorted (found from the
  // table's entries, without calling the process).
  std::vector<std::string> NamesOf(long pid);
  // Called before this process answers another's look-up of one of its registrations, with the
  // registration's key; the observer may withdraw it (the look-up then finds nothing, and the
  // looker reads the table again). An empty function removes it.
  static void SetLookupObserver(std::function<void(const std::string& key)> observer);
  // Withdraws a registration of this process; false when the cookie is unknown.
  bool Remove(int32_t cookie);
  // The number of registrations this process holds.
  size_t Size() const;

  // How registered names compare: as Windows paths. "\" and "/" are the same, letter case does
  // not matter, drive letters map to their folders (z: is "/", c: is the stand-in drive under
  // the qx home folder), and "." and ".." parts are resolved. A relative name stays relative.
  static std::string NormalizeName(std::string_view name);
  // The key a name is registered and looked up under: its normalized form. A relative name of
  // an existing file counts from the current folder, as a file's display name does: the IDE
  // reports the full path of the project it opened, while the host may know it by a relative
  // one. A bare word, without extension or folder, is always a name.
  static std::string Key(const std::string& name);
  // A short tag of a key (16 hexadecimal digits of its hash) for file names that stand for it.
  static std::string KeyTag(const std::string& key);
};

}  // namespace host
