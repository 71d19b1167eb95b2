#include "cli/project_files.h"

#include <algorithm>
#include <set>
#include <string>
#include <unordered_map>

#include "automation/casefold.h"
#include "contracts/component_kinds.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/folder_listing.h"
#include "platform/paths.h"
#include "platform/project_lines.h"

namespace cli {
namespace fs = std::filesystem;
namespace {

bool HasExtension(const fs::path& path, std::string_view extension) {
  return automation::EqualsAsciiNoCase(path.extension().string(), extension);
}

bool IsAbsolute(std::string_view written) {
  return (!written.empty() && (written.front() == '\\' || written.front() == '/')) ||
         (written.size() >= 2 && written[1] == ':');
}

class Collector {
 public:
  explicit Collector(ProjectDiscovery& out) : out_(out) {}

  void Add(const fs::path& project) {
    if (seen_.insert(FileKey(project)).second) out_.projects.push_back(fs::absolute(project));
  }

  void Group(const fs::path& group) {
    const std::string bytes = platform::ReadFile(group.string());
    for (const platform::GroupMember& member :
         platform::ReadGroupMembers(bytes, platform::CurrentCodePage(), group.string())) {
      const fs::path project = ResolveProjectPath(group.parent_path(), member.file);
      if (fs::is_regular_file(project)) {
        Add(project);
      } else {
        out_.errors.emplace_back(53, "qx",
                                 "File not found: " + project.string() + " (line " +
                                     std::to_string(member.line) + " of " + group.string() + ")");
      }
    }
  }

  void Folder(const fs::path& folder) {
    std::vector<fs::path> found;
    std::error_code ec;
    for (auto it = fs::recursive_directory_iterator(
             folder, fs::directory_options::skip_permission_denied, ec);
         !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
      if (it->is_regular_file(ec) && HasExtension(it->path(), ".vbp")) found.push_back(it->path());
    }
    if (ec) out_.errors.emplace_back(75, "qx", "Path/File access error: " + folder.string());
    std::sort(found.begin(), found.end());
    for (const fs::path& project : found)
      Add(project);
  }

