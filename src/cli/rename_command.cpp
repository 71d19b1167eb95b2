// qx rename: a run of qx replace over one component, whose request is made once the component
// has been looked at (rename_plan.h), so that the preview, the write and their exit statuses are
// those of qx replace.

#include <iostream>
#include <vector>

#include "automation/casefold.h"
#include "automation/error.h"
#include "automation/vb_name.h"
#include "cli/commands.h"
#include "cli/declared_names.h"
#include "cli/project_files.h"
#include "cli/rename_plan.h"
#include "cli/review.h"
#include "foundation/vxhandler.h"
#include "host/scan/scan_request.h"

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

// A request for the pattern, in any letter case, in the scopes.
host::scan::ScanRequest Request(const std::string& pattern, std::vector<std::string> scopes) {
  host::scan::ScanRequest request;
  request.patterns = {pattern};
  request.options.caseMode = host::scan::CaseMode::kInsensitive;
  request.scopes = std::move(scopes);
  return request;
}

// A rename's request: the pattern replaced by the new name in the scopes, in any letter case, in
// code outside string literals and comments; narrowed to one control's places when given.
std::string RenamingRequest(const std::string& pattern, const std::string& newName,
                            std::vector<std::string> scopes, const std::string& control = {}) {
  host::scan::ScanRequest request = Request(pattern, std::move(scopes));
  request.replacement = newName;
  request.write = true;
  request.options.codeParts = host::scan::kStatements;
  if (!control.empty()) request.control = control;
  return request.Encode();
}

}  // namespace

RenameTarget ParseRenameTarget(const std::string& control, const std::string& newName) {
  const size_t dot = control.find('.');
  const bool valid = automation::IsVbName(newName) && !automation::IsVbKeyword(newName);
  if (dot == std::string::npos && automation::IsVbName(control)) {
    if (!valid) {
      Refuse(control + " -> " + newName +
             ": not a name VB allows (a letter, then letters, digits and underscores, 40 at most, "
             "not a keyword)");
    }
    return {control, "", newName};
  }
  if (dot == std::string::npos || dot == 0 || dot + 1 == control.size() ||
      control.find('.', dot + 1) != std::string::npos) {
    Refuse("\"" + control + "\": name a component, or a control as COMPONENT.OLDNAME");
  }
  if (!valid) {
    throw automation::Error(foundation::kUserError, "qx",
                            control + " -> " + newName + ": Invalid control name syntax.");
  }
  return {control.substr(0, dot), control.substr(dot + 1), newName};
}

std::string ReferenceRequest(const RenameTarget& target) {
  const std::string pattern =
      "(?<=\\b\\Q" + target.component + "\\E\\.)\\Q" + target.oldName + "\\E(?!\\w)";
  return RenamingRequest(pattern, target.newName, {"code"});
}

std::string MentionRequest(const RenameTarget& target) {
  const std::string& name = target.oldName.empty() ? target.component : target.oldName;
  const std::string pattern = "(?<!\\w)\\Q" + name + "\\E(?!\\w)";
  return Request(pattern, {"strings"}).Encode();
}

std::string InventoryRequest() {
  host::scan::ScanRequest request;
  request.patterns = {"\\A"};
  request.scopes = {"names", "code"};
  return request.Encode();
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
    // A variable, constant or parameter of the new name would take the control's references.
    for (const std::string& name : DeclaredNames(place.text)) {
      if (SameVbName(name, target.newName)) {
        Refuse(what + ": " + inventory.component + "." + place.name + " declares " + name);
      }
    }
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
  return RenamingRequest(pattern, target.newName, {"names", "code"}, spelled);
}

