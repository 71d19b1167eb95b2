#pragma once
// The DHTML page designer's object (VBComponent.Designer of a DHTML page). Besides its default
// interface it implements the designer's own interface, IDHTMLPageDesigner, whose members in
// slot order are SourceFile, BuildFile (the designer's settings as its .dsr stores them) and
// PageFile: the full path of the file that holds the page's HTML (designer_page.h), the page
// of whoever edits it.

#include <memory>
#include <string>

#include "automation/object.h"

namespace ide {
class Component;
class Project;
}  // namespace ide

namespace ide::vbide {

class DHTMLPageDesigner : public automation::Object {
 public:
  DHTMLPageDesigner(std::shared_ptr<ide::Project> model, ide::Component& component)
      : model_(std::move(model)), component_(&component) {}

  const automation::ClassInfo& Class() const override;

  std::string SourceFile() const;
  std::string BuildFile() const;
  std::string PageFile() const;

 private:
  std::string Setting(std::string_view name) const;

  std::shared_ptr<ide::Project> model_;  // keeps component_ alive
  ide::Component* component_;
};

}  // namespace ide::vbide
