#pragma once
// What the files of ObjectProperties (object_properties.cpp, object_lists.cpp, object_fonts.cpp)
// and the companion store share: how VB compares property names, how a stored number reads, and
// an object's class from the catalog. Not for use outside ide/form.

#include <optional>
#include <string_view>

#include "ide/form/description.h"
#include "ide/form/property_catalog.h"

namespace ide::form::detail {

bool Same(std::string_view a, std::string_view b);
// A stored number: decimal, or `&H...&` hexadecimal (colours); nullopt when it is neither.
std::optional<double> ParseNumber(std::string_view text);
// Raises 438 naming the property that the object does not have.
[[noreturn]] void NoSuchProperty(std::string_view name);
// The object's class from the catalog; null for a group or a class the catalog does not know.
const ClassInfo* ClassOf(const DescriptionNode& node);

}  // namespace ide::form::detail
