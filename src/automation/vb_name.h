#pragma once
// VB's rules for names. A Name (of a component, a control, a procedure): an ASCII letter, then
// ASCII letters, digits and underscores, 40 at most. The IDE refuses any other Name; qx checks a
// new name by the same rule before it asks the IDE. How two names compare is casefold.h's.

#include <string_view>

namespace automation {

bool IsVbName(std::string_view name);

// Whether the name is one of VB's keywords (Dim, Sub, Me, String, ...), which code cannot use as
// the name of anything, in any letter case.
bool IsVbKeyword(std::string_view name);

// Whether a character can be part of an identifier as code reads it: letters of every script
// (any byte from 0x80: VB6 projects have Chinese and Cyrillic names), digits and "_".
bool IsIdentChar(char c);

}  // namespace automation
