#include "host/scan/scanner.h"

#include <memory>
#include <optional>
#include <vector>

#include "automation/error.h"
#include "host/host_utility.h"
#include "host/scan/dropped_data.h"
#include "host/scan/matcher.h"
#include "host/scan/places.h"
#include "host/scan/replacement.h"
#include "host/scan/scan_request.h"
#include "host/scan/scan_result.h"

namespace host::scan {
namespace {

using automation::Dispatch;
using automation::ObjectRef;

// The mode in which a component object takes writes.
constexpr int32_t kWritingMode = 2;

// The options for procedure texts: only the parts of the code that the scopes ask for.
MatchOptions CodeOptions(const ScanRequest& request) {
  MatchOptions options = request.options;
  options.codeParts = request.CodeParts();
  return options;
}

// A request with its patterns and replacement compiled.
struct CompiledRequest {
  explicit CompiledRequest(const std::string& text)
      : request(ScanRequest::Parse(text)),
        matcher(request.patterns, request.options),
        codeMatcher(request.patterns, CodeOptions(request)) {
    if (request.replacement) replacement.emplace(*request.replacement, matcher);
  }
  CompiledRequest(const CompiledRequest&) = delete;
  CompiledRequest& operator=(const CompiledRequest&) = delete;

  const ScanRequest request;
  Matcher matcher;
  Matcher codeMatcher;  // for procedure texts
  std::optional<Replacement> replacement;
};

// One ScanObject: the walk over the component's places and the result document it fills.
class Walk {
 public:
  Walk(CompiledRequest& compiled, const ObjectRef& component, std::string componentName,
       bool updatable)
      : request_(compiled.request),
        component_(component),
        componentName_(std::move(componentName)),
        updatable_(updatable),
        matcher_(compiled.matcher),
        codeMatcher_(compiled.codeMatcher),
        replacement_(compiled.replacement) {}

  void Run(ComponentScan& result) {
    const PlaceSink sink{
        [this](Place place) { Look(std::move(place)); },
        [this](const automation::Error& error, const std::string& where) { Problem(error, where); },
        [this](std::string_view scope) { return request_.Wants(scope); },
        [this](std::string_view control) { return request_.WantsControl(control); }};
    for (const PlaceKind& kind : PlaceKinds()) {
      if (!kind.scope.empty() && !request_.Wants(kind.scope)) continue;
      if (kind.owner == PlaceOwner::kComponent && request_.control) continue;
      try {
        kind.enumerate(component_, sink);
      } catch (const automation::Error& error) {
        Problem(error, std::string(kind.kind) + "s");
      }
    }
    WriteChanges();
    result.places = std::move(places_);
    result.problems = std::move(problems_);
  }

 private:
  // A place whose text a write would change, and where its entry is in the result.
  struct Change {
    Place place;
    std::size_t entry;
    std::string text;
  };

  void Problem(const automation::Error& error, const std::string& where) {
    ScanError problem = ScanError::Of(error);
    problem.place = where;
    problems_.push_back(std::move(problem));
  }

  // Reads one place once, records its matches and, with a replacement, its new text.
  void Look(Place place) {
    std::string text;
    try {
      text = place.text ? std::move(*place.text) : place.Read();
    } catch (const automation::Error& error) {
      Problem(error, place.name);
      return;
    }
    Matcher& matcher = place.kind == "procedure" ? codeMatcher_ : matcher_;
    std::vector<ScanMatch> matches;
    std::optional<automation::Error> failed;
    try {
      matcher.ForEachLocated(text, [&](const LocatedMatch& located) {
        const std::size_t start = located.column - 1;
        const std::size_t length = located.match.end - located.match.start;
        ScanMatch& match = matches.emplace_back();
        match.line = located.line;
        match.start = start;
        match.end = start + length;
        match.text = text.substr(located.match.start, length);
        if (replacement_) match.replacement = replacement_->Expand(text, located.match);
      });
    } catch (const automation::Error& error) {
      // A pattern that exceeds the matcher's limits on this text: the place is listed with the
      // matches found before and the error, and never written; the other places are searched.
      failed = error;
    }
    if (matches.empty() && !failed) return;

    ScanPlace entry;
    entry.id = componentName_ + "/" + std::string(place.kind) + "/" + place.name;
    entry.kind = place.kind;
    entry.name = place.name;
    if (place.kind != "procedure" && place.kind != "name") {
      entry.control = place.control;
      entry.property = place.property;
    }
    entry.matches = std::move(matches);
    if (failed) entry.error = ScanError::Of(*failed);
    if (replacement_ && !failed) {
      std::string replaced;
      ReplaceAll(matcher, text, *replacement_, replaced);
      if (request_.write && replaced != text && request_.Selects(entry.id)) {
        if (updatable_) {
          changes_.push_back(Change{std::move(place), places_.size(), replaced});
        } else {
          entry.error = ScanError::Of(automation::Error(
              automation::err::kPathFileAccess, "Scanner",
              "The component's file is read-only: it is searched, not replaced."));
        }
      }
      entry.replacement = std::move(replaced);
    }
    entry.text = std::move(text);
    places_.push_back(std::move(entry));
  }

