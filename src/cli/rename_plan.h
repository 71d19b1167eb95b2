#pragma once
// What qx rename asks of the scanner. A rename is first an inventory of the control's component
// that writes nothing (every control name and every procedure of the component), then, when the
// inventory allows it, a replace in every component of the project: in the control's own,
// narrowed to the control's places and the component's code:
//
//  - the control's name, on every element of a control array (Option1(2) -> Choice(2)), written
//    through the control's Name as any name replacement is;
//  - in the code, outside string literals and comments, the control's name as a whole word
//    (Option1.Caption, Option1(3).Text, Set x = Option1, With Option1, Me.Option1, and qualified
//    by the component's own name, frmMain.Option1) and as the
//    first part of its event procedures' names (Option1_Click, and calls to it), letter case not
//    mattering, as VB compares names. An event procedure is a procedure of the component named
//    CONTROL_EVENT, EVENT without an underscore: cmd_Ok_Click is cmd_Ok's, not cmd's;
//  - in the other components, the name where their code reaches it through its component
//    (frmMain.Option1, frmMain.Option1(2)), outside string literals and comments.
// Every component is also searched for the name in string literals (MentionRequest): a possible
// reference that the rename leaves alone and says.

#include <optional>
#include <string>
#include <vector>

#include "cli/scan_results.h"

namespace cli {

struct RenameTarget {
  std::string component;
  std::string oldName;  // the control's; empty: the component itself is renamed
  std::string newName;
};

// "COMPONENT.OLDNAME" (a control) or "COMPONENT" and NEWNAME as a target. Raises 5 when the first
// is neither, and, when NEWNAME is not a name (VB's naming rule: a letter, then letters, digits
// and underscores, 40 at most, not a keyword; no index: a whole array is renamed at once), the
// driver's "Invalid control name syntax." for a control, 5 for a component.
RenameTarget ParseRenameTarget(const std::string& control, const std::string& newName);

// The request of the inventory: every control name and procedure, each matched once (an empty
// match at its start), nothing written.
std::string InventoryRequest();

// The request for a component other than the control's: its references through the component.
std::string ReferenceRequest(const RenameTarget& target);

// The request that finds the target's old name (the control's, or the component's) as a whole
// word in string literals; writes nothing.
std::string MentionRequest(const RenameTarget& target);

// The request that renames the target, from the inventory of its component; none when the
// control already has exactly that name. Raises 5 naming the reason when the rename must not
// happen: the component has no control of the old name, already has a control of the new one,
// a procedure that the rename would make (Choice_Click beside Option1_Click), or a variable,
// constant or parameter of the new name, or is itself named so.
std::optional<std::string> RenameRequest(const ComponentScan& inventory,
                                         const RenameTarget& target);

// A component's rename (qx rename PROJECT COMPONENT NEWNAME), checked against the inventories of
// every component of the project before anything is written. False when the component is named
// so already. Raises 5 naming the reason when it must not happen: the project has no component
// of that name, or another of the new one; the component is not a form, module or class (a
// user control, page or document is named in the descriptions of what holds it); or, unless the
// rename only changes letter case, a control, procedure, variable, constant, parameter or type
// of the old or the new name exists anywhere, which code could not tell from the component.
bool CheckComponentRename(const std::vector<ComponentScan>& inventories,
                          const RenameTarget& target);

// The request that renames a component: its name (in its own, `own`), and the name as a whole
// word in the code's statements, not after a "." (another object's member), in every component.
// The IDE renames the rest: the Attribute VB_Name line, a form's Begin line, and the project
// file's entry and its Startup= and IconForm= lines.
std::string ComponentRenameRequest(const RenameTarget& target, bool own);

}  // namespace cli
