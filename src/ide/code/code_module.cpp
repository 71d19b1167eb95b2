#include "ide/code/code_module.h"

#include <algorithm>
#include <utility>

#include "automation/casefold.h"
#include "automation/error.h"
#include "ide/text/attribute_line.h"
#include "ide/text/source_text.h"
#include "platform/lines.h"
#include "platform/text.h"

namespace ide {
namespace {

using automation::Raise;
namespace err = automation::err;

// VB6 raises 35 for a procedure it cannot find.
constexpr int32_t kProcNotDefined = 35;

using platform::IsBlank;

void CheckKind(ProcKind kind) {
  auto k = static_cast<int32_t>(kind);
  if (k < 0 || k > 3) Raise(err::kInvalidCall, "unknown procedure kind " + std::to_string(k));
}

// Whether a line declares the member: the name appears in it as a whole word.
bool MentionsWord(std::string_view line, std::string_view word) {
  std::string folded = automation::VbNameKey(line);
  std::string key = automation::VbNameKey(word);
  for (std::size_t pos = folded.find(key); pos != std::string::npos;
       pos = folded.find(key, pos + 1)) {
    bool before = pos == 0 || !IsIdentChar(folded[pos - 1]);
    std::size_t after = pos + key.size();
    if (before && (after == folded.size() || !IsIdentChar(folded[after]))) return true;
  }
  return false;
}

// One statement, one blank line or one comment with the lines it continues onto, starting at
// line i of the lines [0, limit) that factsAt and textAt give.
struct Piece {
  int32_t last = 0;     // its last line
  bool code = false;    // a statement, not a blank line or a comment
  bool runsOn = false;  // still continued on line limit - 1
  Statement st;         // what the statement does to the procedure structure
};

template <class FactsAt, class TextAt>
Piece ReadPiece(int32_t i, int32_t limit, const FactsAt& factsAt, const TextAt& textAt,
                std::string& joined) {
  Piece piece;
  piece.last = i;
  const LineFacts first = factsAt(i);
  if (first.blank) return piece;
  if (first.comment) {
    bool goesOn = first.continues;
    while (goesOn && piece.last + 1 < limit)
      goesOn = factsAt(++piece.last).commentGoesOn;
    piece.runsOn = goesOn;
    return piece;
  }
  piece.code = true;
  bool continues = first.continues;
  bool inComment = first.endsInComment;
  while (continues && piece.last + 1 < limit) {
    const LineFacts next = factsAt(++piece.last);
    if (inComment) {
      continues = next.commentGoesOn;
    } else {
      continues = next.continues;
      inComment = next.endsInComment;
    }
  }
  piece.runsOn = continues;
  // What the statement does: known from its line when it has one line, except a heading's
  // name, which is read again (one line per procedure).
  Statement& st = piece.st;
  switch (first.Role()) {
    case LineRole::kOther:
      break;
    case LineRole::kContinued:
      joined.clear();
      for (int32_t k = i; k <= piece.last; ++k)
        AppendContinued(joined, textAt(k), k < piece.last);
      st = ParseStatement(joined);
      break;
    case LineRole::kHeading:
    case LineRole::kHeadingClosed:
      st = ParseStatement(textAt(i));
      break;
    case LineRole::kEnd:
      st.type = Statement::Type::kEnd;
      break;
    case LineRole::kIf:
      st.type = Statement::Type::kIf;
      break;
    case LineRole::kElse:
      st.type = Statement::Type::kElse;
      break;
    case LineRole::kEndIf:
      st.type = Statement::Type::kEndIf;
      break;
  }
  return piece;
}

}  // namespace

std::size_t CodeModule::ProcKeyHash::operator()(const ProcKey& key) const {
  // The name folded as VB compares names, then the kind.
  return std::hash<std::string>{}(automation::VbNameKey(key.name)) ^
         static_cast<std::size_t>(key.kind);
}

bool CodeModule::ProcKeyEqual::operator()(const ProcKey& a, const ProcKey& b) const {
  return a.kind == b.kind && automation::SameVbName(a.name, b.name);
}

CodeModule::CodeModule() = default;
CodeModule::~CodeModule() = default;

void CodeModule::ReserveLines(std::size_t count) {
  lines_.reserve(count);
  facts_.reserve(count);
}

void CodeModule::AppendLoadedLine(SourceLine line) {
  facts_.push_back(AnalyzeLine(line.Text()));
  CodeLine code;
  code.line = std::move(line);
  lines_.push_back(std::move(code));
  indexValid_ = false;
}

bool CodeModule::AppendHiddenLine(SourceLine& line) {
  if (lines_.empty()) return false;
  auto& hidden = lines_.back().hidden;
  if (!hidden) hidden = std::make_unique<std::vector<SourceLine>>();
  hidden->push_back(std::move(line));
  return true;
}

const CodeModule::Index& CodeModule::CurrentIndex() const {
  if (!indexValid_) BuildIndex();
  return index_;
}

// The walk over the whole module that BuildIndex makes: the #If blocks around each line, the
// procedure whose End has not come yet, and the last code line above the first heading.
struct CodeModule::IndexBuilder {
  struct Frame {
    int32_t block;
    int32_t branch;
  };
  Index idx;
  std::vector<Frame> frames;
  int32_t nextBlock = 0;
  int32_t lastCode = -1;  // the last code line above the first heading
  Proc* open = nullptr;   // the procedure whose End has not come yet

