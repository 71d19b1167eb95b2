// qx search and qx replace: every chosen component of every project is handed to the scanner
// through its component object, and what comes back is shown in the files' own lines.
//
// A replace runs the write on a scratch copy of the project first and shows how the copy's files
// changed: that is the preview. --write then writes the project with the places the preview wrote
// and no other (a place the preview showed refused is never sent again), and compares each file
// it wrote with the preview's, so that nothing is written that the preview did not show
// (write_pass.h). Each component's request comes from the run's plan: the options' request for
// search and replace, one decided after a first look at the component for rename. What each
// component gave is shown as scan_display.h says.
//
// Before a project is opened, its code page is taken and its project file surveyed
// (project_survey.h): libraries not registered here are notes, missing component files errors,
// each with its line; every component file is then searched or said not to be.

#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <thread>

#include "automation/casefold.h"
#include "cli/commands.h"
#include "cli/ide_groups.h"
#include "cli/ide_processes.h"
#include "cli/interruption.h"
#include "cli/listing.h"
#include "cli/prefilter.h"
#include "cli/progress.h"
#include "cli/project_files.h"
#include "cli/project_scope.h"
#include "cli/project_survey.h"
#include "cli/review.h"
#include "cli/run_account.h"
#include "cli/scan_agent.h"
#include "cli/scan_buffer.h"
#include "cli/scan_display.h"
#include "cli/scan_results.h"
#include "cli/scanned_file.h"
#include "cli/scratch_copy.h"
#include "cli/session.h"
#include "cli/warm_ides.h"
#include "cli/write_pass.h"
#include "contracts/driver_interfaces.h"
#include "contracts/enumeration.h"
#include "host/run_view.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace cli {
namespace fs = std::filesystem;
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view kDesigners = "Designers";
// How many components of a search wait to be scanned by the IDE's agent in one batch.
constexpr size_t kBatch = 128;

double Since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// One project as a pass over it scanned it: each component whose file the scan changed, with its
// request and the places it wrote, so that a write can do exactly that again.
struct PassResult {
  std::vector<ScannedFile> changed;
};

// What is read of a component before its scan: its file's bytes (by the prefilter, or ahead of a
// batch) and, ahead of a replace's batch, its companions' bytes: the batch writes them all before
// the component's turn comes.
struct ReadAhead {
  std::optional<std::string> bytes;
  std::optional<std::map<fs::path, FileChange>> companions;
};

// A component waiting for its batch to be scanned by the IDE's agent, or one that the prefilter
// passed over behind such, shown in its turn.
struct Queued {
  std::string collection;
  contracts::EnumerationEntry entry;
  const ComponentFile* file = nullptr;
  ReadAhead read;
  bool batched = false;                  // false: scanned on its own in its turn
  std::optional<ScannedFile> unmatched;  // passed over by the prefilter: shown as it is
};

class Run {
 public:
  Run(const SearchOptions& options, Printer& printer, RequestPlan plan, Review* review)
      : options_(options),
        printer_(printer),
        review_(review),
        plan_(std::move(plan)),
        account_(printer),
        totals_(account_.totals()),
        unseenOnly_(options.only.begin(), options.only.end()),
        keep_(Keep(options)),
        warm_(keep_),
        prefiltering_(options.prefilter),
        batches_(options.batch ? BuildRequest(options) : std::string()),
        display_(options, printer, account_, review != nullptr || !options.only.empty()),
        writes_(account_, warm_, batches_, kBatch, buffer_) {}

