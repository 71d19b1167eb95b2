#include "host/ide_control.h"

#include <cstdlib>

#include "automation/error.h"
#include "automation/object.h"
#include "host/object_table.h"
#include "platform/windows.h"

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

std::optional<std::chrono::seconds> IdleFromEnvironment(std::string& message) {
  const char* text = std::getenv(kIdleVariable);
  if (text == nullptr || *text == '\0') return kDefaultIdle;
  const std::string value(text);
  if (value.size() > 9 || value.find_first_not_of("0123456789") != std::string::npos) {
    message =
        std::string(kIdleVariable) + " must be a whole number of seconds, not \"" + value + "\"";
    return std::nullopt;
  }
  return std::chrono::seconds(std::stol(value));
}

void RouteWindowsToIdes() {
  platform::SetWindowRouter([](long process, int32_t hWnd, int32_t command) {
    try {
      const automation::ObjectRef control = ObjectTable::Get().Find(ControlName(process));
      return control && automation::Dispatch(control).Call("ShowWindow", hWnd, command).ToBool();
    } catch (const automation::Error&) {
      return false;  // the process ended meanwhile: its handles are dead
    }
  });
}

}  // namespace host
