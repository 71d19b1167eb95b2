// qx search and qx replace: every chosen component of every project is handed to the scanner
// through its component object, and what comes back is shown in the files' own lines.
//
// A replace without --write runs the very same write on a scratch copy of the project and shows
// how the copy's files changed, so the preview is exactly what --write would do. Each component's
// request comes from the run's plan: the options' request for search and replace, one decided
// after a first look at the component for rename.

#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <thread>

#include "automation/casefold.h"
#include "cli/commands.h"
#include "cli/ide_processes.h"
#include "cli/interruption.h"
#include "cli/listing.h"
#include "cli/progress.h"
#include "cli/project_files.h"
#include "cli/scan_buffer.h"
#include "cli/scan_results.h"
#include "cli/scratch_copy.h"
#include "cli/session.h"
#include "cli/unified_diff.h"
#include "cli/warm_ides.h"
#include "contracts/component_kinds.h"
#include "contracts/driver_interfaces.h"
#include "contracts/enumeration.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "project/dispatcher.h"

namespace cli {
namespace fs = std::filesystem;
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view kDesigners = "Designers";

double Since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// A file's bytes before and after a write; none when it is not there.
struct FileChange {
  fs::path original;  // the file as the user knows it (outside any scratch copy)
  std::optional<std::string> before;
  std::optional<std::string> after;
};

// One component file scanned: its bytes before and after, and what the scanner found.
struct ScannedFile {
  fs::path original;  // the file as the user knows it (outside any scratch copy)
  std::string before;
  std::string after;                   // after a write; equal to before otherwise
  std::vector<FileChange> companions;  // of a replace: each companion's bytes
  ComponentScan scan;
  double seconds = 0;
  platform::ProjectCodePage codePage;
};

class Run {
 public:
  Run(const SearchOptions& options, Printer& printer, RequestPlan plan)
      : options_(options),
        printer_(printer),
        plan_(std::move(plan)),
        keep_(Keep(options)),
        warm_(keep_) {}

  int Go() {
    const ProjectDiscovery discovery = FindProjects(options_.paths);
    for (const automation::Error& e : discovery.errors)
      Fail(e);
    Session session;
    ProgressLine progress(printer_, discovery.projects.size());
    progress_ = &progress;
    for (const fs::path& projectFile : discovery.projects) {
      if (Interrupted() != 0 || printer_.OutputClosed()) break;
      progress.Project(ShowPath(projectFile));
      try {
        Project(session, projectFile);
      } catch (const automation::Error& e) {
        // Ending the run's IDEs makes the call in flight fail: that is no error of the project.
        if (Interrupted() == 0) Fail(e);
      } catch (const fs::filesystem_error& e) {
        Fail(automation::Error(75, "qx", e.what()));
      }
      if (options_.style == SearchStyle::Quiet && totals_.matches > 0 && !options_.replacement)
        break;
    }
    registration_.reset();
    buffer_.reset();
    progress.Clear();
    progress_ = nullptr;
    if (const int signal = Interrupted(); signal != 0) {
      ForgetEndedIdes();
      return 128 + signal;
    }
    // Nobody reads any more: nothing more to say.
    if (printer_.OutputClosed()) return totals_.matches > 0 ? kExitMatch : kExitNoMatch;
    for (const Problem& problem : session.Problems())
      printer_.Problem(problem);
    NoticeSkipped();
    totals_.seconds = Since(start_);
    totals_.replace = options_.replacement.has_value();
    totals_.written = options_.write;
    totals_.idesKept = warm_.Count();
    totals_.keptFor = keep_.idle;
    printer_.SearchSummary(totals_, options_.style);
    if (error_ || totals_.refused > 0) return kExitError;
    return totals_.matches > 0 ? kExitMatch : kExitNoMatch;
  }

 private:
  // After an interruption: waits for the IDEs that the run started to end (the watch ends
  // them), collects their exit, and has the registered-object table drop what they left in the
  // run folder, so nothing of this run stays behind.
  static void ForgetEndedIdes() {
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (!ChildProcesses().empty() && Clock::now() < deadline)
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    while (::waitpid(-1, nullptr, WNOHANG) > 0) {
    }
    try {
      RunningIdes();
    } catch (...) {
      // Only a clean-up: the next run of qx drops what is left.
    }
  }

  // Without --kind, the kinds whose components the driver cannot open yet are left out, and said
  // once; named with --kind, each of their components is an error of its own.
  static bool Openable(const std::string& collection) {
    for (const auto& kind : contracts::kComponentKinds) {
      if (kind.collection == collection) return project::CanBuildComponents(kind.factory);
    }
    return false;
  }

