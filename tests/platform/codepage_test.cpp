#include "platform/codepage.h"

#include <gtest/gtest.h>

#include <random>

#include "support/errors.h"
#include "test_files.h"

using platform::GetCodePage;
using qxtest::Caught;
using qxtest::ErrorOf;

namespace {

std::string RandomBytes(std::mt19937& random, std::size_t size) {
  std::string bytes(size, '\0');
  for (char& c : bytes)
    c = static_cast<char>(random() & 0xFF);
  return bytes;
}

TEST(CodePage, Windows1252EveryByteRoundTrips) {
  const platform::CodePage& cp = GetCodePage(1252);
  std::string all;
  for (int b = 0; b < 256; ++b)
    all += static_cast<char>(b);
  EXPECT_EQ(cp.Encode(cp.Decode(all)), all);

  EXPECT_EQ(cp.Decode("\x80"), "€");
  EXPECT_EQ(cp.Decode("caf\xE9 \x93quoted\x94"), "café “quoted”");
  // The five bytes Windows-1252 leaves undefined become the C1 controls of the same number.
  EXPECT_EQ(cp.Decode("\x81\x8D\x8F\x90\x9D"), "\u0081\u008D\u008F\u0090\u009D");
  EXPECT_EQ(cp.Encode("€ Œ ž ÿ"), "\x80 \x8C \x9E \xFF");
}

TEST(CodePage, UnrepresentableCharactersRaiseNamingThem) {
  const platform::CodePage& cp = GetCodePage(1252);
  const automation::Error e = Caught([&] { cp.Encode("a中b"); });
  EXPECT_EQ(e.Number(), 5);
  EXPECT_NE(e.Description().find("U+4E2D"), std::string::npos);
  EXPECT_EQ(ErrorOf([&] { cp.Encode(std::string("\xC3", 1)); }), 5);  // not UTF-8
  EXPECT_EQ(GetCodePage(936).Encode("Ω€"), "\xA6\xB8\x80");
  EXPECT_NE(Caught([&] { GetCodePage(936).Encode("año"); }).Description().find("U+00F1 'ñ'"),
            std::string::npos);
  EXPECT_NE(Caught([&] { GetCodePage(1251).Encode("ж中"); }).Description().find("U+4E2D"),
            std::string::npos);
  // An escape character always encodes, in any code page, to the byte it stands for.
  EXPECT_EQ(cp.Encode("\U0010FF41\U0010FFFF"), "A\xFF");
}

TEST(CodePage, KnownWordsDecodeAndBadBytesBecomeEscapes) {
  EXPECT_EQ(GetCodePage(936).Decode("\xD6\xD0\xCE\xC4 OK"), "中文 OK");
  EXPECT_EQ(GetCodePage(936).Encode("中文 OK"), "\xD6\xD0\xCE\xC4 OK");
  EXPECT_EQ(GetCodePage(932).Decode("\x93\xFA\x96\x7B"), "日本");
  EXPECT_EQ(GetCodePage(950).Decode("\xA4\xA4\xA4\xE5"), "中文");
  EXPECT_EQ(GetCodePage(1251).Decode("\xCF\xF0\xE8\xE2\xE5\xF2"), "Привет");
  // A lead byte without a valid trail byte is carried as an escape, and the next byte is
  // read on its own.
  EXPECT_EQ(GetCodePage(936).Decode("\xD6"), "\U0010FFD6");
  EXPECT_EQ(GetCodePage(932).Decode("\x93\n"), "\U0010FF93\n");
  // A UTF-8 file may hold the escape characters themselves; they must not turn into bytes.
  const platform::CodePage& utf8 = GetCodePage(65001);
  EXPECT_EQ(utf8.Encode(utf8.Decode("\xF4\x8F\xBD\x81 and \xFF")), "\xF4\x8F\xBD\x81 and \xFF");
  EXPECT_EQ(utf8.Decode("\xFF"), "\U0010FFFF");
}

TEST(CodePage, RandomBytesRoundTripInEveryCodePage) {
  std::mt19937 random(1234);
  for (int number : {932, 936, 949, 950, 1250, 1251, 1253, 1255, 1256, 1258, 874, 65001}) {
    const platform::CodePage& cp = GetCodePage(number);
    for (std::size_t size : {1u, 2u, 3u, 17u, 1000u, 9000u}) {
      const std::string bytes = RandomBytes(random, size);
      EXPECT_EQ(cp.Encode(cp.Decode(bytes)), bytes) << "code page " << number << ", " << size;
    }
  }
  // Mostly valid text with damage in it, across the block size, the common real-world case.
  std::string text;
  for (int i = 0; i < 3000; ++i)
    text += i % 997 == 0 ? "\xD6" : "\xD6\xD0 x";
  const platform::CodePage& gbk = GetCodePage(936);
  EXPECT_EQ(gbk.Encode(gbk.Decode(text)), text);
}

TEST(CodePage, CurrentCodePageFollowsSettingAndEnvironment) {
  platform::ClearCurrentCodePage();
  ::unsetenv("QX_CODEPAGE");
  EXPECT_EQ(platform::CurrentCodePage().Number(), 1252);
  ::setenv("QX_CODEPAGE", "936", 1);
  EXPECT_EQ(platform::CurrentCodePage().Number(), 936);
  platform::SetCurrentCodePage(932);
  EXPECT_EQ(platform::CurrentCodePage().Number(), 932);
  platform::ClearCurrentCodePage();
  ::setenv("QX_CODEPAGE", "4711", 1);
  EXPECT_EQ(Caught([] { platform::CurrentCodePage(); }).Description(), "Unknown code page: 4711");
  ::setenv("QX_CODEPAGE", "cp936", 1);
  EXPECT_EQ(ErrorOf([] { platform::CurrentCodePage(); }), 5);
  ::unsetenv("QX_CODEPAGE");

  EXPECT_EQ(Caught([] { platform::SetCurrentCodePage(12345); }).Description(),
            "Unknown code page: 12345");
  EXPECT_EQ(platform::CurrentCodePage().Number(), 1252);
  EXPECT_TRUE(platform::IsKnownCodePage(1251));
  EXPECT_FALSE(platform::IsKnownCodePage(0));
  EXPECT_FALSE(platform::IsKnownCodePage(99999));
}

}  // namespace
