#pragma once
// The driver's public enumerations, which its classes declare their properties with, in the
// order its type information publishes them.

#include <vector>

#include "automation/type_library.h"

namespace controls {

// The library name the enumerations are published under.
inline constexpr const char* kTypeLibrary = "qxvb60";

const std::vector<automation::Enumeration>& PublicEnumerations();

}  // namespace controls
