#include "ide/vbide/dhtml_page_designer.h"

#include "ide/form/description.h"
#include "ide/form/property_line.h"
#include "ide/model/designer_page.h"
#include "ide/model/project.h"

namespace ide::vbide {

const automation::ClassInfo& DHTMLPageDesigner::Class() const {
  using D = DHTMLPageDesigner;
  static const automation::ClassInfo info = automation::ClassBuilder<D>("DHTMLPage")
                                                .Get("SourceFile", &D::SourceFile)
                                                .Get("BuildFile", &D::BuildFile)
                                                .Get("PageFile", &D::PageFile)
                                                .Implements("IDHTMLPageDesigner")
                                                .Get("SourceFile", &D::SourceFile)
                                                .Get("BuildFile", &D::BuildFile)
                                                .Get("PageFile", &D::PageFile)
                                                .Build();
  return info;
}

std::string DHTMLPageDesigner::Setting(std::string_view name) const {
  const form::Description* description = component_->File().Description();
  if (description == nullptr) return {};
  const form::PropertyEntry* entry = description->Root().FindProperty(name);
  if (entry == nullptr) return {};
  return form::UnquoteString(entry->Value()).value_or(std::string(entry->Value()));
}

std::string DHTMLPageDesigner::SourceFile() const {
  return Setting("SourceFile");
}

std::string DHTMLPageDesigner::BuildFile() const {
  return Setting("BuildFile");
}

std::string DHTMLPageDesigner::PageFile() const {
  DesignerPage* page = component_->Page();
  return page == nullptr ? std::string() : page->Path();
}

}  // namespace ide::vbide
