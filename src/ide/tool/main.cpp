// qxvb6.exe: the headless VB6 IDE's own command line. It is the executable that the registry
// names as VB6's, so the driver finds it where it looks for vb6.exe.

#include <CLI/CLI.hpp>
#include <iostream>

#include "automation/error.h"
#include "ide/tool/commands.h"
#include "ide/tool/report.h"
#include "platform/codepage.h"

int main(int argc, char** argv) {
  CLI::App app{"qxvb6: the headless VB6 IDE over a project's files."};
  app.require_subcommand(1);
  int codePage = 0;
  app.add_option("--codepage", codePage,
                 "ANSI code page of the project's files (default: QX_CODEPAGE, else detected from "
                 "the files)");

  ide::tool::DumpOptions dump;
  CLI::App* dumpCommand = app.add_subcommand(
      "dump", "Print the components, their code modules and procedures as the IDE sees them");
  dumpCommand->add_option("PROJECT", dump.projectFile, "The project file (.vbp)")->required();
  dumpCommand->add_option("COMPONENT", dump.component, "Only the component of this name");

  ide::tool::ResaveOptions resave;
  CLI::App* resaveCommand = app.add_subcommand(
      "resave", "Load and save every component, and report any file whose bytes changed");
  resaveCommand->add_option("PROJECT", resave.projectFile, "The project file (.vbp)")->required();

  CLI11_PARSE(app, argc, argv);

  try {
    if (codePage != 0) platform::SetCurrentCodePage(codePage);
  } catch (const automation::Error& e) {
    ide::tool::PrintError(std::cerr, e);
    return ide::tool::kExitError;
  }
  if (dumpCommand->parsed()) return ide::tool::RunDump(dump, std::cout, std::cerr);
  if (resaveCommand->parsed()) return ide::tool::RunResave(resave, std::cout, std::cerr);
  return ide::tool::kExitError;
}
