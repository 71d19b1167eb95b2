#pragma once
// The --write pass of a replace: the project written as its preview on the scratch copy was,
// each changed component with the places the preview wrote and no other, a batch at a time by
// the IDE's agent when there is one; then each file the write made compared with the preview's.

#include <cstddef>
#include <filesystem>
#include <vector>

#include "automation/object.h"
#include "cli/run_account.h"
#include "cli/scan_agent.h"
#include "cli/scan_buffer.h"
#include "cli/scanned_file.h"
#include "cli/session.h"
#include "cli/warm_ides.h"

namespace cli {

class WritePass {
 public:
  // The run's account, kept IDEs, batches (and their size) and buffer, which the pass shares.
  WritePass(RunAccount& account, WarmIdes& warm, ScanBatches& batches, size_t batch,
            RunBuffer& buffer)
      : account_(account), warm_(warm), batches_(batches), batch_(batch), buffer_(buffer) {}

  // Writes the project as its preview did; a component whose files changed since the preview
  // is not written, and says so.
  void Write(Session& session, const std::filesystem::path& projectFile,
             const std::vector<ScannedFile>& changed);
  // After a write: a file that differs from what the preview made of it is an error.
  void Compare(const FileChange& change);

 private:
  // Writes the places of the component that its preview wrote, with the request narrowed to
  // them; a place that is not written again is an error.
  void WriteComponent(const automation::ObjectRef& project,
                      const std::filesystem::path& projectFile, const ScannedFile& file,
                      const std::string& request);
  // Whether the component's files are still as the preview found them; says so when not.
  bool AsPreviewed(const ScannedFile& file);

  RunAccount& account_;
  WarmIdes& warm_;
  ScanBatches& batches_;
  const size_t batch_;
  RunBuffer& buffer_;
};

}  // namespace cli
