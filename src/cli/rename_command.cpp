// qx rename: a run of qx replace over one component, whose request is made once the component
// has been looked at (rename_plan.h), so that the preview, the write and their exit statuses are
// those of qx replace.

#include <iostream>
#include <nlohmann/json.hpp>
#include <vector>

#include "automation/casefold.h"
#include "automation/error.h"
#include "automation/vb_name.h"
#include "cli/commands.h"
#include "cli/project_files.h"
#include "cli/rename_plan.h"
#include "cli/review.h"
#include "foundation/vxhandler.h"

namespace cli {
namespace {

using automation::SameVbName;

[[noreturn]] void Refuse(const std::string& why) {
  throw automation::Error(5, "qx", why);
}

// The name before an array element's index: Option1 of Option1(2).
std::string BaseName(const std::string& control) {
  return control.substr(0, control.find('('));
}

// The name of a procedure place before its kind: Value of Value.Get.
std::string ProcedureName(const std::string& place) {
  return place.substr(0, place.find('.'));
}

}  // namespace

RenameTarget ParseRenameTarget(const std::string& control, const std::string& newName) {
  const size_t dot = control.find('.');
  if (dot == std::string::npos || dot == 0 || dot + 1 == control.size() ||
      control.find('.', dot + 1) != std::string::npos) {
    Refuse("\"" + control + "\": name the control as COMPONENT.OLDNAME");
  }
  if (!automation::IsVbName(newName)) {
    throw automation::Error(foundation::kUserError, "qx",
                            control + " -> " + newName + ": Invalid control name syntax.");
  }
  return {control.substr(0, dot), control.substr(dot + 1), newName};
}

std::string ReferenceRequest(const RenameTarget& target) {
  const std::string pattern =
      "(?<=\\b\\Q" + target.component + "\\E\\.)\\Q" + target.oldName + "\\E(?!\\w)";
  return nlohmann::ordered_json{
      {"patterns", {pattern}}, {"case", "insensitive"}, {"replacement", target.newName},
      {"write", true},         {"scope", {"code"}},     {"codeOnly", true}}
      .dump();
}

std::string MentionRequest(const RenameTarget& target) {
  const std::string pattern = "(?<!\\w)\\Q" + target.oldName + "\\E(?!\\w)";
  return nlohmann::ordered_json{
      {"patterns", {pattern}}, {"case", "insensitive"}, {"scope", {"strings"}}}
      .dump();
}

std::string InventoryRequest() {
  return nlohmann::ordered_json{{"patterns", {"\\A"}}, {"scope", {"names", "code"}}}.dump();
}

std::optional<std::string> RenameRequest(const ComponentScan& inventory,
                                         const RenameTarget& target) {
  const std::string what = inventory.component + "." + target.oldName + " -> " + target.newName;
  const bool respelling = SameVbName(target.oldName, target.newName);
  std::string spelled;  // the control's name as the component spells it
  std::string taken;    // another control's name that is the new one
  for (const ScanPlace& place : inventory.places) {
    if (place.kind != "controlName") continue;
    const std::string base = BaseName(place.name);
    if (SameVbName(base, target.oldName)) {
      spelled = base;
    } else if (SameVbName(base, target.newName)) {
      taken = base;
    }
  }
  if (spelled.empty()) {
    Refuse(what + ": " + inventory.component + " has no control named " + target.oldName);
  }
  if (!taken.empty()) {
    Refuse(what + ": " + inventory.component + " already has a control named " + taken);
  }
  if (SameVbName(target.newName, inventory.component)) {
    Refuse(what + ": " + target.newName + " is the name of the component itself");
  }
  if (spelled == target.newName) return std::nullopt;

  // The control's event procedures, by the event's name, and what the rename would make of them.
  const std::string prefix = spelled + "_";
  std::vector<std::string> events;
  for (const ScanPlace& place : inventory.places) {
    if (place.kind != "procedure" || place.name.size() <= prefix.size() ||
        !SameVbName(std::string_view(place.name).substr(0, prefix.size()), prefix)) {
      continue;
    }
    const std::string event = place.name.substr(prefix.size());
    if (event.find_first_of("_.") == std::string::npos) events.push_back(event);
  }
  for (const ScanPlace& place : inventory.places) {
    if (place.kind != "procedure" || respelling) continue;
    for (const std::string& event : events) {
      if (SameVbName(ProcedureName(place.name), target.newName + "_" + event)) {
        Refuse(what + ": " + inventory.component + " already has a procedure " +
               ProcedureName(place.name));
      }
    }
  }

  // The name as a whole word (after "Me." or the component's own name and "." too, never after
  // another object's "."), or followed by "_" and one of its events.
  std::string follows = "(?!\\w)";
  if (!events.empty()) {
    std::string alternatives;
    for (const std::string& event : events)
      alternatives += (alternatives.empty() ? "" : "|") + event;
    follows += "|_(?:" + alternatives + ")(?!\\w)";
  }
  const std::string pattern = "(?:(?<![\\w.])|(?<=\\bMe\\.)|(?<=\\b" + inventory.component +
                              "\\.))" + spelled + "(?=" + follows + ")";
  return nlohmann::ordered_json{
      {"patterns", {pattern}}, {"case", "insensitive"},      {"replacement", target.newName},
      {"write", true},         {"scope", {"names", "code"}}, {"codeOnly", true},
      {"control", spelled}}
      .dump();
}

int RunRename(const RenameOptions& options, Printer& printer) {
  const std::string project = ShowPath(options.projectFile);
  RenameTarget target;
  try {
    target = ParseRenameTarget(options.control, options.newName);
  } catch (const automation::Error& e) {
    printer.Report({false, project, "", 0, e.Number(), e.Description()});
    return kExitError;
  }
  SearchOptions run;
  run.noKeep = options.noKeep;
  run.paths = {options.projectFile};

  // First the control's component alone, which writes nothing: whether the rename may happen,
  // and its request there. A refusal stops the rename before anything is written anywhere.
  SearchOptions look = run;
  look.componentGlob = target.component;
  look.summary = false;
  bool reached = false;
  std::optional<std::string> own;
  const int looked = RunScans(
      look,
      [&](const Look& scan) -> std::optional<std::string> {
        for (const ComponentScan& inventory : scan(InventoryRequest())) {
          if (!SameVbName(inventory.component, target.component)) continue;
          reached = true;
          own = RenameRequest(inventory, target);
        }
        return std::nullopt;
      },
      printer);
  if (looked == kExitError) return kExitError;
  if (!reached) {
    printer.Report({false, project, "", 0, 5, "the project has no component " + target.component});
    return kExitError;
  }
  if (!own) {
    printer.Notice(target.component + "." + target.oldName + " is named " + target.newName +
                   " already: nothing to rename");
    return kExitNoMatch;
  }

  // Then every component: the control's own with its request, the others where they name it
  // through its component (frmMain.Option1). A string that holds its name may be a reference
  // (frmMain.Controls("Option1")): it is said, and left as it is.
  run.replacement = target.newName;
  run.write = options.write || options.interactive;
  run.whole = true;
  Review review(std::cin, std::cout);
  return RunScans(
      run,
      [&](const Look& scan) -> std::optional<std::string> {
        std::string component;
        for (const ComponentScan& mentions : scan(MentionRequest(target))) {
          component = mentions.component;
          for (const ScanPlace& place : mentions.places) {
            for (const ScanMatch& match : place.matches) {
              printer.Report({true, project, mentions.component, 0, std::nullopt,
                              place.name + ": \"" + match.text + "\" in a string may name " +
                                  target.component + "." + target.oldName +
                                  "; it is left as it is"});
            }
          }
        }
        if (SameVbName(component, target.component)) return own;
        return ReferenceRequest(target);
      },
      printer, options.interactive ? &review : nullptr);
}

}  // namespace cli
