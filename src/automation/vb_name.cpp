#include "automation/vb_name.h"

#include <algorithm>
#include <iterator>

#include "automation/casefold.h"

namespace automation {

bool IsVbName(std::string_view name) {
  if (name.empty() || name.size() > 40) return false;
  auto letter = [](unsigned char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  if (!letter(static_cast<unsigned char>(name.front()))) return false;
  for (const char c : name) {
    const auto u = static_cast<unsigned char>(c);
    if (!letter(u) && !(u >= '0' && u <= '9') && u != '_') return false;
  }
  return true;
}

bool IsVbKeyword(std::string_view name) {
  static constexpr std::string_view kKeywords[] = {
      "Alias",    "And",     "As",      "Attribute",  "Boolean",  "ByRef",   "Byte",
      "ByVal",    "Call",    "Case",    "CBool",      "CByte",    "CCur",    "CDate",
      "CDbl",     "CDec",    "CInt",    "CLng",       "Const",    "CSng",    "CStr",
      "Currency", "CVar",    "CVErr",   "Date",       "Debug",    "Declare", "DefBool",
      "DefByte",  "DefCur",  "DefDate", "DefDbl",     "DefDec",   "DefInt",  "DefLng",
      "DefObj",   "DefSng",  "DefStr",  "DefVar",     "Dim",      "Do",      "Double",
      "Each",     "Else",    "ElseIf",  "Empty",      "End",      "Enum",    "Eqv",
      "Erase",    "Event",   "Exit",    "False",      "For",      "Friend",  "Function",
      "Get",      "Global",  "GoSub",   "GoTo",       "If",       "Imp",     "Implements",
      "In",       "Integer", "Is",      "Let",        "Lib",      "Like",    "Long",
      "Loop",     "LSet",    "Me",      "Mod",        "New",      "Next",    "Not",
      "Nothing",  "Null",    "Object",  "On",         "Optional", "Or",      "ParamArray",
      "Preserve", "Private", "Public",  "RaiseEvent", "ReDim",    "Rem",     "Resume",
      "Return",   "RSet",    "Select",  "Set",        "Single",   "Static",  "Step",
      "Stop",     "String",  "Sub",     "Then",       "To",       "True",    "Type",
      "TypeOf",   "Until",   "Variant", "Wend",       "While",    "With",    "WithEvents",
      "Xor"};
  return std::any_of(std::begin(kKeywords), std::end(kKeywords),
                     [name](std::string_view keyword) { return EqualsAsciiNoCase(keyword, name); });
}

bool IsIdentChar(char c) {
  const auto u = static_cast<unsigned char>(c);
  return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_' ||
         u >= 0x80;
}

}  // namespace automation
