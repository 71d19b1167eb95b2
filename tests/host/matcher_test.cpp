#include "host/scan/matcher.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "host/scan/replacement.h"
#include "support/errors.h"

namespace {

using host::scan::CaseMode;
using host::scan::Matcher;
using host::scan::MatchOptions;
using host::scan::Replacement;
using qxtest::Caught;

using Spans = std::vector<std::pair<std::size_t, std::size_t>>;

Spans SpansOf(Matcher& matcher, std::string_view text) {
  Spans spans;
  for (const auto& m : matcher.FindAll(text))
    spans.emplace_back(m.start, m.end);
  return spans;
}

Spans SpansOf(std::vector<std::string> patterns, const MatchOptions& options,
              std::string_view text) {
  Matcher matcher(patterns, options);
  return SpansOf(matcher, text);
}

MatchOptions Options(CaseMode caseMode, bool literal = false, bool wholeWord = false) {
  MatchOptions options;
  options.caseMode = caseMode;
  options.literal = literal;
  options.wholeWord = wholeWord;
  return options;
}

// Replaces with a fresh matcher; the text unchanged when nothing matched.
std::pair<std::string, std::size_t> Replaced(std::vector<std::string> patterns,
                                             std::string_view replacement, std::string_view text,
                                             const MatchOptions& options = {}) {
  Matcher matcher(patterns, options);
  Replacement r(replacement, matcher);
  std::string out(text);
  std::size_t count = host::scan::ReplaceAll(matcher, text, r, out);
  return {out, count};
}

TEST(MatcherTest, LiteralPatternsTakeMetacharactersAsText) {
  const std::string text = "x = a(1) + b.c * 2 ' $1.50 [ok]? ^\\d";
  MatchOptions literal = Options(CaseMode::kSensitive, true);
  EXPECT_EQ(SpansOf({"a(1)"}, literal, text), (Spans{{4, 8}}));
  EXPECT_EQ(SpansOf({"b.c *"}, literal, text), (Spans{{11, 16}}));
  EXPECT_EQ(SpansOf({"$1.50 [ok]?"}, literal, text), (Spans{{21, 32}}));
  EXPECT_EQ(SpansOf({"^\\d"}, literal, text), (Spans{{33, 36}}));
  EXPECT_TRUE(SpansOf({"b?c"}, literal, text).empty());
  // \E cannot end a quoted literal early.
  EXPECT_EQ(SpansOf({"a\\Eb"}, literal, "xa\\Eb"), (Spans{{1, 5}}));
  // As a regular expression the same text means something else.
  EXPECT_EQ(SpansOf({"b.c"}, {}, "bxc"), (Spans{{0, 3}}));
}

TEST(MatcherTest, CaseInsensitiveFoldsNonAsciiLetters) {
  const std::string text = "Dim ärger As String: ÄRGER = \"Ärger\"";
  auto spans = SpansOf({"ÄRGER"}, Options(CaseMode::kInsensitive), text);
  EXPECT_EQ(spans, (Spans{{4, 10}, {22, 28}, {32, 38}}));
  EXPECT_EQ(SpansOf({"ärger"}, Options(CaseMode::kInsensitive, true), text), spans);
  EXPECT_EQ(SpansOf({"ÄRGER"}, {}, text), (Spans{{22, 28}}));
  EXPECT_EQ(SpansOf({"größe"}, Options(CaseMode::kInsensitive), "GRÖSSE Größe GRÖßE").size(), 2u);
}

TEST(MatcherTest, SmartCaseIsSensitiveOnlyWithAnUpperCaseLetter) {
  const std::string text = "total Total TOTAL";
  MatchOptions smart = Options(CaseMode::kSmart);
  EXPECT_EQ(SpansOf({"total"}, smart, text).size(), 3u);
  EXPECT_EQ(SpansOf({"Total"}, smart, text), (Spans{{6, 11}}));
  // Upper-case escapes are not letters of the pattern; an upper-case letter outside ASCII is.
  EXPECT_EQ(SpansOf({"\\Stotal\\b"}, smart, "xTotal").size(), 1u);
  EXPECT_EQ(SpansOf({"\\p{Lu}otal"}, smart, text).size(), 2u);
  EXPECT_EQ(SpansOf({"\\x{41}b"}, smart, "ab AB Ab").size(), 3u);
  EXPECT_TRUE(Matcher("ärger", smart).CaseInsensitive());
  EXPECT_FALSE(Matcher("Ärger", smart).CaseInsensitive());
  EXPECT_FALSE(Matcher("\\QA\\E", smart).CaseInsensitive());
  // With several patterns, one upper-case letter anywhere makes all of them sensitive.
  EXPECT_FALSE(Matcher(std::vector<std::string>{"total", "Sum"}, smart).CaseInsensitive());
  // A literal pattern is all letters: \S there is a backslash and an upper-case S.
  EXPECT_FALSE(Matcher("\\S", Options(CaseMode::kSmart, true)).CaseInsensitive());
}

TEST(MatcherTest, WholeWordTreatsIdentifierCharactersAsWord) {
  const std::string text = "Foo Foo_Bar FooBar Foo1 _Foo Foo.Bar(Foo) Füo Foo";
  MatchOptions word = Options(CaseMode::kSensitive, false, true);
  EXPECT_EQ(SpansOf({"Foo"}, word, text), (Spans{{0, 3}, {29, 32}, {37, 40}, {47, 50}}));
  // A pattern that starts or ends with a non-word character still needs a non-word neighbour.
  EXPECT_EQ(SpansOf({".Bar"}, Options(CaseMode::kSensitive, true, true), "Foo.Bar (.Bar)"),
            (Spans{{9, 13}}));
  // Letters outside ASCII are word characters too.
  EXPECT_TRUE(SpansOf({"F"}, word, "Füo").empty());
  // Alternatives are all held to whole words.
  EXPECT_EQ(SpansOf({"Foo|Bar"}, word, "FooBar Bar"), (Spans{{7, 10}}));
}

TEST(MatcherTest, CodePartsKeepEveryMatchInsideItsPart) {
  auto starts = [](uint8_t parts, const std::string& pattern, const std::string& text) {
    MatchOptions options;
    options.codeParts = parts;
    options.caseMode = CaseMode::kInsensitive;
    std::vector<std::size_t> found;
    for (const auto& m : Matcher(pattern, options).FindAll(text))
      found.push_back(m.start);
    return found;
  };
  // A doubled quote inside a literal, a comment after code, Rem as a statement and after ":",
  // an unclosed literal running to the end of its line, Rem inside a name, and a comment that
  // " _" goes on with over the next line.
  const std::string text =
      "x = \"Foo \"\"Foo\"\" \" & foo ' Foo\r\n"
      "Rem Foo\r\n"
      "y = Foo: rem Foo\n"
      "z = \"Foo\r"
      "foo.Remove Foo ' a _\n"
      "  Foo";
  EXPECT_EQ(starts(host::scan::kStatements, "foo", text),
            (std::vector<std::size_t>{21, 45, 67, 78}));
  EXPECT_EQ(starts(host::scan::kComments, "foo", text), (std::vector<std::size_t>{27, 36, 54, 90}));
  EXPECT_EQ(starts(host::scan::kStrings, "foo", text), (std::vector<std::size_t>{5, 11, 63}));
  EXPECT_EQ(starts(host::scan::kStrings | host::scan::kComments, "foo", text).size(), 7u);
  // A match never takes in the quotes, the ' or the Rem, nor reaches from one part into the
  // next; `$` matches where the line ends, not where a part does.
  EXPECT_TRUE(starts(host::scan::kStrings, "\"", "s = \"Foo\" & \"\"").empty());
  EXPECT_TRUE(starts(host::scan::kComments, "'|rem", "s = 1 ' Foo\r\nRem Foo").empty());
  EXPECT_TRUE(starts(host::scan::kStatements, "= \"", text).empty());
  EXPECT_EQ(starts(host::scan::kStrings, "o$", "s = \"Foo\" & \"Goo"),
            (std::vector<std::size_t>{15}));
  // Searching from a line that a comment goes on to finds the comment's text there.
  MatchOptions comments;
  comments.codeParts = host::scan::kComments;
  Matcher inComments("Foo", comments);
  host::scan::Match match;
  ASSERT_TRUE(inComments.Find(text, 88, match));
  EXPECT_EQ(match.start, 90u);

  // Replacing keeps the other parts as they were.
  MatchOptions code;
  code.codeParts = host::scan::kStatements;
  Matcher matcher("Foo", code);
  std::string replaced;
  host::scan::ReplaceAll(matcher, "s = \"Foo's\" & Foo 'Foo", Replacement("Bar", matcher),
                         replaced);
  EXPECT_EQ(replaced, "s = \"Foo's\" & Bar 'Foo");
  host::scan::ReplaceAll(inComments, "s = \"Foo's\" & Foo 'Foo", Replacement("Bar", inComments),
                         replaced);
  EXPECT_EQ(replaced, "s = \"Foo's\" & Foo 'Bar");
}

TEST(MatcherTest, SeveralPatternsLeftmostFirst) {
  const std::string text = "Call DoItNow: DoIt";
  // The leftmost match wins whichever pattern it comes from.
  EXPECT_EQ(SpansOf({"DoIt$", "Call"}, {}, text), (Spans{{0, 4}, {14, 18}}));
  // At one place the pattern given first wins, even when a later one would match more.
  EXPECT_EQ(SpansOf({"DoIt", "DoItNow"}, {}, text), (Spans{{5, 9}, {14, 18}}));
  EXPECT_EQ(SpansOf({"DoItNow", "DoIt"}, {}, text), (Spans{{5, 12}, {14, 18}}));
  // Patterns are separate: an alternation in one does not reach into the next.
  EXPECT_EQ(SpansOf({"x|Call", "Now"}, Options(CaseMode::kSensitive, false, true), text),
            (Spans{{0, 4}}));
  // Groups are numbered across the patterns, in order.
  Matcher matcher(std::vector<std::string>{"(a)(b)", "(c)"}, {});
  EXPECT_EQ(matcher.GroupCount(), 3u);
}

TEST(MatcherTest, OffsetsLinesAndColumnsAreBytes) {
  // Three lines ending CR LF, LF and a lone CR, in Chinese.
  const std::string text = "' 计算总数\r\n总数 = 总数 + 1\n' 总数\rEnd";
  Matcher matcher("总数", {});
  std::vector<std::vector<std::size_t>> found;
  matcher.ForEachLocated(text, [&](const host::scan::LocatedMatch& m) {
    found.push_back({m.match.start, m.match.end, m.line, m.column});
    EXPECT_EQ(text.substr(m.match.start, m.match.end - m.match.start), "总数");
  });
  EXPECT_EQ(found, (std::vector<std::vector<std::size_t>>{
                       {8, 14, 1, 9}, {16, 22, 2, 1}, {25, 31, 2, 10}, {38, 44, 3, 3}}));
  Matcher end("^End", {});
  end.ForEachLocated(text, [&](const host::scan::LocatedMatch& m) {
    EXPECT_EQ(m.line, 4u);
    EXPECT_EQ(m.column, 1u);
  });
}

TEST(MatcherTest, MatchesNeverSpanALineBreak) {
  const std::string text = "a = 1\r\nb = 2\nc = 3";
  EXPECT_EQ(SpansOf({"1\\s+b"}, {}, text), Spans{});
  EXPECT_EQ(SpansOf({"\\d\\s*"}, {}, text), (Spans{{4, 5}, {11, 12}, {17, 18}}));
  EXPECT_EQ(SpansOf({"^\\w"}, {}, text), (Spans{{0, 1}, {7, 8}, {13, 14}}));
  EXPECT_EQ(SpansOf({"\\d$"}, {}, text), (Spans{{4, 5}, {11, 12}, {17, 18}}));
  // A match over the break gives way to the match within the line, which may start later.
  EXPECT_EQ(SpansOf({"= \\d[^x]*|= 2"}, {}, text), (Spans{{2, 5}, {9, 12}, {15, 18}}));
}

TEST(MatcherTest, InvalidUtf8InTheTextNeverMatchesNorFails) {
  // Bytes of a code page (é in 1252), a lone continuation byte, a truncated sequence, a NUL.
  const std::string text = std::string("caf\xE9 = \"\x80x\xE4\xB8\" & \0x", 18) + " ärger";
  EXPECT_EQ(SpansOf({"x"}, {}, text), (Spans{{9, 10}, {17, 18}}));
  EXPECT_EQ(SpansOf({"caf."}, {}, text), Spans{});
  EXPECT_EQ(SpansOf({"ÄRGER"}, Options(CaseMode::kInsensitive), text), (Spans{{19, 25}}));
  // An empty match may fall at every place, also inside what is not UTF-8.
  EXPECT_EQ(SpansOf({"x*"}, {}, "\xE4\xB8x").size(), 3u);
  // A pattern must itself be valid UTF-8.
  EXPECT_EQ(Caught([] { Matcher("caf\xE9", {}); }).Number(), host::scan::kInvalidPattern);
}

TEST(MatcherTest, EmptyMatchesAdvanceOneCharacter) {
  EXPECT_EQ(SpansOf({"^"}, {}, "ab\r\ncd\n"), (Spans{{0, 0}, {4, 4}}));
  EXPECT_EQ(SpansOf({"x*"}, {}, "axxb"), (Spans{{0, 0}, {1, 3}, {3, 3}, {4, 4}}));
  // One step past an empty match is one character, not one byte.
  EXPECT_EQ(SpansOf({"x*"}, {}, "äx"), (Spans{{0, 0}, {2, 3}, {3, 3}}));
  EXPECT_EQ(SpansOf({""}, {}, ""), (Spans{{0, 0}}));
  EXPECT_EQ(SpansOf({"$"}, {}, "a\r\nb"), (Spans{{1, 1}, {4, 4}}));
  EXPECT_EQ(Replaced({"x*"}, "-", "axb"), std::make_pair(std::string("-a--b-"), std::size_t{4}));
}

TEST(MatcherTest, ReplacementExpandsGroupsAndDollars) {
  EXPECT_EQ(Replaced({"(\\w+) = (\\d+)"}, "$2 = $1", "a = 1: bb = 22"),
            std::make_pair(std::string("1 = a: 22 = bb"), std::size_t{2}));
  EXPECT_EQ(Replaced({"(?<name>\\w+)\\("}, "${name}Ex(", "Call Foo(1) + Bar(2)").first,
            "Call FooEx(1) + BarEx(2)");
  EXPECT_EQ(Replaced({"(?<name>\\w+)\\("}, "$name$$(", "Foo(").first, "Foo$(");
  EXPECT_EQ(Replaced({"(\\d)"}, "${1}0 $0 $$1 $ $} ${ $", "5").first, "50 5 $1 $ $} ${ $");
  // A group that took no part gives nothing.
  EXPECT_EQ(Replaced({"(a)|(b)"}, "[$1$2]", "ab").first, "[a][b]");
  // Replacing with literal patterns keeps `$` references to the whole match working.
  EXPECT_EQ(Replaced({"a.b"}, "<$0>", "a.b axb", Options(CaseMode::kSensitive, true)).first,
            "<a.b> axb");

  // Nothing matched: nothing replaced and the output untouched.
  Matcher matcher("zzz", {});
  Replacement plain("y", matcher);
  EXPECT_TRUE(plain.IsPlain());
  std::string out = "untouched";
  EXPECT_EQ(host::scan::ReplaceAll(matcher, "abc", plain, out), 0u);
  EXPECT_EQ(out, "untouched");

  // One match's expansion, for a preview.
  Matcher call("Call (\\w+)", {});
  Replacement r("$1()", call);
  EXPECT_FALSE(r.IsPlain());
  host::scan::Match m;
  ASSERT_TRUE(call.Find("x: Call Foo", 0, m));
  EXPECT_EQ(r.Expand("x: Call Foo", m), "Foo()");
}

// A scan makes a Matcher per component: matchers of the same patterns and options share what
// compiling gave, never what a match found; other options are another pattern.
TEST(MatcherTest, MatchersOfOnePatternShareItsCodeButNotTheirMatches) {
  const std::string pattern = "(\\w+) = (\\d+)";
  Matcher first(pattern, {});
  Matcher second(pattern, {});
  host::scan::Match a;
  host::scan::Match b;
  ASSERT_TRUE(first.Find("total = 42", 0, a));
  ASSERT_TRUE(second.Find("x = 7", 0, b));
  EXPECT_EQ((std::vector<std::size_t>(a.groups.begin(), a.groups.end())),
            (std::vector<std::size_t>{0, 10, 0, 5, 8, 10}));
  EXPECT_EQ(b.groups[3], 1u);

  EXPECT_EQ(SpansOf({"ABC"}, Options(CaseMode::kSensitive, true), "abc ABC"), (Spans{{4, 7}}));
  EXPECT_EQ(SpansOf({"ABC"}, Options(CaseMode::kInsensitive, true), "abc ABC"),
            (Spans{{0, 3}, {4, 7}}));
  EXPECT_EQ(SpansOf({"ABC"}, Options(CaseMode::kSensitive, false, true), "ABCD ABC"),
            (Spans{{5, 8}}));
  // Many patterns later, the first is still right; one that does not compile raises each time.
  for (int i = 0; i < 20; ++i)
    SpansOf({"p" + std::to_string(i)}, {}, "p1");
  EXPECT_EQ(SpansOf({"ABC"}, Options(CaseMode::kSensitive, true), "abc ABC"), (Spans{{4, 7}}));
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(Caught([] { Matcher("Foo(", {}); }).Number(), host::scan::kInvalidPattern);
}

TEST(MatcherTest, BadPatternsAndReplacementsRaiseNamingTheFault) {
  Matcher matcher("(?<word>\\w+) (\\d)", {});
  auto error = Caught([&] { Replacement("$3", matcher); });
  EXPECT_EQ(error.Number(), host::scan::kInvalidPattern);
  EXPECT_EQ(error.Description(),
            "Invalid pattern string: replacement \"$3\": no group 3 in the pattern");
  EXPECT_EQ(Caught([&] { Replacement("${nope}", matcher); }).Description(),
            "Invalid pattern string: replacement \"${nope}\": no group named \"nope\" in the "
            "pattern");
  EXPECT_EQ(Caught([&] { Replacement("$2x", matcher); }).Description(),
            "Invalid pattern string: replacement \"$2x\": no group named \"2x\" in the pattern "
            "(write ${2}x for group 2 followed by \"x\")");
  EXPECT_EQ(Caught([&] { Replacement("${2}x $word", matcher); }).Number(), 0);

  // A pattern that does not compile raises with PCRE2's message.
  error = Caught([] { Matcher("Foo(", {}); });
  EXPECT_EQ(error.Number(), host::scan::kInvalidPattern);
  EXPECT_EQ(error.Description(),
            "Invalid pattern string: \"Foo(\": missing closing parenthesis at offset 4");
  // With several patterns, the one that fails is named, with the offset in it.
  EXPECT_EQ(Caught([] {
              Matcher(std::vector<std::string>{"ok", "a[b"}, {});
            }).Description(),
            "Invalid pattern string: \"a[b\": missing terminating ] for character class at "
            "offset 3");
  // Patterns that compile alone but not together.
  EXPECT_EQ(Caught([] {
              Matcher(std::vector<std::string>{"(?<n>a)", "(?<n>b)"}, {});
            }).Number(),
            host::scan::kInvalidPattern);
  // A pattern cannot close the group it is put in.
  EXPECT_EQ(Caught([] { Matcher(std::vector<std::string>{"a)|(b"}, {}); }).Number(),
            host::scan::kInvalidPattern);
  EXPECT_EQ(Caught([] { Matcher(std::vector<std::string>{}, {}); }).Number(), 5);
}

}  // namespace
