#include "host/problem.h"

namespace host {

const automation::ClassInfo& Problem::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<Problem>("Problem")
          .Method("SetError", &Problem::SetError,
                  {"Number", "Description", "HelpFile", "HelpContext", "ProjectName", "ClassName",
                   "ProcName", "Line"})
          .Get("Number", &Problem::Number)
          .Get("Description", &Problem::Description)
          .Get("HelpFile", &Problem::HelpFile)
          .Get("HelpContext", &Problem::HelpContext)
          .Get("ProjectName", &Problem::ProjectName)
          .Get("ClassName", &Problem::ClassName)
          .Get("ProcName", &Problem::ProcName)
          .Get("Line", &Problem::Line)
          .Get("SiteName", &Problem::SiteName)
          .Get("Context", &Problem::Context)
          .Build();
  return info;
}

void Problem::SetError(int32_t number, const std::string& description, const std::string& helpFile,
                       int32_t helpContext, const std::string& projectName,
                       const std::string& className, const std::string& procName, int32_t line) {
  number_ = number;
  description_ = description;
  helpFile_ = helpFile;
  helpContext_ = helpContext;
  projectName_ = projectName;
  className_ = className;
  procName_ = procName;
  line_ = line;
}

}  // namespace host
