#include "ide/form/property_catalog.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

#include "automation/casefold.h"
#include "ide/form/catalog_data.h"

namespace ide::form {
namespace {

// How many properties the class's Properties collection holds: those before the runtime-only.
int32_t CountOf(const ClassInfo& info) {
  const auto end =
      std::find_if(info.properties.begin(), info.properties.end(),
                   [](const PropertyInfo& p) { return p.visibility == Visibility::kRuntime; });
  return static_cast<int32_t>(end - info.properties.begin());
}

// A catalog class's properties by name (in ASCII lower case, the first of a name), and its
// count: every property read of every control looks its property up, so the catalog's classes
// are indexed once.
struct ClassIndex {
  int32_t count = 0;
  std::unordered_map<std::string, int32_t> byName;
};

const ClassIndex* IndexOf(const ClassInfo& info) {
  static const auto indexes = [] {
    std::unordered_map<const ClassInfo*, ClassIndex> all;
    for (const ClassInfo* c : AllClasses()) {
      ClassIndex& index = all[c];
      index.count = CountOf(*c);
      for (std::size_t i = 0; i < c->properties.size(); ++i)
        index.byName.emplace(automation::LowerAscii(c->properties[i].name),
                             static_cast<int32_t>(i));
    }
    return all;
  }();
  const auto it = indexes.find(&info);
  return it == indexes.end() ? nullptr : &it->second;
}

// The position of the first property of the name among all the class's properties; -1 when
// none.
int32_t MemberPosition(const ClassInfo& info, std::string_view name) {
  if (const ClassIndex* index = IndexOf(info)) {
    const auto it = index->byName.find(automation::LowerAscii(name));
    return it == index->byName.end() ? -1 : it->second;
  }
  for (std::size_t i = 0; i < info.properties.size(); ++i) {
    if (automation::EqualsAsciiNoCase(info.properties[i].name, name))
      return static_cast<int32_t>(i);
  }
  return -1;
}

}  // namespace

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
  const ClassIndex* index = IndexOf(*this);
  return index != nullptr ? index->count : CountOf(*this);
}

const PropertyInfo* ClassInfo::At(int32_t position) const {
  if (position < 0 || position >= Count()) return nullptr;
  return &properties[static_cast<std::size_t>(position)];
}

int32_t ClassInfo::PositionOf(std::string_view name) const {
  const int32_t position = MemberPosition(*this, name);
  return position < Count() ? position : -1;
}

const PropertyInfo* ClassInfo::Find(std::string_view name) const {
  return At(PositionOf(name));
}

const PropertyInfo* ClassInfo::FindMember(std::string_view name) const {
  const int32_t position = MemberPosition(*this, name);
  return position < 0 ? nullptr : &properties[static_cast<std::size_t>(position)];
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
  // By programmatic identifier or a designer's CLSID, the first class that has it.
  static const auto classes = [] {
    std::unordered_map<std::string, const ClassInfo*> all;
    for (const ClassInfo* c : AllClasses()) {
      all.emplace(automation::LowerAscii(c->progId), c);
      if (!c->classId.empty()) all.emplace(automation::LowerAscii(c->classId), c);
    }
    return all;
  }();
  const auto it = classes.find(automation::LowerAscii(identifier));
  return it == classes.end() ? nullptr : it->second;
}

const Enumeration* FindEnumeration(std::string_view name) {
  for (const Enumeration* e : data::AllEnumerations()) {
    if (automation::EqualsAsciiNoCase(e->name, name)) return e;
  }
  return nullptr;
}

}  // namespace ide::form
