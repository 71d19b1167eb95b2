#pragma once
// The names that VB code declares: variables, constants and arrays (Dim, Private, Public,
// Global, Static, Const, ReDim), parameters of procedures, events and declared functions, and
// user-defined types and enumerations. A rename checks them for a name it would take or change.
// Only statements count: a name in a string or a comment declares nothing.

#include <string>
#include <string_view>
#include <vector>

namespace cli {

std::vector<std::string> DeclaredNames(std::string_view code);

}  // namespace cli