  int Go() {
    const ProjectDiscovery discovery = FindProjects(options_.paths);
    for (const automation::Error& e : discovery.errors)
      account_.Report({false, "", "", 0, e.Number(), e.Description()});
    totals_.projectsNamed = discovery.projects.size() + discovery.errors.size();
    // A place's id is its component's, procedure's or property's name, which another project of a
    // folder may have too: the places a user chose are one project's.
    if (!options_.only.empty() && discovery.projects.size() > 1) {
      account_.Report({false, "", "", 0, 5,
                       "--only names the places of one project, and " +
                           std::to_string(discovery.projects.size()) +
                           " were found: give the project file of the places"});
      return kExitError;
    }
    Session session;
    ProgressLine progress(printer_, discovery.projects.size());
    progress_ = &progress;
    // A search of many projects opens them in groups, an IDE for many; a replace opens each
    // project's scratch copy, and a quiet search stops at its first match.
    const bool grouped = IdeGroups::Enabled() && discovery.projects.size() > 1 &&
                         !options_.replacement && options_.style != SearchStyle::Quiet;
    IdeGroups groups(warm_);
    for (size_t index = 0; index < discovery.projects.size(); ++index) {
      const fs::path& projectFile = discovery.projects[index];
      if (Stopped()) break;
      progress.Project(ShowPath(projectFile));
      account_.BeginProject(ShowPath(projectFile));
      try {
        if (grouped) {
          groups.Before(discovery.projects, index,
                        [&](const fs::path& project) { return NeedsIde(session, project); });
        }
        Project(session, projectFile);
      } catch (const automation::Error& e) {
        account_.Report({false, account_.project(), "", 0, e.Number(), e.Description()});
      } catch (const fs::filesystem_error& e) {
        account_.Report({false, account_.project(), "", 0, 75, e.what()});
      }
      groups.Done(projectFile);
      if (options_.style == SearchStyle::Quiet && totals_.matches > 0 && !options_.replacement)
        break;
    }
    if (Interrupted() == 0) groups.Finish();
    account_.BeginProject("");
    // A place that --only names and no project had: a mistyped id changes nothing, and says so.
    if (!Stopped()) {
      for (const std::string& id : unseenOnly_)
        account_.Report({false, "", "", 0, 5, "--only: no place \"" + id + "\" has a match"});
    }
    buffer_.Release();
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
    totals_.seconds = Since(start_);
    totals_.replace = options_.replacement.has_value();
    totals_.written = options_.write && !withheld_;
    totals_.idesKept = warm_.Count();
    totals_.keptFor = keep_.idle;
    if (options_.summary) printer_.SearchSummary(totals_, options_.style);
    if (account_.errors() > 0 || totals_.refused > 0) return kExitError;
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

  static KeepSettings Keep(const SearchOptions& options) {
    KeepSettings settings = KeepSettingsFromEnvironment();
    if (options.noKeep) settings.count = 0;
    return settings;
  }

  bool Asked(const std::string& collection) const {
    return std::find(options_.kinds.begin(), options_.kinds.end(), collection) !=
           options_.kinds.end();
  }

  // Whether the run stops before its end: interrupted, or nobody reads its output any more.
  bool Stopped() const { return Interrupted() != 0 || printer_.OutputClosed(); }

  void Project(Session& session, const fs::path& projectFile) {
    // The project's code page before anything of it is read, its file included: the component
    // files are found by the paths it gives them, and a preview that read them in another code
    // page would miss the very files a write then changes.
    session.UseCodePageOf(projectFile.string());
    prefilter_.reset();
    if (prefiltering_)
      prefilter_.emplace(options_, platform::GetCodePage(session.CodePage().number));
    const host::RunView::Scope view;
    const ProjectSurvey survey = SurveyProject(projectFile);
    for (const RunProblem& problem : survey.problems)
      account_.Report(problem);
    totals_.componentsSkipped += survey.missing.size();
    if (!survey.opens) {
      totals_.componentsSkipped += survey.files.size() - survey.missing.size();
      return;
    }
    ++totals_.projects;
    if (!options_.replacement) {
      Pass(session, projectFile, nullptr, survey);
      Unreached(survey);
      return;
    }
    // A replace is done on a scratch copy first: what it changes there is the preview, and a
    // write does exactly the places the preview accepted again on the project.
    const ScratchCopy copy(projectFile, survey.files);
    for (const fs::path& file : survey.viewFiles)
      host::RunView::Current().AddFile(copy.Inside(file).string());
    // What the copy cannot hold is said, and not asked of the IDE: a write there would be a
    // write to the project itself, unseen.
    ProjectSurvey reachable = survey;
    for (const ComponentFile& file : copy.LeftOut()) {
      reachable.missing.insert(FileKey(file.file));
      ++totals_.componentsSkipped;
      account_.Report(
          {false, account_.project(), file.name, file.line, 5,
           ShowPath(file.file) +
               " is not replaced: it (or a file that goes with it) is named by an absolute "
               "path, which the copy of the project that a replace is first made on cannot "
               "hold; name it relative to the project file"});
    }
    FileChange projectChange{projectFile, platform::ReadFile(copy.project().string()), {}};
    const size_t failedBefore = totals_.refused + account_.errors();
    PassResult preview = Pass(session, copy.project(), &copy, reachable);
    Unreached(reachable);
    // Renaming a module or class renames its entry in the project file too.
    projectChange.after = platform::ReadFile(copy.project().string());
    const bool projectChanged = projectChange.before != projectChange.after;
    if (projectChanged) {
      ++totals_.filesChanged;
      if (options_.style != SearchStyle::Quiet) display_.ShowChange(projectChange);
    }
    if (!options_.write || preview.changed.empty() || Interrupted() != 0) return;
    // A change that must be whole (a rename and its references) is not written in part.
    if (options_.whole && totals_.refused + account_.errors() != failedBefore) {
      account_.Report({false, account_.project(), "", 0, 5,
                       "nothing is written: the change cannot be made at every place it needs (the "
                       "errors above)"});
      withheld_ = true;
      return;
    }
    writes_.Write(session, projectFile, preview.changed);
    if (projectChanged) writes_.Compare(projectChange);
  }

  // Whether a search of the project may ask the IDE anything, judged before its turn: nothing
  // when none of its component files can hold a match (or it cannot be opened), else the bytes
  // of its files. A designer is always asked of the IDE; a file that cannot be read may be.
  std::optional<std::uintmax_t> NeedsIde(Session& session, const fs::path& projectFile) {
    session.UseCodePageOf(projectFile.string());
    const host::RunView::Scope view;
    const ProjectSurvey survey = SurveyProject(projectFile);
    if (!survey.opens) return std::nullopt;
    std::optional<Prefilter> prefilter;
    if (prefiltering_)
      prefilter.emplace(options_, platform::GetCodePage(session.CodePage().number));
    std::uintmax_t bytes = 0;
    bool needs = !prefilter;
    for (const ComponentFile& file : survey.files) {
      if (survey.missing.contains(FileKey(file.file))) continue;
      // Once the project needs the IDE, only the sizes of its other files count.
      if (needs || file.collection == kDesigners) {
        std::error_code ec;
        const std::uintmax_t size = fs::file_size(file.file, ec);
        bytes += ec ? 0 : size;
        needs = true;
        continue;
      }
      const std::optional<std::string> read = ReadIfReadable(file.file);
      bytes += read ? read->size() : 0;
      needs = !read || prefilter->CouldMatch(file.collection, file.name, *read);
    }
    if (!needs) return std::nullopt;
    return bytes;
  }

  // Scans the chosen components of the project (or of its scratch copy), showing what each
  // gave; returns the components whose files the scan changed.
  PassResult Pass(Session& session, const fs::path& scanned, const ScratchCopy* copy,
                  const ProjectSurvey& survey) {
    PassResult result;
    WithProject(session, scanned, copy != nullptr ? nullptr : &warm_,
                [&](const automation::ObjectRef& project) {
                  PassOver(project, session, scanned, copy, survey, result);
                });
    batches_.Stop();
    return result;
  }

  // The pass itself, over the project opened: each chosen component is scanned and shown, or
  // queued for its batch.
  void PassOver(const automation::ObjectRef& project, Session& session, const fs::path& scanned,
                const ScratchCopy* copy, const ProjectSurvey& survey, PassResult& result) {
    // The project file names DHTML pages and user connections as designers; only the IDE
    // tells them apart. With a designer among the components the IDE is reached first, so
    // that the listing is its own and a page is searched as a page, its HTML included.
    const std::vector<ComponentFile>& files = survey.files;
    bool reached = false;
    if (std::any_of(files.begin(), files.end(),
                    [](const ComponentFile& file) { return file.collection == kDesigners; })) {
      ReachIde(project);
      reached = true;
    }
    for (const CollectionEnumeration& collection : EnumerateCollections(project)) {
      if (!options_.kinds.empty() && !Asked(collection.name)) continue;
      for (const contracts::EnumerationEntry& entry :
           contracts::ParseEnumeration(collection.text)) {
        if (Stopped()) return;
        if (entry.name.empty() || !ComponentSelected(options_, entry.name)) continue;
        const ComponentFile* file = FileOf(files, collection.name, entry.name);
        // A missing file (or one a scratch copy cannot hold) has been said, with its line;
        // the IDE is not asked for it.
        if (file != nullptr && survey.missing.contains(FileKey(file->file))) continue;
        if (file != nullptr && !done_.insert(FileKey(file->file)).second) continue;
        // A component whose bytes cannot hold a match is searched without the IDE.
        std::optional<std::string> bytes;
        if (file != nullptr && prefilter_) {
          bytes = ReadIfReadable(copy ? copy->Inside(file->file) : file->file);
          if (bytes && !prefilter_->CouldMatch(collection.name, entry.name, *bytes)) {
            ScannedFile unmatched =
                Unmatched(collection.name, entry, *file, std::move(*bytes), session.CodePage());
            // Shown in its turn: after the components waiting for their batch.
            if (!queue_.empty()) {
              queue_.push_back({collection.name, entry, file, {}, false, std::move(unmatched)});
            } else {
              display_.Show(unmatched);
              progress_->ComponentDone();
            }
            continue;
          }
        }
        // Only a failure to reach the IDE is the project's; once it is reached, whatever
        // fails is the component's own.
        if (!reached) {
          const automation::ObjectRef dispatcher = ReachIde(project);
          reached = true;
          if (batches_.Enabled()) {
            queue_.clear();
            handed_ = 0;
            batches_.Start(dispatcher, project, scanned.stem().string());
          }
        }
        ReadAhead read{std::move(bytes), std::nullopt};
        if (batches_.Running()) {
          const bool batched = !options_.replacement || ReadBefore(file, copy, read);
          queue_.push_back({collection.name, entry, file, std::move(read), batched, {}});
          // The agent gets components half a batch at a time, and a batch waits to be shown,
          // so that it always has some to scan ahead while qx shows what it found.
          if (queue_.size() - handed_ >= kBatch / 2) Hand();
          if (queue_.size() >= kBatch)
            ShowQueued(kBatch / 2, project, scanned, copy, session.CodePage(), result);
          continue;
        }
        ScanComponent(project, scanned, collection.name, entry, file, copy, session.CodePage(),
                      std::move(read), result);
      }
    }
    Flush(project, scanned, copy, session.CodePage(), result);
    batches_.Stop();  // let go before the project's IDE is let go
  }

  // One component scanned and shown; what fails is the component's.
  void ScanComponent(const automation::ObjectRef& project, const fs::path& scanned,
                     const std::string& collection, const contracts::EnumerationEntry& entry,
                     const ComponentFile* file, const ScratchCopy* copy,
                     const platform::ProjectCodePage& codePage, ReadAhead read,
                     PassResult& result) {
    try {
      if (std::optional<ScannedFile> changed = Component(project, scanned, collection, entry, file,
                                                         copy, codePage, std::move(read))) {
        result.changed.push_back(std::move(*changed));
      }
      progress_->ComponentDone();
    } catch (const automation::Error& e) {
      account_.ComponentFailed(entry.name, file != nullptr ? file->line : 0, e);
    }
  }

  // Hands the agent the components queued since it was last handed some, to scan before their
  // turn comes.
  void Hand() {
    std::vector<ScanBatches::Item> items;
    for (size_t i = handed_; i < queue_.size(); ++i) {
      if (queue_[i].batched)
        items.push_back({queue_[i].collection, queue_[i].entry.name, queue_[i].entry.writable});
    }
    handed_ = queue_.size();
    batches_.Scan(items);
  }

  // Shows the queued components in their turn, oldest first, until `keep` are left, as a scan on
  // its own would show each (Component takes the agent's outcome for it).
  void ShowQueued(size_t keep, const automation::ObjectRef& project, const fs::path& scanned,
                  const ScratchCopy* copy, const platform::ProjectCodePage& codePage,
                  PassResult& result) {
    while (queue_.size() > keep) {
      if (Stopped()) {
        queue_.clear();
        handed_ = 0;
        return;
      }
      Queued queued = std::move(queue_.front());
      queue_.pop_front();
      handed_ -= std::min<size_t>(handed_, 1);
      if (queued.unmatched) {
        display_.Show(*queued.unmatched);
        progress_->ComponentDone();
        continue;
      }
      ScanComponent(project, scanned, queued.collection, queued.entry, queued.file, copy, codePage,
                    std::move(queued.read), result);
    }
  }

  // Shows every component still queued; what the agent found and nobody took is forgotten.
  void Flush(const automation::ObjectRef& project, const fs::path& scanned, const ScratchCopy* copy,
             const platform::ProjectCodePage& codePage, PassResult& result) {
    Hand();
    ShowQueued(0, project, scanned, copy, codePage, result);
    batches_.Forget();
  }

  // Every component file of the project is searched, or has been said not to be: one that the
  // listing did not bring (a file without a name, one that cannot be read) is said here.
  void Unreached(const ProjectSurvey& survey) {
    // A run that stopped early has left the rest unsearched on purpose.
    if (Stopped()) return;
    for (const ComponentFile& file : survey.files) {
      const std::string key = FileKey(file.file);
      if (done_.contains(key) || survey.missing.contains(key)) continue;
      if (!options_.kinds.empty() && (!Asked(file.collection) || file.collection == kDesigners))
        continue;
      if (!file.name.empty() ? !ComponentSelected(options_, file.name)
                             : !options_.componentGlob.empty()) {
        continue;
      }
      done_.insert(key);
      ++totals_.componentsSkipped;
      std::string why;
      try {
        platform::ReadFile(file.file.string());
        why = file.name.empty() ? "it names no component (it has no Attribute VB_Name line)"
                                : "the project's listing does not name it";
      } catch (const automation::Error& e) {
        why = e.Description();
      }
      account_.Report({false, account_.project(), file.name, file.line, 321,
                       ShowPath(file.file) + " not searched: " + why});
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

  // Reads the companions of a component file into one side of their changes.
  static void ReadCompanions(const fs::path& onDisk, const ScratchCopy* copy,
                             std::map<fs::path, FileChange>& companions,
                             std::optional<std::string> FileChange::*side) {
    for (const CompanionFile& companion : CompanionFiles(onDisk)) {
      FileChange& change = companions[companion.file];
      change.original = copy ? copy->Outside(companion.file) : companion.file;
      change.*side = platform::ReadFile(companion.file.string());
    }
  }

  // Reads what a replace's batch would change before the component's turn: its file and its
  // companions. False when they cannot be read: the component is then scanned on its own, which
  // says why.
  static bool ReadBefore(const ComponentFile* file, const ScratchCopy* copy, ReadAhead& read) {
    if (file == nullptr) return false;
    const fs::path onDisk = copy ? copy->Inside(file->file) : file->file;
    if (!read.bytes) read.bytes = ReadIfReadable(onDisk);
    if (!read.bytes) return false;
    try {
      std::map<fs::path, FileChange> companions;
      ReadCompanions(onDisk, copy, companions, &FileChange::before);
      read.companions = std::move(companions);
      return true;
    } catch (const automation::Error&) {
      return false;
    } catch (const fs::filesystem_error&) {
      return false;
    }
  }

  // A component whose file the prefilter showed to hold no match, as its scan would have given it.
  static ScannedFile Unmatched(const std::string& collection,
                               const contracts::EnumerationEntry& entry, const ComponentFile& file,
                               std::string bytes, const platform::ProjectCodePage& codePage) {
    ScannedFile scanned;
    scanned.original = file.file;
    scanned.line = file.line;
    scanned.before = std::move(bytes);
    scanned.after = scanned.before;
    scanned.codePage = codePage;
    scanned.collection = collection;
    scanned.entry = entry;
    scanned.scan.collection = collection;
    scanned.scan.component = entry.name;
    return scanned;
  }

  // Scans one component and shows what it gave. A replace on a scratch copy returns the
  // component when the scan changed its files, with what a write must do again. `read` holds
  // what has been read of the component already.
  std::optional<ScannedFile> Component(const automation::ObjectRef& project,
                                       const fs::path& projectFile, const std::string& collection,
                                       const contracts::EnumerationEntry& entry,
                                       const ComponentFile* file, const ScratchCopy* copy,
                                       const platform::ProjectCodePage& codePage, ReadAhead read) {
    const Clock::time_point started = Clock::now();
    ScannedFile scanned;
    scanned.codePage = codePage;
    scanned.collection = collection;
    scanned.entry = entry;
    fs::path onDisk;
    // A search reads the file only to place what it found there.
    bool unread = file != nullptr && !read.bytes && !options_.replacement;
    if (file != nullptr) {
      scanned.original = file->file;
      scanned.line = file->line;
      onDisk = copy ? copy->Inside(file->file) : file->file;
      if (read.bytes) {
        scanned.before = std::move(*read.bytes);
      } else if (options_.replacement) {
        scanned.before = platform::ReadFile(onDisk.string());
      }
    }
    // The component object, made when a scan needs it: one the agent scanned needs none.
    automation::ObjectRef object;
    const auto objectOf = [&]() -> const automation::ObjectRef& {
      if (!object) {
        object = contracts::ICollection(contracts::IProject(project).GetCollection(collection))
                     .GetObject(entry.name);
      }
      return object;
    };
    const Look look = [&](const std::string& request) {
      if (auto scans = batches_.Take(collection, entry.name, request)) return std::move(*scans);
      return buffer_.Scan(objectOf(), projectFile.stem().string(), entry.name, entry.writable,
                          request);
    };
    const std::optional<std::string> request = plan_(look);
    if (!request) return std::nullopt;
    scanned.request = *request;
    // A replace may change the companions too (a long caption, a list item, a page's HTML),
    // or make one (a caption that grows too long for its line).
    const bool replacing = file != nullptr && options_.replacement;
    std::map<fs::path, FileChange> companions;
    if (replacing && read.companions) {
      companions = std::move(*read.companions);
    } else if (replacing) {
      ReadCompanions(onDisk, copy, companions, &FileChange::before);
    }
    std::optional<ScannedFile> changed;
    for (ComponentScan& scan : look(*request)) {
      scanned.scan = std::move(scan);
      for (const ScanPlace& place : scanned.scan.places)
        unseenOnly_.erase(place.id);
      if (unread && scanned.scan.places.empty()) {
        std::error_code ignored;
        scanned.unread = fs::file_size(onDisk, ignored);
        if (ignored) scanned.unread = 0;
      } else if (unread) {
        scanned.before = platform::ReadFile(onDisk.string());
        scanned.unread.reset();
        unread = false;
      }
      scanned.after = replacing ? platform::ReadFile(onDisk.string()) : scanned.before;
      if (replacing) {
        ReadCompanions(onDisk, copy, companions, &FileChange::after);
        scanned.companions.clear();
        for (auto& [path, change] : companions)
          scanned.companions.push_back(change);
        // A refused write can leave its mark (the driver's undo of a procedure text keeps one
        // more empty line), and a place the user declined has been written too: the preview is
        // made again with the accepted places alone, so that it shows what a write, which never
        // sends the others, does.
        const bool refused = Refused(scanned.scan);
        const bool declined = copy != nullptr && review_ != nullptr && Ask(scanned);
        if (copy != nullptr && (refused || declined) && Changed(scanned)) {
          Redo(objectOf(), projectFile, entry, onDisk, scanned, companions);
        }
        scanned.accepted = Accepted(scanned.scan);
      }
      scanned.seconds = Since(started);
      if (copy != nullptr) NoteResets(scanned);
      display_.Show(scanned);
      if (copy != nullptr && Changed(scanned)) changed = scanned;
    }
    return changed;
  }

  // Asks about each place the preview wrote; a declined place is no longer written. True when
  // one was declined.
  bool Ask(ScannedFile& scanned) {
    bool declined = false;
    const std::string path = ShowPath(scanned.original);
    for (ScanPlace& place : scanned.scan.places) {
      if (!place.written) continue;
      progress_->Clear();
      std::string where = scanned.scan.component;
      if (place.kind == "procedure") {
        where += "." + place.name;
      } else if (place.kind != "name") {
        where += (place.control.empty() ? "" : "." + place.control) + "." + place.property;
      }
      if (review_->Accept(path, where, place.text, place.replacement.value_or(place.text)))
        continue;
      place.written = false;
      declined = true;
    }
    return declined;
  }

  static bool Refused(const ComponentScan& scan) {
    return std::any_of(scan.places.begin(), scan.places.end(),
                       [](const ScanPlace& place) { return place.error.has_value(); });
  }

  // Puts the copy's files of the component back as they were and scans it again, writing only
  // the places the first scan wrote; the refusals stay those of the first scan.
  void Redo(const automation::ObjectRef& object, const fs::path& projectFile,
            const contracts::EnumerationEntry& entry, const fs::path& onDisk, ScannedFile& scanned,
            std::map<fs::path, FileChange>& companions) {
    platform::WriteFileAtomic(onDisk.string(), scanned.before);
    for (auto& [path, change] : companions) {
      if (change.before) {
        platform::WriteFileAtomic(path.string(), *change.before);
      } else {
        std::error_code ignored;
        fs::remove(path, ignored);
      }
    }
    const std::vector<std::string> accepted = Accepted(scanned.scan);
    if (!accepted.empty()) {
      for (const ComponentScan& again :
           buffer_.Scan(object, projectFile.stem().string(), entry.name, entry.writable,
                        OnlyThese(scanned.request, accepted))) {
        // What the second scan wrote is what the first wrote.
        for (ScanPlace& place : scanned.scan.places) {
          place.written = std::any_of(
              again.places.begin(), again.places.end(),
              [&](const ScanPlace& other) { return other.id == place.id && other.written; });
        }
      }
    }
    scanned.after = platform::ReadFile(onDisk.string());
    scanned.companions.clear();
    for (auto& [path, change] : companions) {
      change.after = platform::FileExists(path.string())
                         ? std::optional(platform::ReadFile(path.string()))
                         : std::nullopt;
      scanned.companions.push_back(change);
    }
  }

  // Each list whose items the preview rewrote, with the ItemData that this drops, as the IDE
  // said before it wrote the list.
  void NoteResets(const ScannedFile& scanned) {
    for (const ScanPlace& place : scanned.scan.places) {
      if (!place.written || place.resets.empty()) continue;
      totals_.resets.push_back(scanned.scan.component + "." + place.control + ": " + place.resets);
      printer_.Reset({ShowPath(scanned.original), scanned.scan.component, place.control, place.id,
                      place.resets});
    }
  }

  // The file's bytes, or none when it cannot be read: the scan then says why.
  static std::optional<std::string> ReadIfReadable(const fs::path& file) {
    try {
      return platform::ReadFile(file.string());
    } catch (const automation::Error&) {
      return std::nullopt;
    }
  }

  const SearchOptions& options_;
  Printer& printer_;
  Review* const review_;  // qx replace --interactive: asks about each place
  const RequestPlan plan_;
  RunAccount account_;  // the run's totals and problems
  SearchTotals& totals_;
  std::set<std::string> unseenOnly_;  // the --only places no scan has shown yet
  const KeepSettings keep_;
  WarmIdes warm_;  // the IDEs this run started and keeps
  const bool prefiltering_;
  std::optional<Prefilter> prefilter_;  // the project's, when the run prefilters
  // A search's batches, and the components waiting for theirs.
  ScanBatches batches_;
  std::deque<Queued> queue_;
  size_t handed_ = 0;  // how many of the queue's first components the agent has been handed
  // The run's scan buffer, let go before the session ends.
  RunBuffer buffer_;
  ScanDisplay display_;
  WritePass writes_;
  const Clock::time_point start_ = Clock::now();
  std::set<std::string> done_;  // component files already searched in this run
  ProgressLine* progress_ = nullptr;
  bool withheld_ = false;  // a write that had to be whole was not made
};

}  // namespace

int RunScans(const SearchOptions& options, const RequestPlan& plan, Printer& printer,
             Review* review) {
  try {
    return Run(options, printer, plan, review).Go();
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
  options.prefilter = Prefilter::Enabled();
  options.batch = ScanAgentView::Enabled();
  const auto plan = [&request](const Look&) { return request; };
  if (!options.interactive) return RunScans(options, plan, printer);
  Review review(std::cin, std::cout);
  return RunScans(options, plan, printer, &review);
}

}  // namespace cli
