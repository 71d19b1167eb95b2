#include "cli/write_pass.h"

#include <algorithm>

#include "cli/interruption.h"
#include "cli/project_files.h"
#include "cli/project_scope.h"
#include "contracts/driver_interfaces.h"
#include "platform/files.h"

namespace cli {
namespace fs = std::filesystem;

void WritePass::Write(Session& session, const fs::path& projectFile,
                      const std::vector<ScannedFile>& changed) {
  WithProject(session, projectFile, &warm_, [&](const automation::ObjectRef& project) {
    const automation::ObjectRef dispatcher = ReachIde(project);
    // Written a batch at a time by the agent when there is one, each with its own request.
    if (batches_.Enabled()) batches_.Start(dispatcher, project, projectFile.stem().string());
    for (size_t from = 0; from < changed.size() && Interrupted() == 0; from += batch_) {
      std::vector<const ScannedFile*> batch;
      std::vector<ScanBatches::Item> items;
      for (size_t i = from; i < std::min(changed.size(), from + batch_); ++i) {
        const ScannedFile& file = changed[i];
        if (!AsPreviewed(file)) continue;
        batch.push_back(&file);
        items.push_back({file.collection, file.entry.name, file.entry.writable,
                         OnlyThese(file.request, file.accepted)});
      }
      batches_.Scan(items);
      for (size_t i = 0; i < batch.size() && Interrupted() == 0; ++i)
        WriteComponent(project, projectFile, *batch[i], items[i].request);
      batches_.Forget();
    }
    batches_.Stop();  // let go before the project's IDE is let go
  });
  // The IDE saves without waiting for the disk; the project's writes reach it here, at once.
  try {
    platform::FlushFileSystem(projectFile.string());
  } catch (const automation::Error& e) {
    account_.Report({false, account_.project(), "", 0, e.Number(), e.Description()});
  }
  for (const ScannedFile& file : changed) {
    Compare({file.original, file.before, file.after});
    for (const FileChange& companion : file.companions)
      Compare(companion);
  }
}

void WritePass::WriteComponent(const automation::ObjectRef& project, const fs::path& projectFile,
                               const ScannedFile& file, const std::string& request) {
  try {
    std::optional<std::vector<ComponentScan>> scans =
        batches_.Take(file.collection, file.entry.name, request);
    if (!scans) {
      const automation::ObjectRef object =
          contracts::ICollection(contracts::IProject(project).GetCollection(file.collection))
              .GetObject(file.entry.name);
      scans = buffer_.Scan(object, projectFile.stem().string(), file.entry.name,
                           file.entry.writable, request);
    }
    for (const ComponentScan& scan : *scans) {
      for (const ScanPlace& place : scan.places) {
        if (place.written || std::find(file.accepted.begin(), file.accepted.end(), place.id) ==
                                 file.accepted.end()) {
          continue;
        }
        account_.ComponentFailed(
            file.entry.name, 0,
            place.error ? automation::Error(place.error->number, "", place.error->description)
                        : automation::Error(5, "qx", place.id + " not written"));
      }
    }
  } catch (const automation::Error& e) {
    account_.Report(
        {false, account_.project(), file.entry.name, file.line, e.Number(), e.Description()});
  }
}

bool WritePass::AsPreviewed(const ScannedFile& file) {
  std::vector<FileChange> sides{{file.original, file.before, {}}};
  sides.insert(sides.end(), file.companions.begin(), file.companions.end());
  for (const FileChange& side : sides) {
    const std::optional<std::string> now = ReadIfThere(side.original);
    if (now == side.before) continue;
    account_.Report({false, account_.project(), file.entry.name, file.line, 75,
                     ShowPath(side.original) + " changed since its preview was made; not written"});
    return false;
  }
  return true;
}

void WritePass::Compare(const FileChange& change) {
  if (change.before == change.after) return;
  if (ReadIfThere(change.original) == change.after) return;
  account_.Report({false, account_.project(), "", 0, 75,
                   ShowPath(change.original) + " differs from what its preview showed"});
}

}  // namespace cli
