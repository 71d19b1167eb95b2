#include "ide/model/designer_id.h"

#include <array>
#include <string_view>

#include "automation/casefold.h"
#include "ide/model/component_file.h"

namespace ide {
namespace {

struct KnownDesigner {
  std::string_view clsid;
  std::string_view progId;
};

// Designer classes whose CLSID we have seen in `.dsr` files written by VB6 (VB6's own template
// folder and public projects). The DHTML page identifier is the one the driver asks for. The
// Data Environment, Data Report and Add-In identifiers are those of VB6's designer caches. The
// WebClass identifier is our best reading of the designer's library name (unsure).
constexpr std::array<KnownDesigner, 5> kKnown{{
    {"{90290CCD-F27D-11D0-8031-00C04FB6C701}", "DHTMLPageDesigner.DHTMLPage"},
    {"{C0E45035-5775-11D0-B388-00A0C9055D8E}", "DEDesigner.DataEnvironment"},
    {"{78E93846-85FD-11D0-8487-00A0C90DC8A9}", "MSDataReportLib.DataReport"},
    {"{AC0714F6-3D04-11D1-AE7D-00A0C90F26F4}", "MSAddnDr.AddInDesigner"},
    {"{17016CEE-E118-11D0-94B8-00A0C91110ED}", "WebClassDesigner.WebClass"},
}};

constexpr std::string_view kUserConnection = "ConnectionDesigner.UserConnection";

// Whether the root object of a designer carries the properties of an RDO connection, which is
// what a UserConnection designer persists. We found no UserConnection `.dsr` anywhere, so its
// CLSID is unknown; this recognises it by what it must store (the connect string with RDO's
// time-outs or cursor driver). Unsure, but no other designer we know stores that combination
// at its root.
bool LooksLikeUserConnection(const ComponentFile& file) {
  const form::Description* description = file.Description();
  if (!description) return false;
  const form::DescriptionNode& root = description->Root();
  const bool connect = root.FindProperty("Connect") != nullptr;
  const bool rdo = root.FindProperty("QueryTimeout") || root.FindProperty("LoginTimeout") ||
                   root.FindProperty("CursorDriver");
  return connect && rdo;
}

}  // namespace

std::string DesignerIdOf(ComponentType type) {
  switch (type) {
    case ComponentType::kStdModule:
    case ComponentType::kClassModule:
      return {};
    case ComponentType::kVBForm:
      return "VB.Form";
    case ComponentType::kVBMDIForm:
      return "VB.MDIForm";
    case ComponentType::kPropPage:
      return "VB.PropertyPage";
    case ComponentType::kUserControl:
      return "VB.UserControl";
    case ComponentType::kDocObject:
      return "VB.UserDocument";
    case ComponentType::kActiveXDesigner:
      break;
  }
  return {};
}

std::string DesignerIdOf(const ComponentFile& file) {
  if (file.Type() != ComponentType::kActiveXDesigner) return DesignerIdOf(file.Type());
  std::string clsid = file.DesignerClsid();
  for (const KnownDesigner& known : kKnown) {
    if (automation::EqualsAsciiNoCase(clsid, known.clsid)) return std::string(known.progId);
  }
  if (LooksLikeUserConnection(file)) return std::string(kUserConnection);
  // Another designer: its CLSID is the one identifier the file gives.
  return clsid;
}

}  // namespace ide
