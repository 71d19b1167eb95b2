#include "cli/warm_ides.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>

#include "automation/error.h"
#include "cli/ide_processes.h"
#include "host/ide_control.h"

namespace cli {
namespace {

size_t WholeNumber(const char* variable, size_t fallback) {
  const char* text = std::getenv(variable);
  if (text == nullptr || *text == '\0') return fallback;
  const std::string value(text);
  if (value.size() > 9 || value.find_first_not_of("0123456789") != std::string::npos) {
    automation::Raise(automation::err::kInvalidCall,
                      std::string(variable) + " must be a whole number, not \"" + value + "\"");
  }
  return std::stoul(value);
}

// The resident memory of a process in megabytes, 0 when it is gone.
size_t ResidentMegabytes(long pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/status");
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind("VmRSS:", 0) == 0) return std::strtoul(line.c_str() + 6, nullptr, 10) / 1024;
  }
  return 0;
}

void Stop(const std::string& projectFile) {
  try {
    StopIdesOf(projectFile);
  } catch (const automation::Error&) {
    // One that will not end ends by itself once idle; the results are in.
  }
}

}  // namespace

KeepSettings KeepSettingsFromEnvironment() {
  KeepSettings settings;
  settings.count = WholeNumber("QX_KEEP_IDES", settings.count);
  settings.megabytes = WholeNumber("QX_KEEP_IDES_MB", settings.megabytes);
  std::string message;
  const auto idle = host::IdleFromEnvironment(message);
  if (!idle) automation::Raise(automation::err::kInvalidCall, message);
  settings.idle = *idle;
  // An IDE that ends as soon as its host lets go is not kept by anyone.
  if (settings.idle.count() == 0) settings.count = 0;
  return settings;
}

void WarmIdes::Done(const std::string& projectFile) {
  std::erase(projects_, projectFile);
  std::vector<RunningIde> running = RunningIdes();
  std::vector<RunningIde> stuck;  // the project's IDE, when it does not answer: not kept
  bool open = false;
  for (RunningIde& ide : running) {
    if (!HasOpen(ide.process, projectFile)) continue;
    open = true;
    if (!ide.process.unresponsive.empty()) stuck.push_back(std::move(ide));
  }
  if (!stuck.empty()) StopIdes(std::move(stuck), [](const IdeProcess&) {});
  if (!open || !stuck.empty()) return;
  projects_.push_back(projectFile);
  // Oldest first, ended while more than the count, or than the budget, are kept.
  std::map<std::string, size_t> megabytes;
  size_t total = 0;
  for (const RunningIde& ide : running) {
    for (const std::string& project : projects_) {
      if (!HasOpen(ide.process, project)) continue;
      megabytes[project] += ResidentMegabytes(ide.process.pid);
      total += ResidentMegabytes(ide.process.pid);
    }
  }
  while (!projects_.empty() &&
         (projects_.size() > settings_.count || total > settings_.megabytes)) {
    total -= std::min(total, megabytes[projects_.front()]);
    Stop(projects_.front());
    projects_.erase(projects_.begin());
  }
}

void WarmIdes::EndAll() {
  for (const std::string& project : projects_)
    Stop(project);
  projects_.clear();
}

std::string KeptNotice(size_t count, std::chrono::seconds idle) {
  const long seconds = static_cast<long>(idle.count());
  const std::string time =
      seconds % 60 == 0 ? std::to_string(seconds / 60) + " min" : std::to_string(seconds) + " s";
  if (count == 1) return "IDE kept for " + time + ": qx ide stop --all ends it";
  return std::to_string(count) + " IDEs kept for " + time + ": qx ide stop --all ends them";
}

}  // namespace cli
