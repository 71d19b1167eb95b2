#include "special/user_connection.h"

#include <array>

namespace special {
namespace {

using namespace components;
using enum DeclaredType;

constexpr ComponentProperty Setting(std::string_view name, DeclaredType type) {
  ComponentProperty p = Plain(name, type);
  p.readOnly = true;
  return p;
}

constexpr std::array kSettings = {
    Setting("Connect", kString),      Setting("Owner", kString),
    Setting("QueryTimeout", kLong),   Setting("LoginTimeout", kLong),
    Setting("LogMessages", kString),  Setting("Updatable", kString),
    Setting("Version", kString),      Setting("Transactions", kString),
    Setting("CursorDriver", kString), Setting("AsyncCheckInterval", kString),
};

constexpr DesignedClass kUserConnection{"UserConnection", kSettings};

}  // namespace

UserConnection::UserConnection() : DesignedComponent(kUserConnection) {}

// The settings come between the name and the procedures, and the name is read before it is
// written: an order of its own, over the designed component's reads.
const automation::ClassInfo& UserConnection::Class() const {
  static const automation::ClassInfo info = [] {
    using C = UserConnection;
    automation::ClassBuilder<C> builder{"UserConnection"};
    builder.Method("Initialize", &C::Initialize, {"Parent", "VBProject", "Name"})
        .Method("TearDown", &C::TearDown)
        .Get("Name", &C::Name)
        .Put("Name", &C::SetName);
    AddPropertyMembers(
        builder, std::span<const ComponentProperty>(kSettings),
        [](C& self, const ComponentProperty& row) { return self.ReadProperty(row); },
        [](C&, const ComponentProperty&, const automation::Variant&) {});
    builder.Get("Procedures", &C::Procedures);
    return ComponentObject::AddObjectInterface(builder).Build();
  }();
  return info;
}

}  // namespace special
