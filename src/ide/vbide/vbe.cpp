#include "ide/vbide/vbe.h"

#include "ide/vbide/events.h"
#include "ide/vbide/vbproject.h"
#include "ide/vbide/vbprojects.h"
#include "ide/vbide/window.h"

namespace ide::vbide {

std::shared_ptr<VBE> VBE::Create() {
  auto vbe = std::make_shared<VBE>();
  vbe->projects_ = std::make_shared<vbide::VBProjects>(vbe);
  vbe->events_ = std::make_shared<vbide::Events>();
  Window::Setup setup;
  setup.type = Window::kMainWindow;
  // VB6's title bar: the active project's name, then the IDE's name and its mode.
  setup.caption = [weak = std::weak_ptr<VBE>(vbe)] {
    std::string caption = "Microsoft Visual Basic [design]";
    auto self = weak.lock();
    auto project = self ? automation::As<VBProject>(self->ActiveVBProject()) : nullptr;
    return project ? project->Name() + " - " + caption : caption;
  };
  vbe->mainWindow_ = Window::Create(vbe, std::move(setup));
  return vbe;
}

VBE::VBE() = default;

const automation::ClassInfo& VBE::Class() const {
  // The members in the order of VBIDE's VBE interface.
  static const automation::ClassInfo info = automation::ClassBuilder<VBE>("VBE")
                                                .Get("Version", &VBE::Version)
                                                .Get("VBProjects", &VBE::VBProjects)
                                                .Get("Events", &VBE::Events)
                                                .Get("ActiveVBProject", &VBE::ActiveVBProject)
                                                .Get("MainWindow", &VBE::MainWindow)
                                                .Build();
  return info;
}

automation::ObjectRef VBE::ActiveVBProject() const {
  if (!projects_ || projects_->Items().empty()) return nullptr;
  return projects_->Items().front();
}

void VBE::TearDown() {
  if (projects_) projects_->TearDown();
  if (events_) events_->TearDown();
  if (mainWindow_) mainWindow_->TearDown();
  projects_.reset();
  events_.reset();
  mainWindow_.reset();
}

}  // namespace ide::vbide
