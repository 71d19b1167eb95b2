// Text for people: each collection as a table of its components, a count at the end; problems
// and errors on standard error.

#include <algorithm>
#include <cstdio>
#include <ostream>

#include "cli/printer.h"
#include "cli/terminal.h"

namespace cli {
namespace {

// Columns are counted in characters, not bytes, so non-ASCII names line up.
size_t DisplayWidth(std::string_view text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

std::string Pad(const std::string& text, size_t width) {
  return text + std::string(width - DisplayWidth(text), ' ');
}

// "42s", "3m05s", "2h01m": how long an IDE has been quiet.
std::string IdleText(int32_t seconds) {
  char text[32];
  if (seconds < 60) {
    std::snprintf(text, sizeof text, "%ds", seconds);
  } else if (seconds < 3600) {
    std::snprintf(text, sizeof text, "%dm%02ds", seconds / 60, seconds % 60);
  } else {
    std::snprintf(text, sizeof text, "%dh%02dm", seconds / 3600, seconds / 60 % 60);
  }
  return text;
}

class TextPrinter : public Printer {
 public:
  TextPrinter(std::ostream& out, std::ostream& err, Terminals terminals)
      : out_(out), err_(err), terminals_(terminals) {}

  void Enumeration(std::string_view collection, std::string_view text) override {
    const std::string block = "[" + std::string(collection) + "]\n" + std::string(text) + "\n";
    out_ << (terminals_.out ? EscapeControls(PlainLines(block)) : block);
  }

  void Collection(const CollectionListing& listing) override {
    if (listing.components.empty()) return;
    struct Row {
      std::string name, modified, state, problems;
    };
    std::vector<Row> rows;
    size_t nameWidth = 0, modifiedWidth = 0, stateWidth = 0;
    for (const Component& component : listing.components) {
      Row row;
      row.name = ForOut(component.name.empty() ? "(no name)" : component.name);
      row.modified = component.version.empty() ? (component.state == FileState::Missing ? "-" : "?")
                                               : ForOut(ShowVersion(component.version));
      row.state = StateText(component.state);
      for (const std::string& problem : component.problems)
        row.problems += (row.problems.empty() ? "" : "; ") + ForOut(problem);
      nameWidth = std::max(nameWidth, DisplayWidth(row.name));
      modifiedWidth = std::max(modifiedWidth, DisplayWidth(row.modified));
      stateWidth = std::max(stateWidth, DisplayWidth(row.state));
      rows.push_back(std::move(row));
    }
    out_ << ForOut(listing.name) << "\n";
    for (const Row& row : rows) {
      out_ << "  " << Pad(row.name, nameWidth) << "  " << Pad(row.modified, modifiedWidth) << "  ";
      if (row.problems.empty()) {
        out_ << row.state << "\n";
      } else {
        out_ << Pad(row.state, stateWidth) << "  " << row.problems << "\n";
      }
    }
  }

  void Problem(const cli::Problem& problem) override {
    const std::string number = problem.number ? std::to_string(*problem.number) : std::string();
    err_ << "qx: problem" << (number.empty() ? "" : " " + number) << ": "
         << ForErr(problem.description) << "\n";
  }

  void Summary(const cli::Summary& summary) override {
    if (summary.codePage) {
      out_ << "Code page " << summary.codePage->number << " (" << CodePageOrigin(*summary.codePage)
           << ")\n";
    }
    if (summary.components) {
      const size_t count = *summary.components;
      out_ << count << (count == 1 ? " component" : " components") << "\n";
    } else {
      out_ << "OK\n";
    }
  }

  void IdeStarted(const IdeStart& start) override {
    out_ << (start.started ? "started" : "connected to") << " IDE process " << start.process.pid
         << " for " << ForOut(start.project) << "\n";
  }

  void IdeListed(const IdeProcess& process) override {
    out_ << process.pid << "  idle " << IdleText(process.idleSeconds);
    for (const std::string& project : process.projects)
      out_ << "  " << ForOut(project);
    out_ << "\n";
  }

  void IdeStopped(const IdeProcess& process) override {
    out_ << "stopped IDE process " << process.pid << "\n";
  }

  void Error(const automation::Error& error) override {
    err_ << "qx: error " << error.Number() << ": " << ForErr(error.Description()) << "\n";
  }

 private:
  std::string ForOut(std::string_view text) const {
    return terminals_.out ? EscapeControls(PlainLines(text)) : PlainLines(text);
  }
  std::string ForErr(std::string_view text) const {
    return terminals_.err ? EscapeControls(PlainLines(text)) : PlainLines(text);
  }

  std::ostream& out_;
  std::ostream& err_;
  Terminals terminals_;
};

}  // namespace

std::unique_ptr<Printer> MakeTextPrinter(std::ostream& out, std::ostream& err,
                                         Terminals terminals) {
  return std::make_unique<TextPrinter>(out, err, terminals);
}

}  // namespace cli
