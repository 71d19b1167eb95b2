// qxvb6.exe: the headless VB6 IDE. It is the executable that the registry names as VB6's, so the
// driver finds it where it looks for vb6.exe and starts it as VB6 is started, with the project
// file as its one argument: then it runs as the IDE process (ide/server/server.h), with the
// driver's IDE-side classes linked in for the add-in. Its own commands (dump, set, resave) show,
// change and check what the IDE makes of a project's files.

#include <CLI/CLI.hpp>
#include <iostream>

#include "automation/apartment.h"
#include "automation/error.h"
#include "host/ide_control.h"
#include "host/register.h"
#include "ide/server/server.h"
#include "ide/tool/commands.h"
#include "ide/tool/report.h"
#include "platform/codepage.h"
#include "special/qxvb60.h"

int main(int argc, char** argv) {
  const automation::QuietDisconnections quiet;
  CLI::App app{"qxvb6: the headless VB6 IDE over a project's files."};
  app.require_subcommand(0, 1);
  int codePage = 0;
  std::string projectFile;
  app.add_option("PROJECT", projectFile,
                 "Run as the IDE with this project open, serving the driver until ended");
  app.add_option("--codepage", codePage,
                 "ANSI code page of the project's files (default: QX_CODEPAGE, else detected from "
                 "the files)");

  ide::tool::DumpOptions dump;
  CLI::App* dumpCommand = app.add_subcommand(
      "dump", "Print the components, their code modules and procedures as the IDE sees them");
  dumpCommand->add_option("PROJECT", dump.projectFile, "The project file (.vbp)")->required();
  dumpCommand->add_option("COMPONENT", dump.component, "Only the component of this name");
  dumpCommand->add_flag("--properties", dump.properties,
                        "Print every property of the forms, designers and their controls, one "
                        "JSON object a component");

  ide::tool::SetOptions set;
  CLI::App* setCommand = app.add_subcommand(
      "set", "Write one property of a form, designer or control and save the component");
  setCommand->add_option("PROJECT", set.projectFile, "The project file (.vbp)")->required();
  setCommand
      ->add_option("TARGET", set.target,
                   "COMPONENT or COMPONENT.CONTROL (Name(3) for a member of a control array)")
      ->required();
  setCommand->add_option("PROPERTY", set.property, "The property's name")->required();
  setCommand
      ->add_option("VALUE", set.value,
                   "JSON: a string, a number, a boolean, or an array of strings for List")
      ->required();

  ide::tool::ResaveOptions resave;
  CLI::App* resaveCommand = app.add_subcommand(
      "resave", "Load and save every component, and report any file whose bytes changed");
  resaveCommand->add_option("PROJECT", resave.projectFile, "The project file (.vbp)")->required();

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // --help is no error; every wrong command line ends with the error status, as qx's do.
    if (e.get_exit_code() == 0) return app.exit(e);
    std::cerr << "qxvb6: " << e.what() << "\nRun 'qxvb6.exe --help' for more information.\n";
    return ide::tool::kExitError;
  }

  try {
    if (codePage != 0) platform::SetCurrentCodePage(codePage);
  } catch (const automation::Error& e) {
    ide::tool::PrintError(std::cerr, e);
    return ide::tool::kExitError;
  }
  if (dumpCommand->parsed()) return ide::tool::RunDump(dump, std::cout, std::cerr);
  if (setCommand->parsed()) return ide::tool::RunSet(set, std::cerr);
  if (resaveCommand->parsed()) return ide::tool::RunResave(resave, std::cout, std::cerr);
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
