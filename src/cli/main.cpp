// qx: search and replace in Visual Basic 6 projects.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <string_view>
#include <vector>

#include "automation/apartment.h"
#include "automation/error.h"
#include "cli/commands.h"
#include "cli/interruption.h"
#include "cli/terminal.h"
#include "platform/codepage.h"

namespace {

// A command line that qx cannot take: the parser's message, or the verb it does not know, and
// the error status like every other error; with --json among the arguments, as an error record
// (number 5, an invalid argument) on standard output.
int UsageError(const CLI::App& app, const CLI::ParseError& error, bool terminal, bool json) {
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
  if (json) {
    cli::MakeJsonPrinter(std::cout, {})
        ->Error(automation::Error(automation::err::kInvalidCall, "qx",
                                  message + "; run 'qx --help' for more information"));
    return cli::kExitError;
  }
  std::cerr << "qx: " << (terminal ? cli::EscapeControls(message) : message)
            << "\nRun 'qx --help' for more information.\n";
  return cli::kExitError;
}

constexpr const char* kNoKeepHelp =
    "End the IDEs that this run starts when it is done, instead of keeping the last few warm "
    "for the next run (QX_KEEP_IDES=0 likewise; QX_KEEP_IDES and QX_KEEP_IDES_MB set how many "
    "and how much memory, default 3 and 2048)";

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
                  "Where to look: code (or only its statements, comments or strings), names, "
                  "properties, html (default: code, names, properties, html)")
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
  verb.add_flag("--no-keep", options.noKeep, kNoKeepHelp);
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

// Every verb's help, from the same option tables as --help: the program's, then each verb's
// and each sub-verb's in order. `parent` names the verbs above ("qx ide").
void AllHelp(CLI::App& app, const std::string& parent, std::string& text) {
  text += app.help(parent);
  const std::string path = parent.empty() ? app.get_name() : parent + " " + app.get_name();
  for (CLI::App* verb : app.get_subcommands({})) {
    text += "\n";
    AllHelp(*verb, path, text);
  }
}

// The help as a manual page: the same text, kept as it is laid out.
std::string ManualPage(const std::string& help) {
  std::string page =
      ".TH QX 1 \"\" \"qx\" \"User Commands\"\n"
      ".SH NAME\n"
      "qx \\- search and replace in Visual Basic 6 projects\n"
      ".SH DESCRIPTION\n"
      ".nf\n";
  bool lineStart = true;
  for (const char c : help) {
    if (lineStart && (c == '.' || c == '\'')) page += "\\&";
    page += c == '\\' ? std::string("\\e") : std::string(1, c);
    lineStart = c == '\n';
  }
  if (!lineStart) page += '\n';
  return page + ".fi\n";
}

constexpr const char* kJsonHelp =
    "Print JSON lines for tools (problems and errors included) instead of text";

// The options of every verb, filled in by parsing.
struct Options {
  bool trace = false;
  bool json = false;
  int codePage = 0;
  bool manual = false;
  cli::ListOptions list;
  cli::CheckOptions check;
  cli::IdeOptions ide;
  cli::SearchOptions search;
  cli::SearchOptions replace;
  std::string replacement;
  cli::RenameOptions rename;
};

// A verb as the command line declares it, and what running it does once it is the one parsed.
struct Verb {
  CLI::App* command = nullptr;
  std::function<int(cli::Printer&)> run;
  const cli::ColorChoice* color = nullptr;  // the verb's --color, for the verbs that search
  bool startsIdes = false;                  // Ctrl-C must end the IDEs it starts, not just qx
};

void AddGlobalOptions(CLI::App& app, Options& o) {
  app.add_flag("--trace", o.trace, "Write the driver's call trace to standard error");
  app.add_option("--codepage", o.codePage,
                 "ANSI code page of the project's files (default: QX_CODEPAGE, else detected from "
                 "the files)");
}

