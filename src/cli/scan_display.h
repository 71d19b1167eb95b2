#pragma once
// How a search or replace shows a component file it scanned: its problems and refusals, its
// matches grouped into hits on the file's lines, and for a replace the diff of each file that
// changed, counted in the run's totals as it goes.

#include "cli/printer.h"
#include "cli/run_account.h"
#include "cli/scanned_file.h"
#include "cli/search_options.h"

namespace cli {

class ScanDisplay {
 public:
  // `narrowed`: a replace changes only the places written (--only, or the user's answers), so
  // only their matches count; else every match does.
  ScanDisplay(const SearchOptions& options, Printer& printer, RunAccount& account, bool narrowed)
      : options_(options), printer_(printer), account_(account), narrowed_(narrowed) {}

  void Show(const ScannedFile& scanned);
  // A file that changed besides a component's own (a page's HTML, the project file, a
  // companion).
  void ShowChange(const FileChange& change);

 private:
  const SearchOptions& options_;
  Printer& printer_;
  RunAccount& account_;
  const bool narrowed_;
};

}  // namespace cli
