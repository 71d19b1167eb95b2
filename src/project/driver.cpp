#include "project/driver.h"

#include "contracts/host_classes.h"
#include "foundation/globals.h"
#include "foundation/operation.h"
#include "project/project.h"

namespace project {

Driver::Driver() : projects_(contracts::KeyedList::New().object()) {}

const automation::ClassInfo& Driver::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<Driver>("Driver")
          .Implements("IDriver")
          .Method("Initialize", &Driver::IDriver_Initialize, {"ProblemLog"})
          .Method("Shutdown", &Driver::IDriver_Shutdown)
          .Method("GetProject", &Driver::IDriver_GetProject,
                  {"ProjectName", "ProjectType", "Parameters"})
          .Build();
  return info;
}

void Driver::IDriver_Initialize(automation::ObjectRef& problemLog) {
  foundation::GetGlobals().problemLog = problemLog;
}

void Driver::IDriver_Shutdown() {
  projects_.reset();
  contracts::Tracer::Get().Finish();
  foundation::GetGlobals().problemLog = contracts::ProblemLog::New().object();
}

automation::ObjectRef Driver::IDriver_GetProject(const std::string& projectName,
                                                 int32_t /*projectType*/,
                                                 const std::string& parameters) {
  return foundation::Operation("Driver", "IDriver_GetProject", [&] {
    if (!projects_) projects_ = contracts::KeyedList::New().object();
    const contracts::KeyedList cache(projects_);
    if (const int32_t found = cache.Find(parameters); found != 0) {
      return cache.ItemAt(found).ToObject();
    }
    auto created = std::make_shared<Project>();
    created->Initialize(projectName, parameters);
    cache.Add(automation::ObjectRef(created), parameters);
    return automation::ObjectRef(created);
  });
}

}  // namespace project