  // One statement or comment of lines [i, piece.last].
  void Add(int32_t i, Piece& piece) {
    const int32_t e = piece.last;
    switch (piece.st.type) {
      case Statement::Type::kIf:
        idx.directives = true;
        frames.push_back({++nextBlock, 0});
        break;
      case Statement::Type::kElse:
        idx.directives = true;
        if (!frames.empty()) ++frames.back().branch;
        break;
      case Statement::Type::kEndIf:
        idx.directives = true;
        if (!frames.empty()) frames.pop_back();
        break;
      case Statement::Type::kEnd:
        if (open != nullptr) {
          open->end = e;
          open->endLine = e;
          open = nullptr;
        }
        break;
      case Statement::Type::kHeading:
        Heading(i, e, piece.st);
        break;
      case Statement::Type::kOther:
        break;
    }
    if (piece.code && idx.procs.empty()) lastCode = e;
  }

  void Heading(int32_t i, int32_t e, Statement& st) {
    auto& procs = idx.procs;
    const int32_t block = frames.empty() ? 0 : frames.back().block;
    const int32_t branch = frames.empty() ? 0 : frames.back().branch;
    // The same heading in another branch of the same #If block is one procedure with two
    // alternative headings (a declaration that differs per platform or version).
    auto alternative = [&](const Proc& p) {
      return block != 0 && p.ifBlock == block && p.ifBranch != branch && p.kind == st.kind &&
             automation::SameVbName(p.name, st.name);
    };
    if (open != nullptr) {
      if (alternative(*open)) return;
      // A heading without its End: the procedure ends above the next heading.
      open->end = i - 1;
      open = nullptr;
    } else if (!procs.empty() && alternative(*procs.back())) {
      open = procs.back().get();
      return;
    }
    if (procs.empty()) idx.declarationLines = lastCode + 1;
    auto p = std::make_unique<Proc>();
    p->name = std::move(st.name);
    p->kind = st.kind;
    p->start = procs.empty() ? idx.declarationLines : procs.back()->end + 1;
    p->body = i;
    p->ifBlock = block;
    p->ifBranch = branch;
    if (st.endsOnSameLine) {
      p->end = e;
      p->endLine = e;
    } else {
      open = p.get();
    }
    procs.push_back(std::move(p));
  }

