#pragma once
// AddIn: the IDE's record of one loaded add-in, handed to the add-in as AddInInst in
// OnConnection. Description starts as the "Description" value of the registry key
// HKEY_CURRENT_USER\Software\Microsoft\Visual Basic\6.0\Addins\<ProgId>, where an add-in
// designer registers it, or else, for an add-in listed in vbaddin.ini only, as the description
// of the add-in's class in its type library; it may be changed. Object is whatever the add-in
// chooses to expose through it (Nothing until it sets one).

#include <memory>
#include <string>

#include "automation/object.h"
#include "automation/variant.h"

namespace ide::vbide {

class VBE;

class AddIn : public automation::Object {
 public:
  AddIn(std::shared_ptr<VBE> vbe, std::string progId, automation::ObjectRef instance);

  const automation::ClassInfo& Class() const override;

  const std::string& Description() const { return description_; }
  void SetDescription(const std::string& description) { description_ = description; }
  std::shared_ptr<VBE> Vbe() const { return vbe_; }
  const std::string& ProgId() const { return progId_; }
  // Whether the add-in is connected (its OnConnection succeeded and it has not been
  // disconnected). Read-only here: this IDE connects add-ins only at its start.
  bool Connect() const { return connected_; }
  automation::ObjectRef ExposedObject() const { return object_; }
  void SetExposedObject(const automation::ObjectRef& object) { object_ = object; }

  // The add-in itself, the object created from its programmatic identifier.
  const automation::ObjectRef& Instance() const { return instance_; }
  void SetConnected(bool connected) { connected_ = connected; }
  void TearDown();

 private:
  std::shared_ptr<VBE> vbe_;
  std::string progId_;
  std::string description_;
  automation::ObjectRef instance_;
  automation::ObjectRef object_;
  bool connected_ = false;
};

}  // namespace ide::vbide
