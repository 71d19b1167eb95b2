#include "cli/scan_display.h"

#include <algorithm>

#include "cli/file_matches.h"
#include "cli/project_files.h"
#include "cli/unified_diff.h"

namespace cli {

void ScanDisplay::Show(const ScannedFile& scanned) {
  SearchTotals& totals = account_.totals();
  const ComponentScan& scan = scanned.scan;
  const std::string path = scanned.original.empty() ? scan.collection + "/" + scan.component
                                                    : ShowPath(scanned.original);
  for (const ScanError& problem : scan.problems) {
    account_.Report({false, account_.project(), scan.component, scanned.line, problem.number,
                     (problem.place.empty() ? "" : problem.place + ": ") + problem.description});
  }
  std::vector<size_t> placeLines;
  FileMatches matches;
  matches.path = path;
  const auto size = static_cast<size_t>(scanned.unread.value_or(scanned.before.size()));
  matches.bytes = size;
  matches.seconds = scanned.seconds;
  matches.codePage = scanned.codePage;
  matches.hits = GroupMatches(scan, FileLines(scanned.before).all(), placeLines);
  ++totals.files;
  totals.bytes += size;
  // The matches a replace changes: narrowed by --only or by the user's answers, those of the
  // places written (or refused); else every match.
  size_t counted = 0;
  for (size_t p = 0; p < scan.places.size(); ++p) {
    const ScanPlace& place = scan.places[p];
    matches.matches += place.matches.size();
    if (!narrowed_ || place.written || place.error) counted += place.matches.size();
    if (!place.error) continue;
    ++totals.refused;
    printer_.Refused({path, placeLines[p], scan.collection, scan.component,
                      place.kind == "name" ? std::string() : place.name, place.error->number,
                      place.error->description, place.id});
  }
  totals.matches += counted;
  totals.matchedLines += matches.hits.size();
  if (matches.matches == 0) return;
  ++totals.filesWithMatches;
  if (!options_.replacement) {
    printer_.SearchFile(matches, options_.style);
    return;
  }
  if (options_.style != SearchStyle::Quiet) printer_.ReplaceFile(matches);
  if (!Changed(scanned)) return;
  ++totals.filesChanged;
  if (options_.style == SearchStyle::Quiet) return;
  if (scanned.after != scanned.before) {
    printer_.Diff({path, DiffOfBytes(path, scanned.before, scanned.after)});
  }
  for (const FileChange& change : scanned.companions)
    ShowChange(change);
}

void ScanDisplay::ShowChange(const FileChange& change) {
  if (change.before == change.after) return;
  const std::string path = ShowPath(change.original);
  printer_.Diff({path, DiffOfBytes(path, change.before, change.after)});
}

}  // namespace cli
