#include "ide/code/code_module.h"

#include <algorithm>
#include <utility>

#include "automation/error.h"
#include "ide/text/source_text.h"

namespace ide {
namespace {

using automation::Raise;
namespace err = automation::err;

// VB6 raises 35 for a procedure it cannot find.
constexpr int32_t kProcNotDefined = 35;

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

bool IsIdentChar(char c) {
  auto u = static_cast<unsigned char>(c);
  return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_' ||
         u >= 0x80;
}

void CheckKind(ProcKind kind) {
  auto k = static_cast<int32_t>(kind);
  if (k < 0 || k > 3) Raise(err::kInvalidCall, "unknown procedure kind " + std::to_string(k));
}

// Whether a line declares the member: the name appears in it as a whole word.
bool MentionsWord(std::string_view line, std::string_view word) {
  std::string folded = FoldIdentifier(line);
  std::string key = FoldIdentifier(word);
  for (std::size_t pos = folded.find(key); pos != std::string::npos;
       pos = folded.find(key, pos + 1)) {
    bool before = pos == 0 || !IsIdentChar(folded[pos - 1]);
    std::size_t after = pos + key.size();
    if (before && (after == folded.size() || !IsIdentChar(folded[after]))) return true;
  }
  return false;
}

}  // namespace

std::size_t CodeModule::ProcKeyHash::operator()(const ProcKey& key) const {
  // FNV-1a over the name with ASCII letters folded, as VB compares names, then the kind.
  std::size_t hash = 14695981039346656037ull;
  for (char c : key.name) {
    hash ^= static_cast<unsigned char>((c >= 'A' && c <= 'Z') ? c - 'A' + 'a' : c);
    hash *= 1099511628211ull;
  }
  return hash ^ static_cast<std::size_t>(key.kind);
}

bool CodeModule::ProcKeyEqual::operator()(const ProcKey& a, const ProcKey& b) const {
  return a.kind == b.kind && SameIdentifier(a.name, b.name);
}

std::string_view AttributeMember(std::string_view line) {
  std::size_t pos = 0;
  while (pos < line.size() && IsBlank(line[pos]))
    ++pos;
  constexpr std::string_view kWord = "attribute";
  if (line.size() - pos <= kWord.size() || !SameIdentifier(line.substr(pos, kWord.size()), kWord) ||
      !IsBlank(line[pos + kWord.size()])) {
    return {};
  }
  pos += kWord.size();
  while (pos < line.size() && IsBlank(line[pos]))
    ++pos;
  std::size_t start = pos;
  while (pos < line.size() && (IsIdentChar(line[pos]) || line[pos] == '.'))
    ++pos;
  std::string_view path = line.substr(start, pos - start);
  std::size_t dot = path.find('.');
  if (dot == std::string_view::npos) return {};
  return path.substr(0, dot);
}

bool IsAttributeLine(std::string_view line) {
  std::size_t pos = 0;
  while (pos < line.size() && IsBlank(line[pos]))
    ++pos;
  constexpr std::string_view kWord = "attribute";
  if (line.size() - pos <= kWord.size() || !SameIdentifier(line.substr(pos, kWord.size()), kWord) ||
      !IsBlank(line[pos + kWord.size()])) {
    return false;
  }
  pos += kWord.size();
  while (pos < line.size() && IsBlank(line[pos]))
    ++pos;
  std::size_t start = pos;
  while (pos < line.size() && (IsIdentChar(line[pos]) || line[pos] == '.'))
    ++pos;
  if (pos == start) return false;
  while (pos < line.size() && IsBlank(line[pos]))
    ++pos;
  return pos < line.size() && line[pos] == '=';
}

CodeModule::CodeModule() = default;
CodeModule::~CodeModule() = default;

void CodeModule::ReserveLines(std::size_t count) {
  lines_.reserve(count);
  facts_.reserve(count);
}

void CodeModule::AppendLoadedLine(SourceLine line) {
  facts_.push_back(AnalyzeLine(line.text));
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

void CodeModule::BuildIndex() const {
  Index idx;
  auto& procs = idx.procs;
  const auto n = static_cast<int32_t>(lines_.size());
  struct Frame {
    int32_t block;
    int32_t branch;
  };
  std::vector<Frame> frames;
  int32_t nextBlock = 0;
  int32_t lastCode = -1;  // the last code line above the first heading
  int32_t open = -1;      // the procedure whose End has not come yet
  std::string joined;

  for (int32_t i = 0; i < n;) {
    const LineFacts first = facts_[i];
    if (first.blank) {
      ++i;
      continue;
    }
    if (first.comment) {
      bool goesOn = first.continues;
      while (goesOn && i + 1 < n)
        goesOn = facts_[++i].commentGoesOn;
      ++i;
      continue;
    }
    // A code statement: lines i..e.
    int32_t e = i;
    bool continues = first.continues;
    bool inComment = first.endsInComment;
    while (continues && e + 1 < n) {
      const LineFacts next = facts_[++e];
      if (inComment) {
        continues = next.commentGoesOn;
      } else {
        continues = next.continues;
        inComment = next.endsInComment;
      }
    }
    // What the statement does: known from its line when it has one line, except a heading's
    // name, which is read again (one line per procedure).
    Statement st;
    switch (first.Role()) {
      case LineRole::kOther:
        break;
      case LineRole::kContinued:
        joined.clear();
        for (int32_t k = i; k <= e; ++k)
          AppendContinued(joined, lines_[k].line.text, k < e);
        st = ParseStatement(joined);
        break;
      case LineRole::kHeading:
      case LineRole::kHeadingClosed:
        st = ParseStatement(lines_[i].line.text);
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
    switch (st.type) {
      case Statement::Type::kIf:
        frames.push_back({++nextBlock, 0});
        break;
      case Statement::Type::kElse:
        if (!frames.empty()) ++frames.back().branch;
        break;
      case Statement::Type::kEndIf:
        if (!frames.empty()) frames.pop_back();
        break;
      case Statement::Type::kEnd:
        if (open >= 0) {
          procs[open].end = e;
          procs[open].closed = true;
          open = -1;
        }
        break;
      case Statement::Type::kHeading: {
        int32_t block = frames.empty() ? 0 : frames.back().block;
        int32_t branch = frames.empty() ? 0 : frames.back().branch;
        // The same heading in another branch of the same #If block is one procedure with two
        // alternative headings (a declaration that differs per platform or version).
        auto alternative = [&](const Proc& p) {
          return block != 0 && p.ifBlock == block && p.ifBranch != branch && p.kind == st.kind &&
                 SameIdentifier(p.name, st.name);
        };
        if (open >= 0) {
          if (alternative(procs[open])) break;
          // A heading without its End: the procedure ends above the next heading.
          procs[open].end = i - 1;
          procs[open].closed = true;
          open = -1;
        } else if (!procs.empty() && alternative(procs.back())) {
          open = static_cast<int32_t>(procs.size()) - 1;
          procs.back().closed = false;
          break;
        }
        if (procs.empty()) idx.declarationLines = lastCode + 1;
        Proc p;
        p.name = std::move(st.name);
        p.kind = st.kind;
        p.start = procs.empty() ? idx.declarationLines : procs.back().end + 1;
        p.body = i;
        p.ifBlock = block;
        p.ifBranch = branch;
        if (st.endsOnSameLine) {
          p.end = e;
          p.closed = true;
        } else {
          open = static_cast<int32_t>(procs.size());
        }
        procs.push_back(std::move(p));
        break;
      }
      case Statement::Type::kOther:
        break;
    }
    if (procs.empty()) lastCode = e;
    i = e + 1;
  }
  if (procs.empty()) {
    idx.declarationLines = n;
  } else {
    procs.back().end = n - 1;  // the last procedure owns the lines after its End
  }
  idx.byKey.reserve(procs.size());
  for (std::size_t k = 0; k < procs.size(); ++k) {
    // The first procedure of a name and kind is the one look-ups find.
    procs[k].firstOfKey = idx.byKey.emplace(ProcKey{procs[k].name, procs[k].kind}, k).second;
  }
  index_ = std::move(idx);
  indexValid_ = true;
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
  auto it = std::upper_bound(idx.procs.begin(), idx.procs.end(), at,
                             [](int32_t value, const Proc& p) { return value < p.start; });
  if (it == idx.procs.begin()) return {};
  --it;
  kind = it->kind;
  idx.recent = static_cast<std::size_t>(it - idx.procs.begin());
  return it->name;
}

const CodeModule::Proc& CodeModule::FindProc(std::string_view name, ProcKind kind) const {
  CheckKind(kind);
  const Index& idx = CurrentIndex();
  // The driver asks for the procedure that ProcOfLine has just named: answer that without the
  // hash table (unless an earlier procedure has the same name, which the table answers).
  if (idx.recent < idx.procs.size()) {
    const Proc& p = idx.procs[idx.recent];
    if (p.firstOfKey && p.kind == kind && SameIdentifier(p.name, name)) return p;
  }
  auto it = idx.byKey.find(ProcKey{name, kind});
  if (it == idx.byKey.end()) {
    Raise(kProcNotDefined,
          std::string(name) + " (kind " + std::to_string(static_cast<int32_t>(kind)) + ")");
  }
  idx.recent = it->second;
  return idx.procs[it->second];
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
  int32_t end = start - 1 + std::min(count, n - start + 1);
  std::string out;
  for (int32_t i = start - 1; i < end; ++i) {
    if (i != start - 1) out += "\r\n";
    out += lines_[i].line.text;
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
  auto first = lines_.begin() + (start - 1);
  auto last = first + count;
  for (auto it = first; it != last; ++it) {
    if (!it->hidden) continue;
    for (SourceLine& hidden : *it->hidden) {
      std::string member = FoldIdentifier(AttributeMember(hidden.text));
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
  indexValid_ = false;
  dirty_ = true;
}

void CodeModule::InsertLines(int32_t line, std::string_view text) {
  const int32_t n = CountOfLines();
  CheckLine(line, n + 1);
  std::vector<CodeLine> added;
  std::vector<LineFacts> addedFacts;
  LineEndFinder finder(text);
  std::size_t pos = 0;
  for (;;) {
    std::size_t stop = finder.Next(pos);
    std::string_view piece =
        text.substr(pos, stop == std::string_view::npos ? std::string_view::npos : stop - pos);
    addedFacts.push_back(AnalyzeLine(piece));
    CodeLine code;
    code.line = SourceLine::New(std::string(piece));
    added.push_back(std::move(code));
    if (stop == std::string_view::npos) break;
    pos = stop + 1;
    if (text[stop] == '\r' && pos < text.size() && text[pos] == '\n') ++pos;
  }
  auto count = static_cast<int32_t>(added.size());
  lines_.insert(lines_.begin() + (line - 1), std::make_move_iterator(added.begin()),
                std::make_move_iterator(added.end()));
  facts_.insert(facts_.begin() + (line - 1), addedFacts.begin(), addedFacts.end());
  indexValid_ = false;
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
    for (const Proc& p : idx.procs) {
      if (p.body < first || p.body >= first + count || FoldIdentifier(p.name) != group.member) {
        continue;
      }
      int32_t at = p.body;
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
      if (!facts.blank && !facts.comment && MentionsWord(lines_[at].line.text, group.member)) {
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
  for (const Proc& p : idx.procs) {
    out.push_back(ProcedureInfo{p.name, p.kind, p.start + 1, p.body + 1, p.end - p.start + 1});
  }
  return out;
}

}  // namespace ide
