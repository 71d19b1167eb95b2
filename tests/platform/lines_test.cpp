#include "platform/lines.h"

#include <gtest/gtest.h>

#include "platform/codepage.h"
#include "support/temp_home.h"
#include "test_files.h"

namespace {

// Each line followed by "|" and a name for its line end.
std::string Split(std::string_view text, platform::LineEnds ends = platform::LineEnds::kAny) {
  platform::LineReader reader(text, ends);
  std::string out;
  std::string_view line;
  while (reader.Next(line)) {
    const std::string_view end = reader.LastLineEnd();
    out += std::string(line) + "|" +
           (end == "\r\n" ? "crlf"
            : end == "\r" ? "cr"
            : end == "\n" ? "lf"
                          : "none") +
           " ";
  }
  return out;
}

TEST(Lines, AnyLineEnd) {
  EXPECT_EQ(Split("a\r\nb\rc\nd"), "a|crlf b|cr c|lf d|none ");
  EXPECT_EQ(Split("a\r\n"), "a|crlf ");
  EXPECT_EQ(Split(""), "");
  EXPECT_EQ(Split("\n\n"), "|lf |lf ");
  EXPECT_EQ(Split("\r\r\n"), "|cr |crlf ");
  EXPECT_EQ(Split("x\n\r"), "x|lf |cr ");
  EXPECT_EQ(Split(std::string_view("a\0b\r", 4)), std::string("a\0b|cr ", 7));
}

TEST(Lines, OnlyCrLfAndCrEndLinesInTheDhtmlMode) {
  const auto mode = platform::LineEnds::kCrOrCrLf;
  EXPECT_EQ(Split("a\nb\r\nc\rd\n", mode), "a\nb|crlf c|cr d\n|none ");
  EXPECT_EQ(Split("\n", mode), "\n|none ");
  EXPECT_EQ(Split("x\r", mode), "x|cr ");
}

TEST(Lines, ReadLinesDecodesWithTheCurrentCodePage) {
  qxtest::TempHome home;
  platform::ClearCurrentCodePage();
  platformtest::WriteBytes(home.path() / "f.bas", "caf\xE9\r\nna\xEFve\nend");
  EXPECT_EQ(platform::ReadLines((home.path() / "F.BAS").string()),
            (std::vector<std::string>{"café", "naïve", "end"}));
  platform::SetCurrentCodePage(936);
  platformtest::WriteBytes(home.path() / "g.bas", "\xD6\xD0\r\n\xCE\xC4\r\n");
  EXPECT_EQ(platform::ReadLines((home.path() / "g.bas").string()),
            (std::vector<std::string>{"中", "文"}));
  platform::ClearCurrentCodePage();
}

}  // namespace