Verb AddList(CLI::App& app, Options& o) {
  CLI::App* verb = app.add_subcommand("list", "List the components of a project");
  verb->add_option("PROJECT", o.list.projectFile, "The project file (.vbp)")->required();
  verb->add_flag("--raw", o.list.raw,
                 "Print each collection's enumeration string exactly as the driver returns it");
  verb->add_flag("--json", o.json, kJsonHelp);
  return {verb, [&o](cli::Printer& printer) { return cli::RunList(o.list, printer); }};
}

Verb AddCheck(CLI::App& app, Options& o) {
  CLI::App* verb = app.add_subcommand(
      "check", "Check that the IDE's settings and every file the project names are in order");
  verb->add_option("PROJECT", o.check.projectFile, "The project file (.vbp)")->required();
  verb->add_flag("--json", o.json, kJsonHelp);
  return {verb, [&o](cli::Printer& printer) { return cli::RunCheck(o.check, printer); }};
}

// qx ide start, list and stop: one verb with three of its own.
std::vector<Verb> AddIde(CLI::App& app, Options& o) {
  CLI::App* ide = app.add_subcommand("ide", "Start, list and stop the IDE processes");
  ide->require_subcommand(1);
  CLI::App* start = ide->add_subcommand(
      "start", "Connect the project to its IDE, starting one when none has it open");
  start->add_option("PROJECT", o.ide.projectFile, "The project file (.vbp)")->required();
  start->add_flag("--json", o.json, kJsonHelp);
  CLI::App* list = ide->add_subcommand(
      "list", "List the IDE processes: process id, open projects, time since the last call");
  list->add_flag("--json", o.json, kJsonHelp);
  CLI::App* stop = ide->add_subcommand("stop", "End the IDE that has the project open, and wait");
  stop->add_option("PROJECT", o.ide.projectFile, "The project file (.vbp)");
  stop->add_flag("--all", o.ide.all, "End every IDE process of this qx home");
  stop->add_flag("--json", o.json, kJsonHelp);
  stop->callback([&o] {
    if (o.ide.all == o.ide.projectFile.empty()) return;
    throw CLI::ValidationError("stop takes a project file or --all, not both and not neither");
  });
  return {{start, [&o](cli::Printer& printer) { return cli::RunIdeStart(o.ide, printer); }},
          {list, [](cli::Printer& printer) { return cli::RunIdeList(printer); }},
          {stop, [&o](cli::Printer& printer) { return cli::RunIdeStop(o.ide, printer); }}};
}

Verb AddSearch(CLI::App& app, Options& o) {
  CLI::App* verb = app.add_subcommand(
      "search", "Search the code and names of projects, groups (.vbg) or folders of projects");
  AddSearchOptions(*verb, o.search, o.json, kJsonHelp);
  return {verb, [&o](cli::Printer& printer) { return cli::RunSearch(o.search, printer); },
          &o.search.color, true};
}

Verb AddReplace(CLI::App& app, Options& o) {
  CLI::App* verb =
      app.add_subcommand("replace", "Show what replacing would change; with --write, change it");
  AddSearchOptions(*verb, o.replace, o.json, kJsonHelp, &o.replacement);
  verb->add_flag("--write", o.replace.write, "Write the replacements into the projects");
  verb->add_flag("--interactive", o.replace.interactive,
                 "Show each place's change and ask whether to make it (y, n, a, d, q, ?); write "
                 "the places accepted")
      ->excludes(verb->get_option("--json"));
  verb->add_option("--only", o.replace.only,
                   "Replace only at these places (the \"place\" of each match that --json shows)")
      ->delimiter(',')
      ->allow_extra_args(false);
  return {verb,
          [&o](cli::Printer& printer) {
            o.replace.replacement = o.replacement;
            // What the user accepts is written as --write writes.
            if (o.replace.interactive) o.replace.write = true;
            return cli::RunSearch(o.replace, printer);
          },
          &o.replace.color, true};
}

