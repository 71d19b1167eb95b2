// qxvb6.exe: the headless VB6 IDE. It is the executable that the registry names as VB6's, so the
// driver finds it where it looks for vb6.exe and starts it as VB6 is started, with the project
// file as its one argument: then it runs as the IDE process (ide/server/server.h), with the
// driver's IDE-side classes linked in for the add-in. Its own commands (dump, set, resave) show,
// change and check what the IDE makes of a project's files.

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "automation/apartment.h"
#include "automation/error.h"
#include "host/ide_control.h"
#include "host/register.h"
#include "ide/server/server.h"
#include "ide/tool/commands.h"
#include "ide/tool/report.h"
#include "platform/codepage.h"
#include "special/qxvb60.h"

namespace {

// The options of every command, filled in by parsing.
struct Options {
  int codePage = 0;
  std::string projectFile;  // without a command: the project to serve as the IDE
  ide::tool::DumpOptions dump;
  ide::tool::SetOptions set;
  ide::tool::ResaveOptions resave;
};

// A command as the command line declares it, and what running it does once it is parsed.
struct Command {
  CLI::App* app;
  std::function<int()> run;
};

Command AddDump(CLI::App& app, Options& o) {
  CLI::App* command = app.add_subcommand(
      "dump", "Print the components, their code modules and procedures as the IDE sees them");
  command->add_option("PROJECT", o.dump.projectFile, "The project file (.vbp)")->required();
  command->add_option("COMPONENT", o.dump.component, "Only the component of this name");
  command->add_flag("--properties", o.dump.properties,
                    "Print every property of the forms, designers and their controls, one JSON "
                    "object a component");
  return {command, [&o] { return ide::tool::RunDump(o.dump, std::cout, std::cerr); }};
}

Command AddSet(CLI::App& app, Options& o) {
  CLI::App* command = app.add_subcommand(
      "set", "Write one property of a form, designer or control and save the component");
  command->add_option("PROJECT", o.set.projectFile, "The project file (.vbp)")->required();
  command
      ->add_option("TARGET", o.set.target,
                   "COMPONENT or COMPONENT.CONTROL (Name(3) for a member of a control array)")
      ->required();
  command->add_option("PROPERTY", o.set.property, "The property's name")->required();
  command
      ->add_option("VALUE", o.set.value,
                   "JSON: a string, a number, a boolean, or an array of strings for List")
      ->required();
  return {command, [&o] { return ide::tool::RunSet(o.set, std::cerr); }};
}

Command AddResave(CLI::App& app, Options& o) {
  CLI::App* command = app.add_subcommand(
      "resave", "Load and save every component, and report any file whose bytes changed");
  command->add_option("PROJECT", o.resave.projectFile, "The project file (.vbp)")->required();
  return {command, [&o] { return ide::tool::RunResave(o.resave, std::cout, std::cerr); }};
}

// Without a command: the IDE process, serving the project until it is ended.
int RunIde(const std::string& projectFile) {
  if (projectFile.empty()) {
    std::cerr << "qxvb6: a project file or a command is required\nRun 'qxvb6.exe --help' for more "
                 "information.\n";
    return ide::tool::kExitError;
  }
  ide::server::RedirectOutputToLog();
  std::string message;
  const auto idle = host::IdleFromEnvironment(message);
  if (!idle) {
    std::cerr << "qxvb6: " << message << "\n";
    return ide::tool::kExitError;
  }
  // The classes the IDE's process creates by name: the host library's, and the driver's add-in
  // with its dispatcher, which vbaddin.ini names.
  host::RegisterClasses();
  special::RegisterAddIn();
  return ide::server::Serve({projectFile, *idle});
}

}  // namespace

int main(int argc, char** argv) {
  const automation::QuietDisconnections quiet;
  CLI::App app{"qxvb6: the headless VB6 IDE over a project's files."};
  app.require_subcommand(0, 1);
  Options options;
  app.add_option("PROJECT", options.projectFile,
                 "Run as the IDE with this project (.vbp) or project group (.vbg) open, "
                 "serving the driver until ended");
  app.add_option("--codepage", options.codePage,
                 "ANSI code page of the project's files (default: QX_CODEPAGE, else detected from "
                 "the files)");
  const std::vector<Command> commands = {AddDump(app, options), AddSet(app, options),
                                         AddResave(app, options)};
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // --help is no error; every wrong command line ends with the error status, as qx's do.
    if (e.get_exit_code() == 0) return app.exit(e);
    std::cerr << "qxvb6: " << e.what() << "\nRun 'qxvb6.exe --help' for more information.\n";
    return ide::tool::kExitError;
  }
  try {
    if (options.codePage != 0) platform::SetCurrentCodePage(options.codePage);
  } catch (const automation::Error& e) {
    ide::tool::PrintError(std::cerr, e);
    return ide::tool::kExitError;
  }
  for (const Command& command : commands) {
    if (command.app->parsed()) return command.run();
  }
  return RunIde(options.projectFile);
}
