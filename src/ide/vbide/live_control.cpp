#include "ide/vbide/live_control.h"

#include <map>
#include <string>
#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "automation/process.h"
#include "host/scan/dropped_data.h"
#include "ide/form/object_properties.h"
#include "ide/form/property_catalog.h"
#include "ide/vbide/data_format.h"
#include "ide/vbide/font.h"
#include "ide/vbide/make.h"
#include "ide/vbide/vbcontrol.h"

namespace ide::vbide {
namespace {

using automation::Args;
using automation::MemberKind;
using automation::Param;
using automation::Variant;
using automation::VarType;
using form::PropertyInfo;
using form::ValueType;

VarType VarTypeOf(const PropertyInfo& property) {
  switch (property.type) {
    case ValueType::kBoolean:
      return VarType::Boolean;
    case ValueType::kInteger:
      return VarType::Integer;
    case ValueType::kLong:
    case ValueType::kColour:
    case ValueType::kEnumeration:
    case ValueType::kItemData:
      return VarType::Long;
    case ValueType::kSingle:
      return VarType::Single;
    case ValueType::kString:
    case ValueType::kShortcut:
    case ValueType::kList:
      return VarType::String;
    case ValueType::kFont:
    case ValueType::kPicture:
    case ValueType::kObject:
    case ValueType::kBlob:
      return VarType::Object;
  }
  return VarType::Variant;
}

// A value written by a property put: the last argument.
const Variant& ValueOf(const Args& args) {
  return args.back();
}

using Builder = automation::ClassBuilder<LiveControl>;

void AddList(Builder& builder, const PropertyInfo& property, bool writable) {
  const std::string name(property.name);
  builder.Raw(name, MemberKind::Get, VarTypeOf(property), {Param("Index")},
              [name](LiveControl& self, Args& args) {
                return self.Control().Model().ListItem(name, args[0].ToLong());
              });
  if (!writable) return;
  builder.Raw(name, MemberKind::Put, VarTypeOf(property), {Param("Index"), Param("Value")},
              [name](LiveControl& self, Args& args) {
                self.Control().Model().SetListItem(name, args[0].ToLong(), ValueOf(args));
                self.Control().NoteChanged();
                return Variant();
              });
}

void AddProperty(Builder& builder, const PropertyInfo& property) {
  const std::string name(property.name);
  const VarType type = VarTypeOf(property);
  if (name == "Name" || name == "Index") {
    const bool isName = name == "Name";
    builder.Raw(name, MemberKind::Get, type, {}, [isName](LiveControl& self, Args&) {
      VBControl& control = self.Control();
      return isName ? Variant(control.Name())
                    : Variant::Integer(static_cast<int16_t>(control.Index()));
    });
    builder.Raw(name, MemberKind::Put, type, {Param("Value")},
                [isName](LiveControl& self, Args& args) {
                  VBControl& control = self.Control();
                  if (isName) {
                    control.SetName(ValueOf(args));
                  } else {
                    control.SetIndex(ValueOf(args));
                  }
                  return Variant();
                });
    return;
  }
  if (property.type == ValueType::kFont) {
    builder.Raw(name, MemberKind::Get, type, {}, [](LiveControl& self, Args&) {
      return Variant(MakeBeside<Font>(self, self.Control().Source()));
    });
    builder.Raw(name, MemberKind::Put, type, {Param("Value")}, [](LiveControl& self, Args& args) {
      form::ObjectProperties model = self.Control().Model();
      CopyFont(model, ValueOf(args).ToObject());
      self.Control().NoteChanged();
      return Variant();
    });
    return;
  }
  if (property.type == ValueType::kObject && name == "DataFormat") {
    builder.Raw(name, MemberKind::Get, type, {}, [](LiveControl& self, Args&) {
      return Variant(MakeBeside<DataFormat>(self, self.Control().Node()));
    });
    return;
  }
  builder.Raw(name, MemberKind::Get, type, {},
              [name](LiveControl& self, Args&) { return self.Control().Model().Get(name); });
  if (property.readOnly) return;
  builder.Raw(name, MemberKind::Put, type, {Param("Value")}, [name](LiveControl& self, Args& args) {
    self.Control().Model().Set(name, ValueOf(args));
    self.Control().NoteChanged();
    return Variant();
  });
}

// Clearing a list sets its items' ItemData back to 0: a list whose items carry values says how
// many it loses, for whoever writes it (the Scanner reports it with the place).
void NoteDroppedItemData(const form::ObjectProperties& model) {
  if (model.Class() == nullptr || model.Class()->FindMember("ItemData") == nullptr) return;
  const int32_t count = model.ListCount("ItemData");
  int32_t values = 0;
  for (int32_t i = 0; i < count; ++i) {
    if (model.ListItem("ItemData", i).ToLong() != 0) ++values;
  }
  if (values == 0) return;
  host::scan::DroppedData::Note("ItemData (" + std::to_string(values) +
                                (values == 1 ? " value)" : " values)"));
}

automation::ClassInfo BuildClass(const form::ClassInfo& known) {
  Builder builder{std::string(known.className)};
  bool hasList = false;
  bool ownsItems = false;  // the list's items are stored (list and combo boxes)
  for (const PropertyInfo& property : known.properties) {
    if (property.type == ValueType::kList || property.type == ValueType::kItemData) {
      const bool stored = property.visibility != form::Visibility::kRuntime;
      hasList = hasList || property.type == ValueType::kList;
      ownsItems = ownsItems || (property.type == ValueType::kList && stored);
      AddList(builder, property, stored);
    } else {
      AddProperty(builder, property);
    }
  }
  if (hasList) {
    builder.Raw("ListCount", MemberKind::Get, VarType::Long, {}, [](LiveControl& self, Args&) {
      return Variant::Long(self.Control().Model().ListCount("List"));
    });
  }
  if (ownsItems) {
    builder.Raw("Clear", MemberKind::Method, VarType::Empty, {}, [](LiveControl& self, Args&) {
      NoteDroppedItemData(self.Control().Model());
      self.Control().Model().ClearList();
      self.Control().NoteChanged();
      return Variant();
    });
    builder.Raw("AddItem", MemberKind::Method, VarType::Empty,
                {Param("Item"), automation::Optional("Index")}, [](LiveControl& self, Args& args) {
                  const int32_t index = args[1].IsEmpty() ? -1 : args[1].ToLong();
                  self.Control().Model().AddItem(args[0], index);
                  self.Control().NoteChanged();
                  return Variant();
                });
    builder.Raw("RemoveItem", MemberKind::Method, VarType::Empty, {Param("Index")},
                [](LiveControl& self, Args& args) {
                  self.Control().Model().RemoveItem(args[0].ToLong());
                  self.Control().NoteChanged();
                  return Variant();
                });
  }
  return builder.Build();
}

// The live classes of the catalog's controls, built once.
const std::map<const form::ClassInfo*, automation::ClassInfo>& LiveClasses() {
  static const std::map<const form::ClassInfo*, automation::ClassInfo> classes = [] {
    std::map<const form::ClassInfo*, automation::ClassInfo> out;
    for (const form::ClassInfo* known : form::AllClasses()) {
      if (known->kind == form::ClassKind::kControl) out.emplace(known, BuildClass(*known));
    }
    return out;
  }();
  return classes;
}

}  // namespace

LiveControl::LiveControl(std::shared_ptr<VBControl> control, const form::ClassInfo* known)
    : control_(std::move(control)), known_(known) {}

const automation::ClassInfo& LiveControl::Class() const {
  static const automation::ClassInfo other = Builder("Control").Build();
  if (!known_) return other;
  auto it = LiveClasses().find(known_);
  return it == LiveClasses().end() ? other : it->second;
}

Variant LiveControl::Invoke(std::string_view interfaceName, std::string_view memberName,
                            MemberKind kind, Args& args) {
  if (!control_) automation::Raise(automation::err::kServerUnavailable);
  if (known_ || !interfaceName.empty())
    return Object::Invoke(interfaceName, memberName, kind, args);
  // A control of another library: the properties its file stores.
  const std::shared_ptr<automation::Process> owner = Owner();
  if (!owner || owner->Ended()) automation::Raise(automation::err::kServerUnavailable);
  form::ObjectProperties model = control_->Model();
  const std::string name(memberName);
  const bool stored = model.Has(name) || automation::SameVbName(name, "Name") ||
                      automation::SameVbName(name, "Index");
  if (kind == MemberKind::Get && args.empty() && stored) {
    if (automation::SameVbName(name, "Name")) return Variant(control_->Name());
    if (automation::SameVbName(name, "Index")) {
      return Variant::Integer(static_cast<int16_t>(control_->Index()));
    }
    return model.Get(name);
  }
  if (kind == MemberKind::Put && args.size() == 1 && stored) {
    if (automation::SameVbName(name, "Name")) {
      control_->SetName(args[0]);
    } else if (automation::SameVbName(name, "Index")) {
      control_->SetIndex(args[0]);
    } else {
      model.Set(name, args[0]);
      control_->NoteChanged();
    }
    return Variant();
  }
  automation::Raise(automation::err::kNoSuchMember, model.Node().Type() + "." + name);
}

}  // namespace ide::vbide