  static KeepSettings Keep(const SearchOptions& options) {
    KeepSettings settings = KeepSettingsFromEnvironment();
    if (options.noKeep) settings.count = 0;
    return settings;
  }

  void NoticeSkipped() {
    size_t total = 0;
    std::string kinds;
    for (const auto& [collection, count] : skipped_) {
      total += count;
      kinds += (kinds.empty() ? "" : ", ") + collection + " (" + std::to_string(count) + ")";
    }
    if (total == 0) return;
    printer_.Notice(std::to_string(total) + (total == 1 ? " component" : " components") +
                    " not searched, of kinds qx cannot open yet: " + kinds);
  }

  void Fail(const automation::Error& e) {
    printer_.Error(e);
    error_ = true;
  }

  void Project(Session& session, const fs::path& projectFile) {
    const std::vector<ComponentFile> files = ReadComponentFiles(projectFile);
    const bool preview = options_.replacement && !options_.write;
    std::unique_ptr<ScratchCopy> copy;
    if (preview) copy = std::make_unique<ScratchCopy>(projectFile, files);
    const fs::path scanned = copy ? copy->project() : projectFile;

    // An IDE that this run starts for the project is kept warm when the project is done, within
    // the run's count and budget (WarmIdes), or ended at once for a scratch copy (before the
    // copy goes); one that was running before the run is left running.
    struct EndStartedIde {
      std::string project;
      bool wasRunning;
      WarmIdes* warm;  // null: end it
      ~EndStartedIde() {
        if (wasRunning) return;
        try {
          if (warm != nullptr) {
            warm->Done(project);
          } else {
            StopIdesOf(project);
          }
        } catch (...) {
          // An IDE that will not end ends by itself once idle; the results are in.
        }
      }
    } endStartedIde{scanned.string(), AnyHasOpen(scanned.string()), copy ? nullptr : &warm_};

    const automation::ObjectRef project = session.OpenProject(scanned.string());
    struct Deactivate {
      const automation::ObjectRef& project;
      ~Deactivate() {
        try {
          contracts::IProject(project).Deactivate();
        } catch (...) {
          // Deactivating only drops the link to the IDE; the results are in.
        }
      }
    } deactivate{project};

    // The project file names DHTML pages and user connections as designers; only the IDE tells
    // them apart. With a designer among the components the IDE is reached first, so that the
    // listing is its own and a page is searched as a page, its HTML included.
    if (std::any_of(files.begin(), files.end(),
                    [](const ComponentFile& file) { return file.collection == kDesigners; })) {
      automation::Dispatch(project).Get("Dispatcher");
    }
    bool reached = false;
    const platform::ProjectCodePage codePage = session.CodePage();
    for (const CollectionEnumeration& collection : EnumerateCollections(project)) {
      const bool asked = std::find(options_.kinds.begin(), options_.kinds.end(), collection.name) !=
                         options_.kinds.end();
      if (!options_.kinds.empty() && !asked) continue;
      const bool skip = !asked && !Openable(collection.name);
      for (const contracts::EnumerationEntry& entry :
           contracts::ParseEnumeration(collection.text)) {
        if (Interrupted() != 0 || printer_.OutputClosed()) return;
        if (entry.name.empty() || !ComponentSelected(options_, entry.name)) continue;
        const ComponentFile* file = FileOf(files, collection.name, entry.name);
        if (skip) {
          if (file == nullptr || skippedFiles_.insert(FileKey(file->file)).second)
            ++skipped_[collection.name];
          continue;
        }
        if (file != nullptr && !done_.insert(FileKey(file->file)).second) continue;
        try {
          Component(project, scanned, collection.name, entry, file, copy.get(), codePage);
          reached = true;
          progress_->ComponentDone();
        } catch (const automation::Error& e) {
          // Without a first component, the IDE is out of reach: once said is enough.
          if (!reached) throw;
          Fail(automation::Error(e.Number(), e.Source(),
                                 collection.name + " " + entry.name + ": " + e.Description()));
        }
      }
    }
    // The IDE saves without waiting for the disk; the project's writes reach it here, at once.
    if (options_.write && reached) {
      try {
        platform::FlushFileSystem(projectFile.string());
      } catch (const automation::Error& e) {
        Fail(e);
      }
    }
  }

