#include <optional>
#include <string_view>

#include "automation/casefold.h"
#include "automation/text.h"
#include "cli/commands.h"
#include "cli/project_survey.h"
#include "cli/session.h"
#include "platform/home.h"
#include "project/ide_settings.h"
#include "project/project_file_check.h"

namespace cli {
namespace {

bool IsIdentifierChar(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || c == '-';
}

// The library identifier ("{...}") of the Object= or Reference= line that the check's message
// quotes after "Line N: ", if that is the kind of line it quotes. Read in one pass: the line can
// be as long as the project file allows.
std::optional<std::string> MissingLibrary(std::string_view message) {
  const std::optional<CheckedLine> checked = CheckedLineOf(message);
  if (!checked) return std::nullopt;
  const std::string_view line = checked->text;
  const size_t equals = line.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  const std::string_view key = automation::TrimBlanks(line.substr(0, equals));
  if (!automation::EqualsAsciiNoCase(key, "object") &&
      !automation::EqualsAsciiNoCase(key, "reference")) {
    return std::nullopt;
  }
  // The check drops every blank of the value before it looks for the identifier.
  std::string identifier;
  const std::string_view value = line.substr(equals + 1);
  const size_t brace = value.find('{');
  if (brace == std::string_view::npos) return std::nullopt;
  for (char c : value.substr(brace)) {
    if (c == ' ') continue;
    identifier += c;
    if (c == '}') return identifier.size() > 2 ? std::optional(identifier) : std::nullopt;
    if (c != '{' && !IsIdentifierChar(c)) return std::nullopt;
  }
  return std::nullopt;
}

// When the missing piece is a type library or control library named by its identifier, tells
// the user how to register it with qx's stand-in registry.
std::string RegistrationHint(const std::string& message) {
  const std::optional<std::string> identifier = MissingLibrary(message);
  if (!identifier) return {};
  const std::string registry = (platform::QxHome() / "registry.reg").string();
  return "\r\n\r\nIf the library is installed on the machine that builds the project, register "
         "its type library with qx by adding this key to " +
         registry + ":\r\n\r\n[HKEY_CLASSES_ROOT\\TypeLib\\" + *identifier +
         "]\r\n@=\"<description of the library>\"";
}

}  // namespace

int RunCheck(const CheckOptions& options, Printer& printer) {
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
    printer.Summary({});
    return kExitMatch;
  } catch (const automation::Error& e) {
    printer.Error(e);
    return kExitError;
  }
}

}  // namespace cli
