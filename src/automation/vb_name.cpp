#include "automation/vb_name.h"

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

bool IsIdentChar(char c) {
  const auto u = static_cast<unsigned char>(c);
  return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_' ||
         u >= 0x80;
}

}  // namespace automation
