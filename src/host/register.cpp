#include "host/register.h"

#include <memory>

#include "automation/object.h"
#include "host/host_utility.h"
#include "host/ide_control.h"
#include "host/key_set.h"
#include "host/keyed_list.h"
#include "host/parameter_list.h"
#include "host/problem.h"
#include "host/problem_context.h"
#include "host/problem_log.h"
#include "host/problem_log_link.h"
#include "host/registry_key.h"
#include "host/scan/scan_agent.h"
#include "host/scan/scan_buffer.h"
#include "host/scan/scanner.h"
#include "host/tracer.h"

namespace host {
namespace {

template <class T>
void RegisterNew() {
  automation::RegisterClass(T::kProgId, [] { return std::make_shared<T>(); });
}

}  // namespace

void RegisterClasses() {
  RegisterNew<KeyedList>();
  RegisterNew<KeySet>();
  RegisterNew<ParameterList>();
  RegisterNew<ProblemLog>();
  RegisterNew<ProblemContext>();
  RegisterNew<Problem>();
  RegisterNew<ProblemLogLink>();
  RegisterNew<RegistryKey>();
  RegisterNew<scan::Scanner>();
  RegisterNew<scan::ScanBuffer>();
  RegisterNew<scan::ScanAgent>();
  // One per process: every creation gives the current process's object.
  automation::RegisterClass(Tracer::kProgId, [] { return Tracer::Instance(); });
  automation::RegisterClass(HostUtility::kProgId, [] { return HostUtility::Instance(); });
  RouteWindowsToIdes();
}

}  // namespace host
