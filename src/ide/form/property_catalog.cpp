#include "ide/form/property_catalog.h"

#include <algorithm>
#include <array>

#include "automation/casefold.h"
#include "ide/form/catalog_data.h"

namespace ide::form {

const EnumMember* Enumeration::Find(int32_t value) const {
  for (const EnumMember& member : members) {
    if (member.value == value) return &member;
  }
  return nullptr;
}

std::string_view Enumeration::Describe(int32_t value) const {
  const EnumMember* member = Find(value);
  return member ? member->description : std::string_view();
}

bool ClassInfo::HasFont() const {
  return Find("Font") != nullptr;
}

int32_t ClassInfo::Count() const {
  // The runtime-only properties come last and take no position.
  const auto end = std::find_if(properties.begin(), properties.end(), [](const PropertyInfo& p) {
    return p.visibility == Visibility::kRuntime;
  });
  return static_cast<int32_t>(end - properties.begin());
}

const PropertyInfo* ClassInfo::At(int32_t position) const {
  if (position < 0 || position >= Count()) return nullptr;
  return &properties[static_cast<std::size_t>(position)];
}

int32_t ClassInfo::PositionOf(std::string_view name) const {
  const int32_t count = Count();
  for (int32_t i = 0; i < count; ++i) {
    if (automation::EqualsAsciiNoCase(properties[static_cast<std::size_t>(i)].name, name)) {
      return i;
    }
  }
  return -1;
}

const PropertyInfo* ClassInfo::Find(std::string_view name) const {
  return At(PositionOf(name));
}

const PropertyInfo* ClassInfo::FindMember(std::string_view name) const {
  for (const PropertyInfo& p : properties) {
    if (automation::EqualsAsciiNoCase(p.name, name)) return &p;
  }
  return nullptr;
}

std::span<const PropertyInfo> FontProperties() {
  using namespace data;
  static constexpr PropertyInfo kFont[] = {
      Word("Name", kDefaultFont.name),
      Sng("Size", kDefaultFont.size),
      Int("Charset", kDefaultFont.charset),
      Range(Int("Weight", kDefaultFont.weight), 0, 1000),
      Bool("Underline", kDefaultFont.underline),
      Bool("Italic", kDefaultFont.italic),
      Bool("Strikethrough", kDefaultFont.strikethrough),
      Derived(Bool("Bold", IsBold(kDefaultFont.weight))),
  };
  return kFont;
}

std::span<const ClassInfo* const> AllClasses() {
  static const auto kAll = [] {
    std::array<const ClassInfo*, 28> all{};
    std::size_t i = 0;
    for (const ClassInfo* c : {&data::kForm, &data::kMDIForm, &data::kUserControl,
                               &data::kPropertyPage, &data::kUserDocument}) {
      all[i++] = c;
    }
    for (const ClassInfo& c : data::kControls)
      all[i++] = &c;
    all[i++] = &data::kDhtmlPage;
    all[i++] = &data::kUserConnection;
    return all;
  }();
  return kAll;
}

const ClassInfo& ExtenderClass() {
  return data::kExtender;
}

const ClassInfo* FindClass(std::string_view identifier) {
  for (const ClassInfo* c : AllClasses()) {
    if (automation::EqualsAsciiNoCase(c->progId, identifier) ||
        (!c->classId.empty() && automation::EqualsAsciiNoCase(c->classId, identifier))) {
      return c;
    }
  }
  return nullptr;
}

const Enumeration* FindEnumeration(std::string_view name) {
  for (const Enumeration* e : data::AllEnumerations()) {
    if (automation::EqualsAsciiNoCase(e->name, name)) return e;
  }
  return nullptr;
}

}  // namespace ide::form