  // Switches the component to writing once, then writes each change; a refused switch is the
  // error of every change, a failed write the error of its own place.
  void WriteChanges() {
    // A read-only place (a user connection's setting) is searched but never written.
    std::erase_if(changes_, [this](const Change& change) {
      if (change.place.writable) return false;
      places_[change.entry].error =
          ScanError::Of(automation::Error(automation::err::kReadOnlyProperty, "Scanner",
                                          "The property " + change.place.property +
                                              " is read-only: it is searched, not replaced."));
      return true;
    });
    if (changes_.empty()) return;
    try {
      Dispatch(component_, "IObject").Call("SetMode", kWritingMode);
    } catch (const automation::Error& error) {
      for (const Change& change : changes_)
        places_[change.entry].error = ScanError::Of(error);
      return;
    }
    for (const Change& change : changes_) {
      ScanPlace& entry = places_[change.entry];
      try {
        const DroppedData dropped;
        change.place.Write(change.text);
        entry.written = true;
        entry.resets = dropped.Said();
      } catch (const automation::Error& error) {
        entry.error = ScanError::Of(error);
      }
    }
  }

  const ScanRequest& request_;
  const ObjectRef& component_;
  const std::string componentName_;
  const bool updatable_;
  Matcher& matcher_;
  Matcher& codeMatcher_;  // for procedure texts
  const std::optional<Replacement>& replacement_;
  std::vector<ScanPlace> places_;
  std::vector<ScanError> problems_;
  std::vector<Change> changes_;
};

// A run hands every component the same request: it is parsed and compiled on its first use only.
std::shared_ptr<CompiledRequest> Compiled(std::string text) {
  thread_local std::string lastText;
  thread_local std::shared_ptr<CompiledRequest> last;
  if (!last || text != lastText) {
    last = std::make_shared<CompiledRequest>(text);
    lastText = std::move(text);
  }
  return last;
}

}  // namespace

const automation::ClassInfo& Scanner::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<Scanner>("Scanner")
          .Method("ScanObject", &Scanner::ScanObject,
                  {"ProjectName", "CollectionName", "ObjectName", "ObjectIsUpdatable", "Object",
                   "ScanBufferName"})
          .Build();
  return info;
}

// The result does not name the project: qx knows which project it hands to the scan.
void Scanner::ScanObject(const std::string& /*projectName*/, const std::string& collectionName,
                         const std::string& objectName, bool objectIsUpdatable,
                         const ObjectRef& object, const std::string& scanBufferName) {
  if (!object) automation::Raise(automation::err::kObjectNotSet, "no object to scan");
  const ObjectRef buffer = HostUtility::Instance()->GetRegisteredObject(scanBufferName);
  if (!buffer) {
    automation::RaiseMessage(
        automation::err::kUserError,
        "No scan buffer is registered under the name \"" + scanBufferName + "\".");
  }
  const Dispatch bufferCalls(buffer);
  const std::shared_ptr<CompiledRequest> request = Compiled(bufferCalls.Get("Request").ToString());

  ComponentScan result;
  result.collection = collectionName;
  result.component = objectName;
  Walk(*request, object, objectName, objectIsUpdatable).Run(result);
  bufferCalls.Call("AddResult", EncodeScan(result));
}

}  // namespace host::scan
