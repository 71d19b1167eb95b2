#include "automation/object.h"

#include <algorithm>
#include <cstdint>
#include <map>

#include "automation/casefold.h"
#include "automation/error.h"
#include "automation/process.h"

namespace automation {
namespace {

// Class names match as the registry's keys do.
std::string ProgIdKey(std::string_view progId) {
  return FoldCaseUnicode(progId);
}

std::map<std::string, Factory>& Classes() {
  static std::map<std::string, Factory> classes;
  return classes;
}

}  // namespace

std::string DispIdName(int32_t dispId) {
  return "#" + std::to_string(dispId);
}

size_t Interface::KeyHash::operator()(std::string_view name) const {
  // FNV-1a over the bytes, ASCII letters lowered.
  uint64_t hash = 14695981039346656037ULL;
  for (char c : name) {
    hash ^= static_cast<unsigned char>(LowerAscii(c));
    hash *= 1099511628211ULL;
  }
  return static_cast<size_t>(hash);
}

bool Interface::KeyEqual::operator()(std::string_view a, std::string_view b) const {
  return EqualsAsciiNoCase(a, b);
}

Interface::Table::const_iterator Interface::Lookup(std::string_view memberName) const {
  const bool ascii = std::all_of(memberName.begin(), memberName.end(),
                                 [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  // Folding a name beyond ASCII may change more than letter case, and its length.
  return ascii ? byName_.find(memberName) : byName_.find(VbNameKey(memberName));
}

void Interface::Index() {
  byName_.clear();
  for (size_t i = 0; i < members.size(); ++i) {
    byName_[VbNameKey(members[i].name)].push_back(i);
    if (members[i].dispId != kNoDispId) byName_[DispIdName(members[i].dispId)].push_back(i);
  }
}

const Member* Interface::Find(std::string_view memberName, MemberKind kind) const {
  auto it = Lookup(memberName);
  if (it == byName_.end()) return nullptr;
  for (size_t i : it->second) {
    if (members[i].kind == kind) return &members[i];
  }
  return nullptr;
}

bool Interface::Has(std::string_view memberName) const {
  return Lookup(memberName) != byName_.end();
}

const Interface* ClassInfo::FindInterface(std::string_view interfaceName) const {
  if (interfaceName.empty()) return &defaultInterface;
  for (const auto& i : implemented) {
    if (SameVbName(i.name, interfaceName)) return &i;
  }
  return nullptr;
}

Object::Object() : owner_(Process::CurrentRef()) {}
Object::~Object() = default;

Variant Object::Invoke(std::string_view interfaceName, std::string_view memberName, MemberKind kind,
                       Args& args) {
  // A server that has exited no longer answers: every call into an object of an ended process,
  // or of a process that is gone altogether, fails as COM fails calls to a vanished server.
  const std::shared_ptr<Process> owner = owner_.lock();
  if (!owner || owner->Ended()) Raise(err::kServerUnavailable);
  const ClassInfo& info = Class();
  const Interface* iface = info.FindInterface(interfaceName);
  if (!iface) Raise(430);
  const Member* member = iface->Find(memberName, kind);
  if (!member) {
    // A property that exists but not in the direction asked is a read-only or write-only one.
    if (kind == MemberKind::Put && iface->Find(memberName, MemberKind::Get)) {
      Raise(err::kReadOnlyProperty, memberName);
    }
    if (kind == MemberKind::Get && iface->Find(memberName, MemberKind::Put)) {
      Raise(err::kWriteOnlyProperty, memberName);
    }
    Raise(err::kNoSuchMember, info.name + "." + std::string(memberName));
  }
  if (args.size() > member->params.size()) Raise(err::kWrongArgumentCount, member->name);
  for (size_t i = args.size(); i < member->params.size(); ++i) {
    if (!member->params[i].optional) Raise(err::kArgumentNotOptional, member->params[i].name);
    args.push_back(member->params[i].defaultValue);
  }
  return member->invoke(*this, args);
}

Variant Invoke(const ObjectRef& object, std::string_view interfaceName, std::string_view memberName,
               MemberKind kind, Args& args) {
  if (!object) Raise(err::kObjectNotSet);
  return object->Invoke(interfaceName, memberName, kind, args);
}

void RegisterClass(std::string progId, Factory factory) {
  Classes()[ProgIdKey(progId)] = std::move(factory);
}

bool IsClassRegistered(std::string_view progId) {
  return Classes().count(ProgIdKey(progId)) != 0;
}

ObjectRef CreateObject(std::string_view progId) {
  auto it = Classes().find(ProgIdKey(progId));
  if (it == Classes().end()) Raise(err::kCantCreateObject, progId);
  return it->second();
}

}  // namespace automation
