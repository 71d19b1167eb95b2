#pragma once
// DesignedComponent: the component object of the kinds designed like a form (Form, UserControl,
// UserDocument, PropertyPage). It follows the component object protocol and adds, as data, the
// kind's table of design-time properties (designed_properties.h) and, for the kinds that carry
// controls, the Controls collection: made on first read from the IDE component (mode 1 or 2)
// and torn down on the way back to mode 0, right after the procedures.
//
// A kind is a DesignedClass: its class name, its property table and which of the optional
// members its interface has. Its interface lists, in this order: Initialize, TearDown (where
// the kind has it), Name (write, read), Controls (where the kind has them), Procedures, then
// each property's read and write in the table's order, then IObject. A kind whose interface
// orders its members otherwise (UserConnection) derives and lists its own.

#include <functional>
#include <span>
#include <string_view>

#include "automation/object.h"
#include "components/component_object.h"
#include "components/designed_properties.h"

namespace components {

struct DesignedClass {
  std::string_view className;  // "Form"
  std::span<const ComponentProperty> properties;
  bool hasControls = false;
  bool hasTearDown = true;
};

// Makes the Controls collections of designed components (the controls' layer sets it when the
// driver loads): an uninitialised object with Initialize(VBComponent) and TearDown.
using ControlsFactory = std::function<automation::ObjectRef()>;
void SetControlsFactory(ControlsFactory factory);

class DesignedComponent : public ComponentObject {
 public:
  // `designed` outlives the object (the kinds are static tables).
  explicit DesignedComponent(const DesignedClass& designed);

  const automation::ClassInfo& Class() const override;

  // The component's controls, made on first read (mode 1 or 2). When building them fails, the
  // partly built collection stays held and the next read returns it.
  automation::ObjectRef Controls();

  automation::Variant ReadProperty(const ComponentProperty& property);
  void WriteProperty(const ComponentProperty& property, const automation::Variant& value);

 protected:
  void ReleaseParts() override;

 private:
  const DesignedClass& designed_;
  automation::ObjectRef controls_;
};

}  // namespace components