 private:
  ProjectDiscovery& out_;
  std::set<std::string> seen_;
};

// The SourceFile setting of a designer's root object, as written ("" when there is none): a line
// `SourceFile = "..."` before the first nested object or the end of the root.
std::string SourceFileSetting(const fs::path& designer) {
  const std::string text =
      platform::CurrentCodePage().Decode(platform::ReadFile(designer.string()));
  size_t begins = 0;
  for (size_t start = 0; start < text.size();) {
    size_t end = text.find_first_of("\r\n", start);
    if (end == std::string::npos) end = text.size();
    std::string_view line = std::string_view(text).substr(start, end - start);
    start = end + 1;
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    const auto word = [&line](std::string_view keyword) {
      return line.size() >= keyword.size() &&
             automation::EqualsAsciiNoCase(line.substr(0, keyword.size()), keyword) &&
             (line.size() == keyword.size() || line[keyword.size()] == ' ' ||
              line[keyword.size()] == '=' || line[keyword.size()] == '\t');
    };
    if (word("Begin") && ++begins > 1) break;
    if (word("End") && begins > 0) break;
    if (begins == 0 || !word("SourceFile")) continue;
    const size_t open = line.find('"');
    const size_t close = line.rfind('"');
    if (open == std::string_view::npos || close <= open) break;
    return std::string(line.substr(open + 1, close - open - 1));
  }
  return {};
}

}  // namespace

std::vector<CompanionFile> CompanionFiles(const fs::path& componentFile) {
  std::vector<CompanionFile> out;
  // Only what has a description has companions: a module or a class never does, and listing
  // its folder for each of thousands of them would make a run quadratic.
  if (HasExtension(componentFile, ".bas") || HasExtension(componentFile, ".cls")) return out;
  std::set<std::string> seen{FileKey(componentFile)};
  const auto add = [&](const fs::path& file, bool absolute) {
    if (fs::is_regular_file(file) && seen.insert(FileKey(file)).second)
      out.push_back({file, absolute});
  };
  // The folder is listed once for all its forms (platform/folder_listing.h).
  const fs::path folder = componentFile.parent_path();
  for (const std::string& name : platform::EntriesWithStem(folder, componentFile.stem().string()))
    add(folder / name, false);
  if (HasExtension(componentFile, ".dsr") && fs::is_regular_file(componentFile)) {
    const std::string source = SourceFileSetting(componentFile);
    if (!source.empty())
      add(ResolveProjectPath(componentFile.parent_path(), source), IsAbsolute(source));
  }
  return out;
}

fs::path ResolveProjectPath(const fs::path& folder, std::string_view written) {
  if (IsAbsolute(written)) return platform::ToNative(written);
  return platform::ToNative(platform::ToWindows(folder) + "\\" + std::string(written));
}

std::string FileKey(const fs::path& file) {
  // A run asks for the key of each component file several times, and resolving a path reads
  // every link on its way: each path is resolved once per run.
  static std::unordered_map<std::string, std::string> keys;
  const fs::path absolute = fs::absolute(file);
  const auto known = keys.find(absolute.string());
  if (known != keys.end()) return known->second;
  std::error_code ec;
  fs::path key = fs::weakly_canonical(absolute, ec);
  if (ec) key = absolute.lexically_normal();
  return keys.emplace(absolute.string(), key.string()).first->second;
}

std::string ShowPath(const fs::path& file) {
  std::error_code ec;
  const fs::path current = fs::current_path(ec);
  const fs::path absolute = fs::absolute(file).lexically_normal();
  if (!ec) {
    const fs::path relative = absolute.lexically_relative(current);
    if (!relative.empty() && *relative.begin() != "..") return relative.string();
  }
  return absolute.string();
}

ProjectDiscovery FindProjects(const std::vector<std::string>& paths) {
  ProjectDiscovery out;
  Collector collector(out);
  const std::vector<std::string> given = paths.empty() ? std::vector<std::string>{"."} : paths;
  for (const std::string& path : given) {
    try {
      const fs::path native = platform::ToNative(path);
      if (fs::is_directory(native)) {
        collector.Folder(native);
      } else if (!fs::exists(native)) {
        out.errors.emplace_back(53, "qx", "File not found: " + path);
      } else if (platform::IsGroupFile(native.string())) {
        collector.Group(native);
      } else if (HasExtension(native, ".vbp")) {
        collector.Add(native);
      } else {
        out.errors.emplace_back(
            5, "qx", path + " is neither a project (.vbp), a project group (.vbg) nor a folder");
      }
    } catch (const automation::Error& e) {
      out.errors.push_back(e);
    }
  }
  return out;
}

std::vector<ComponentFile> ReadComponentFiles(const fs::path& projectFile) {
  const std::string bytes = platform::ReadFile(projectFile.string());
  platform::ProjectLineReader reader(bytes, platform::CurrentCodePage(), projectFile.string());
  std::vector<ComponentFile> files;
  while (reader.Next()) {
    const platform::ProjectLine& line = reader.Line();
    if (!line.hasKey) continue;
    for (const auto& kind : contracts::kComponentKinds) {
      if (!automation::EqualsAsciiNoCase(line.key, kind.projectFileKey)) continue;
      const platform::ComponentValue value = platform::SplitComponentValue(line.value);
      ComponentFile file{std::string(kind.collection), std::string(value.name),
                         ResolveProjectPath(projectFile.parent_path(), value.file),
                         IsAbsolute(value.file), static_cast<size_t>(reader.Number())};
      if (!value.hasName)
        file.name = platform::ComponentNameFromFile(file.file.string()).value_or(std::string());
      files.push_back(std::move(file));
      break;
    }
  }
  return files;
}

}  // namespace cli
