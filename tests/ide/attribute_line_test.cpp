#include "ide/text/attribute_line.h"

#include <gtest/gtest.h>

namespace {

using ide::ParseAttributeLine;

TEST(AttributeLine, ReadsNameMemberAndWhereTheValueStarts) {
  const std::string_view line = "  attribute\tVB_Name  =  \"Form1\"";
  const auto name = ParseAttributeLine(line);
  ASSERT_TRUE(name);
  EXPECT_EQ(name->name, "VB_Name");
  EXPECT_EQ(name->Member(), "");
  EXPECT_EQ(line.substr(name->valueStart), "\"Form1\"");

  const auto member = ParseAttributeLine("Attribute Text1.VB_VarHelpID = -1");
  ASSERT_TRUE(member);
  EXPECT_EQ(member->Member(), "Text1");
  EXPECT_EQ(member->name, "Text1.VB_VarHelpID");
}

TEST(AttributeLine, OtherLinesAreNotAttributes) {
  EXPECT_FALSE(ParseAttributeLine("Attributes = 1"));
  EXPECT_FALSE(ParseAttributeLine("Attribute VB_Name"));
  EXPECT_FALSE(ParseAttributeLine("Attribute VB_Name \"X\""));
  EXPECT_FALSE(ParseAttributeLine("Attribute"));
  EXPECT_FALSE(ParseAttributeLine("Attribute = 1"));
  EXPECT_FALSE(ParseAttributeLine("' Attribute VB_Name = \"X\""));
}

}  // namespace
