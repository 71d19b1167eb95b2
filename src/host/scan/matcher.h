#pragma once
// Matcher: the Scanner's pattern matching. One or more patterns are compiled once, with the
// options of grep-like tools (literal, case-insensitive, smart case, whole word), and then
// matched against any number of texts: procedure texts, names, property values.
//
// Texts are UTF-8 and may hold invalid sequences (bytes of another code page, NULs); those never
// take part in a match and never make matching fail. Offsets are byte offsets into the text.
//
// Matching is line by line, as grep-like tools do it: `^` and `$` match at every line start and
// end, and a match never spans a line break (CR LF, LF or a lone CR, the line ends VB files come
// in). A pattern that could reach over a line break (`a\s+b`) matches only within one line.
//
// A Matcher keeps one match-data block that every call reuses, so it is not for several threads
// at once; matching a text in which nothing matches allocates nothing. What compiling gives (the
// pattern and its JIT code) is kept for the process and shared by every Matcher made for the
// same patterns and options, and every Matcher of a thread shares that thread's JIT stack: a
// scan makes one Matcher for each component, and compiling, JIT-compiling and mapping a stack for
// each would cost more than matching.

#ifndef PCRE2_CODE_UNIT_WIDTH
#define PCRE2_CODE_UNIT_WIDTH 8
#endif
#include <pcre2.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/scan/code_parts.h"

namespace host::scan {

// The error raised for a pattern that does not compile or a replacement that names a group the
// patterns do not have: VB's own "Invalid pattern string" (93), followed by the pattern or the
// replacement and what is wrong with it, e.g.
// `Invalid pattern string: "(ab": missing closing parenthesis at offset 3`.
inline constexpr int32_t kInvalidPattern = 93;
// What the same number says when a valid pattern meets a text on which it would backtrack beyond
// PCRE2's limits.
inline constexpr std::string_view kTooMuchBacktracking =
    "the pattern needs more backtracking than allowed; simplify it";

enum class CaseMode {
  kSensitive,
  kInsensitive,
  // Insensitive unless a pattern holds an upper-case letter (outside escapes such as `\S`).
  kSmart,
};

struct MatchOptions {
  bool literal = false;  // the patterns are plain text, not regular expressions
  CaseMode caseMode = CaseMode::kSensitive;
  // A match must not be preceded or followed by a word character (a letter, digit or `_`, the
  // characters of a VB identifier), so "Foo" finds `Foo` and `Foo.Bar` but not `FooBar`,
  // `Foo_Bar` or `Foo1`.
  bool wholeWord = false;
  // The texts are VB code, and a match lies wholly inside one of these parts of it (a CodePart
  // set; every part: no restriction): inside a string literal's contents, a comment's text, or
  // the statements between them. Meant for procedure texts; a caption with an apostrophe would
  // lose the rest of its line. `^` and `$` still match only at the starts and ends of lines.
  uint8_t codeParts = kEveryCodePart;
};

// One match: the bytes [start, end) of the text. `groups` holds the start and end offset of
// every capture group (group 0 is the whole match; PCRE2_UNSET for a group that took no part)
// and stays valid until the Matcher's next call.
struct Match {
  std::size_t start = 0;
  std::size_t end = 0;
  std::span<const std::size_t> groups;
};

// A match with its place: line and column are 1-based; the column counts bytes from the start
// of the line, as grep-like tools report it.
struct LocatedMatch {
  Match match;
  std::size_t line = 1;
  std::size_t column = 1;
};

class Matcher {
 public:
  // Compiles the patterns; a text matches when any of them matches, and where several match the
  // leftmost match wins (at one place, the first pattern given). Raises kInvalidPattern for a
  // pattern that does not compile (and 5 when there is no pattern at all).
  Matcher(const std::vector<std::string>& patterns, const MatchOptions& options);
  Matcher(std::string_view pattern, const MatchOptions& options)
      : Matcher(std::vector<std::string>{std::string(pattern)}, options) {}

  // Whether the patterns are matched without regard to case (after smart case has decided).
  bool CaseInsensitive() const;
  // The number of capture groups of the compiled patterns, taken together.
  std::size_t GroupCount() const;
  // The number of the group with this name, or -1 when there is none.
  int GroupNumber(std::string_view name) const;

  // The first match in `text` that starts at or after `from`, or false. A pattern that backtracks
  // beyond PCRE2's limits on a text raises kInvalidPattern with kTooMuchBacktracking.
  bool Find(std::string_view text, std::size_t from, Match& match);
  bool IsMatch(std::string_view text) {
    Match m;
    return Find(text, 0, m);
  }

  // Calls `visit(const Match&)` for every match in the text, left to right; an empty match is
  // followed by the next match at least one character further on, so `x*` or `^` finds every
  // place once. Returns the number of matches.
  template <class Visit>
  std::size_t ForEach(std::string_view text, Visit&& visit);

  // The same with each match's line and column.
  template <class Visit>
  std::size_t ForEachLocated(std::string_view text, Visit&& visit);

  // Every match of the text (its groups are not kept).
  std::vector<Match> FindAll(std::string_view text);

  // What compiling the patterns gives (matcher.cpp), shared by the Matchers of the same patterns.
  struct Program;

  // Where a walk through a text's matches stands.
  struct Cursor {
    std::size_t from = 0;     // where the next search starts
    bool afterEmpty = false;  // the last match was empty and ended at `from`
  };
  // The next match of a walk, or false when there is none.
  bool Next(std::string_view text, Cursor& cursor, Match& match);

 private:
  struct MatchDataFree {
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
  };

  // One attempt of PCRE2 at `from` over text[0, length); fills `match` on success.
  bool Attempt(std::string_view text, std::size_t length, std::size_t from, uint32_t flags,
               Match& match);
  // Find with PCRE2 flags, keeping to one line.
  bool FindInLine(std::string_view text, std::size_t from, uint32_t flags, Match& match);
  // Find with PCRE2 flags, keeping to one span of the code parts asked for.
  bool FindInParts(std::string_view text, std::size_t from, uint32_t flags, Match& match);
  // Either of the two, as the options ask.
  bool FindFrom(std::string_view text, std::size_t from, uint32_t flags, Match& match);

  std::shared_ptr<const Program> program_;
  std::unique_ptr<pcre2_match_data, MatchDataFree> data_;
  uint8_t codeParts_ = kEveryCodePart;
};

// Turns byte offsets of one text, given in increasing order, into 1-based lines and columns,
// reading each byte of the text at most once.
class LineCounter {
 public:
  explicit LineCounter(std::string_view text) : text_(text) {}
  // Moves to `offset` (not before the last offset given) and sets its line and column.
  void Locate(std::size_t offset, std::size_t& line, std::size_t& column);

 private:
  std::string_view text_;
  std::size_t position_ = 0;
  std::size_t line_ = 1;
  std::size_t lineStart_ = 0;
};

template <class Visit>
std::size_t Matcher::ForEach(std::string_view text, Visit&& visit) {
  std::size_t count = 0;
  Cursor cursor;
  Match match;
  while (Next(text, cursor, match)) {
    ++count;
    visit(static_cast<const Match&>(match));
  }
  return count;
}

template <class Visit>
std::size_t Matcher::ForEachLocated(std::string_view text, Visit&& visit) {
  LineCounter counter(text);
  return ForEach(text, [&](const Match& match) {
    LocatedMatch located{match, 1, 1};
    counter.Locate(match.start, located.line, located.column);
    visit(static_cast<const LocatedMatch&>(located));
  });
}

}  // namespace host::scan
