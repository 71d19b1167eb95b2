#pragma once
// A control's name and its place in a control array, changed as VB6's Properties window changes
// them, without its questions: a control array is the set of controls (menus included) of one
// form that share a name, each with its own `Index`; a control outside any array has no `Index`
// line and reads -1.
//
// Name (the `Begin` line's name changes; the code is left alone):
//  - a name no other control has: the control takes it and keeps its Index, so a member of an
//    array leaves it and starts an array of its own under the new name (Option1(2) renamed
//    Choice is Choice(2));
//  - the name of a control array: the control joins it, keeping its Index when no member has
//    it, else taking the next one after the highest (VB6 numbers a control pasted into an array
//    so); a control of another type cannot join (380);
//  - the name of a control outside an array: refused with 380, where VB6 would ask whether to
//    make an array of the two; setting that control's Index first makes the array;
//  - the same name in another letter case: every member of the array takes the new spelling.
// Index (the `Index` line appears, changes or goes away):
//  - 0 to 32767 where no other member has it; -1 only when no other control has the name;
//    anything else raises 380.
// The form's own name is not a control's: a control may not take it (380). Files that break the
// rules (two controls of one name outside an array, an index given twice) are read as they are;
// an edit is checked against the rules only for the control it changes.

#include <cstdint>
#include <string_view>

#include "ide/form/description.h"

namespace ide::form {

inline constexpr int32_t kMaxControlIndex = 32767;

// A name that is not a VB name (a letter, then letters, digits and underscores, 40 at most)
// raises 380.
void RenameControl(Description& description, DescriptionNode& control, std::string_view name);
void SetControlIndex(Description& description, DescriptionNode& control, int32_t index);

}  // namespace ide::form
