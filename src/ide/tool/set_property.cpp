// qxvb6.exe set: writes one property of a form-like component or designer, or of one of its
// controls, through the IDE's extensibility objects (as an add-in writes it), and saves the
// component as the IDE saves it.

#include <cstdint>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <string_view>

#include "automation/error.h"
#include "automation/object.h"
#include "automation/process.h"
#include "ide/tool/commands.h"
#include "ide/tool/report.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/live_control.h"
#include "ide/vbide/properties.h"
#include "ide/vbide/vbcomponent.h"
#include "ide/vbide/vbcomponents.h"
#include "ide/vbide/vbcontrol.h"
#include "ide/vbide/vbcontrols.h"
#include "ide/vbide/vbform.h"
#include "ide/vbide/vbproject.h"

namespace ide::tool {
namespace {

using automation::Variant;
using Json = nlohmann::json;
namespace err = automation::err;

[[noreturn]] void BadValue(const std::string& why) {
  automation::Raise(err::kInvalidCall, "VALUE " + why);
}

// A JSON scalar as the Variant a caller of Property.Value would pass: text as a String, whole
// numbers as a Long (a Double past its range), other numbers as a Double, true and false as
// Booleans.
Variant ScalarOf(const Json& value) {
  switch (value.type()) {
    case Json::value_t::string:
      return Variant(value.get<std::string>());
    case Json::value_t::boolean:
      return Variant(value.get<bool>());
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned: {
      const double number = value.get<double>();
      if (number >= std::numeric_limits<int32_t>::min() &&
          number <= std::numeric_limits<int32_t>::max()) {
        return Variant::Long(static_cast<int32_t>(number));
      }
      return Variant(number);
    }
    case Json::value_t::number_float:
      return Variant(value.get<double>());
    default:
      BadValue("must be a string, a number, a boolean or an array of strings, not " +
               std::string(value.type_name()));
  }
}

// The target's parts: "frmMain" or "frmMain.txtName" or "frmMain.Text1(3)".
struct Target {
  std::string component;
  std::string control;  // empty: the component itself
};

Target SplitTarget(std::string_view target) {
  const std::size_t dot = target.find('.');
  if (dot == std::string_view::npos) return {std::string(target), {}};
  return {std::string(target.substr(0, dot)), std::string(target.substr(dot + 1))};
}

// A whole list: the control's items replaced by Clear and AddItem, as code would replace them.
// Its ItemData goes with the old items (Clear empties it, AddItem gives none): the new items
// are other items, and data kept by position would be attached to the wrong ones.
void ReplaceList(const std::shared_ptr<vbide::VBControl>& control, vbide::Properties& properties,
                 const std::string& name, const Json& items) {
  const std::shared_ptr<vbide::Property> property = properties.Item(Variant(name));
  if (control == nullptr || property->NumIndices() != 1 || property->Name() != "List") {
    automation::Raise(err::kInvalidPropertyValue,
                      property->Name() + " takes one value, not an array of items");
  }
  for (const Json& item : items) {
    if (!item.is_string()) BadValue("of a list must be an array of strings");
  }
  const automation::Dispatch live(control->ControlObject());
  live.Call("Clear");
  for (const Json& item : items)
    live.Call("AddItem", item.get<std::string>());
}

void Write(vbide::VBComponent& component, const Target& target, const std::string& name,
           const Json& value) {
  std::shared_ptr<vbide::VBControl> control;
  std::shared_ptr<vbide::Properties> properties;
  if (target.control.empty()) {
    properties = component.Properties();
  } else {
    const auto form = std::dynamic_pointer_cast<vbide::VBForm>(component.Designer());
    if (!form) {
      automation::Raise(err::kSubscript, component.Name() + " has no controls");
    }
    control = form->VBControls()->Item(Variant(target.control), Variant());
    properties = automation::As<vbide::Properties>(control->Properties());
  }
  if (value.is_array()) {
    ReplaceList(control, *properties, name, value);
    return;
  }
  const Variant scalar = ScalarOf(value);
  if (control != nullptr && !properties->Source().locate().Has(name)) {
    // What only the live control has (FontBold...); 438 when it has nothing of the name.
    automation::Dispatch(control->ControlObject()).Put(name, scalar);
    return;
  }
  properties->Item(Variant(name))->SetValue(scalar);
}

}  // namespace

int RunSet(const SetOptions& options, std::ostream& err) {
  try {
    const Json value = Json::parse(options.value, nullptr, false);
    if (value.is_discarded()) BadValue("is not JSON: " + options.value);
    const Target target = SplitTarget(options.target);
    const std::unique_ptr<Ide> ide = Ide::Start(options.projectFile, Ide::AddInLoading::kNone);
    if (!ide->VBProject()) {
      PrintError(err, ide->Problems().back().error);
      return kExitError;
    }
    const automation::Process::Scope scope(ide->Process());
    const std::shared_ptr<vbide::VBComponent> component =
        ide->VBProject()->VBComponents()->Item(Variant(target.component));
    Write(*component, target, options.property, value);
    // Written only once the value was taken: a refusal leaves the files as they were.
    component->SaveAs(component->FileNames(1));
    return kExitOk;
  } catch (const automation::Error& e) {
    PrintError(err, e);
    return kExitError;
  }
}

}  // namespace ide::tool
