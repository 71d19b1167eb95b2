#include "ide/vbide/add_in.h"

#include <exception>
#include <optional>
#include <utility>

#include "ide/vbide/vbe.h"
#include "platform/registry.h"

namespace ide::vbide {

AddIn::AddIn(std::shared_ptr<VBE> vbe, std::string progId, automation::ObjectRef instance)
    : vbe_(std::move(vbe)), progId_(std::move(progId)), instance_(std::move(instance)) {
  std::string key = "HKEY_CURRENT_USER\\Software\\Microsoft\\Visual Basic\\6.0\\Addins\\";
  key += progId_;
  std::optional<std::string> registered;
  try {
    registered = platform::Registry::Instance().ReadValue(key, "Description");
  } catch (const std::exception&) {
    // An unreadable registry leaves the type library's description; the add-in loads all the same.
  }
  description_ = registered ? *registered : instance_ ? instance_->Class().description : "";
}

const automation::ClassInfo& AddIn::Class() const {
  // The members in the order of VBIDE's AddIn interface.
  static const automation::ClassInfo info = automation::ClassBuilder<AddIn>("AddIn")
                                                .Get("Description", &AddIn::Description)
                                                .Put("Description", &AddIn::SetDescription)
                                                .Get("VBE", &AddIn::Vbe)
                                                .Get("ProgId", &AddIn::ProgId)
                                                .Get("Connect", &AddIn::Connect)
                                                .Get("Object", &AddIn::ExposedObject)
                                                .Put("Object", &AddIn::SetExposedObject)
                                                .Build();
  return info;
}

void AddIn::TearDown() {
  vbe_.reset();
  instance_.reset();
  object_.reset();
  connected_ = false;
}

}  // namespace ide::vbide