  static const ComponentFile* FileOf(const std::vector<ComponentFile>& files,
                                     const std::string& collection, const std::string& name) {
    // A designer's file serves the kinds the IDE makes of designers.
    const bool designer = collection == "DHTMLPages" || collection == "UserConnections";
    for (const ComponentFile& file : files) {
      if ((file.collection == collection || (designer && file.collection == kDesigners)) &&
          automation::EqualsAsciiNoCase(file.name, name)) {
        return &file;
      }
    }
    return nullptr;
  }

  void Component(const automation::ObjectRef& project, const fs::path& projectFile,
                 const std::string& collection, const contracts::EnumerationEntry& entry,
                 const ComponentFile* file, const ScratchCopy* copy,
                 const platform::ProjectCodePage& codePage) {
    const Clock::time_point started = Clock::now();
    ScannedFile scanned;
    scanned.codePage = codePage;
    fs::path onDisk;
    if (file != nullptr) {
      scanned.original = file->file;
      onDisk = copy ? copy->Inside(file->file) : file->file;
      scanned.before = platform::ReadFile(onDisk.string());
    }
    const automation::ObjectRef object =
        contracts::ICollection(contracts::IProject(project).GetCollection(collection))
            .GetObject(entry.name);
    const Look look = [&](const std::string& request) {
      return Scan(object, projectFile, entry, request);
    };
    const std::optional<std::string> request = plan_(look);
    if (!request) return;
    // A replace may change the companions too (a long caption, a list item, a page's HTML),
    // or make one (a caption that grows too long for its line).
    const bool replacing = file != nullptr && options_.replacement;
    std::map<fs::path, FileChange> companions;
    const auto readCompanions = [&](std::optional<std::string> FileChange::*side) {
      for (const CompanionFile& companion : CompanionFiles(onDisk)) {
        FileChange& change = companions[companion.file];
        change.original = copy ? copy->Outside(companion.file) : companion.file;
        change.*side = platform::ReadFile(companion.file.string());
      }
    };
    if (replacing) readCompanions(&FileChange::before);
    for (ComponentScan& scan : Scan(object, projectFile, entry, *request)) {
      scanned.scan = std::move(scan);
      scanned.after = replacing ? platform::ReadFile(onDisk.string()) : scanned.before;
      if (replacing) {
        readCompanions(&FileChange::after);
        for (auto& [path, change] : companions)
          scanned.companions.push_back(std::move(change));
      }
      scanned.seconds = Since(started);
      Show(scanned);
    }
  }

  // Hands the component to the scanner with the request and gives back what it found.
  std::vector<ComponentScan> Scan(const automation::ObjectRef& object, const fs::path& projectFile,
                                  const contracts::EnumerationEntry& entry,
                                  const std::string& request) {
    // One buffer, registered once, carries the requests to every component of the run.
    if (!registration_) {
      buffer_.emplace();
      registration_.emplace(*buffer_);
    }
    if (request != request_) {
      buffer_->SetRequest(request);
      request_ = request;
    }
    buffer_->Clear();
    contracts::IObject(object).Scan(projectFile.stem().string(), entry.name, entry.writable,
                                    registration_->name());
    const std::string results = buffer_->Results();
    buffer_->Clear();
    return ParseScanResults(results);
  }

