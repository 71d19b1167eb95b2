#include "contracts/host_classes.h"

namespace contracts {

using automation::Args;
using automation::CreateObject;

KeyedList KeyedList::New() {
  return KeyedList(CreateObject("qxlib41.KeyedList"));
}
KeySet KeySet::New() {
  return KeySet(CreateObject("qxlib41.KeySet"));
}
ParameterList ParameterList::New() {
  return ParameterList(CreateObject("qxlib41.ParameterList"));
}
HostUtility HostUtility::Get() {
  return HostUtility(CreateObject("qxlib41.HostUtility"));
}
Scanner Scanner::New() {
  return Scanner(CreateObject("qxlib41.Scanner"));
}
RegistryKey RegistryKey::New() {
  return RegistryKey(CreateObject("qxlib41.RegistryKey"));
}
Tracer Tracer::Get() {
  return Tracer(CreateObject("qxlib41.Tracer"));
}
ProblemLog ProblemLog::New() {
  return ProblemLog(CreateObject("qxlib41.ProblemLog"));
}
ProblemContext ProblemContext::New() {
  return ProblemContext(CreateObject("qxlib41.ProblemContext"));
}
Problem Problem::New() {
  return Problem(CreateObject("qxlib41.Problem"));
}
ProblemLogLink ProblemLogLink::New() {
  return ProblemLogLink(CreateObject("qxlib41.ProblemLogLink"));
}

void Tracer::Enter(std::string& siteName) const {
  Args args{siteName};
  d_.CallArgs("Enter", args);
  siteName = args[0].ToString();
}

int32_t ProblemLog::OpenContext(const std::string& projectName, const std::string& className,
                                std::string& procName, bool flag1, bool flag2) const {
  Args args{projectName, className, procName, flag1, flag2};
  const int32_t cookie = d_.CallArgs("OpenContext", args).ToLong();
  procName = args[2].ToString();
  return cookie;
}

void ProblemLog::AddProblem(ObjectRef& problem, const std::string& siteName) const {
  Args args{problem, siteName, 0, Variant()};
  d_.CallArgs("AddProblem", args);
  problem = args[0].ToObject();
}

void ProblemLog::ReportRuntimeError(int32_t number, const std::string& description,
                                    const std::string& helpFile, int32_t helpContext,
                                    const std::string& projectName, const std::string& className,
                                    const std::string& procName, int32_t line) const {
  d_.Call("ReportRuntimeError", number, description, helpFile, helpContext, projectName, className,
          procName, line);
}

void ProblemContext::Attach(ObjectRef& problemLog, int32_t cookie) const {
  Args args{problemLog, cookie};
  d_.CallArgs("Attach", args);
  problemLog = args[0].ToObject();
}

void ProblemLogLink::Link(ObjectRef& problemLog) const {
  Args args{problemLog};
  d_.CallArgs("Link", args);
  problemLog = args[0].ToObject();
}

}  // namespace contracts
