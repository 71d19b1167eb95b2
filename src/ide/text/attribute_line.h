#pragma once
// The `Attribute` lines of VB's files: `Attribute VB_Name = "Form1"` in a module's header, and
// member attributes such as `Attribute Text1.VB_VarHelpID = -1` among its code lines, which the
// IDE hides from the code module.

#include <cstddef>
#include <optional>
#include <string_view>

namespace ide {

struct AttributeLine {
  std::string_view name;       // the dotted name after the keyword: "VB_Name", "Text1.VB_VarHelpID"
  std::size_t valueStart = 0;  // offset in the line of the value, after "=" and its blanks

  // The member the attribute belongs to ("Text1"), or "" for an attribute of the module.
  std::string_view Member() const;
};

// The line read as `Attribute NAME = VALUE` (keyword in any case, blanks around the parts);
// nothing for any other line.
std::optional<AttributeLine> ParseAttributeLine(std::string_view line);

}  // namespace ide
