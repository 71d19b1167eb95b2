#include "components/designer.h"

namespace components {

Designer::Designer() : ComponentObject(*contracts::FindComponentKind("Designer")) {}

const automation::ClassInfo& Designer::Class() const {
  static const automation::ClassInfo info = [] {
    using C = Designer;
    automation::ClassBuilder<C> builder{"Designer"};
    builder.Method("Initialize", &C::Initialize, {"Parent", "VBProject", "Name"})
        .Method("TearDown", &C::TearDown)
        .Put("Name", &C::SetName)
        .Get("Name", &C::Name)
        .Get("Object", &C::DesignerObject)
        .Get("Procedures", &C::Procedures);
    return ComponentObject::AddObjectInterface(builder).Build();
  }();
  return info;
}

automation::ObjectRef Designer::DesignerObject() {
  return automation::Dispatch(Component()).Get("Designer").ToObject();
}

}  // namespace components
