#pragma once
// What a fresh stand-in registry holds: the settings and type-library registrations of a
// machine with VB6 installed.

#include <span>
#include <string_view>

namespace platform {

struct TypeLibrarySeed {
  std::string_view guid;         // with braces, as a .vbp names it
  std::string_view description;  // the library's name in VB6's References and Components lists
};

// The type libraries and controls that a VB6 installation (and the Windows it runs on)
// registers under HKEY_CLASSES_ROOT\TypeLib.
std::span<const TypeLibrarySeed> SeedTypeLibraries();

}  // namespace platform