Verb AddRename(CLI::App& app, Options& o) {
  CLI::App* verb = app.add_subcommand(
      "rename",
      "Show what renaming a control (every element of a control array) or a form, module or "
      "class would change: its name, its event procedures, the references to it in the "
      "project's code and the project file; with --write, change it");
  verb->add_option("PROJECT", o.rename.projectFile, "The project file (.vbp)")->required();
  verb->add_option("TARGET", o.rename.control,
                   "COMPONENT.OLDNAME: the form-like component and the control's name, without "
                   "an index; or COMPONENT: a form, module or class")
      ->required();
  verb->add_option("NEWNAME", o.rename.newName, "The new name")->required();
  verb->add_flag("--write", o.rename.write, "Write the rename into the project");
  verb->add_flag("--json", o.json, kJsonHelp);
  verb->add_flag("--interactive", o.rename.interactive,
                 "Show each place's change and ask whether to make it (y, n, a, d, q, ?); write "
                 "the places accepted")
      ->excludes(verb->get_option("--json"));
  verb->add_flag("--no-keep", o.rename.noKeep, kNoKeepHelp);
  return {verb, [&o](cli::Printer& printer) { return cli::RunRename(o.rename, printer); }, nullptr,
          true};
}

// qx help: the help of the program itself and of every verb, not of the verb that was given.
Verb AddHelp(CLI::App& app, Options& o) {
  CLI::App* verb = app.add_subcommand("help", "Print the help of qx and of every verb at once");
  verb->add_flag("--man", o.manual, "As a manual page (roff), as installed for man qx");
  return {verb, [&app, &o](cli::Printer&) {
            app.clear();
            app.name("qx");
            std::string help;
            AllHelp(app, "", help);
            std::cout << (o.manual ? ManualPage(help) : help);
            return cli::kExitMatch;
          }};
}

// Runs the verb that was parsed, printing through a printer made for it.
int RunVerb(const Verb& verb, const Options& o) {
  cli::Terminals terminals{::isatty(STDOUT_FILENO) == 1, ::isatty(STDERR_FILENO) == 1};
  const cli::ColorChoice color = verb.color != nullptr ? *verb.color : cli::ColorChoice::Auto;
  terminals.color = verb.startsIdes && (color == cli::ColorChoice::Always ||
                                        (color == cli::ColorChoice::Auto && terminals.out));
  // With --json, errors, problems and refusals are records among the others, as --help says.
  const std::unique_ptr<cli::Printer> printer = cli::MakePrinter(
      o.json ? cli::Format::Json : cli::Format::Text, std::cout, std::cerr, terminals);
  if (o.trace) ::setenv("QX_TRACE", "1", 1);
  try {
    if (o.codePage != 0) {
      platform::SetCurrentCodePage(o.codePage);
      // The IDE that the driver starts reads the same files: it is told too.
      ::setenv("QX_CODEPAGE", std::to_string(o.codePage).c_str(), 1);
    }
  } catch (const automation::Error& e) {
    printer->Error(e);
    return cli::kExitError;
  }
  if (!verb.startsIdes) return verb.run(*printer);
  // Before the run starts any thread: Ctrl-C then ends the IDEs it started, not just qx.
  const cli::InterruptionWatch watch;
  return verb.run(*printer);
}

}  // namespace

int main(int argc, char** argv) {
  const automation::QuietDisconnections quiet;
  CLI::App app{"qx: search and replace in Visual Basic 6 projects, in code, forms and controls."};
  app.require_subcommand(1);
  Options options;
  AddGlobalOptions(app, options);
  std::vector<Verb> verbs = {AddList(app, options), AddCheck(app, options)};
  for (Verb& verb : AddIde(app, options))
    verbs.push_back(std::move(verb));
  for (const auto add : {AddSearch, AddReplace, AddRename, AddHelp})
    verbs.push_back(add(app, options));

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // --help is no error: the parser prints the help and says 0.
    if (e.get_exit_code() == 0) return app.exit(e);
    const bool jsonAsked =
        std::find(argv + 1, argv + argc, std::string_view("--json")) != argv + argc;
    return UsageError(app, e, ::isatty(STDERR_FILENO) == 1, jsonAsked);
  }
  for (const Verb& verb : verbs) {
    if (verb.command->parsed()) return RunVerb(verb, options);
  }
  return cli::kExitError;
}