bool CheckComponentRename(const std::vector<ComponentScan>& inventories,
                          const RenameTarget& target) {
  const std::string what = target.component + " -> " + target.newName;
  const ComponentScan* own = nullptr;
  for (const ComponentScan& inventory : inventories) {
    if (SameVbName(inventory.component, target.component)) own = &inventory;
  }
  if (own == nullptr) Refuse(what + ": the project has no component " + target.component);
  if (own->collection != "Forms" && own->collection != "Modules" &&
      own->collection != "ClassModules") {
    Refuse(what + ": only forms, modules and classes are renamed; " + own->component +
           " is named in the descriptions of what holds it");
  }
  if (own->component == target.newName) return false;
  // A new spelling of the same name changes nothing that code could take for another thing.
  if (SameVbName(own->component, target.newName)) return true;
  for (const ComponentScan& inventory : inventories) {
    if (&inventory != own && SameVbName(inventory.component, target.newName)) {
      Refuse(what + ": the project already has a component " + inventory.component);
    }
  }
  // Any other thing of either name: code that names it could not be told from code that names
  // the component.
  const auto either = [&](std::string_view name) {
    return SameVbName(name, target.component) || SameVbName(name, target.newName);
  };
  for (const ComponentScan& inventory : inventories) {
    for (const ScanPlace& place : inventory.places) {
      if (place.kind == "controlName" && either(BaseName(place.name))) {
        Refuse(what + ": " + inventory.component + " has a control named " + BaseName(place.name));
      }
      if (place.kind != "procedure") continue;
      if (either(ProcedureName(place.name))) {
        Refuse(what + ": " + inventory.component + " has a procedure " + ProcedureName(place.name));
      }
      for (const std::string& name : DeclaredNames(place.text)) {
        if (either(name)) {
          Refuse(what + ": " + inventory.component + "." + place.name + " declares " + name);
        }
      }
    }
  }
  return true;
}

std::string ComponentRenameRequest(const RenameTarget& target, bool own) {
  const std::string pattern = "(?<![\\w.])\\Q" + target.component + "\\E(?!\\w)";
  return RenamingRequest(
      pattern, target.newName,
      own ? std::vector<std::string>{"names", "code"} : std::vector<std::string>{"code"});
}

namespace {

// The rename written (or previewed) in every component of the project: the target's own with
// its request, the others with theirs. A string that holds the old name may be a reference
// (frmMain.Controls("Option1"), Forms("frmMain")): it is said, and left as it is.
int RenameEverywhere(const RenameOptions& options, const RenameTarget& target, SearchOptions run,
                     const std::string& own, const std::string& others, Printer& printer) {
  const std::string project = ShowPath(options.projectFile);
  const std::string named = target.component + (target.oldName.empty() ? "" : "." + target.oldName);
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
                                  named + "; it is left as it is"});
            }
          }
        }
        return SameVbName(component, target.component) ? own : others;
      },
      printer, options.interactive ? &review : nullptr);
}

// qx rename PROJECT COMPONENT NEWNAME: every component is looked at first (writing nothing), so
// that a conflict anywhere refuses the rename before anything is written.
int RenameComponent(const RenameOptions& options, const RenameTarget& target, SearchOptions run,
                    Printer& printer) {
  SearchOptions look = run;
  look.summary = false;
  std::vector<ComponentScan> inventories;
  const int looked = RunScans(
      look,
      [&](const Look& scan) -> std::optional<std::string> {
        for (ComponentScan& inventory : scan(InventoryRequest()))
          inventories.push_back(std::move(inventory));
        return std::nullopt;
      },
      printer);
  if (looked == kExitError) return kExitError;
  try {
    if (!CheckComponentRename(inventories, target)) {
      printer.Notice(target.component + " is named " + target.newName +
                     " already: nothing to rename");
      return kExitNoMatch;
    }
  } catch (const automation::Error& e) {
    printer.Report({false, ShowPath(options.projectFile), "", 0, e.Number(), e.Description()});
    return kExitError;
  }
  return RenameEverywhere(options, target, run, ComponentRenameRequest(target, true),
                          ComponentRenameRequest(target, false), printer);
}

}  // namespace

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
  if (target.oldName.empty()) return RenameComponent(options, target, run, printer);

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
  // through its component (frmMain.Option1).
  return RenameEverywhere(options, target, run, *own, ReferenceRequest(target), printer);
}

}  // namespace cli
