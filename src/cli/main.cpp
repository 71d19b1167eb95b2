// qx: search and replace in Visual Basic 6 projects.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>
#include <map>

#include "automation/apartment.h"
#include "automation/error.h"
#include "cli/commands.h"
#include "cli/interruption.h"
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

// The options that qx search and qx replace share; for replace, REPLACEMENT after PATTERN.
void AddSearchOptions(CLI::App& verb, cli::SearchOptions& options, bool& json, const char* jsonHelp,
                      std::string* replacement = nullptr) {
  static const std::map<std::string, cli::ColorChoice> colors = {
      {"auto", cli::ColorChoice::Auto},
      {"always", cli::ColorChoice::Always},
      {"never", cli::ColorChoice::Never}};
  verb.add_option("-e,--regexp", options.patterns,
                  "A pattern to search for (may be given several times); then every positional "
                  "argument is a PATH")
      ->allow_extra_args(false);
  verb.add_flag("-F,--fixed-strings", options.literal, "Take the patterns as plain text");
  verb.add_flag_callback(
      "-i,--ignore-case", [&options] { options.caseChoice = cli::CaseChoice::Insensitive; },
      "Match without regard to letter case");
  verb.add_flag_callback(
      "-S,--smart-case", [&options] { options.caseChoice = cli::CaseChoice::Smart; },
      "Ignore letter case unless a pattern has an upper-case letter");
  verb.add_flag("-w,--word-regexp", options.wordRegexp, "Match whole words only");
  verb.add_option("--in", options.scope,
                  "Where to look: code, names, properties, html (default all)")
      ->delimiter(',')
      ->allow_extra_args(false);
  verb.add_option("--kind", options.kinds, "Only these kinds of component (Forms, Modules, ...)")
      ->delimiter(',')
      ->allow_extra_args(false);
  verb.add_option("--component", options.componentGlob,
                  "Only components whose name matches this wildcard pattern");
  verb.add_option("--color", options.color, "When to colour: auto, always, never")
      ->transform(CLI::CheckedTransformer(colors, CLI::ignore_case));
  const auto style = [&options](cli::SearchStyle s) {
    return [&options, s] { options.style = s; };
  };
  verb.add_flag_callback("--vimgrep", style(cli::SearchStyle::Vimgrep),
                         "One line a match: path:line:column:text");
  verb.add_flag_callback("-c,--count", style(cli::SearchStyle::Count),
                         "The number of matching lines per file");
  verb.add_flag_callback("-l,--files-with-matches", style(cli::SearchStyle::FilesWithMatches),
                         "Only the paths of files with matches");
  verb.add_flag_callback("-q,--quiet", style(cli::SearchStyle::Quiet),
                         "Print nothing; the exit status says whether anything matched");
  verb.add_flag("--json", json, jsonHelp);
  // The first positional arguments are the pattern (unless -e gave one) and the replacement;
  // the rest are paths. They are sorted out once parsing is done.
  static std::vector<std::string> positionals;
  verb.add_option("ARGS", positionals,
                  replacement ? "PATTERN REPLACEMENT [PATH...]" : "PATTERN [PATH...]");
  verb.callback([&options, replacement] {
    std::vector<std::string> rest = positionals;
    size_t next = 0;
    if (options.patterns.empty()) {
      if (next >= rest.size()) throw CLI::RequiredError("PATTERN");
      options.patterns.push_back(rest[next++]);
    }
    if (replacement != nullptr) {
      if (next >= rest.size()) throw CLI::RequiredError("REPLACEMENT");
      *replacement = rest[next++];
    }
    options.paths.assign(rest.begin() + static_cast<std::ptrdiff_t>(next), rest.end());
    positionals.clear();
  });
}

}  // namespace

int main(int argc, char** argv) {
  const automation::QuietDisconnections quiet;
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

  cli::SearchOptions search;
  CLI::App* searchCommand = app.add_subcommand(
      "search", "Search the code and names of projects, groups (.vbg) or folders of projects");
  AddSearchOptions(*searchCommand, search, json, kJsonHelp);

  cli::SearchOptions replace;
  std::string replacement;
  CLI::App* replaceCommand =
      app.add_subcommand("replace", "Show what replacing would change; with --write, change it");
  AddSearchOptions(*replaceCommand, replace, json, kJsonHelp, &replacement);
  replaceCommand->add_flag("--write", replace.write, "Write the replacements into the projects");

  cli::RenameOptions rename;
  CLI::App* renameCommand = app.add_subcommand(
      "rename",
      "Show what renaming a control (every element of a control array) would change: its name, "
      "its event procedures and the references to it in its component's code; with --write, "
      "change it");
  renameCommand->add_option("PROJECT", rename.projectFile, "The project file (.vbp)")->required();
  renameCommand
      ->add_option("CONTROL", rename.control,
                   "COMPONENT.OLDNAME: the form-like component and the control's name, without "
                   "an index")
      ->required();
  renameCommand->add_option("NEWNAME", rename.newName, "The control's new name")->required();
  renameCommand->add_flag("--write", rename.write, "Write the rename into the project");
  renameCommand->add_flag("--json", json, kJsonHelp);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // --help is no error: the parser prints the help and says 0.
    if (e.get_exit_code() == 0) return app.exit(e);
    return UsageError(app, e, ::isatty(STDERR_FILENO) == 1);
  }

  cli::Terminals terminals{::isatty(STDOUT_FILENO) == 1, ::isatty(STDERR_FILENO) == 1};
  const bool searching =
      searchCommand->parsed() || replaceCommand->parsed() || renameCommand->parsed();
  if (searching) {
    const cli::ColorChoice color = searchCommand->parsed()    ? search.color
                                   : replaceCommand->parsed() ? replace.color
                                                              : cli::ColorChoice::Auto;
    terminals.color =
        color == cli::ColorChoice::Always || (color == cli::ColorChoice::Auto && terminals.out);
  }
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

  if (searching) {
    // Before the run starts any thread: Ctrl-C then ends the IDEs it started, not just qx.
    const cli::InterruptionWatch watch;
    if (searchCommand->parsed()) return cli::RunSearch(search, *printer);
    if (renameCommand->parsed()) return cli::RunRename(rename, *printer);
    replace.replacement = replacement;
    return cli::RunSearch(replace, *printer);
  }
  return cli::kExitError;
}
