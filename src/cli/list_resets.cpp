#include "cli/list_resets.h"

#include "automation/error.h"
#include "ide/form/object_properties.h"
#include "ide/model/project.h"
#include "platform/codepage.h"

namespace cli {

ListResets::ListResets(std::filesystem::path projectFile) : projectFile_(std::move(projectFile)) {}

ListResets::~ListResets() = default;

size_t ListResets::ItemDataValues(const std::string& component, const std::string& control) {
  try {
    if (!project_) {
      project_ = ide::Project::Open(projectFile_.string(), platform::CurrentCodePage());
    }
    ide::Component* found = project_->Find(component);
    if (found == nullptr) return 0;
    const ide::form::FormContext context = found->Form();
    std::string name = control;
    int32_t index = -1;
    if (const size_t open = name.find('('); open != std::string::npos) {
      index = std::stoi(name.substr(open + 1));
      name.resize(open);
    }
    ide::form::DescriptionNode* node = context.description->FindObject(name, index);
    if (node == nullptr || node->FindProperty("ItemData") == nullptr) return 0;
    return static_cast<size_t>(ide::form::ObjectProperties(context, *node).ListCount("ItemData"));
  } catch (const automation::Error&) {
    return 0;  // what cannot be read has nothing to say here; the scan reports it
  } catch (const std::exception&) {
    return 0;
  }
}

}  // namespace cli