  void Show(const ScannedFile& scanned) {
    const ComponentScan& scan = scanned.scan;
    const std::string path = scanned.original.empty() ? scan.collection + "/" + scan.component
                                                      : ShowPath(scanned.original);
    for (const ScanError& problem : scan.problems)
      printer_.Problem({problem.number, scan.component + ": " + problem.description});
    const std::vector<FileLine> lines = SplitFileLines(scanned.before);
    const std::vector<std::vector<FilePlace>> places = MapToFile(lines, scan.places);

    ++totals_.files;
    totals_.bytes += scanned.before.size();
    FileMatches matches;
    matches.path = path;
    matches.bytes = scanned.before.size();
    matches.seconds = scanned.seconds;
    matches.codePage = scanned.codePage;
    for (size_t p = 0; p < scan.places.size(); ++p) {
      const ScanPlace& place = scan.places[p];
      const std::string procedure = place.kind == "name" ? std::string() : place.name;
      for (size_t m = 0; m < place.matches.size(); ++m) {
        const FilePlace& at = places[p][m];
        const ScanMatch& match = place.matches[m];
        ++matches.matches;
        SearchHit* hit = matches.hits.empty() ? nullptr : &matches.hits.back();
        if (hit == nullptr || hit->line != at.line || hit->procedure != procedure ||
            (at.line == 0 && match.line != place.matches[m - 1].line)) {
          SearchHit fresh;
          fresh.collection = scan.collection;
          fresh.component = scan.component;
          fresh.procedure = procedure;
          fresh.control = place.control;
          fresh.property = place.property;
          fresh.line = at.line;
          if (at.line != 0) {
            fresh.text = lines[at.line - 1].text;
            fresh.lineEnd = lines[at.line - 1].end;
            fresh.offset = lines[at.line - 1].offset;
          } else if (const auto text = TextLines(place.text); match.line <= text.size()) {
            fresh.text = place.kind == "name" ? place.text : std::string(text[match.line - 1]);
          }
          matches.hits.push_back(std::move(fresh));
          hit = &matches.hits.back();
        }
        hit->submatches.push_back({at.start, at.end, match.text});
      }
      if (place.error) {
        ++totals_.refused;
        printer_.Refused({path, place.matches.empty() ? 0 : places[p][0].line, scan.collection,
                          scan.component, procedure, place.error->number,
                          place.error->description});
      }
    }
    totals_.matches += matches.matches;
    totals_.matchedLines += matches.hits.size();
    if (matches.matches == 0) return;
    ++totals_.filesWithMatches;
    if (!options_.replacement) {
      printer_.SearchFile(matches, options_.style);
      return;
    }
    const bool companionChanged =
        std::any_of(scanned.companions.begin(), scanned.companions.end(),
                    [](const FileChange& change) { return change.before != change.after; });
    if (scanned.after == scanned.before && !companionChanged) return;
    ++totals_.filesChanged;
    if (options_.style == SearchStyle::Quiet) return;
    if (scanned.after != scanned.before) {
      printer_.Diff({path, UnifiedDiff(path, DiffLines(scanned.before), DiffLines(scanned.after))});
    }
    for (const FileChange& change : scanned.companions)
      ShowCompanion(change);
  }

  static std::vector<DiffLine> DiffLines(const std::string& bytes) {
    std::vector<DiffLine> out;
    for (FileLine& line : SplitFileLines(bytes))
      out.push_back({std::move(line.text), std::move(line.end)});
    return out;
  }

  // A companion that changed: a text file (a page's HTML) as a unified diff, a binary one (a
  // NUL among its first bytes, as diff decides) in diff's words.
  void ShowCompanion(const FileChange& change) {
    if (change.before == change.after) return;
    const std::string path = ShowPath(change.original);
    const auto binary = [](const std::optional<std::string>& bytes) {
      return bytes && std::string_view(*bytes).substr(0, 8000).find('\0') != std::string::npos;
    };
    if (!binary(change.before) && !binary(change.after)) {
      printer_.Diff({path, UnifiedDiff(path, DiffLines(change.before.value_or("")),
                                       DiffLines(change.after.value_or("")))});
      return;
    }
    printer_.Diff({path, "Binary files " + (change.before ? "a/" + path : "/dev/null") + " and " +
                             (change.after ? "b/" + path : "/dev/null") + " differ\n"});
  }

  const SearchOptions& options_;
  Printer& printer_;
  const RequestPlan plan_;
  const KeepSettings keep_;
  WarmIdes warm_;        // the IDEs this run started and keeps
  std::string request_;  // the request the buffer holds
  // The run's scan buffer, made on first use (the session registers its class) and let go
  // before the session ends.
  std::optional<ScanBufferView> buffer_;
  std::optional<RegisteredBuffer> registration_;
  const Clock::time_point start_ = Clock::now();
  std::set<std::string> done_;  // component files already searched in this run
  std::set<std::string> skippedFiles_;
  std::map<std::string, size_t> skipped_;  // components left out, by collection
  ProgressLine* progress_ = nullptr;
  SearchTotals totals_;
  bool error_ = false;
};

}  // namespace

int RunScans(const SearchOptions& options, const RequestPlan& plan, Printer& printer) {
  try {
    return Run(options, printer, plan).Go();
  } catch (const automation::Error& e) {
    printer.Error(e);
    return kExitError;
  }
}

int RunSearch(SearchOptions& options, Printer& printer) {
  try {
    ValidateSearchOptions(options);
  } catch (const automation::Error& e) {
    printer.Error(e);
    return kExitError;
  }
  const std::string request = BuildRequest(options);
  return RunScans(
      options, [&request](const Look&) { return request; }, printer);
}

}  // namespace cli
