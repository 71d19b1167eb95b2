#include "ide/vbide/vbcontrols.h"

#include <string>
#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/form/description.h"
#include "ide/vbide/vbcontrol.h"
#include "ide/vbide/vbe.h"
#include "ide/vbide/vbform.h"

namespace ide::vbide {
namespace {

// "Option1(2)": the name and the index; the whole text and -1 when it is not of that form.
std::pair<std::string, int32_t> SplitArrayName(const std::string& text) {
  const std::size_t open = text.find('(');
  if (open == std::string::npos || open == 0 || text.back() != ')') return {text, -1};
  const std::string digits = text.substr(open + 1, text.size() - open - 2);
  if (digits.empty() || digits.size() > 5 ||
      digits.find_first_not_of("0123456789") != std::string::npos) {
    return {text, -1};
  }
  return {text.substr(0, open), std::stoi(digits)};
}

}  // namespace

VBControls::VBControls(std::shared_ptr<VBForm> form, std::shared_ptr<VBControl> container, bool all)
    : form_(std::move(form)), container_(std::move(container)), all_(all) {}

const automation::ClassInfo& VBControls::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<VBControls>("VBControls")
          .Method("Item", &VBControls::Item,
                  {"CollectionIndex", automation::Optional("ControlIndex")})
          .Get("Count", &VBControls::Count)
          .Get("Parent", &VBControls::Parent)
          .Get("VBE", &VBControls::Vbe)
          .Build();
  return info;
}

const form::DescriptionNode* VBControls::Container() {
  if (!form_) automation::Raise(automation::err::kServerUnavailable);
  if (all_) return nullptr;
  return container_ ? &container_->Node() : &form_->Description().Root();
}

int32_t VBControls::Count() {
  return static_cast<int32_t>(form_->Nodes(Container()).size());
}

std::shared_ptr<VBControl> VBControls::Item(const automation::Variant& index,
                                            const automation::Variant& controlIndex) {
  const form::DescriptionNode* container = Container();
  const std::vector<form::DescriptionNode*>& nodes = form_->Nodes(container);
  if (!index.IsString()) {
    const int32_t number = index.ToLong();
    if (number < 1 || number > static_cast<int32_t>(nodes.size())) {
      automation::Raise(automation::err::kSubscript, "no control number " + std::to_string(number));
    }
    return form_->ControlOf(*nodes[number - 1]);
  }
  auto [name, member] = SplitArrayName(index.ToString());
  const bool given = !controlIndex.IsEmpty();
  if (given) {
    name = index.ToString();
    member = controlIndex.ToLong();
  }
  form::DescriptionNode* found = nullptr;
  bool array = false;
  for (form::DescriptionNode* node : form_->Named(name)) {
    if (container && node->Parent() != container) continue;
    if (node->Index() == member) {
      found = node;
      break;
    }
    array = array || node->Index() >= 0;
  }
  if (!found) {
    std::string what = "no control named \"" + name + "\"";
    if (member >= 0) what += " with index " + std::to_string(member);
    if (member < 0 && array) what = "\"" + name + "\" is a control array: give the member's index";
    automation::Raise(automation::err::kSubscript, what);
  }
  return form_->ControlOf(*found);
}

std::shared_ptr<VBE> VBControls::Vbe() const {
  return form_ ? form_->Vbe() : nullptr;
}

void VBControls::TearDown() {
  form_.reset();
  container_.reset();
}

}  // namespace ide::vbide
