#pragma once
// VB's rule for a Name (of a component, a control, a procedure): an ASCII letter, then ASCII
// letters, digits and underscores, 40 at most. The IDE refuses any other Name; qx checks a new
// name by the same rule before it asks the IDE. How two names compare is casefold.h's.

#include <string_view>

namespace automation {

bool IsVbName(std::string_view name);

}  // namespace automation