  Index Finish(int32_t lineCount) {
    auto& procs = idx.procs;
    if (procs.empty()) {
      idx.declarationLines = lineCount;
    } else {
      procs.back()->end = lineCount - 1;  // the last procedure owns the lines after its End
    }
    idx.byKey.reserve(procs.size());
    for (auto& p : procs) {
      // The first procedure of a name and kind is the one look-ups find.
      p->firstOfKey = idx.byKey.emplace(ProcKey{p->name, p->kind}, p.get()).second;
      if (!p->firstOfKey) idx.duplicates = true;
    }
    return std::move(idx);
  }
};

void CodeModule::BuildIndex() const {
  IndexBuilder builder;
  const auto n = static_cast<int32_t>(lines_.size());
  std::string joined;
  auto factsAt = [this](int32_t k) { return facts_[k]; };
  auto textAt = [this](int32_t k) -> std::string_view { return lines_[k].line.Text(); };
  for (int32_t i = 0; i < n;) {
    Piece piece = ReadPiece(i, n, factsAt, textAt, joined);
    builder.Add(i, piece);
    i = piece.last + 1;
  }
  index_ = builder.Finish(n);
  indexValid_ = true;
}

namespace {

template <class P>
void Shift(P& p, int32_t delta) {
  p.start += delta;
  p.body += delta;
  p.end += delta;
  if (p.endLine >= 0) p.endLine += delta;
}

}  // namespace

// The driver writes a procedure's text by deleting its region and inserting the new text there,
// and walks the module after each write; rebuilding the index for that would make a write cost
// a pass over the whole module. When the deleted lines are whole regions of procedures that
// have their End, the index drops them and moves the procedures below up. Anything else (part
// of a region, #If lines anywhere in the module, a name declared twice) is left to a rebuild.
bool CodeModule::IndexAfterDelete(int32_t first, int32_t count) {
  if (!indexValid_) return false;
  Index& idx = index_;
  auto& procs = idx.procs;
  if (idx.directives || idx.duplicates || procs.empty()) return false;
  const int32_t last = first + count - 1;
  auto from =
      std::lower_bound(procs.begin(), procs.end(), first,
                       [](const std::unique_ptr<Proc>& p, int32_t v) { return p->start < v; });
  if (from == procs.end() || (*from)->start != first) return false;
  auto to = from;
  while (to != procs.end() && (*to)->end < last)
    ++to;
  if (to == procs.end() || (*to)->end != last) return false;
  for (auto it = from; it <= to; ++it) {
    if ((*it)->endLine < 0) return false;
  }
  if (from != procs.begin() && (*(from - 1))->endLine < 0) return false;
  // The procedure after the first one deleted becomes the first: its region then starts after
  // the declarations, which may reach into what was its region (code above its heading).
  if (from == procs.begin() && to + 1 != procs.end()) return false;
  // No statement or comment runs into the deleted lines or out of them.
  if ((first > 0 && facts_[first - 1].commentGoesOn) || facts_[last].commentGoesOn) return false;

  for (auto it = from; it <= to; ++it)
    idx.byKey.erase(ProcKey{(*it)->name, (*it)->kind});
  auto below = procs.erase(from, to + 1);
  for (; below != procs.end(); ++below)
    Shift(**below, -count);
  // With no procedure left, the module is all declarations; the lines left end where the
  // deleted first procedure's region began, which was the end of the declarations.
  idx.recent = nullptr;
  idx.recentIndex = kNoIndex;
  return true;
}

// The new lines read on their own, numbered as they will be from line at: whole procedures with
// their End, with blank or comment lines around them; false when they hold anything else (code
// outside a procedure, #If lines, a statement that runs on past them).
bool CodeModule::ReadWholeProcedures(int32_t at, int32_t regionStart,
                                     const std::vector<CodeLine>& added,
                                     const std::vector<LineFacts>& addedFacts,
                                     std::vector<std::unique_ptr<Proc>>& fresh) {
  const auto count = static_cast<int32_t>(added.size());
  Proc* open = nullptr;
  std::string joined;
  auto factsAt = [&](int32_t k) { return addedFacts[k]; };
  auto textAt = [&](int32_t k) -> std::string_view { return added[k].line.Text(); };
  for (int32_t i = 0; i < count;) {
    Piece piece = ReadPiece(i, count, factsAt, textAt, joined);
    if (piece.runsOn) return false;
    const int32_t e = piece.last;
    switch (piece.st.type) {
      case Statement::Type::kOther:
        if (piece.code && open == nullptr) return false;  // code outside any procedure
        break;
      case Statement::Type::kEnd:
        if (open == nullptr) return false;
        open->end = at + e;
        open->endLine = at + e;
        open = nullptr;
        break;
      case Statement::Type::kHeading: {
        if (open != nullptr) return false;
        auto p = std::make_unique<Proc>();
        p->name = std::move(piece.st.name);
        p->kind = piece.st.kind;
        p->start = fresh.empty() ? regionStart : fresh.back()->end + 1;
        p->body = at + i;
        if (piece.st.endsOnSameLine) {
          p->end = at + e;
          p->endLine = at + e;
        } else {
          open = p.get();
        }
        fresh.push_back(std::move(p));
        break;
      }
      default:
        return false;  // #If lines
    }
    i = e + 1;
  }
  return open == nullptr;
}

// Whether the new procedures bring new names only: a second procedure of a name needs the
// rebuild to tell which comes first.
bool CodeModule::NewNamesOnly(const Index& idx, const std::vector<std::unique_ptr<Proc>>& fresh) {
  for (std::size_t k = 0; k < fresh.size(); ++k) {
    ProcKey key{fresh[k]->name, fresh[k]->kind};
    if (idx.byKey.contains(key)) return false;
    for (std::size_t l = 0; l < k; ++l) {
      if (ProcKeyEqual()(key, ProcKey{fresh[l]->name, fresh[l]->kind})) return false;
    }
  }
  return true;
}

// The other half: new lines that are whole procedures with their End (and blank or comment
// lines around them), inserted where a procedure's region begins or after the last procedure,
// go into the index as they are read; the procedures below move down.
bool CodeModule::IndexAfterInsert(int32_t at, const std::vector<CodeLine>& added,
                                  const std::vector<LineFacts>& addedFacts) {
  if (!indexValid_) return false;
  Index& idx = index_;
  auto& procs = idx.procs;
  if (idx.directives || idx.duplicates || procs.empty()) return false;
  const auto n = static_cast<int32_t>(lines_.size());  // before the insertion
  const auto count = static_cast<int32_t>(added.size());
  if (at > 0 && facts_[at - 1].commentGoesOn) return false;
  const bool append = at == n;
  auto next = procs.end();
  if (!append) {
    next = std::lower_bound(procs.begin(), procs.end(), at,
                            [](const std::unique_ptr<Proc>& p, int32_t v) { return p->start < v; });
    if (next == procs.end() || (*next)->start != at) return false;
  }
  Proc* above = next == procs.begin() ? nullptr : (next - 1)->get();
  if (above != nullptr && above->endLine < 0) return false;

  // After the last procedure, its lines below its End go to the first new procedure.
  const int32_t regionStart = append ? above->endLine + 1 : at;
  std::vector<std::unique_ptr<Proc>> fresh;
  if (!ReadWholeProcedures(at, regionStart, added, addedFacts, fresh)) return false;
  if (!NewNamesOnly(idx, fresh)) return false;

  if (append) {
    if (fresh.empty()) {
      above->end = at + count - 1;  // the last procedure owns the new lines too
    } else {
      above->end = above->endLine;
      fresh.back()->end = at + count - 1;
    }
  } else {
    for (auto it = next; it != procs.end(); ++it)
      Shift(**it, count);
    // The next procedure's region now begins below the new procedures (lines after the last
    // new End are its lines), or where it began, when only blank or comment lines came in.
    (*next)->start = fresh.empty() ? at : fresh.back()->end + 1;
  }
  for (auto& p : fresh) {
    p->firstOfKey = true;
    idx.byKey.emplace(ProcKey{p->name, p->kind}, p.get());
  }
  procs.insert(next, std::make_move_iterator(fresh.begin()), std::make_move_iterator(fresh.end()));
  idx.recent = nullptr;
  idx.recentIndex = kNoIndex;
  return true;
}

int32_t CodeModule::CountOfDeclarationLines() const {
  return CurrentIndex().declarationLines;
}

void CodeModule::CheckLine(int32_t line, int32_t last) const {
  if (line < 1 || line > last) {
    Raise(err::kSubscript, "line " + std::to_string(line) + " is outside the module's lines 1 to " +
                               std::to_string(last));
  }
}

std::string CodeModule::ProcOfLine(int32_t line, ProcKind& kind) const {
  CheckLine(line, CountOfLines());
  const Index& idx = CurrentIndex();
  kind = ProcKind::kProc;
  int32_t at = line - 1;
  const auto& procs = idx.procs;
  const std::size_t count = procs.size();
  std::size_t k = count;
  // A walk asks for the line where the procedure after the last one named begins: try that
  // procedure and the last one before searching.
  for (std::size_t guess : {idx.recentIndex + 1, idx.recentIndex}) {
    if (guess < count && procs[guess]->start <= at &&
        (guess + 1 == count || procs[guess + 1]->start > at)) {
      k = guess;
      break;
    }
  }
  if (k == count) {
    auto it = std::upper_bound(
        procs.begin(), procs.end(), at,
        [](int32_t value, const std::unique_ptr<Proc>& p) { return value < p->start; });
    if (it == procs.begin()) return {};
    k = static_cast<std::size_t>(it - procs.begin()) - 1;
  }
  kind = procs[k]->kind;
  idx.recent = procs[k].get();
  idx.recentIndex = k;
  return procs[k]->name;
}

const CodeModule::Proc& CodeModule::FindProc(std::string_view name, ProcKind kind) const {
  CheckKind(kind);
  const Index& idx = CurrentIndex();
  // The driver asks for the procedure that ProcOfLine has just named: answer that without the
  // hash table (unless an earlier procedure has the same name, which the table answers).
  if (const Proc* p = idx.recent) {
    if (p->firstOfKey && p->kind == kind && automation::SameVbName(p->name, name)) return *p;
  }
  auto it = idx.byKey.find(ProcKey{name, kind});
  if (it == idx.byKey.end()) {
    Raise(kProcNotDefined,
          std::string(name) + " (kind " + std::to_string(static_cast<int32_t>(kind)) + ")");
  }
  idx.recent = it->second;
  idx.recentIndex = kNoIndex;
  return *it->second;
}

int32_t CodeModule::ProcStartLine(std::string_view name, ProcKind kind) const {
  return FindProc(name, kind).start + 1;
}

int32_t CodeModule::ProcBodyLine(std::string_view name, ProcKind kind) const {
  return FindProc(name, kind).body + 1;
}

int32_t CodeModule::ProcCountLines(std::string_view name, ProcKind kind) const {
  const Proc& p = FindProc(name, kind);
  return p.end - p.start + 1;
}

std::string CodeModule::Lines(int32_t start, int32_t count) const {
  if (count < 0) Raise(err::kInvalidCall, "negative line count " + std::to_string(count));
  const int32_t n = CountOfLines();
  if (count == 0) {
    CheckLine(start, n + 1);
    return {};
  }
  CheckLine(start, n);
  const int32_t end = start - 1 + std::min(count, n - start + 1);
  std::size_t size = 0;
  for (int32_t i = start - 1; i < end; ++i)
    size += lines_[i].line.Text().size() + 2;
  std::string out;
  out.reserve(size);
  for (int32_t i = start - 1; i < end; ++i) {
    if (i != start - 1) out += "\r\n";
    out += lines_[i].line.Text();
  }
  return out;
}

void CodeModule::DeleteLines(int32_t start, int32_t count) {
  if (count < 0) Raise(err::kInvalidCall, "negative line count " + std::to_string(count));
  const int32_t n = CountOfLines();
  if (count == 0) {
    // Nothing to delete: allowed where Lines allows reading nothing, just after the last line,
    // so that an empty region (the declarations of a module without any) can be written over.
    CheckLine(start, n + 1);
    return;
  }
  CheckLine(start, n);
  if (count > n - start + 1) {
    Raise(err::kSubscript, "lines " + std::to_string(start) + " to " +
                               std::to_string(int64_t{start} + count - 1) +
                               " reach past the module's last line " + std::to_string(n));
  }
  const bool indexKept = IndexAfterDelete(start - 1, count);
  auto first = lines_.begin() + (start - 1);
  auto last = first + count;
  removed_.at = start - 1;
  removed_.ends.clear();
  for (auto it = first; it != last; ++it) {
    if (it->line.end != LineEnd::kNone)
      removed_.ends[std::string(it->line.Text())].push_back(it->line.end);
    if (!it->hidden) continue;
    for (SourceLine& hidden : *it->hidden) {
      const auto attribute = ParseAttributeLine(hidden.Text());
      std::string member =
          automation::VbNameKey(attribute ? attribute->Member() : std::string_view{});
      auto group = std::find_if(detached_.begin(), detached_.end(),
                                [&](const Detached& d) { return d.member == member; });
      if (group == detached_.end()) {
        detached_.push_back(Detached{member, {}});
        group = detached_.end() - 1;
      }
      group->lines.push_back(std::move(hidden));
    }
  }
  lines_.erase(first, last);
  facts_.erase(facts_.begin() + (start - 1), facts_.begin() + (start - 1 + count));
  indexValid_ = indexKept;
  dirty_ = true;
}

void CodeModule::InsertLines(int32_t line, std::string_view text) {
  const int32_t n = CountOfLines();
  CheckLine(line, n + 1);
  std::vector<CodeLine> added;
  std::vector<LineFacts> addedFacts;
  auto add = [&](std::string_view piece) {
    addedFacts.push_back(AnalyzeLine(piece));
    CodeLine code;
    code.line = SourceLine::New(piece);
    if (line - 1 == removed_.at) {
      auto same = removed_.ends.find(piece);
      if (same != removed_.ends.end() && !same->second.empty()) {
        code.line.end = same->second.front();
        same->second.pop_front();
      }
    }
    added.push_back(std::move(code));
  };
  // Every line end starts a line, so text that ends with one (or is empty) adds an empty line.
  platform::LineReader reader(text);
  std::string_view piece;
  bool ended = true;
  while (reader.Next(piece)) {
    add(piece);
    ended = !reader.LastLineEnd().empty();
  }
  if (ended) add({});
  removed_ = {};
  auto count = static_cast<int32_t>(added.size());
  const bool indexKept = IndexAfterInsert(line - 1, added, addedFacts);
  lines_.insert(lines_.begin() + (line - 1), std::make_move_iterator(added.begin()),
                std::make_move_iterator(added.end()));
  facts_.insert(facts_.begin() + (line - 1), addedFacts.begin(), addedFacts.end());
  indexValid_ = indexKept;
  dirty_ = true;
  if (!detached_.empty()) Reattach(line - 1, count);
}

void CodeModule::Reattach(int32_t first, int32_t count) {
  const Index& idx = CurrentIndex();
  auto attach = [&](int32_t at, Detached& group) {
    auto& hidden = lines_[at].hidden;
    if (!hidden) hidden = std::make_unique<std::vector<SourceLine>>();
    for (SourceLine& l : group.lines)
      hidden->push_back(std::move(l));
    group.lines.clear();
  };
  for (Detached& group : detached_) {
    if (group.member.empty()) continue;
    // A procedure of that name among the new lines: after its heading, continuation included.
    for (const auto& p : idx.procs) {
      if (p->body < first || p->body >= first + count ||
          automation::VbNameKey(p->name) != group.member) {
        continue;
      }
      int32_t at = p->body;
      while (at + 1 < static_cast<int32_t>(lines_.size()) && facts_[at].continues)
        ++at;
      attach(at, group);
      break;
    }
    if (group.lines.empty()) continue;
    // A variable of that name declared among the new lines.
    int32_t stop = std::min(first + count, idx.declarationLines);
    for (int32_t at = first; at < stop; ++at) {
      const LineFacts facts = facts_[at];
      if (!facts.blank && !facts.comment && MentionsWord(lines_[at].line.Text(), group.member)) {
        attach(at, group);
        break;
      }
    }
  }
  std::erase_if(detached_, [](const Detached& d) { return d.lines.empty(); });
}

std::vector<ProcedureInfo> CodeModule::Procedures() const {
  const Index& idx = CurrentIndex();
  std::vector<ProcedureInfo> out;
  out.reserve(idx.procs.size());
  for (const auto& p : idx.procs) {
    out.push_back(
        ProcedureInfo{p->name, p->kind, p->start + 1, p->body + 1, p->end - p->start + 1});
  }
  return out;
}

}  // namespace ide
