#include "controls/control.h"

#include <array>
#include <span>
#include <string_view>
#include <vector>

#include "components/declared_types.h"
#include "foundation/operation.h"
#include "foundation/vxhandler.h"
#include "project/utility.h"

namespace controls {

using automation::Dispatch;
using automation::ObjectRef;
using automation::Variant;
using components::ToDeclared;
using foundation::Operation;

namespace {

constexpr const char* kClass = "Control";
constexpr std::string_view kItemSeparator = "\r\n";

}  // namespace

// One member table per control type: every property of the interface, with those the type does
// not have flagged hidden. Reading one still raises "Undefined property."; whoever reads every
// property of a control (the scanner) skips them instead of being told so for each, which costs
// an exception each time.
const automation::ClassInfo& Control::Class() const {
  static const std::array<automation::ClassInfo, kCustomControl + 1> kByType = [] {
    automation::ClassBuilder<Control> builder{"Control"};
    builder.Method("Initialize", &Control::Initialize, {"ParentCollection", "VBControl"})
        .Method("TearDown", &Control::TearDown);
    components::AddPropertyMembers(
        builder, ControlProperties(),
        [](Control& self, const ControlProperty& row) { return self.Read(row); },
        [](Control& self, const ControlProperty& row, const Variant& value) {
          self.Write(row, value);
        });
    const automation::ClassInfo every = builder.Build();
    // Each member's row, found once for every type.
    std::vector<const ControlProperty*> rows;
    for (const automation::Member& member : every.defaultInterface.members)
      rows.push_back(FindControlProperty(member.name));
    std::array<automation::ClassInfo, kCustomControl + 1> byType;
    for (std::size_t type = 0; type < byType.size(); ++type) {
      byType[type] = every;
      std::vector<automation::Member>& members = byType[type].defaultInterface.members;
      for (std::size_t m = 0; m < members.size(); ++m) {
        const ControlProperty* row = rows[m];
        members[m].hidden = row != nullptr && row->reading != Reading::kZeroElsewhere &&
                            !Contains(row->readOn, static_cast<ControlType>(type));
      }
    }
    return byType;
  }();
  return kByType[static_cast<std::size_t>(type_)];
}

void Control::Initialize(ObjectRef& parentCollection, ObjectRef& vbControl) {
  Operation(kClass, "Initialize", [&] {
    parentCollection_ = parentCollection;
    vbControl_ = vbControl;
    const Dispatch control(vbControl_);
    live_ = control.Get("ControlObject").ToObject();
    type_ = ControlTypeOf(control.Get("ProgId").ToString());
  });
}

void Control::TearDown() {
  Operation(kClass, "TearDown", [&] {
    vbControl_.reset();
    live_.reset();
    parentCollection_.reset();
  });
}

Variant Control::Read(const ControlProperty& property) {
  if (!Contains(property.readOn, type_)) {
    if (property.reading == Reading::kZeroElsewhere) return ToDeclared(Variant(0), property.type);
    foundation::RaiseUndefinedProperty();
  }
  switch (property.reading) {
    case Reading::kName:
      return Variant(project::GetControlName(vbControl_));
    case Reading::kList:
      return Variant(ReadList());
    case Reading::kSelf:
      return Variant(live_);
    case Reading::kLive:
    case Reading::kZeroElsewhere:
      break;
  }
  return ToDeclared(Dispatch(live_).Get(property.name), property.type);
}

void Control::Write(const ControlProperty& property, const Variant& value) {
  switch (property.reading) {
    case Reading::kName:
      Rename(value.ToString());
      return;
    case Reading::kList:
      WriteList(value.ToString());
      return;
    case Reading::kLive:
    case Reading::kZeroElsewhere:
    case Reading::kSelf:
      break;
  }
  Dispatch(live_).Put(property.name, ToDeclared(value, property.type));
}

std::string Control::ReadList() const {
  const Dispatch live(live_);
  const int32_t last = live.Get("ListCount").ToLong() - 1;
  std::string items;
  for (int32_t i = 0; i <= last; ++i) {
    if (i > 0) items += kItemSeparator;
    items += live.GetAt("List", Variant::Long(i)).ToString();
  }
  return items;
}

void Control::WriteList(const std::string& items) const {
  const Dispatch live(live_);
  live.Call("Clear");
  if (items.empty()) return;
  for (size_t start = 0;;) {
    const size_t end = items.find(kItemSeparator, start);
    automation::Args args{Variant(items.substr(start, end - start))};
    live.CallArgs("AddItem", args);
    if (end == std::string::npos) break;
    start = end + kItemSeparator.size();
  }
}

void Control::Rename(const std::string& newName) {
  const std::string oldName = project::GetControlName(vbControl_);
  project::SetControlName(vbControl_, newName);
  Dispatch(parentCollection_.lock()).Call("UpdateKey", oldName, newName);
}

}  // namespace controls
