#include "components/component_object.h"

#include "components/procedures.h"
#include "contracts/host_classes.h"
#include "contracts/ide_objects.h"
#include "foundation/operation.h"
#include "foundation/vxhandler.h"

namespace components {

using automation::Dispatch;
using automation::ObjectRef;
using foundation::Operation;

void ComponentObject::Initialize(ObjectRef& parent, ObjectRef& vbProject, const std::string& name) {
  Operation(kind_.component, "Initialize", [&] {
    parent_ = parent;
    vbProject_ = vbProject;
    name_ = name;
  });
}

void ComponentObject::TearDown() {
  Operation(kind_.component, "TearDown", [&] {
    parent_.reset();
    vbProject_.reset();
  });
}

void ComponentObject::SetName(const std::string& name) {
  contracts::VBComponent(component_).SetName(name);
  name_ = name;
}

ObjectRef ComponentObject::Procedures() {
  return Operation(kind_.component, "Procedures", [&] {
    if (!procedures_) {
      ObjectRef code = contracts::VBComponent(component_).CodeModule();
      auto procedures = std::make_shared<components::Procedures>();
      procedures->Initialize(code);
      procedures_ = std::move(procedures);
    }
    return ObjectRef(procedures_);
  });
}

std::string ComponentObject::IObject_Name() {
  return Operation(kind_.component, "IObject_Name", [&] { return name_; });
}

std::string ComponentObject::IObject_ShortName() {
  return Operation(kind_.component, "IObject_ShortName", [&] { return name_; });
}

void ComponentObject::IObject_SetMode(int32_t mode) {
  Operation(kind_.component, "IObject_SetMode", [&] { SetMode(mode); });
}

void ComponentObject::IObject_Scan(const std::string& projectName, const std::string& objectName,
                                   bool objectIsUpdatable, const std::string& scanBufferName) {
  foundation::OperationWithUndo(
      kind_.component, "IObject_Scan",
      [&] {
        SetMode(1);
        contracts::Scanner::New().ScanObject(projectName, std::string(kind_.collection), objectName,
                                             objectIsUpdatable, shared_from_this(), scanBufferName);
        SetMode(0);
      },
      [&] { SetMode(0); });
}

void ComponentObject::IObject_Dispose() {
  Operation(kind_.component, "IObject_Dispose", [&] { TearDown(); });
}

void ComponentObject::SetMode(int32_t mode) {
  foundation::OperationWithUndo(
      kind_.component, "SetMode",
      [&] {
        if (mode == mode_) return;
        switch (mode) {
          case 0:
            ReturnToIdle(false);
            break;
          case 1:
          case 2: {
            const Dispatch components(Dispatch(vbProject_).Get("VBComponents").ToObject());
            component_ = components.Call("Item", name_).ToObject();
            if (mode == 2 && contracts::VBComponent(component_).IsDirty()) {
              foundation::RaiseUserError(contracts::RefusalOf(kind_));
            }
            break;
          }
          default:
            foundation::RaiseInvalidCaseSelector(automation::Variant(mode));
        }
        mode_ = mode;
      },
      [&] {
        ReturnToIdle(true);
        mode_ = 0;
      });
}

void ComponentObject::ReturnToIdle(bool ignoreErrors) {
  const auto step = [ignoreErrors](auto&& action) {
    if (!ignoreErrors) return action();
    try {
      action();
    } catch (...) {
      // The clean-up after a failure goes on: the first error is the one reported.
    }
  };
  if (procedures_) {
    step([&] { procedures_->TearDown(); });
    procedures_.reset();
  }
  step([&] { ReleaseParts(); });
  if (component_) {
    const contracts::VBComponent component(component_);
    step([&] {
      if (component.IsDirty()) component.SaveAs(component.FirstFileName());
    });
    step([&] {
      if (component.HasOpenDesigner()) contracts::CloseWindow(component.DesignerWindow());
    });
    component_.reset();
  }
}

}  // namespace components
