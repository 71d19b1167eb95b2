#include "components/code_component.h"

#include <map>
#include <string_view>

namespace components {
namespace {

automation::ClassInfo BuildClassInfo(std::string_view className) {
  using C = CodeComponent;
  automation::ClassBuilder<C> builder{std::string(className)};
  builder.Method("Initialize", &C::Initialize, {"Parent", "VBProject", "Name"})
      .Method("TearDown", &C::TearDown)
      .Put("Name", &C::SetName)
      .Get("Name", &C::Name)
      .Get("Procedures", &C::Procedures);
  return ComponentObject::AddObjectInterface(builder).Build();
}

}  // namespace

const automation::ClassInfo& CodeComponent::Class() const {
  static const std::map<std::string_view, automation::ClassInfo> infos = [] {
    std::map<std::string_view, automation::ClassInfo> built;
    for (const std::string_view name : {"Module", "ClassModule"}) {
      built.emplace(name, BuildClassInfo(name));
    }
    return built;
  }();
  return infos.at(Kind().component);
}

}  // namespace components
