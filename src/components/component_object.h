#pragma once
// ComponentObject: the protocol that every component object (Module, ClassModule, Form, ...)
// follows with the host, written once. The host hands such an object to its scanner through
// IObject; the scanner reads and writes the object's automation properties, which go live to the
// IDE's component.
//
// Modes: 0 idle (no IDE component held), 1 reading (the component is fetched by name; unsaved
// IDE changes are tolerated), 2 writing (fetched by name; refused with the kind's sentence when
// the IDE holds unsaved changes). Returning to 0 tears the procedures (and a class's other
// parts) down, saves the component under its own file name if it changed, closes its designer
// window if one is open, and releases it. A failed switch ends in mode 0 the same way.
//
// A component class derives from it, passes its kind (contracts/component_kinds.h), lists the
// members of its own interface in its order (the protocol's members are here to be listed), ends
// its member table with AddObjectInterface, and overrides ReleaseParts when it holds more than
// procedures.

#include <cstdint>
#include <memory>
#include <string>

#include "automation/object.h"
#include "contracts/component_kinds.h"

namespace components {

class Procedures;

class ComponentObject : public automation::Object {
 public:
  explicit ComponentObject(const contracts::ComponentKind& kind) : kind_(kind) {}

  // Own interface: the members every class lists.
  void Initialize(automation::ObjectRef& parent, automation::ObjectRef& vbProject,
                  const std::string& name);
  // Releases the project and the IDE project; the mode and the component stay as they are.
  void TearDown();
  // Renames the IDE component (mode 1 or 2), then keeps the new name.
  void SetName(const std::string& name);
  std::string Name() { return name_; }
  // The component's procedures, made on first read (mode 1 or 2).
  automation::ObjectRef Procedures();

  // IObject.
  std::string IObject_Name();
  std::string IObject_ShortName();
  void IObject_SetMode(int32_t mode);
  void IObject_Scan(const std::string& projectName, const std::string& objectName,
                    bool objectIsUpdatable, const std::string& scanBufferName);
  void IObject_Reconstitute() {}
  void IObject_Dispose();

  int32_t Mode() const { return mode_; }

  // Ends a class's member table with the IObject interface, members in the interface's order.
  template <class C>
  static automation::ClassBuilder<C>& AddObjectInterface(automation::ClassBuilder<C>& builder) {
    return builder.Implements("IObject")
        .Get("Name", &ComponentObject::IObject_Name)
        .Get("ShortName", &ComponentObject::IObject_ShortName)
        .Method("SetMode", &ComponentObject::IObject_SetMode, {"Mode"})
        .Method("Scan", &ComponentObject::IObject_Scan,
                {"ProjectName", "ObjectName", "ObjectIsUpdatable", "ScanBufferName"})
        .Method("Reconstitute", &ComponentObject::IObject_Reconstitute)
        .Method("Dispose", &ComponentObject::IObject_Dispose);
  }

 protected:
  const contracts::ComponentKind& Kind() const { return kind_; }
  // The IDE component, held in mode 1 or 2 (null in mode 0).
  const automation::ObjectRef& Component() const { return component_; }
  // Tears down and releases what a class holds besides its procedures (its controls), on the
  // way back to mode 0, right after the procedures.
  virtual void ReleaseParts() {}
  // The only code that changes the mode, the component and the parts. A class calls it where
  // a member of its own passes through the modes (a DHTML page's HTML written between 0 and 2).
  void SetMode(int32_t mode);

 private:
  // Back to idle: procedures and parts torn down, the component saved if it changed, its
  // designer window closed, the component released. With `ignoreErrors`, each step's failure
  // is ignored and the next step runs.
  void ReturnToIdle(bool ignoreErrors);

  const contracts::ComponentKind& kind_;
  automation::ObjectRef parent_;     // the Project
  std::string name_;                 // the key of the IDE component
  automation::ObjectRef vbProject_;  // the IDE project
  automation::ObjectRef component_;  // the VBComponent, in mode 1 or 2
  std::shared_ptr<components::Procedures> procedures_;
  int32_t mode_ = 0;
};

}  // namespace components
