#include "host/scan/matcher.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <mutex>

#include "automation/error.h"

namespace host::scan {

namespace {

constexpr uint32_t kCompileFlags =
    PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF | PCRE2_MULTILINE;

// PCRE2's message for an error code.
std::string ErrorText(int code) {
  PCRE2_UCHAR buffer[256];
  int length = pcre2_get_error_message(code, buffer, sizeof buffer);
  if (length < 0) return "error " + std::to_string(code);
  return std::string(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(length));
}

[[noreturn]] void RaiseInvalid(std::string_view pattern, std::string_view what) {
  std::string detail = "\"";
  detail.append(pattern).append("\": ").append(what);
  automation::Raise(kInvalidPattern, detail);
}

struct Compiled {
  pcre2_code* code = nullptr;
  int error = 0;
  PCRE2_SIZE offset = 0;
};

Compiled Compile(std::string_view source, uint32_t flags) {
  pcre2_compile_context* context = pcre2_compile_context_create(nullptr);
  if (!context) throw std::bad_alloc();
  // Lines end in CR LF, LF or a lone CR; `^`, `$` and `.` know all three.
  pcre2_set_newline(context, PCRE2_NEWLINE_ANYCRLF);
  Compiled result;
  result.code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(source.data()), source.size(), flags,
                              &result.error, &result.offset, context);
  pcre2_compile_context_free(context);
  return result;
}

// A plain-text pattern as a regular expression: every ASCII character that is not a letter or
// digit is escaped (in UTF mode an escaped non-alphanumeric always stands for itself).
std::string Escaped(std::string_view text) {
  std::string out;
  out.reserve(text.size() * 2);
  for (char c : text) {
    auto u = static_cast<unsigned char>(c);
    if (u < 0x80 && !std::isalnum(u)) out += '\\';
    out += c;
  }
  return out;
}

// The characters of a regular expression that stand for themselves: escapes (`\S`, `\p{Lu}`,
// `\x{41}`) are left out, text quoted with `\Q...\E` is kept.
std::string LiteralCharacters(std::string_view pattern) {
  std::string out;
  std::size_t i = 0;
  while (i < pattern.size()) {
    if (pattern[i] != '\\') {
      out += pattern[i++];
      continue;
    }
    if (i + 1 >= pattern.size()) break;
    char escape = pattern[i + 1];
    i += 2;
    if (escape == 'Q') {
      std::size_t end = pattern.find("\\E", i);
      if (end == std::string_view::npos) end = pattern.size();
      out.append(pattern.substr(i, end - i));
      i = end == pattern.size() ? end : end + 2;
    } else if (i < pattern.size() && pattern[i] == '{' &&
               std::string_view("pPxoNgk").find(escape) != std::string_view::npos) {
      std::size_t end = pattern.find('}', i);
      i = end == std::string_view::npos ? pattern.size() : end + 1;
    } else if ((escape == 'p' || escape == 'P') && i < pattern.size()) {
      ++i;  // \pL: a one-letter property name
    }
  }
  return out;
}

// Whether any of the patterns holds an upper-case letter that stands for itself: smart case
// then matches case-sensitively. Unicode's idea of upper case, as PCRE2 has it.
bool HasUpperCase(const std::vector<std::string>& patterns, bool literal) {
  Compiled upper = Compile("\\p{Lu}", kCompileFlags);
  if (!upper.code) throw std::bad_alloc();
  pcre2_match_data* data = pcre2_match_data_create_from_pattern(upper.code, nullptr);
  bool found = false;
  for (const auto& pattern : patterns) {
    std::string letters = literal ? pattern : LiteralCharacters(pattern);
    if (pcre2_match(upper.code, reinterpret_cast<PCRE2_SPTR>(letters.data()), letters.size(), 0, 0,
                    data, nullptr) >= 0) {
      found = true;
      break;
    }
  }
  pcre2_match_data_free(data);
  pcre2_code_free(upper.code);
  return found;
}

bool IsLineBreak(char c) {
  return c == '\n' || c == '\r';
}

// The offset just past the line break at `at` (CR LF counts as one).
std::size_t PastBreak(std::string_view text, std::size_t at) {
  return text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? at + 2 : at + 1;
}

// One character further on than `at`: a CR LF pair, a UTF-8 sequence or a single byte that
// belongs to none.
std::size_t NextCharacter(std::string_view text, std::size_t at) {
  if (at >= text.size()) return at + 1;
  if (IsLineBreak(text[at])) return PastBreak(text, at);
  std::size_t next = at + 1;
  for (int i = 0;
       i < 3 && next < text.size() && (static_cast<unsigned char>(text[next]) & 0xC0) == 0x80; ++i)
    ++next;
  return next;
}

}  // namespace

struct Matcher::Program {
  struct CodeFree {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
  };
  std::unique_ptr<pcre2_code, CodeFree> code;
  bool jit = false;
  bool caseInsensitive = false;
  std::size_t groupCount = 0;
};

