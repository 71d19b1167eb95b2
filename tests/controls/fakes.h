#pragma once
// Stand-ins for the IDE's objects that the designed components and controls call by name: a
// component with its Properties (each a Property with Value and Object), the standard font
// object (attributes by dispatch identifier), a designer with VBControls, IDE controls with
// their Name and Index, and live controls that keep whatever is written to them.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "automation/error.h"
#include "automation/object.h"
#include "automation/variant.h"

namespace qxtest {

using automation::Args;
using automation::MemberKind;
using automation::ObjectRef;
using automation::Variant;

// An object whose members are given at run time. Its properties keep their values in `values`
// (read and written by name, or by dispatch identifier where one is given); its methods run the
// functions given.
class Fake : public automation::Object {
 public:
  using Body = std::function<Variant(Fake&, Args&)>;

  explicit Fake(std::string className) { info_.name = std::move(className); }

  const automation::ClassInfo& Class() const override { return info_; }

  // A read/write property kept in `values`.
  Fake& Property(const std::string& name, Variant initial = Variant(),
                 int32_t dispId = automation::kNoDispId) {
    values[name] = std::move(initial);
    Add(
        name, MemberKind::Get, 0, [name](Fake& self, Args&) { return self.values.at(name); },
        dispId);
    Add(
        name, MemberKind::Put, 1,
        [name](Fake& self, Args& args) {
          self.values[name] = args.at(0);
          self.writes.push_back(name);
          return Variant();
        },
        dispId);
    return *this;
  }
  Fake& Member(const std::string& name, MemberKind kind, size_t params, Body body) {
    Add(name, kind, params, std::move(body), automation::kNoDispId);
    return *this;
  }

  std::map<std::string, Variant> values;
  std::vector<std::string> writes;  // the properties written, in order

 private:
  void Add(const std::string& name, MemberKind kind, size_t params, Body body, int32_t dispId) {
    automation::Member m;
    m.name = name;
    m.kind = kind;
    m.type = automation::VarType::Variant;
    m.dispId = dispId;
    m.params.assign(params, automation::Param("Arg"));
    m.paramTypes.assign(params, automation::VarType::Variant);
    m.paramByRef.assign(params, false);
    m.invoke = [body = std::move(body)](automation::Object& self, Args& args) {
      return body(static_cast<Fake&>(self), args);
    };
    info_.defaultInterface.members.push_back(std::move(m));
    info_.defaultInterface.Index();
  }

  automation::ClassInfo info_;
};

// A Properties collection: Item(name) gives the Property of that name, or fails with 5.
inline std::shared_ptr<Fake> FakeProperties(std::map<std::string, std::shared_ptr<Fake>>& items) {
  auto properties = std::make_shared<Fake>("Properties");
  properties->Member("Item", MemberKind::Method, 1, [&items](Fake&, Args& args) {
    const auto it = items.find(args.at(0).ToString());
    if (it == items.end()) automation::Raise(automation::err::kInvalidCall, args[0].ToString());
    return Variant(ObjectRef(it->second));
  });
  return properties;
}

// A Property with a Value and, for an object-valued one, its Object.
inline std::shared_ptr<Fake> FakeProperty(Variant value, ObjectRef object = nullptr) {
  auto property = std::make_shared<Fake>("Property");
  property->Property("Value", std::move(value)).Property("Object", Variant(std::move(object)));
  return property;
}

// The standard font object: Name 0, Size 2 (Currency, 8.25 at first), Bold 3, Italic 4,
// Underline 5, Strikethrough 6.
inline std::shared_ptr<Fake> FakeFont() {
  auto font = std::make_shared<Fake>("StdFont");
  font->Property("Name", "MS Sans Serif", 0)
      .Property("Size", Variant::Cur({82500}), 2)
      .Property("Bold", false, 3)
      .Property("Italic", false, 4)
      .Property("Underline", false, 5)
      .Property("Strikethrough", false, 6);
  return font;
}

// An IDE control (VBControl) with its Name and Index, its class identifier and its live
// control, which has every property a Control reaches (kept as written) and a list of items
// (ListCount, List(i), Clear, AddItem).
struct FakeControl {
  FakeControl(const std::string& progId, const std::string& name, int16_t index,
              const std::vector<std::string>& propertyNames) {
    items["Name"] = FakeProperty(name);
    items["Index"] = FakeProperty(Variant::Integer(index));
    live = std::make_shared<Fake>("Live");
    for (const std::string& property : propertyNames) {
      if (property != "List") live->Property(property);
    }
    auto list = listItems;
    live->Member("ListCount", MemberKind::Get, 0,
                 [list](Fake&, Args&) { return Variant::Long(static_cast<int32_t>(list->size())); })
        .Member("List", MemberKind::Get, 1,
                [list](Fake&, Args& args) { return Variant(list->at(args.at(0).ToLong())); })
        .Member("Clear", MemberKind::Method, 0,
                [list](Fake&, Args&) {
                  list->clear();
                  return Variant();
                })
        .Member("AddItem", MemberKind::Method, 1, [list](Fake&, Args& args) {
          list->push_back(args.at(0).ToString());
          return Variant();
        });
    vbControl = std::make_shared<Fake>("VBControl");
    vbControl->Property("Properties", Variant(ObjectRef(FakeProperties(items))))
        .Property("ControlObject", Variant(ObjectRef(live)))
        .Property("ProgId", progId);
  }
  FakeControl(const FakeControl&) = delete;
  FakeControl& operator=(const FakeControl&) = delete;

  Variant Ide(const std::string& property) const { return items.at(property)->values["Value"]; }

  std::map<std::string, std::shared_ptr<Fake>> items;
  std::shared_ptr<std::vector<std::string>> listItems =
      std::make_shared<std::vector<std::string>>();
  std::shared_ptr<Fake> live;
  std::shared_ptr<Fake> vbControl;
};

}  // namespace qxtest
