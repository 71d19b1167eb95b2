#include "automation/casefold.h"

#include <gtest/gtest.h>

#include "automation/error.h"

namespace {

using namespace automation;

TEST(CaseFold, AsciiFoldsOnlyAsciiLetters) {
  EXPECT_TRUE(EqualsAsciiNoCase("Attribute", "ATTRIBUTE"));
  EXPECT_FALSE(EqualsAsciiNoCase("ärger", "ÄRGER"));
  EXPECT_FALSE(EqualsAsciiNoCase("Begin", "BeginProperty"));
  EXPECT_EQ(LowerAscii("VB_Name Ä"), "vb_name Ä");
}

TEST(CaseFold, VbNamesFoldLettersOfEveryScript) {
  // VB6 takes these for one name in its code page; so do the driver and the IDE.
  EXPECT_TRUE(SameVbName("ärger", "ÄRGER"));
  EXPECT_TRUE(SameVbName("frmГлавная", "FRMгЛАВНАЯ"));
  EXPECT_EQ(VbNameKey("Größe"), VbNameKey("GRÖßE"));
  EXPECT_FALSE(SameVbName("Form1", "Form2"));
  // Bytes that are not UTF-8 compare as themselves.
  EXPECT_TRUE(EqualsNoCaseUnicode("A\xff", "a\xff"));
  EXPECT_FALSE(EqualsNoCaseUnicode("a\xff", "a\xfe"));
  EXPECT_LT(CompareNoCaseUnicode("abc", "ABD"), 0);
}

TEST(StandardErrors, TextsComeFromOneTable) {
  EXPECT_EQ(StandardText(err::kInvalidFileFormat), "Invalid file format");
  EXPECT_EQ(StandardText(3), "Return without GoSub");
  EXPECT_EQ(StandardText(746), "Replacements too long");
  EXPECT_EQ(StandardText(462), "The remote server machine does not exist or is unavailable");
  EXPECT_EQ(StandardText(err::kUserError), "Application-defined or object-defined error");
  EXPECT_EQ(StandardText(4), "Application-defined or object-defined error");
}

}  // namespace
