#include "ide/form/control_array.h"

#include <algorithm>
#include <string>
#include <vector>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/form/property_value.h"

namespace ide::form {
namespace {

// The controls other than `control` that are named `name`.
std::vector<DescriptionNode*> Namesakes(const Description& description,
                                        const DescriptionNode& control, std::string_view name) {
  std::vector<DescriptionNode*> out;
  for (DescriptionNode* node : description.Controls()) {
    if (node != &control && automation::EqualsNoCaseUnicode(node->Name(), name)) {
      out.push_back(node);
    }
  }
  return out;
}

[[noreturn]] void Refuse(const std::string& why) {
  automation::Raise(automation::err::kInvalidPropertyValue, why);
}

std::string Called(const DescriptionNode& control) {
  std::string name = control.Name();
  if (control.Index() >= 0) name += "(" + std::to_string(control.Index()) + ")";
  return name;
}

}  // namespace

void RenameControl(Description& description, DescriptionNode& control, std::string_view name) {
  static const PropertyInfo kName = [] {
    PropertyInfo info;
    info.name = "Name";
    return info;
  }();
  CoerceValue(kName, automation::Variant(name));  // VB's naming rule: 380 otherwise
  if (name == control.Name()) return;
  if (automation::EqualsNoCaseUnicode(name, control.Name())) {
    // Only the spelling changes: the array stays one, under the new spelling.
    for (DescriptionNode* member : Namesakes(description, control, control.Name()))
      member->Rename(name);
    control.Rename(name);
    return;
  }
  if (automation::EqualsNoCaseUnicode(name, description.Root().Name())) {
    Refuse("\"" + std::string(name) + "\" is the name of the form itself");
  }
  const std::vector<DescriptionNode*> others = Namesakes(description, control, name);
  if (others.empty()) {
    control.Rename(name);
    return;
  }
  const bool array = std::all_of(others.begin(), others.end(),
                                 [](const DescriptionNode* node) { return node->Index() >= 0; });
  if (!array) {
    Refuse("a control named \"" + std::string(name) +
           "\" already exists and is not part of a control array");
  }
  if (!automation::EqualsNoCaseUnicode(others.front()->Type(), control.Type())) {
    Refuse("the control array " + std::string(name) + " holds controls of type " +
           others.front()->Type() + ", not " + control.Type());
  }
  int32_t highest = -1;
  bool taken = false;
  for (const DescriptionNode* node : others) {
    highest = std::max(highest, node->Index());
    taken = taken || node->Index() == control.Index();
  }
  if (control.Index() < 0 || taken) {
    if (highest >= kMaxControlIndex) Refuse("the control array " + std::string(name) + " is full");
    control.SetIndex(highest + 1);
  }
  // The array's own spelling: a control that joins takes the name as its members have it.
  control.Rename(others.front()->Name());
}

void SetControlIndex(Description& description, DescriptionNode& control, int32_t index) {
  if (index == control.Index()) return;
  if (index < -1 || index > kMaxControlIndex) {
    Refuse("a control array index runs from 0 to " + std::to_string(kMaxControlIndex) +
           ", or -1 for none");
  }
  const std::vector<DescriptionNode*> others = Namesakes(description, control, control.Name());
  if (index < 0) {
    if (!others.empty()) {
      Refuse(Called(control) + " cannot leave its control array while " + Called(*others.front()) +
             " shares its name");
    }
  } else {
    for (const DescriptionNode* node : others) {
      if (node->Index() == index) {
        Refuse("the control array " + control.Name() + " already has an element " +
               std::to_string(index));
      }
    }
  }
  control.SetIndex(index);
}

}  // namespace ide::form
