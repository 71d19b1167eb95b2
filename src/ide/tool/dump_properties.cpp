// qxvb6.exe dump --properties: every property of every form-like component and designer, and of
// each of their controls, as the IDE's extensibility objects answer them (VBComponent.Properties,
// VBControl.Properties, the font object), one JSON object a line.

#include <charconv>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "automation/error.h"
#include "automation/object.h"
#include "automation/process.h"
#include "ide/tool/commands.h"
#include "ide/tool/report.h"
#include "ide/vbide/ide.h"
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
using automation::VarType;
using Json = nlohmann::ordered_json;

// vbext_ComponentType of the kinds that have a designer: forms, MDI forms, property pages, user
// controls, user documents and ActiveX designers.
bool HasDesigner(int32_t type) {
  return type == 5 || type == 6 || type == 7 || type == 8 || type == 9 || type == 11;
}

// A Single by its shortest decimal form, so that 0.1 is written 0.1 and not as the double
// nearest the Single (0.10000000149011612).
double SingleAsDouble(float value) {
  char text[32];
  const auto [end, ec] = std::to_chars(text, text + sizeof text, value);
  if (ec != std::errc()) return value;
  *end = '\0';
  return std::strtod(text, nullptr);
}

Json ValueJson(const Variant& value) {
  switch (value.Type()) {
    case VarType::Boolean:
      return value.ToBool();
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long:
      return value.ToLong();
    case VarType::Single:
      return SingleAsDouble(value.ToSingle());
    case VarType::Double:
    case VarType::Currency:
      return value.ToDouble();
    case VarType::String:
      return value.ToString();
    case VarType::Empty:
    case VarType::Object:  // Nothing, or an object that is neither a font nor a picture
    case VarType::Variant:
      break;
  }
  return nullptr;
}

// The font object's settings, read through the font's own Properties collection.
Json FontJson(vbide::Properties& font) {
  Json out = Json::object();
  for (const char* name :
       {"Name", "Size", "Bold", "Italic", "Underline", "Strikethrough", "Weight", "Charset"}) {
    out[name] = ValueJson(font.Item(Variant(name))->Value());
  }
  return out;
}

// One property: lists as arrays of their items, pictures (and other objects kept in the
// companion) as {"picture": size of their data}, no picture as null, fonts as objects.
Json PropertyJson(vbide::Property& property, const form::ObjectProperties& object) {
  const std::string name = property.Name();
  if (property.NumIndices() == 1) {
    Json items = Json::array();
    const int32_t count = object.ListCount(name);
    for (int32_t i = 0; i < count; ++i) {
      items.push_back(ValueJson(property.IndexedValue(Variant::Long(i), {}, {}, {})));
    }
    return items;
  }
  if (const auto size = object.CompanionDataSize(name)) return Json{{"picture", *size}};
  const Variant value = property.Value();
  if (value.Type() == VarType::Object) {
    const auto font = std::dynamic_pointer_cast<vbide::Properties>(value.ToObject());
    if (font && font->GetKind() == vbide::Properties::Kind::kFont) return FontJson(*font);
    return nullptr;
  }
  return ValueJson(value);
}

Json PropertiesJson(vbide::Properties& properties) {
  Json out = Json::object();
  const int32_t count = properties.Count();
  if (count == 0) return out;
  const form::ObjectProperties object = properties.Source().locate();
  for (int32_t i = 1; i <= count; ++i) {
    const std::shared_ptr<vbide::Property> property = properties.Item(Variant::Long(i));
    out[property->Name()] = PropertyJson(*property, object);
  }
  return out;
}

Json ControlsJson(const automation::ObjectRef& designer) {
  Json controls = Json::array();
  const auto form = std::dynamic_pointer_cast<vbide::VBForm>(designer);
  if (!form) return controls;  // a designer of its own kind (.dsr) has no controls here
  const std::shared_ptr<vbide::VBControls> all = form->VBControls();
  const int32_t count = all->Count();
  for (int32_t i = 1; i <= count; ++i) {
    const std::shared_ptr<vbide::VBControl> control = all->Item(Variant::Long(i), Variant());
    std::string name = control->Name();
    if (const int32_t index = control->Index(); index != -1) {
      name += "(" + std::to_string(index) + ")";
    }
    const auto properties = automation::As<vbide::Properties>(control->Properties());
    controls.push_back(Json{{"name", name},
                            {"progId", control->ProgId()},
                            {"properties", PropertiesJson(*properties)}});
  }
  return controls;
}

// One component's line. Modules and classes have no designer and are left out unless named.
// A component that cannot be loaded is reported on err, and the dump goes on.
bool DumpComponent(vbide::VBComponent& component, bool named, std::ostream& out,
                   std::ostream& err) {
  try {
    const int32_t type = component.Type();
    if (!named && !HasDesigner(type)) return true;
    Json line = Json::object();
    line["component"] = component.Name();
    line["type"] = type;
    line["properties"] = PropertiesJson(*component.Properties());
    line["controls"] = HasDesigner(type) ? ControlsJson(component.Designer()) : Json::array();
    // Text that is not UTF-8 (bytes a code page could not map) is shown, not refused.
    out << line.dump(-1, ' ', false, Json::error_handler_t::replace) << "\n";
    return true;
  } catch (const automation::Error& e) {
    PrintError(err, component.Name(), e);
    return false;
  }
}

}  // namespace

int RunDumpProperties(const DumpOptions& options, std::ostream& out, std::ostream& err) {
  try {
    const std::unique_ptr<Ide> ide = Ide::Start(options.projectFile, Ide::AddInLoading::kNone);
    if (!ide->VBProject()) {
      PrintError(err, ide->Problems().back().error);
      return kExitError;
    }
    const automation::Process::Scope scope(ide->Process());
    const std::shared_ptr<vbide::VBComponents> components = ide->VBProject()->VBComponents();
    if (!options.component.empty()) {
      return DumpComponent(*components->Item(Variant(options.component)), true, out, err)
                 ? kExitOk
                 : kExitComponentProblem;
    }
    bool allLoaded = true;
    for (const auto& component : components->Items())
      allLoaded = DumpComponent(*component, false, out, err) && allLoaded;
    return allLoaded ? kExitOk : kExitComponentProblem;
  } catch (const automation::Error& e) {
    PrintError(err, e);
    return kExitError;
  }
}

}  // namespace ide::tool
