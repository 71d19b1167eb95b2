#pragma once
// Problem: one error reported to the host's problem log, with where it happened.
//
// The driver fills a new problem with SetError and hands it to the log's AddProblem, which
// sets the site name and the context the problem arrived in. Everything else is read-only.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace host {

class Problem : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.Problem";

  const automation::ClassInfo& Class() const override;

  void SetError(int32_t number, const std::string& description, const std::string& helpFile,
                int32_t helpContext, const std::string& projectName, const std::string& className,
                const std::string& procName, int32_t line);

  int32_t Number() const { return number_; }
  std::string Description() const { return description_; }
  std::string HelpFile() const { return helpFile_; }
  int32_t HelpContext() const { return helpContext_; }
  std::string ProjectName() const { return projectName_; }
  std::string ClassName() const { return className_; }
  std::string ProcName() const { return procName_; }
  int32_t Line() const { return line_; }
  // Where the problem was reported from ("project.class.procedure"), set by the log.
  std::string SiteName() const { return siteName_; }
  // The site of the problem context that was open in the log when the problem arrived, "" when
  // none was.
  std::string Context() const { return context_; }

  void SetSiteName(std::string siteName) { siteName_ = std::move(siteName); }
  void SetContext(std::string context) { context_ = std::move(context); }

 private:
  int32_t number_ = 0;
  std::string description_;
  std::string helpFile_;
  int32_t helpContext_ = 0;
  std::string projectName_;
  std::string className_;
  std::string procName_;
  int32_t line_ = 0;
  std::string siteName_;
  std::string context_;
};

}  // namespace host
