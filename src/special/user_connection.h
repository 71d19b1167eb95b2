#pragma once
// UserConnection: the component object of a user connection designer. Beside the protocol it
// offers the connection's ten settings (Connect, Owner, the time-outs, ...), read live from the
// component's properties and never written: they can be searched but not replaced.

#include "automation/object.h"
#include "components/designed_component.h"

namespace special {

class UserConnection : public components::DesignedComponent {
 public:
  UserConnection();
  const automation::ClassInfo& Class() const override;
};

}  // namespace special