namespace {

// Compiles the patterns; raises kInvalidPattern for one that does not compile.
std::shared_ptr<const Matcher::Program> CompileProgram(const std::vector<std::string>& patterns,
                                                       const MatchOptions& options) {
  auto program = std::make_shared<Matcher::Program>();
  program->caseInsensitive =
      options.caseMode == CaseMode::kInsensitive ||
      (options.caseMode == CaseMode::kSmart && !HasUpperCase(patterns, options.literal));
  const uint32_t flags = kCompileFlags | (program->caseInsensitive ? PCRE2_CASELESS : 0);

  // Each pattern is compiled alone first, so that an error names its pattern and an offset in
  // it; then all of them as one alternation, tried left to right at each place.
  std::string combined;
  for (std::size_t i = 0; i < patterns.size(); ++i) {
    std::string source = options.literal ? Escaped(patterns[i]) : patterns[i];
    Compiled alone = Compile(source, flags);
    if (!alone.code) {
      std::string what = ErrorText(alone.error);
      what += " at offset " + std::to_string(alone.offset);
      RaiseInvalid(patterns[i], what);
    }
    pcre2_code_free(alone.code);
    if (i > 0) combined += '|';
    combined.append("(?:").append(source).append(")");
  }
  if (options.wholeWord) combined = "(?<!\\w)(?:" + combined + ")(?!\\w)";
  Compiled all = Compile(combined, flags);
  if (!all.code) {
    // Only what the patterns do to each other can fail here: a group name used twice.
    std::string joined;
    for (const auto& pattern : patterns)
      joined += (joined.empty() ? "" : "\", \"") + pattern;
    RaiseInvalid(joined, ErrorText(all.error));
  }
  program->code.reset(all.code);
  program->jit = pcre2_jit_compile(program->code.get(), PCRE2_JIT_COMPLETE) == 0;
  uint32_t captures = 0;
  pcre2_pattern_info(program->code.get(), PCRE2_INFO_CAPTURECOUNT, &captures);
  program->groupCount = captures;
  return program;
}

// The programs compiled last in this process, the most recent first: a run asks for the same
// few again and again.
std::shared_ptr<const Matcher::Program> FindOrCompile(const std::vector<std::string>& patterns,
                                                      const MatchOptions& options) {
  constexpr std::size_t kKept = 8;
  struct Entry {
    std::string key;
    std::shared_ptr<const Matcher::Program> program;
  };
  static std::mutex mutex;
  static std::vector<Entry> kept;
  std::string key{static_cast<char>(options.literal), static_cast<char>(options.caseMode),
                  static_cast<char>(options.wholeWord)};
  for (const std::string& pattern : patterns)
    key.append(std::to_string(pattern.size())).append(":").append(pattern);
  {
    const std::lock_guard<std::mutex> lock(mutex);
    for (auto it = kept.begin(); it != kept.end(); ++it) {
      if (it->key != key) continue;
      std::rotate(kept.begin(), it, it + 1);
      return kept.front().program;
    }
  }
  std::shared_ptr<const Matcher::Program> program = CompileProgram(patterns, options);
  const std::lock_guard<std::mutex> lock(mutex);
  kept.insert(kept.begin(), Entry{std::move(key), program});
  if (kept.size() > kKept) kept.pop_back();
  return program;
}

// The match context of this thread, with its JIT stack: room for patterns that backtrack
// deeply, the stack growing only when a pattern needs it. A match uses the stack only while it
// runs, and one thread runs one match at a time.
pcre2_match_context* ThreadMatchContext() {
  struct Context {
    Context() {
      context = pcre2_match_context_create(nullptr);
      stack = pcre2_jit_stack_create(32 * 1024, 4 * 1024 * 1024, nullptr);
      if (!context || !stack) throw std::bad_alloc();
      pcre2_jit_stack_assign(context, nullptr, stack);
    }
    ~Context() {
      pcre2_jit_stack_free(stack);
      pcre2_match_context_free(context);
    }
    pcre2_match_context* context = nullptr;
    pcre2_jit_stack* stack = nullptr;
  };
  thread_local Context context;
  return context.context;
}

}  // namespace

Matcher::Matcher(const std::vector<std::string>& patterns, const MatchOptions& options) {
  if (patterns.empty()) automation::Raise(automation::err::kInvalidCall, "no pattern to match");
  program_ = FindOrCompile(patterns, options);
  codeParts_ = options.codeParts & kEveryCodePart;
  data_.reset(pcre2_match_data_create_from_pattern(program_->code.get(), nullptr));
  if (!data_) throw std::bad_alloc();
}

bool Matcher::CaseInsensitive() const {
  return program_->caseInsensitive;
}

std::size_t Matcher::GroupCount() const {
  return program_->groupCount;
}

int Matcher::GroupNumber(std::string_view name) const {
  std::string key(name);
  int number = pcre2_substring_number_from_name(program_->code.get(),
                                                reinterpret_cast<PCRE2_SPTR>(key.c_str()));
  return number > 0 ? number : -1;
}

