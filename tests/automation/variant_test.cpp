#include "automation/variant.h"

#include <gtest/gtest.h>

#include "automation/error.h"
#include "support/errors.h"

namespace {

using automation::Variant;
using qxtest::ErrorOf;

TEST(Variant, IntegerConversionsRoundHalfToEvenWithHalfOpenBounds) {
  EXPECT_EQ(Variant(0.5).ToInteger(), 0);
  EXPECT_EQ(Variant(1.5).ToInteger(), 2);
  EXPECT_EQ(Variant(2.5).ToInteger(), 2);
  EXPECT_EQ(Variant(-0.5).ToInteger(), 0);
  EXPECT_EQ(Variant(-1.5).ToInteger(), -2);
  EXPECT_EQ(Variant(32766.5).ToInteger(), 32766);
  EXPECT_EQ(Variant(-32768.5).ToInteger(), -32768);
  EXPECT_EQ(ErrorOf([] { Variant(32767.5).ToInteger(); }), 6);
  EXPECT_EQ(ErrorOf([] { Variant(40000).ToInteger(); }), 6);
  EXPECT_EQ(ErrorOf([] { Variant(2147483647.5).ToLong(); }), 6);
  EXPECT_EQ(Variant(true).ToLong(), -1);
  EXPECT_EQ(Variant().ToLong(), 0);
}

TEST(Variant, StringsConvertToNumbersAsVbParsesThem) {
  EXPECT_EQ(Variant(" 42 ").ToLong(), 42);
  EXPECT_EQ(Variant("2.5").ToInteger(), 2);
  EXPECT_EQ(Variant("-7").ToLong(), -7);
  EXPECT_EQ(Variant("7-").ToLong(), -7);
  EXPECT_EQ(Variant("(5)").ToLong(), -5);
  EXPECT_EQ(Variant("1,234").ToLong(), 1234);
  EXPECT_EQ(Variant("1E3").ToLong(), 1000);
  EXPECT_EQ(Variant("&HFFFF").ToInteger(), -1);
  EXPECT_EQ(Variant("&H8000").ToInteger(), -32768);
  EXPECT_EQ(Variant("&H8000000F").ToLong(), -2147483633);
  EXPECT_EQ(Variant("&o17").ToLong(), 15);
  EXPECT_EQ(Variant("True").ToLong(), -1);
  EXPECT_EQ(ErrorOf([] { Variant("&H10000").ToInteger(); }), 6);
  EXPECT_EQ(ErrorOf([] { Variant("&H8000000F&").ToLong(); }), 13);
  EXPECT_EQ(ErrorOf([] { Variant("12abc").ToLong(); }), 13);
  EXPECT_EQ(ErrorOf([] { Variant("").ToLong(); }), 13);
  EXPECT_EQ(ErrorOf([] { Variant("inf").ToDouble(); }), 13);
}

TEST(Variant, BooleansAndStrings) {
  EXPECT_TRUE(Variant("true").ToBool());
  EXPECT_TRUE(Variant("#TRUE#").ToBool());
  EXPECT_FALSE(Variant("False").ToBool());
  EXPECT_TRUE(Variant("1.5").ToBool());
  EXPECT_FALSE(Variant("0").ToBool());
  EXPECT_EQ(ErrorOf([] { Variant("yes").ToBool(); }), 13);
  EXPECT_EQ(Variant(true).ToString(), "True");
  EXPECT_EQ(Variant(-12).ToString(), "-12");
  EXPECT_EQ(Variant::Single(8.25f).ToString(), "8.25");
  EXPECT_EQ(Variant::Single(0.1f).ToString(), "0.1");
  EXPECT_EQ(Variant(1e20).ToString(), "1E+20");
  EXPECT_EQ(Variant(-0.0).ToString(), "0");
  EXPECT_EQ(Variant::Cur(automation::Currency{15000}).ToString(), "1.5");
  EXPECT_EQ(Variant().ToString(), "");
}

TEST(Variant, ObjectsAndTypes) {
  EXPECT_EQ(Variant().ToObject(), nullptr);
  EXPECT_EQ(ErrorOf([] { Variant(5).ToObject(); }), 424);
  EXPECT_EQ(ErrorOf([] { Variant(automation::ObjectRef()).ToLong(); }), 13);
  EXPECT_EQ(Variant::Integer(3).Type(), automation::VarType::Integer);
  EXPECT_EQ(Variant("3").ConvertTo(automation::VarType::Integer), Variant::Integer(3));
  EXPECT_EQ(Variant(2.5).ConvertTo(automation::VarType::Long), Variant::Long(2));
}

}  // namespace
