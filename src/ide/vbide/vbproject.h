#pragma once
// VBProject: a project open in the IDE, over the project model (ide::Project) read from its
// project file.

#include <memory>
#include <string>

#include "automation/object.h"

namespace ide {
class Project;
}

namespace ide::vbide {

class VBE;
class VBProjects;
class VBComponents;

class VBProject : public automation::Object {
 public:
  VBProject(std::shared_ptr<VBE> vbe, std::shared_ptr<VBProjects> collection,
            std::shared_ptr<ide::Project> model);

  const automation::ClassInfo& Class() const override;

  // The project file's Name= value.
  std::string Name() const;
  // The full path of the project file.
  std::string FileName() const;
  // The project file or any of its components has changes not saved yet.
  bool IsDirty() const;
  std::shared_ptr<VBE> Vbe() const { return vbe_; }
  std::shared_ptr<VBProjects> Collection() const { return collection_; }
  std::shared_ptr<vbide::VBComponents> VBComponents() const { return components_; }

  ide::Project& Model() const { return *model_; }
  const std::shared_ptr<ide::Project>& SharedModel() const { return model_; }
  // Makes the component objects (once, right after the project joins the IDE).
  void CreateComponents();
  void TearDown();

 private:
  std::shared_ptr<VBE> vbe_;
  std::shared_ptr<VBProjects> collection_;
  std::shared_ptr<vbide::VBComponents> components_;
  std::shared_ptr<ide::Project> model_;
};

}  // namespace ide::vbide
