// qx: search and replace in Visual Basic 6 projects.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>

#include "automation/error.h"
#include "cli/commands.h"
#include "cli/terminal.h"
#include "platform/codepage.h"

namespace {

// A command line that qx cannot take: the parser's message, or the verb it does not know, and
// the error status like every other error.
int UsageError(const CLI::App& app, const CLI::ParseError& error, bool terminal) {
  std::string message = error.what();
  if (app.get_subcommands().empty()) {
    std::string verbs;
    for (const CLI::App* verb : app.get_subcommands({}))
      verbs += (verbs.empty() ? "" : ", ") + verb->get_name();
    const std::vector<std::string> rest = app.remaining();
    if (!rest.empty() && !rest.front().empty() && rest.front().front() != '-') {
      message = "unknown verb \"" + rest.front() + "\"; the verbs are " + verbs;
    } else if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
      message = "a verb is required: one of " + verbs;
    }
  }
  std::cerr << "qx: " << (terminal ? cli::EscapeControls(message) : message)
            << "\nRun 'qx --help' for more information.\n";
  return cli::kExitError;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"qx: search and replace in Visual Basic 6 projects, in code, forms and controls."};
  app.require_subcommand(1);
  bool trace = false;
  bool json = false;
  int codePage = 0;
  app.add_flag("--trace", trace, "Write the driver's call trace to standard error");
  app.add_option("--codepage", codePage,
                 "ANSI code page of the project's files (default: QX_CODEPAGE, else detected from "
                 "the files)");
  constexpr const char* kJsonHelp =
      "Print JSON lines for tools (problems and errors included) instead of text";

  cli::ListOptions list;
  CLI::App* listCommand = app.add_subcommand("list", "List the components of a project");
  listCommand->add_option("PROJECT", list.projectFile, "The project file (.vbp)")->required();
  listCommand->add_flag("--raw", list.raw,
                        "Print each collection's enumeration string exactly as the driver "
                        "returns it");
  listCommand->add_flag("--json", json, kJsonHelp);

  cli::CheckOptions check;
  CLI::App* checkCommand = app.add_subcommand(
      "check", "Check that the IDE's settings and every file the project names are in order");
  checkCommand->add_option("PROJECT", check.projectFile, "The project file (.vbp)")->required();
  checkCommand->add_flag("--json", json, kJsonHelp);

  cli::IdeOptions ide;
  CLI::App* ideCommand = app.add_subcommand("ide", "Start, list and stop the IDE processes");
  ideCommand->require_subcommand(1);
  CLI::App* ideStart = ideCommand->add_subcommand(
      "start", "Connect the project to its IDE, starting one when none has it open");
  ideStart->add_option("PROJECT", ide.projectFile, "The project file (.vbp)")->required();
  ideStart->add_flag("--json", json, kJsonHelp);
  CLI::App* ideList = ideCommand->add_subcommand(
      "list", "List the IDE processes: process id, open projects, time since the last call");
  ideList->add_flag("--json", json, kJsonHelp);
  CLI::App* ideStop =
      ideCommand->add_subcommand("stop", "End the IDE that has the project open, and wait");
  ideStop->add_option("PROJECT", ide.projectFile, "The project file (.vbp)");
  ideStop->add_flag("--all", ide.all, "End every IDE process of this qx home");
  ideStop->add_flag("--json", json, kJsonHelp);
  ideStop->callback([&] {
    if (ide.all == ide.projectFile.empty()) return;
    throw CLI::ValidationError("stop takes a project file or --all, not both and not neither");
  });

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // --help is no error: the parser prints the help and says 0.
    if (e.get_exit_code() == 0) return app.exit(e);
    return UsageError(app, e, ::isatty(STDERR_FILENO) == 1);
  }

  const cli::Terminals terminals{::isatty(STDOUT_FILENO) == 1, ::isatty(STDERR_FILENO) == 1};
  const std::unique_ptr<cli::Printer> printer = cli::MakePrinter(
      json ? cli::Format::Json : cli::Format::Text, std::cout, std::cerr, terminals);
  if (trace) ::setenv("QX_TRACE", "1", 1);
  try {
    if (codePage != 0) {
      platform::SetCurrentCodePage(codePage);
      // The IDE that the driver starts reads the same files: it is told too.
      ::setenv("QX_CODEPAGE", std::to_string(codePage).c_str(), 1);
    }
  } catch (const automation::Error& e) {
    printer->Error(e);
    return cli::kExitError;
  }
  if (listCommand->parsed()) return cli::RunList(list, *printer);
  if (checkCommand->parsed()) return cli::RunCheck(check, *printer);
  if (ideStart->parsed()) return cli::RunIdeStart(ide, *printer);
  if (ideList->parsed()) return cli::RunIdeList(*printer);
  if (ideStop->parsed()) return cli::RunIdeStop(ide, *printer);
  return cli::kExitError;
}
