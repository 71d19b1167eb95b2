// JSON lines for tools: one object a line, each with its "type", all on standard output. Strings
// keep every character; JSON's own escapes carry the control characters.

#include <cmath>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/printer.h"
#include "cli/terminal.h"

namespace cli {
namespace {

using json = nlohmann::ordered_json;

class JsonPrinter : public Printer {
 public:
  JsonPrinter(std::ostream& out, Terminals terminals) : out_(out), terminals_(terminals) {}

  void Enumeration(std::string_view collection, std::string_view text) override {
    Write({{"type", "enumeration"}, {"collection", collection}, {"text", text}});
  }

  void Collection(const CollectionListing& listing) override {
    for (const Component& component : listing.components) {
      Write({{"type", "component"},
             {"collection", listing.name},
             {"name", component.name},
             {"modified", component.version.empty() ? json(nullptr)
                                                    : json(ShowVersion(component.version, 'T'))},
             {"state", StateText(component.state)},
             {"problems", component.problems}});
    }
  }

  void Problem(const cli::Problem& problem) override {
    json record = {{"type", "problem"}};
    record["number"] = problem.number ? json(*problem.number) : json(nullptr);
    record["description"] = problem.description;
    Write(record);
  }

  void Summary(const cli::Summary& summary) override {
    json record = {{"type", "summary"}, {"ok", true}};
    if (summary.components) record["components"] = *summary.components;
    if (const auto& codePage = summary.codePage) {
      record["codepage"] = {{"number", codePage->number},
                            {"source", CodePageSourceName(codePage->source)},
                            // Two decimals are all a guess's confidence says.
                            {"confidence", std::round(codePage->confidence * 100) / 100},
                            {"non_ascii_bytes", codePage->nonAsciiBytes}};
    }
    Write(record);
  }

  void IdeStarted(const IdeStart& start) override {
    Write({{"type", "ide"},
           {"action", start.started ? "started" : "connected"},
           {"project", start.project},
           {"pid", start.process.pid}});
  }

  void IdeListed(const IdeProcess& process) override {
    Write({{"type", "ide-process"},
           {"pid", process.pid},
           {"projects", process.projects},
           {"idle_seconds", process.idleSeconds}});
  }

  void IdeStopped(const IdeProcess& process) override {
    Write({{"type", "ide"}, {"action", "stopped"}, {"pid", process.pid}});
  }

  void Error(const automation::Error& error) override {
    Write({{"type", "error"}, {"number", error.Number()}, {"description", error.Description()}});
  }

 private:
  void Write(const json& record) {
    // Text inside qx is UTF-8 throughout, so nothing is ever replaced here.
    const std::string line = record.dump(-1, ' ', false, json::error_handler_t::replace);
    out_ << (terminals_.out ? EscapeJsonControls(line) : line) << "\n";
  }

  std::ostream& out_;
  Terminals terminals_;
};

}  // namespace

std::unique_ptr<Printer> MakeJsonPrinter(std::ostream& out, Terminals terminals) {
  return std::make_unique<JsonPrinter>(out, terminals);
}

}  // namespace cli
