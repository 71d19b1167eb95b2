// qx: search and replace in Visual Basic 6 projects.

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>

#include "automation/error.h"
#include "cli/commands.h"
#include "cli/report.h"
#include "platform/codepage.h"

int main(int argc, char** argv) {
  CLI::App app{"qx: search and replace in Visual Basic 6 projects, in code, forms and controls."};
  app.require_subcommand(1);
  bool trace = false;
  int codePage = 0;
  app.add_flag("--trace", trace, "Write the driver's call trace to standard error");
  app.add_option("--codepage", codePage,
                 "ANSI code page of the project's files (default 1252, or QX_CODEPAGE)");

  cli::ListOptions list;
  CLI::App* listCommand = app.add_subcommand("list", "List the components of a project");
  listCommand->add_option("PROJECT", list.projectFile, "The project file (.vbp)")->required();
  listCommand->add_flag("--raw", list.raw,
                        "Print each collection's enumeration string exactly as the driver "
                        "returns it");

  cli::CheckOptions check;
  CLI::App* checkCommand = app.add_subcommand(
      "check", "Check that the IDE's settings and every file the project names are in order");
  checkCommand->add_option("PROJECT", check.projectFile, "The project file (.vbp)")->required();

  CLI11_PARSE(app, argc, argv);

  if (trace) ::setenv("QX_TRACE", "1", 1);
  try {
    if (codePage != 0) platform::SetCurrentCodePage(codePage);
  } catch (const automation::Error& e) {
    cli::PrintError(std::cerr, e);
    return cli::kExitError;
  }
  if (listCommand->parsed()) return cli::RunList(list, std::cout, std::cerr);
  if (checkCommand->parsed()) return cli::RunCheck(check, std::cout, std::cerr);
  return cli::kExitError;
}
