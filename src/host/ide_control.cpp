#include "host/ide_control.h"

namespace host {
namespace {

constexpr std::string_view kControlPrefix = "qxvb6.exe:";

}  // namespace

std::string ControlName(long pid) {
  return std::string(kControlPrefix) + std::to_string(pid);
}

std::optional<long> ControlProcess(std::string_view registeredName) {
  if (registeredName.substr(0, kControlPrefix.size()) != kControlPrefix) return std::nullopt;
  const std::string digits(registeredName.substr(kControlPrefix.size()));
  if (digits.empty() || digits.size() > 9 ||
      digits.find_first_not_of("0123456789") != std::string::npos) {
    return std::nullopt;
  }
  return std::stol(digits);
}

}  // namespace host
