// One property line: its parts, VB6's layout and the value forms VB6 writes.

#include <gtest/gtest.h>

#include <string>

#include "ide/form/property_line.h"
#include "platform/codepage.h"

namespace {

using namespace ide::form;

TEST(PropertyLine, NamesArePaddedToSixteenColumnsAndDottedOnesWithoutTheirPrefix) {
  struct Case {
    std::size_t indent;
    const char* name;
    const char* line;
  };
  const Case cases[] = {
      {3, "Caption", "   Caption         =   \"x\""},
      {6, "Object.Height", "      Object.Height          =   \"x\""},
      {6, "Object.ToolTipText", "      Object.ToolTipText     =   \"x\""},
      {3, "PrintFileLinesPerPage", "   PrintFileLinesPerPage=   \"x\""},
      {3, "ConnectionSource", "   ConnectionSource=   \"x\""},
      {3, "StartUpPosition", "   StartUpPosition =   \"x\""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(FormatPropertyLine(c.indent, c.name, "\"x\""), c.line);
  }
}

TEST(PropertyLine, ValueFormsAreThoseVb6Writes) {
  struct Case {
    std::string got;
    const char* want;
  };
  const Case cases[] = {
      {FormatString("Say \"hi\""), "\"Say \"\"hi\"\"\""},
      {FormatString(""), "\"\""},
      {FormatNumber(-15), "-15"},
      {FormatNumber(2147483647), "2147483647"},
      {FormatSingle(8.25f), "8.25"},
      {FormatSingle(9.0f), "9"},
      {FormatSingle(1542.637f), "1542.637"},
      {FormatSingle(0.1f), "0.1"},
      {FormatSingle(-0.0f), "0"},
      {FormatSingle(1e10f), "10000000000"},
      {FormatColour(0x8000000F), "&H8000000F&"},
      {FormatColour(0xC0C0C0), "&H00C0C0C0&"},
      {FormatBoolean(true), "-1  'True"},
      {FormatBoolean(false), "0   'False"},
      {FormatEnumeration(99, "Custom"), "99  'Custom"},
      {FormatEnumeration(0, "None"), "0  'None"},
      {FormatCompanionReference({true, "Form4.frx", 0xA6}), "$\"Form4.frx\":00A6"},
      {FormatCompanionReference({false, "TSplit.frx", 0x1268C}), "\"TSplit.frx\":1268C"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(c.got, c.want);
}

TEST(PropertyLine, LinesSplitIntoNameValueAndComment) {
  struct Case {
    const char* line;
    const char* name;
    const char* value;
    const char* comment;  // nullptr: none
  };
  const Case cases[] = {
      {"   Caption         =   \"It's ok\"", "Caption", "\"It's ok\"", nullptr},
      {"   Caption         =   \"a \"\"b'\"\"\"  'note", "Caption", "\"a \"\"b'\"\"\"", "note"},
      {"   MaxButton       =   0   'False", "MaxButton", "0", "False"},
      {"   StartUpPosition =   3  '\xE7\xAA\x97\xE5\x8F\xA3", "StartUpPosition", "3",
       "\xE7\xAA\x97\xE5\x8F\xA3"},
      {"      Object.Width           =   4410", "Object.Width", "4410", nullptr},
      {"   Caption         =   $\"F.frx\":00A6", "Caption", "$\"F.frx\":00A6", nullptr},
      {"   Shortcut        =   ^{F12}", "Shortcut", "^{F12}", nullptr},
      {"   Tag             =   ", "Tag", "", nullptr},
      {"X=1", "X", "1", nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    const auto parts = SplitPropertyLine(c.line);
    ASSERT_TRUE(parts);
    EXPECT_EQ(parts->name, c.name);
    EXPECT_EQ(parts->value, c.value);
    EXPECT_EQ(parts->hasComment, c.comment != nullptr);
    EXPECT_EQ(parts->comment, c.comment ? c.comment : "");
  }
  for (const char* bad : {"   Caption", "   = 3", "   Two Words = 3", ""}) {
    EXPECT_FALSE(SplitPropertyLine(bad)) << bad;
  }
}

TEST(PropertyLine, CompanionReferencesAndQuotedStringsAreRecognisedExactly) {
  EXPECT_EQ(ParseCompanionReference("\"Form1.frx\":0000"),
            (CompanionReference{false, "Form1.frx", 0}));
  EXPECT_EQ(ParseCompanionReference("$\"My Form.frx\":1268c"),
            (CompanionReference{true, "My Form.frx", 0x1268C}));
  for (const char* no : {"\"Form1.frx\"", "\"Form1.frx\":", "\"Form1.frx\":00G0", "Form1.frx:0000",
                         "\"a\":123456789", "$\"x.frx\":0000 'c", "-1"}) {
    EXPECT_FALSE(ParseCompanionReference(no)) << no;
  }
  EXPECT_EQ(UnquoteString("\"a \"\"b\"\"\""), "a \"b\"");
  EXPECT_EQ(UnquoteString("\"\""), "");
  EXPECT_FALSE(UnquoteString("\"a\" \"b\""));
  EXPECT_FALSE(UnquoteString("\"open"));
  EXPECT_FALSE(UnquoteString("12"));
}

TEST(PropertyLine, LongOrMultiLineStringsNeedTheCompanion) {
  const auto& latin = platform::GetCodePage(1252);
  const auto& gbk = platform::GetCodePage(936);
  EXPECT_FALSE(StringNeedsCompanion(std::string(126, 'a'), latin));
  EXPECT_FALSE(StringNeedsCompanion(std::string(kLongestInlineString, 'a'), latin));
  EXPECT_TRUE(StringNeedsCompanion(std::string(kLongestInlineString + 1, 'a'), latin));
  EXPECT_TRUE(StringNeedsCompanion(std::string(131, 'a'), latin));
  EXPECT_TRUE(StringNeedsCompanion("two\r\nlines", latin));
  EXPECT_TRUE(StringNeedsCompanion("bare\nline feed", latin));
  // Counted in the file's bytes: 60 Chinese characters are 180 bytes of UTF-8 but 120 of GBK.
  std::string chinese;
  for (int i = 0; i < 60; ++i)
    chinese += "\xE4\xB8\xAD";  // 中
  EXPECT_FALSE(StringNeedsCompanion(chinese, gbk));
  EXPECT_TRUE(StringNeedsCompanion(chinese + chinese, gbk));
}

}  // namespace
