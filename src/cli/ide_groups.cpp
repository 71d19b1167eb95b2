#include "cli/ide_groups.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

#include "automation/casefold.h"
#include "automation/error.h"
#include "contracts/host_classes.h"
#include "host/object_table.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/private_folders.h"
#include "platform/profile.h"
#include "platform/registry.h"

namespace cli {
namespace fs = std::filesystem;
namespace {

// How long the run waits for a group's IDE to open its projects, as the driver waits for an IDE
// it starts to open its one.
constexpr int32_t kStartTimeoutMs = 30000;

// Whether the driver's add-in is enabled: without it an IDE registers no project, and a group's
// IDE would be waited for in vain.
bool AddInEnabled() {
  try {
    const auto entries = platform::ReadProfileSection("Add-Ins32", "vbaddin.ini");
    return std::any_of(entries.begin(), entries.end(), [](const auto& entry) {
      return automation::EqualsAsciiNoCase(entry.first, "qxvb60.Connection") && entry.second == "1";
    });
  } catch (const automation::Error&) {
    return false;
  }
}

// The group file's text: the first project is the start-up project, as VB writes it.
std::string GroupText(const std::vector<fs::path>& members) {
  std::string text = "VBGROUP 5.0\r\n";
  for (size_t i = 0; i < members.size(); ++i)
    text += (i == 0 ? "StartupProject=" : "Project=") + platform::ToWindows(members[i]) + "\r\n";
  return text;
}

}  // namespace

bool IdeGroups::Enabled() {
  const char* off = std::getenv("QX_NO_GROUPS");
  return off == nullptr || std::string_view(off) != "1";
}

void IdeGroups::Before(const std::vector<fs::path>& projects, size_t index, const Judge& judge) {
  if (index < judged_ || !AddInEnabled()) return;
  std::vector<fs::path> members;
  std::uintmax_t bytes = 0;
  for (judged_ = index; judged_ < projects.size(); ++judged_) {
    const fs::path& project = projects[judged_];
    if (!platform::IsAscii(project.string()) ||
        host::ObjectTable::Get().Registered(project.string()))
      continue;
    std::optional<std::uintmax_t> needs;
    try {
      needs = judge(project);
    } catch (const automation::Error&) {
      continue;  // its own turn says what is wrong with it
    } catch (const fs::filesystem_error&) {
      continue;
    }
    if (!needs) continue;
    if (!members.empty() && bytes + *needs > kGroupBytes) break;
    members.push_back(project);
    bytes += *needs;
  }
  if (members.size() >= 2) Start(members);
}

bool IdeGroups::Start(const std::vector<fs::path>& members) {
  const std::optional<std::string> command =
      platform::Registry::Instance().ReadValue(platform::Registry::kOpenCommandKey, "");
  const size_t argument = command ? command->find("%1") : std::string::npos;
  if (argument == std::string::npos) return false;
  fs::path folder;
  std::string opened;  // the projects the IDE has open, tab-separated
  try {
    folder = platform::MakeTempFolder(fs::temp_directory_path(), "qx-group-");
    const fs::path file = folder / "Projects.vbg";
    platform::WritePrivateFile(file, GroupText(members));
    std::string line = *command;
    line.replace(argument, 2, platform::ToWindows(file));
    // The IDE registers its control object under the group file's name once it has opened (or
    // failed to open) every project of the group; it has read the file long before.
    const automation::ObjectRef control =
        contracts::HostUtility::Get().LaunchAndConnect(line, file.string(), kStartTimeoutMs);
    std::error_code ec;
    fs::remove_all(folder, ec);
    if (!control) return false;
    opened = automation::Dispatch(control).Get("Projects").ToString();
  } catch (const automation::Error&) {
    std::error_code ec;
    if (!folder.empty()) fs::remove_all(folder, ec);
    return false;
  }
  // The IDE is known by a project it has open: one of the group may have failed to open there
  // (its own turn then starts an IDE for it, which says why).
  const std::string first = opened.substr(0, opened.find('\t'));
  if (first.empty()) return false;
  Group group{first, {}};
  for (const fs::path& member : members)
    group.waiting.insert(member.string());
  groups_.push_back(std::move(group));
  return true;
}

void IdeGroups::Done(const fs::path& project) {
  for (auto group = groups_.begin(); group != groups_.end(); ++group) {
    if (group->waiting.erase(project.string()) == 0 || !group->waiting.empty()) continue;
    const std::string first = group->first;
    groups_.erase(group);
    Keep(first);
    return;
  }
}

void IdeGroups::Finish() {
  std::vector<Group> groups = std::move(groups_);
  groups_.clear();
  for (const Group& group : groups)
    Keep(group.first);
}

void IdeGroups::Keep(const std::string& first) {
  try {
    warm_.Done(first);
  } catch (const automation::Error&) {
    // An IDE that cannot be asked ends by itself once idle; the results are in.
  }
}

}  // namespace cli
