#pragma once
// The host library's classes as the driver sees them: typed views that create the objects by
// programmatic identifier and call them by name, so the driver never depends on how (or in
// which process) the host implements them.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace contracts {

using automation::ObjectRef;
using automation::Variant;

// Objects under string keys, with 0-based positions; a locator is position + 1, 0 = absent.
class KeyedList {
 public:
  static KeyedList New();
  explicit KeyedList(ObjectRef object) : d_(std::move(object)) {}

  void Add(const Variant& item, const std::string& key) const { d_.Call("Add", item, key); }
  int32_t Count() const { return d_.Get("Count").ToLong(); }
  int32_t Find(const Variant& keyOrPosition) const {
    return d_.Call("Find", keyOrPosition).ToLong();
  }
  Variant ItemAt(int32_t locator) const { return d_.Call("ItemAt", locator); }
  std::string Key(int32_t locator) const { return d_.Call("Key", locator).ToString(); }
  void Rekey(int32_t locator, const std::string& newKey) const {
    d_.Call("Rekey", locator, newKey);
  }
  const ObjectRef& object() const { return d_.object(); }

 private:
  automation::Dispatch d_;
};

class KeySet {
 public:
  static KeySet New();
  explicit KeySet(ObjectRef object) : d_(std::move(object)) {}

  void Add(const std::string& key) const { d_.Call("Add", key); }
  int32_t Count() const { return d_.Get("Count").ToLong(); }
  int32_t Find(const std::string& key) const { return d_.Call("Find", key).ToLong(); }
  void RemoveAt(int32_t position) const { d_.Call("RemoveAt", position); }

 private:
  automation::Dispatch d_;
};

class ParameterList {
 public:
  static ParameterList New();
  explicit ParameterList(ObjectRef object) : d_(std::move(object)) {}

  void Parse(const std::string& text) const { d_.Call("Parse", text); }
  std::string Value(const std::string& name, const std::string& defaultValue) const {
    return d_.Call("Value", name, defaultValue).ToString();
  }

 private:
  automation::Dispatch d_;
};

// One per process.
class HostUtility {
 public:
  static HostUtility Get();
  explicit HostUtility(ObjectRef object) : d_(std::move(object)) {}

  bool FileExists(const std::string& path) const { return d_.Call("FileExists", path).ToBool(); }
  ObjectRef LaunchAndConnect(const std::string& commandLine, const std::string& name,
                             int32_t timeout) const {
    return d_.Call("LaunchAndConnect", commandLine, name, "", "", 0, 0, timeout).ToObject();
  }
  ObjectRef GetRegisteredObject(const std::string& name) const {
    return d_.Call("GetRegisteredObject", name).ToObject();
  }
  int32_t RegisterObject(const std::string& name, const ObjectRef& object) const {
    return d_.Call("RegisterObject", name, object).ToLong();
  }
  void RevokeObject(int32_t cookie) const { d_.Call("RevokeObject", cookie); }
  std::string ChangeExtension(const std::string& path, const std::string& extension) const {
    return d_.Call("ChangeExtension", path, extension).ToString();
  }
  std::string ResolvePath(const std::string& name) const {
    return d_.Call("ResolvePath", name).ToString();
  }

 private:
  automation::Dispatch d_;
};

class RegistryKey {
 public:
  static RegistryKey New();
  explicit RegistryKey(ObjectRef object) : d_(std::move(object)) {}

  void SetPath(const std::string& path) const { d_.Put("Path", path); }
  void Open(int32_t mode) const { d_.Call("Open", mode); }
  std::string ReadValue(const std::string& name, const std::string& defaultValue) const {
    return d_.Call("ReadValue", name, defaultValue).ToString();
  }
  bool Exists() const { return d_.Get("Exists").ToBool(); }

 private:
  automation::Dispatch d_;
};

// The host's scanning engine, made fresh for each scan of a component object. ScanObject may call
// back into the object (its mode, name, procedures) before it returns.
class Scanner {
 public:
  static Scanner New();
  explicit Scanner(ObjectRef object) : d_(std::move(object)) {}

  void ScanObject(const std::string& projectName, const std::string& collectionName,
                  const std::string& objectName, bool objectIsUpdatable, const ObjectRef& object,
                  const std::string& scanBufferName) const {
    d_.Call("ScanObject", projectName, collectionName, objectName, objectIsUpdatable, object,
            scanBufferName);
  }

 private:
  automation::Dispatch d_;
};

// One per process.
class Tracer {
 public:
  static Tracer Get();
  explicit Tracer(ObjectRef object) : d_(std::move(object)) {}

  void Finish() const { d_.Call("Finish"); }
  void Enter(std::string& siteName) const;
  void Leave() const { d_.Call("Leave"); }
  bool IsEnabled() const { return d_.Get("IsEnabled").ToBool(); }

 private:
  automation::Dispatch d_;
};

// The host's problem log, a problem context in it, and one problem.
class ProblemLog {
 public:
  static ProblemLog New();
  explicit ProblemLog(ObjectRef object) : d_(std::move(object)) {}

  int32_t OpenContext(const std::string& projectName, const std::string& className,
                      std::string& procName, bool flag1, bool flag2) const;
  void AddProblem(ObjectRef& problem, const std::string& siteName) const;
  void ReportRuntimeError(int32_t number, const std::string& description,
                          const std::string& helpFile, int32_t helpContext,
                          const std::string& projectName, const std::string& className,
                          const std::string& procName, int32_t line) const;
  const ObjectRef& object() const { return d_.object(); }

 private:
  automation::Dispatch d_;
};

class ProblemContext {
 public:
  static ProblemContext New();
  explicit ProblemContext(ObjectRef object) : d_(std::move(object)) {}

  void Attach(ObjectRef& problemLog, int32_t cookie) const;
  const ObjectRef& object() const { return d_.object(); }

 private:
  automation::Dispatch d_;
};

class Problem {
 public:
  static Problem New();
  explicit Problem(ObjectRef object) : d_(std::move(object)) {}

  void SetError(int32_t number, const std::string& description, const std::string& helpFile,
                int32_t helpContext, const std::string& projectName, const std::string& className,
                const std::string& procName, int32_t line) const {
    d_.Call("SetError", number, description, helpFile, helpContext, projectName, className,
            procName, line);
  }
  const ObjectRef& object() const { return d_.object(); }

 private:
  automation::Dispatch d_;
};

class ProblemLogLink {
 public:
  static ProblemLogLink New();
  explicit ProblemLogLink(ObjectRef object) : d_(std::move(object)) {}

  void Link(ObjectRef& problemLog) const;
  const ObjectRef& object() const { return d_.object(); }

 private:
  automation::Dispatch d_;
};

}  // namespace contracts
