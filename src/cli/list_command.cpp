#include <algorithm>
#include <ostream>
#include <vector>

#include "cli/commands.h"
#include "cli/report.h"
#include "cli/session.h"
#include "collections/collection_kinds.h"
#include "contracts/driver_interfaces.h"

namespace cli {
namespace {

std::vector<std::string> SplitText(const std::string& text, std::string_view separator) {
  std::vector<std::string> parts;
  if (text.empty()) return parts;
  size_t start = 0;
  for (;;) {
    const size_t at = text.find(separator, start);
    parts.push_back(text.substr(start, at - start));
    if (at == std::string::npos) return parts;
    start = at + separator.size();
  }
}

std::string ProjectFileKey(const std::string& collectionName) {
  for (const auto& kind : collections::CollectionKinds()) {
    if (kind.className == collectionName) return std::string(kind.projectFileKey);
  }
  return collectionName;
}

// "20261123091244" as "2026-11-23 09:12:44".
std::string ShowVersion(const std::string& version) {
  if (version.size() != 14) return version;
  return version.substr(0, 4) + "-" + version.substr(4, 2) + "-" + version.substr(6, 2) + " " +
         version.substr(8, 2) + ":" + version.substr(10, 2) + ":" + version.substr(12, 2);
}

// Columns are counted in characters, not bytes, so non-ASCII names line up.
size_t DisplayWidth(std::string_view text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

struct Row {
  std::string name;
  std::string modified;
  std::string state;
};

}  // namespace

int RunList(const ListOptions& options, std::ostream& out, std::ostream& err) {
  try {
    Session session;
    const contracts::IProject project(session.OpenProject(options.projectFile));
    const std::vector<std::string> names = SplitText(project.EnumCollections(), "\t");
    size_t total = 0;
    for (const std::string& collectionName : names) {
      const contracts::ICollection collection(project.GetCollection(collectionName));
      const std::string entries = collection.EnumObjects();
      if (options.raw) {
        out << "[" << collectionName << "]\n" << entries << "\n";
        continue;
      }
      std::vector<Row> rows;
      for (const std::string& entry : SplitText(entries, "\r\n")) {
        const std::vector<std::string> fields = SplitText(entry, "\t");
        Row row;
        row.name = fields.empty() ? std::string() : fields[0];
        // The version and writability of the component's file, as the project reports them.
        automation::Args args{ProjectFileKey(collectionName), row.name, std::string(), false};
        automation::Dispatch(project.object()).CallArgs("GetObjectInfo", args);
        const std::string version = args[2].ToString();
        row.modified = version.empty() ? "-" : ShowVersion(version);
        row.state = version.empty() ? "missing" : args[3].ToBool() ? "writable" : "read-only";
        if (row.name.empty()) row.name = "(no name: file unreadable)";
        rows.push_back(std::move(row));
      }
      if (rows.empty()) continue;
      size_t width = 0;
      for (const Row& row : rows)
        width = std::max(width, DisplayWidth(row.name));
      out << collectionName << "\n";
      for (const Row& row : rows) {
        out << "  " << row.name << std::string(width - DisplayWidth(row.name) + 2, ' ')
            << row.modified << "  " << row.state << "\n";
      }
      total += rows.size();
    }
    if (!options.raw) {
      out << total << (total == 1 ? " component" : " components") << "\n";
    }
    for (const std::string& problem : session.Problems()) {
      err << "qx: problem " << ForTerminal(problem) << "\n";
    }
    return kExitMatch;
  } catch (const automation::Error& e) {
    PrintError(err, e);
    return kExitError;
  }
}

}  // namespace cli
