#include "project/dispatcher.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "contracts/host_classes.h"
#include "foundation/operation.h"
#include "foundation/vxhandler.h"
#include "platform/files.h"
#include "project/utility.h"

namespace project {

using automation::Dispatch;
using automation::ObjectRef;
using foundation::Operation;

namespace {

constexpr const char* kClass = "Dispatcher";

// The IDE's component types (vbext_ComponentType).
constexpr int32_t kStdModule = 1;
constexpr int32_t kClassModule = 2;
constexpr int32_t kForm = 5;
constexpr int32_t kMdiForm = 6;
constexpr int32_t kPropertyPage = 7;
constexpr int32_t kUserControl = 8;
constexpr int32_t kDocObject = 9;
constexpr int32_t kDesigner = 11;

// The designers that have kinds of their own; every other designer is listed as a designer.
constexpr std::string_view kDhtmlPageDesigner = "DHTMLPageDesigner.DHTMLPage";
constexpr std::string_view kUserConnectionDesigner = "ConnectionDesigner.UserConnection";

// Which designers of type 11 a kind takes.
enum class Designers { kNone, kDhtmlPages, kUserConnections, kOthers };

std::map<std::string, ComponentFactory, std::less<>>& Factories() {
  static std::map<std::string, ComponentFactory, std::less<>> factories;
  return factories;
}

}  // namespace

void RegisterComponentClass(std::string className, ComponentFactory factory) {
  Factories()[std::move(className)] = std::move(factory);
}

// One kind of component as the IDE tells it: the types (and designers) that select it, its
// bitmap code, and its operations and component class.
struct Dispatcher::Kind {
  const char* enumeration;  // "EnumForms"
  const char* factory;      // "GetForm"
  const char* className;    // "Form"
  int32_t bitmapId;
  std::array<int32_t, 2> types;  // 0 where the kind takes fewer types
  Designers designers = Designers::kNone;

