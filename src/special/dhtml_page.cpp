#include "special/dhtml_page.h"

#include <array>
#include <cmath>
#include <string_view>
#include <vector>

#include "contracts/host_classes.h"
#include "contracts/ide_objects.h"
#include "foundation/operation.h"
#include "foundation/vxhandler.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/lines.h"

namespace special {
namespace {

using namespace components;

constexpr std::array kPageSettings = {
    Plain("BuildFile", DeclaredType::kString),
    Plain("SourceFile", DeclaredType::kString),
};

constexpr DesignedClass kDhtmlPage{"DHTMLPage", kPageSettings};

std::string ReadPage(const std::string& path) {
  const std::string text = platform::CurrentCodePage().Decode(platform::ReadFile(path));
  platform::LineReader reader(text, platform::LineEnds::kCrOrCrLf);
  std::vector<std::string_view> lines(1);  // capacity + 1 slots
  std::size_t capacity = 0;
  std::size_t count = 0;
  std::string_view line;
  while (reader.Next(line)) {
    if (count == capacity) {
      capacity = GrownLineCapacity(capacity);
      lines.resize(capacity + 1);
    }
    lines[count++] = line;
  }
  std::string joined;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) joined += "\r\n";
    joined += lines[i];
  }
  return joined;
}

}  // namespace

std::size_t GrownLineCapacity(std::size_t capacity) {
  return static_cast<std::size_t>(std::nearbyint(static_cast<double>(capacity) * 1.25)) + 64;
}

DHTMLPage::DHTMLPage() : DesignedComponent(kDhtmlPage) {}

// The settings come after the name, and HTML after them, before the procedures.
const automation::ClassInfo& DHTMLPage::Class() const {
  static const automation::ClassInfo info = [] {
    using C = DHTMLPage;
    automation::ClassBuilder<C> builder{"DHTMLPage"};
    builder.Method("Initialize", &C::Initialize, {"Parent", "VBProject", "Name"})
        .Method("TearDown", &C::TearDown)
        .Put("Name", &C::SetName)
        .Get("Name", &C::Name);
    AddPropertyMembers(
        builder, std::span<const ComponentProperty>(kPageSettings),
        [](C& self, const ComponentProperty& row) { return self.ReadProperty(row); },
        [](C& self, const ComponentProperty& row, const automation::Variant& value) {
          self.WriteProperty(row, value);
        });
    builder.Get("HTML", &C::HTML).Put("HTML", &C::SetHTML).Get("Procedures", &C::Procedures);
    return ComponentObject::AddObjectInterface(builder).Build();
  }();
  return info;
}

std::string DHTMLPage::PageFile() const {
  const contracts::VBComponent component(Component());
  return contracts::DHTMLPageDesigner(component.Designer()).PageFile();
}

std::string DHTMLPage::HTML() {
  return foundation::Operation(Kind().component, "HTML", [&] {
    const std::string path = PageFile();
    if (path.empty()) foundation::RaiseUndefinedProperty();
    if (!contracts::HostUtility::Get().FileExists(path)) {
      foundation::RaiseUserError("The file containing this DHTML Page was not found. (" + path +
                                 ")");
    }
    return ReadPage(path);
  });
}

void DHTMLPage::SetHTML(const std::string& text) {
  foundation::Operation(Kind().component, "HTML", [&] {
    const std::string path = PageFile();
    SetMode(0);
    platform::WriteFileAtomic(path, platform::CurrentCodePage().Encode(text + "\r\n"));
    SetMode(2);
  });
}

}  // namespace special
