#include "ide/vbide/vbcomponent.h"

#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/model/project.h"
#include "ide/vbide/code_module.h"
#include "ide/vbide/designer_object.h"
#include "ide/vbide/make.h"
#include "ide/vbide/properties.h"
#include "ide/vbide/vbcomponents.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbform.h"
#include "ide/vbide/vbproject.h"
#include "ide/vbide/window.h"

namespace ide::vbide {

VBComponent::VBComponent(std::shared_ptr<VBComponents> collection,
                         std::shared_ptr<ide::Project> model, ide::Component& component)
    : collection_(std::move(collection)), model_(std::move(model)), component_(&component) {}

const automation::ClassInfo& VBComponent::Class() const {
  // The members in the order of VBIDE's VBComponent interface.
  static const automation::ClassInfo info =
      automation::ClassBuilder<VBComponent>("VBComponent")
          .Get("IsDirty", &VBComponent::IsDirty)
          .Put("IsDirty", &VBComponent::SetIsDirty)
          .Get("FileNames", &VBComponent::FileNames, {"index"})
          .Method("SaveAs", &VBComponent::SaveAs, {"NewFileName"})
          .Get("FileCount", &VBComponent::FileCount)
          .Get("Name", &VBComponent::Name)
          .Put("Name", &VBComponent::SetName)
          .Get("Designer", &VBComponent::Designer)
          .Get("CodeModule", &VBComponent::CodeModule)
          .Get("Type", &VBComponent::Type)
          .Get("VBE", &VBComponent::Vbe)
          .Get("Collection", &VBComponent::Collection)
          .Get("HasOpenDesigner", &VBComponent::HasOpenDesigner)
          .Method("DesignerWindow", &VBComponent::DesignerWindow)
          .Method("Activate", &VBComponent::Activate)
          .Get("DesignerID", &VBComponent::DesignerID)
          .Get("Properties", &VBComponent::Properties)
          .Build();
  return info;
}

bool VBComponent::IsDirty() const {
  return markedDirty_ || (!savedMark_ && component_->IsDirty());
}

void VBComponent::SetIsDirty(bool dirty) {
  markedDirty_ = dirty;
  savedMark_ = !dirty;
}

std::string VBComponent::FileNames(int16_t index) const {
  if (index != 1) {
    automation::Raise(automation::err::kSubscript, "file number " + std::to_string(index) + " of " +
                                                       Name() + " (a component has one file)");
  }
  return component_->FileName();
}

bool VBComponent::SaveAs(const std::string& newFileName) {
  // Saved or not, the component holds nothing the disk lacks afterwards: a failed save drops
  // the changes (see ide::Component::Save), and so does this object's own mark.
  markedDirty_ = false;
  savedMark_ = false;
  component_->SaveAs(newFileName);
  // The model writes a component's file only; a rename changed the project file's entry too,
  // and VB6 writes that with the component.
  model_->Save();
  return true;
}

std::string VBComponent::Name() const {
  return component_->Name();
}

void VBComponent::SetName(const std::string& name) {
  component_->SetName(name);
  NoteChanged();
}

std::shared_ptr<vbide::CodeModule> VBComponent::CodeModule() {
  component_->File();  // raises the load error of a file that cannot be read
  if (!code_) {
    auto self = std::static_pointer_cast<VBComponent>(shared_from_this());
    code_ = MakeBeside<vbide::CodeModule>(*this, self, model_, *component_);
  }
  return code_;
}

automation::ObjectRef VBComponent::Designer() {
  component_->File();  // raises the load error of a file that cannot be read
  switch (component_->Kind()) {
    case FileKind::kModule:
    case FileKind::kClass:
      return nullptr;
    case FileKind::kDesigner:
      // The ActiveX designers (.dsr) have objects of their own (designer_object.h).
      if (!activeXDesigner_) activeXDesigner_ = MakeActiveXDesigner(*this, model_, *component_);
      return activeXDesigner_;
    case FileKind::kForm:
    case FileKind::kUserControl:
    case FileKind::kPropertyPage:
    case FileKind::kUserDocument:
      break;
  }
  return HeldOrMade(designer_, [&] {
    auto self = std::static_pointer_cast<VBComponent>(shared_from_this());
    return MakeBeside<VBForm>(*this, self, model_, *component_);
  });
}

int32_t VBComponent::Type() const {
  return static_cast<int32_t>(component_->Type());
}

std::shared_ptr<VBE> VBComponent::Vbe() const {
  return collection_ ? collection_->Vbe() : nullptr;
}

bool VBComponent::HasDesigner() const {
  const FileKind kind = component_->Kind();
  return kind != FileKind::kModule && kind != FileKind::kClass;
}

std::string VBComponent::DesignerCaption() const {
  // VB6 titles a designer "Project - Name (Kind)", the kind being its designer's class.
  std::string kind = "Designer";
  try {
    const std::string id = component_->DesignerID();
    const auto dot = id.rfind('.');
    if (dot != std::string::npos) kind = id.substr(dot + 1);
  } catch (const automation::Error&) {
    // The file went unreadable after the window opened: keep the generic word.
  }
  std::string caption = model_->Name();
  caption += " - ";
  caption += component_->Name();
  caption += " (";
  caption += kind;
  caption += ")";
  return caption;
}

std::shared_ptr<Window> VBComponent::DesignerWindow() {
  if (!HasDesigner()) {
    automation::Raise(automation::err::kInvalidCall, Name() + " has no designer");
  }
  component_->File();  // the designer shows the file: its load error surfaces here
  if (!designerWindow_) {
    std::weak_ptr<VBComponent> weak = std::static_pointer_cast<VBComponent>(shared_from_this());
    Window::Setup setup;
    setup.type = Window::kDesigner;
    setup.visible = false;  // VB6 opens it hidden until it is shown
    setup.caption = [weak] {
      auto self = weak.lock();
      return self ? self->DesignerCaption() : std::string();
    };
    setup.onClose = [weak] {
      if (auto self = weak.lock()) self->designerWindow_.reset();
    };
    std::shared_ptr<VBE> vbe = Vbe();
    if (!vbe) automation::Raise(automation::err::kServerUnavailable);
    designerWindow_ = Window::Create(vbe, std::move(setup));
  }
  return designerWindow_;
}

void VBComponent::Activate() {
  if (!HasDesigner()) {
    component_->File();
    return;
  }
  DesignerWindow()->SetVisible(true);
}

std::string VBComponent::DesignerID() const {
  return component_->DesignerID();
}

std::shared_ptr<vbide::Properties> VBComponent::Properties() {
  if (!properties_) {
    auto self = std::static_pointer_cast<VBComponent>(shared_from_this());
    if (!HasDesigner()) {
      properties_ = MakeBeside<vbide::Properties>(*this, PropertySource{}, self,
                                                  vbide::Properties::Kind::kEmpty);
      return properties_;
    }
    std::weak_ptr<VBComponent> weak = self;
    PropertySource source;
    // The model is held by the source: the collection may outlive this object.
    source.locate = [model = model_, component = component_] {
      form::FormContext context = component->Form();
      return form::ObjectProperties(context, context.description->Root());
    };
    source.changed = [weak] {
      if (auto owner = weak.lock()) owner->NoteChanged();
    };
    source.intercept = [model = model_, component = component_](std::string_view name,
                                                                const automation::Variant& value) {
      if (!automation::SameVbName(name, "Name")) return false;
      component->SetName(value.ToString());
      return true;
    };
    properties_ = MakeBeside<vbide::Properties>(*this, std::move(source), self);
  }
  return properties_;
}

void VBComponent::TearDown() {
  if (code_) code_->TearDown();
  if (auto designer = designer_.lock()) designer->TearDown();
  if (designerWindow_) designerWindow_->TearDown();
  code_.reset();
  designer_.reset();
  activeXDesigner_.reset();
  designerWindow_.reset();
  properties_.reset();
  collection_.reset();
}

}  // namespace ide::vbide
