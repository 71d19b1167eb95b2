#pragma once
// Automation objects. Every class declares its interfaces once, as tables of members in slot
// order; the same tables serve by-name calls, proxies between processes and the walkers that
// look at an object through its type information.

#include <climits>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "automation/variant.h"

namespace automation {

class Process;
struct ClassInfo;

// The arguments of one call, in declaration order. A by-reference parameter writes its new
// value back into its slot.
using Args = std::vector<Variant>;

enum class MemberKind { Get, Put, Method };

struct Param {
  Param(const char* paramName) : name(paramName) {}
  Param(std::string paramName, bool isOptional = false, Variant value = Variant())
      : name(std::move(paramName)), optional(isOptional), defaultValue(std::move(value)) {}

  std::string name;
  bool optional = false;
  Variant defaultValue;  // used when an optional argument is left out
};

// A member without a dispatch identifier of its own.
inline constexpr int32_t kNoDispId = INT32_MIN;

// The name under which a member with a dispatch identifier is also found ("#3"): a call by
// identifier travels like any other call by name.
std::string DispIdName(int32_t dispId);

struct Member {
  std::string name;
  MemberKind kind = MemberKind::Method;
  VarType type = VarType::Empty;  // result type of a Get or Method; value type of a Put
  int32_t dispId = kNoDispId;     // the standard identifier a caller may use instead of the name
  std::string typeName;           // a declared type richer than `type` ("AlignConstants"), or ""
  std::vector<Param> params;
  std::vector<VarType> paramTypes;
  std::vector<bool> paramByRef;
  std::function<Variant(class Object&, Args&)> invoke;
  // The object has the member but does not use it (hidden in its type information, as a
  // control's property that its type lacks): a call still answers as the object decides, and
  // whoever lists the members to read them all skips it.
  bool hidden = false;
};

// One interface: its name ("" for a class's default interface, else e.g. "ICollection") and its
// members in slot order.
struct Interface {
  std::string name;
  std::vector<Member> members;

  // The member of that name (any letter case) and kind, or null.
  const Member* Find(std::string_view memberName, MemberKind kind) const;
  bool Has(std::string_view memberName) const;

  void Index();  // builds the look-up table once the members are complete

 private:
  // The table's keys are names folded as VB folds them (VbNameKey). Every call by name looks a
  // member up, so a name in ASCII, as callers spell members, is looked up as it is, without
  // folding it into a new string: hashing and comparing ignore the case of ASCII letters.
  struct KeyHash {
    using is_transparent = void;
    size_t operator()(std::string_view name) const;
  };
  struct KeyEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
  };
  using Table = std::unordered_map<std::string, std::vector<size_t>, KeyHash, KeyEqual>;
  Table::const_iterator Lookup(std::string_view memberName) const;

  Table byName_;
};

struct ClassInfo {
  std::string name;
  std::string description;             // the class's help string in its type library, or ""
  Interface defaultInterface;          // the class's own members ("_Name" in type libraries)
  std::vector<Interface> implemented;  // implemented interfaces, e.g. "ICollection"

  const Interface* FindInterface(std::string_view interfaceName) const;
};

// Base of every automation object. An object belongs to the process that created it.
class Object : public std::enable_shared_from_this<Object> {
 public:
  Object();
  virtual ~Object();
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  virtual const ClassInfo& Class() const = 0;

  // The process that created this object (null once that process object is gone).
  std::shared_ptr<Process> Owner() const { return owner_.lock(); }

  // Calls a member by name through one of the object's interfaces ("" = its default one).
  // Raises 462 when the owning process has ended or no longer exists, 438 for an unknown member,
  // 449/450 for missing or surplus arguments. Proxies override it to carry the call to the
  // owning process.
  virtual Variant Invoke(std::string_view interfaceName, std::string_view memberName,
                         MemberKind kind, Args& args);

 private:
  std::weak_ptr<Process> owner_;
};

// Calls through the member tables of an object.
Variant Invoke(const ObjectRef& object, std::string_view interfaceName, std::string_view memberName,
               MemberKind kind, Args& args);

// A typed helper for calling an object by name: Dispatch(obj).Get("Count").ToLong(),
// Dispatch(obj, "ICollection").Call("GetObject", name). A null object raises 91.
class Dispatch {
 public:
  explicit Dispatch(ObjectRef object, std::string interfaceName = {})
      : object_(std::move(object)), interface_(std::move(interfaceName)) {}

  Variant Get(std::string_view name) const {
    Args args;
    return Run(name, MemberKind::Get, args);
  }
  template <class... A>
  Variant GetAt(std::string_view name, A&&... index) const {
    Args args{Variant(std::forward<A>(index))...};
    return Run(name, MemberKind::Get, args);
  }
  void Put(std::string_view name, Variant value) const {
    Args args{std::move(value)};
    Run(name, MemberKind::Put, args);
  }
  // The property of that dispatch identifier (standard objects such as the font's).
  Variant GetId(int32_t dispId) const { return Get(DispIdName(dispId)); }
  void PutId(int32_t dispId, Variant value) const { Put(DispIdName(dispId), std::move(value)); }
  template <class... A>
  Variant Call(std::string_view name, A&&... arguments) const {
    Args args{Variant(std::forward<A>(arguments))...};
    return Run(name, MemberKind::Method, args);
  }
  // A call whose by-reference arguments the caller reads back from `args`.
  Variant CallArgs(std::string_view name, Args& args) const {
    return Run(name, MemberKind::Method, args);
  }

  const ObjectRef& object() const { return object_; }

 private:
  Variant Run(std::string_view name, MemberKind kind, Args& args) const {
    return Invoke(object_, interface_, name, kind, args);
  }

  ObjectRef object_;
  std::string interface_;
};

// The creatable classes, by programmatic identifier ("qxlib41.KeyedList"). Registration is
// done by each library's Register function at program start.
using Factory = std::function<ObjectRef()>;
void RegisterClass(std::string progId, Factory factory);
bool IsClassRegistered(std::string_view progId);
// A new object of the class, created in the current process; 429 when the class is unknown.
ObjectRef CreateObject(std::string_view progId);

// The object as a C++ class, or raises 13 when it is of another class (null stays null).
template <class T>
std::shared_ptr<T> As(const ObjectRef& object);

}  // namespace automation

#include "automation/object_impl.h"