  bool Selects(int32_t type, const ObjectRef& component) const {
    if (type == kDesigner) {
      if (designers == Designers::kNone) return false;
      const std::string id = Dispatch(component).Get("DesignerID").ToString();
      switch (designers) {
        case Designers::kDhtmlPages:
          return id == kDhtmlPageDesigner;
        case Designers::kUserConnections:
          return id == kUserConnectionDesigner;
        default:
          return id != kDhtmlPageDesigner && id != kUserConnectionDesigner;
      }
    }
    for (const int32_t selected : types) {
      if (selected != 0 && type == selected) return true;
    }
    return false;
  }
};

namespace {

using Kind = Dispatcher::Kind;

const Kind kClassModules{"EnumClassModules", "GetClassModule", "ClassModule", 2, {kClassModule, 0}};
const Kind kDesigners{"EnumDesigners", "GetDesigner", "Designer", 3, {0, 0}, Designers::kOthers};
const Kind kDhtmlPages{"EnumDHTMLPages", "GetDHTMLPage",        "DHTMLPage", 3,
                       {0, 0},           Designers::kDhtmlPages};
const Kind kForms{"EnumForms", "GetForm", "Form", 4, {kForm, kMdiForm}};
const Kind kModules{"EnumModules", "GetModule", "Module", 5, {kStdModule, 0}};
const Kind kPropertyPages{
    "EnumPropertyPages", "GetPropertyPage", "PropertyPage", 6, {kPropertyPage, 0}};
const Kind kUserConnections{
    "EnumUserConnections",      "GetUserConnection", "UserConnection", 3, {0, 0},
    Designers::kUserConnections};
const Kind kUserControls{"EnumUserControls", "GetUserControl", "UserControl", 7, {kUserControl, 0}};
const Kind kUserDocuments{
    "EnumUserDocuments", "GetUserDocument", "UserDocument", 8, {kDocObject, 0}};

}  // namespace

bool CanBuildComponents(std::string_view operation) {
  for (const Kind* kind : {&kClassModules, &kDesigners, &kDhtmlPages, &kForms, &kModules,
                           &kPropertyPages, &kUserConnections, &kUserControls, &kUserDocuments}) {
    if (operation == kind->factory) return Factories().contains(std::string_view(kind->className));
  }
  return false;
}

const automation::ClassInfo& Dispatcher::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<Dispatcher>("Dispatcher")
          .Method("Initialize", &Dispatcher::Initialize, {"Parent", "VBProject"})
          .Method("TearDown", &Dispatcher::TearDown)
          .Method("Initialize2", &Dispatcher::Initialize2, {"ProblemLog"})
          .Get("VBProject", &Dispatcher::VBProject)
          .Method("EnumClassModules", &Dispatcher::EnumClassModules)
          .Method("EnumDesigners", &Dispatcher::EnumDesigners)
          .Method("EnumDHTMLPages", &Dispatcher::EnumDHTMLPages)
          .Method("EnumForms", &Dispatcher::EnumForms)
          .Method("EnumModules", &Dispatcher::EnumModules)
          .Method("EnumPropertyPages", &Dispatcher::EnumPropertyPages)
          .Method("EnumUserConnections", &Dispatcher::EnumUserConnections)
          .Method("EnumUserControls", &Dispatcher::EnumUserControls)
          .Method("EnumUserDocuments", &Dispatcher::EnumUserDocuments)
          .Method("GetClassModule", &Dispatcher::GetClassModule, {"Project", "ObjectName"})
          .Method("GetDesigner", &Dispatcher::GetDesigner, {"Project", "ObjectName"})
          .Method("GetDHTMLPage", &Dispatcher::GetDHTMLPage, {"Project", "ObjectName"})
          .Method("GetForm", &Dispatcher::GetForm, {"Project", "ObjectName"})
          .Method("GetModule", &Dispatcher::GetModule, {"Project", "ObjectName"})
          .Method("GetPropertyPage", &Dispatcher::GetPropertyPage, {"Project", "ObjectName"})
          .Method("GetUserConnection", &Dispatcher::GetUserConnection, {"Project", "ObjectName"})
          .Method("GetUserControl", &Dispatcher::GetUserControl, {"Project", "ObjectName"})
          .Method("GetUserDocument", &Dispatcher::GetUserDocument, {"Project", "ObjectName"})
          .Build();
  return info;
}

void Dispatcher::Initialize(ObjectRef& parent, ObjectRef& vbProject) {
  Operation(kClass, "Initialize", [&] {
    parent_ = parent;
    vbProject_ = vbProject;
    link_ = contracts::ProblemLogLink::New().object();
  });
}

void Dispatcher::TearDown() {
  Operation(kClass, "TearDown", [&] {
    parent_.reset();
    vbProject_.reset();
    link_.reset();
    contracts::Tracer::Get().Finish();
  });
}

void Dispatcher::Initialize2(ObjectRef& problemLog) {
  Operation(kClass, "Initialize2", [&] { contracts::ProblemLogLink(link_).Link(problemLog); });
}

ObjectRef Dispatcher::VBProject() {
  return Operation(kClass, "VBProject", [&] { return vbProject_; });
}

Dispatcher::FileInfo Dispatcher::GetFileInfo(const std::string& file) {
  return Operation(kClass, "GetFileInfo", [&] {
    // A missing or unreadable file is no failure: it only empties the version and the flags.
    bool dated = false;
    platform::LocalTime modified{};
    try {
      modified = platform::FileDateTime(file);
      dated = true;
    } catch (...) {
      dated = false;
    }
    uint32_t attributes = 0;
    try {
      attributes = platform::GetAttr(file);
    } catch (...) {
      attributes = 0;
    }
    FileInfo info;
    if (!dated) return info;
    info.version = VersionText(modified);
    info.flag = true;
    info.writable = (attributes & platform::kAttrReadOnly) == 0;
    return info;
  });
}

