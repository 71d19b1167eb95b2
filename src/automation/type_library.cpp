#include "automation/type_library.h"

#include <map>

#include "automation/casefold.h"

namespace automation {
namespace {

std::map<std::string, std::vector<Enumeration>>& Libraries() {
  static std::map<std::string, std::vector<Enumeration>> libraries;
  return libraries;
}

}  // namespace

void PublishEnumerations(std::string library, std::vector<Enumeration> enumerations) {
  Libraries()[VbNameKey(library)] = std::move(enumerations);
}

const std::vector<Enumeration>& PublishedEnumerations(std::string_view library) {
  static const std::vector<Enumeration> none;
  const auto it = Libraries().find(VbNameKey(library));
  return it == Libraries().end() ? none : it->second;
}

}  // namespace automation