bool Matcher::Attempt(std::string_view text, std::size_t length, std::size_t from, uint32_t flags,
                      Match& match) {
  auto subject = reinterpret_cast<PCRE2_SPTR>(text.data());
  // JIT code does not take a match-time PCRE2_ANCHORED; pcre2_match then interprets.
  pcre2_code* code = program_->code.get();
  pcre2_match_context* context = ThreadMatchContext();
  int rc = program_->jit && !(flags & PCRE2_ANCHORED)
               ? pcre2_jit_match(code, subject, length, from, flags, data_.get(), context)
               : pcre2_match(code, subject, length, from, flags, data_.get(), context);
  if (rc == PCRE2_ERROR_NOMATCH) return false;
  if (rc == PCRE2_ERROR_MATCHLIMIT || rc == PCRE2_ERROR_DEPTHLIMIT || rc == PCRE2_ERROR_HEAPLIMIT ||
      rc == PCRE2_ERROR_JIT_STACKLIMIT) {
    // The pattern is valid but too costly for this text.
    automation::RaiseMessage(kInvalidPattern, std::string(kTooMuchBacktracking));
  }
  if (rc < 0) automation::Raise(kInvalidPattern, "matching failed: " + ErrorText(rc));
  const PCRE2_SIZE* ovector = pcre2_get_ovector_pointer(data_.get());
  match.start = ovector[0];
  match.end = ovector[1];
  match.groups = std::span<const std::size_t>(ovector, 2 * (program_->groupCount + 1));
  return true;
}

bool Matcher::FindInLine(std::string_view text, std::size_t from, uint32_t flags, Match& match) {
  if (from > text.size()) return false;
  if (!Attempt(text, text.size(), from, flags, match)) return false;
  for (;;) {
    auto spanned = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(match.start),
                                text.begin() + static_cast<std::ptrdiff_t>(match.end), IsLineBreak);
    if (spanned == text.begin() + static_cast<std::ptrdiff_t>(match.end)) return true;
    // The match reaches over a line break: try again within the line where it starts.
    std::size_t lineStart = text.find_last_of("\r\n", match.start == 0 ? 0 : match.start - 1);
    lineStart = (lineStart == std::string_view::npos || match.start == 0) ? 0 : lineStart + 1;
    std::size_t lineEnd = text.find_first_of("\r\n", match.start);
    std::size_t retry = std::max(from, lineStart);
    if (Attempt(text, lineEnd, retry, flags, match)) return true;
    if (flags & PCRE2_ANCHORED) return false;
    from = PastBreak(text, lineEnd);
    if (!Attempt(text, text.size(), from, flags, match)) return false;
  }
}

bool Matcher::FindInParts(std::string_view text, std::size_t from, uint32_t flags, Match& match) {
  if (from > text.size()) return false;
  CodeLexer lexer(text, from);
  for (CodeSpan span; lexer.Next(span);) {
    if ((span.part & codeParts_) == 0 || span.end < from) continue;
    if ((flags & PCRE2_ANCHORED) && span.start > from) return false;
    // The span is the subject's end, so no match reaches past it; `$` matches there only where
    // the line really ends.
    const bool lineEnds = span.end == text.size() || IsLineBreak(text[span.end]);
    if (Attempt(text, span.end, std::max(from, span.start), flags | (lineEnds ? 0 : PCRE2_NOTEOL),
                match)) {
      return true;
    }
    if (flags & PCRE2_ANCHORED) return false;
  }
  return false;
}

bool Matcher::FindFrom(std::string_view text, std::size_t from, uint32_t flags, Match& match) {
  return codeParts_ == kEveryCodePart ? FindInLine(text, from, flags, match)
                                      : FindInParts(text, from, flags, match);
}

bool Matcher::Find(std::string_view text, std::size_t from, Match& match) {
  return FindFrom(text, from, 0, match);
}

bool Matcher::Next(std::string_view text, Cursor& cursor, Match& match) {
  for (;;) {
    if (cursor.from > text.size()) return false;
    if (cursor.afterEmpty) {
      // After an empty match, first a non-empty match at the same place, then one character on.
      cursor.afterEmpty = false;
      if (!FindFrom(text, cursor.from, PCRE2_NOTEMPTY_ATSTART | PCRE2_ANCHORED, match)) {
        cursor.from = NextCharacter(text, cursor.from);
        continue;
      }
    } else if (!FindFrom(text, cursor.from, 0, match)) {
      cursor.from = text.size() + 1;
      return false;
    }
    cursor.from = match.end;
    cursor.afterEmpty = match.start == match.end;
    return true;
  }
}

std::vector<Match> Matcher::FindAll(std::string_view text) {
  std::vector<Match> matches;
  ForEach(text, [&](const Match& match) { matches.push_back({match.start, match.end, {}}); });
  return matches;
}

void LineCounter::Locate(std::size_t offset, std::size_t& line, std::size_t& column) {
  offset = std::min(offset, text_.size());
  for (; position_ < offset; ++position_) {
    char c = text_[position_];
    if (c == '\n' ||
        (c == '\r' && (position_ + 1 >= text_.size() || text_[position_ + 1] != '\n'))) {
      ++line_;
      lineStart_ = position_ + 1;
    }
  }
  line = line_;
  column = offset - lineStart_ + 1;
}

}  // namespace host::scan