std::string Dispatcher::Enumerate(const Kind& kind) {
  return Operation(kClass, kind.enumeration, [&] {
    std::string result;
    bool first = true;
    const Dispatch components(Dispatch(vbProject_).Get("VBComponents").ToObject());
    const int32_t count = components.Get("Count").ToLong();
    for (int32_t index = 1; index <= count; ++index) {
      const ObjectRef component = components.Call("Item", index).ToObject();
      const Dispatch read(component);
      if (!kind.Selects(read.Get("Type").ToLong(), component)) continue;
      const std::string name = read.Get("Name").ToString();
      const FileInfo info = GetFileInfo(read.GetAt("FileNames", int16_t{1}).ToString());
      if (!first) result += "\r\n";
      first = false;
      result += name + "\t" + std::to_string(kind.bitmapId) + "\t" + info.version + "\t" +
                (info.flag ? "1" : "0") + "\t" + (info.writable ? "1" : "0") + "\t1\t0";
    }
    return result;
  });
}

std::string Dispatcher::EnumClassModules() {
  return Enumerate(kClassModules);
}
std::string Dispatcher::EnumDesigners() {
  return Enumerate(kDesigners);
}
std::string Dispatcher::EnumDHTMLPages() {
  return Enumerate(kDhtmlPages);
}
std::string Dispatcher::EnumForms() {
  return Enumerate(kForms);
}
std::string Dispatcher::EnumModules() {
  return Enumerate(kModules);
}
std::string Dispatcher::EnumPropertyPages() {
  return Enumerate(kPropertyPages);
}
std::string Dispatcher::EnumUserConnections() {
  return Enumerate(kUserConnections);
}
std::string Dispatcher::EnumUserControls() {
  return Enumerate(kUserControls);
}
std::string Dispatcher::EnumUserDocuments() {
  return Enumerate(kUserDocuments);
}

ObjectRef Dispatcher::Build(const Kind& kind, ObjectRef& project, const std::string& objectName) {
  return Operation(kClass, kind.factory, [&]() -> ObjectRef {
    const auto found = Factories().find(std::string_view(kind.className));
    ObjectRef object = found != Factories().end() ? found->second() : nullptr;
    if (!object) {
      foundation::RaiseUserError(std::string("The driver cannot open a ") + kind.className +
                                 " yet: its " + kind.className + " class is not available.");
    }
    // The name is not checked here: the object looks its component up when it needs it.
    automation::Args args{project, vbProject_, objectName};
    Dispatch(object).CallArgs("Initialize", args);
    return object;
  });
}

ObjectRef Dispatcher::GetClassModule(ObjectRef& project, const std::string& objectName) {
  return Build(kClassModules, project, objectName);
}
ObjectRef Dispatcher::GetDesigner(ObjectRef& project, const std::string& objectName) {
  return Build(kDesigners, project, objectName);
}
ObjectRef Dispatcher::GetDHTMLPage(ObjectRef& project, const std::string& objectName) {
  return Build(kDhtmlPages, project, objectName);
}
ObjectRef Dispatcher::GetForm(ObjectRef& project, const std::string& objectName) {
  return Build(kForms, project, objectName);
}
ObjectRef Dispatcher::GetModule(ObjectRef& project, const std::string& objectName) {
  return Build(kModules, project, objectName);
}
ObjectRef Dispatcher::GetPropertyPage(ObjectRef& project, const std::string& objectName) {
  return Build(kPropertyPages, project, objectName);
}
ObjectRef Dispatcher::GetUserConnection(ObjectRef& project, const std::string& objectName) {
  return Build(kUserConnections, project, objectName);
}
ObjectRef Dispatcher::GetUserControl(ObjectRef& project, const std::string& objectName) {
  return Build(kUserControls, project, objectName);
}
ObjectRef Dispatcher::GetUserDocument(ObjectRef& project, const std::string& objectName) {
  return Build(kUserDocuments, project, objectName);
}

}  // namespace project
