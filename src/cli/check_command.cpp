#include <ostream>
#include <regex>

#include "cli/commands.h"
#include "cli/report.h"
#include "cli/session.h"
#include "contracts/driver_interfaces.h"
#include "platform/home.h"
#include "project/ide_settings.h"
#include "project/project_file_check.h"

namespace cli {
namespace {

// When the missing piece is a type library or control library named by its identifier, tells
// the user how to register it with qx's stand-in registry.
std::string RegistrationHint(const std::string& message) {
  static const std::regex library(R"(Line \d+: *(object|reference) *=[^{]*(\{[0-9A-Fa-f-]+\}))",
                                  std::regex::icase);
  std::smatch match;
  if (!std::regex_search(message, match, library)) return {};
  const std::string registry = (platform::QxHome() / "registry.reg").string();
  return "\r\n\r\nIf the library is installed on the machine that builds the project, register "
         "its type library with qx by adding this key to " +
         registry + ":\r\n\r\n[HKEY_CLASSES_ROOT\\TypeLib\\" + match[2].str() +
         "]\r\n@=\"<description of the library>\"";
}

}  // namespace

int RunCheck(const CheckOptions& options, std::ostream& out, std::ostream& err) {
  try {
    Session session;
    // Opening the project checks that the file exists, with the driver's own message.
    session.OpenProject(options.projectFile);
    project::CheckBackgroundLoading();
    try {
      project::CheckProjectFile(options.projectFile);
    } catch (const automation::Error& e) {
      throw automation::Error(e.Number(), e.Source(),
                              e.Description() + RegistrationHint(e.Description()));
    }
    out << "OK\n";
    return kExitMatch;
  } catch (const automation::Error& e) {
    PrintError(err, e);
    return kExitError;
  }
}

}  // namespace cli
