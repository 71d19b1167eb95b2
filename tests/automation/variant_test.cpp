#include "automation/variant.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

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

TEST(Variant, CurrencyKeepsEveryDigitBothWays) {
  using automation::Currency;
  constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
  constexpr int64_t kMin = std::numeric_limits<int64_t>::min();
  // Text from the 64-bit integer: no rounding to 15 digits, no exponent, no trailing zeros.
  EXPECT_EQ(Variant::Cur(Currency{kMax}).ToString(), "922337203685477.5807");
  EXPECT_EQ(Variant::Cur(Currency{kMin}).ToString(), "-922337203685477.5808");
  EXPECT_EQ(Variant::Cur(Currency{12345678901234567}).ToString(), "1234567890123.4567");
  EXPECT_EQ(Variant::Cur(Currency{-5}).ToString(), "-0.0005");
  EXPECT_EQ(Variant::Cur(Currency{1000000000000}).ToString(), "100000000");
  EXPECT_EQ(Variant::Cur(Currency{0}).ToString(), "0");
  // And back, exactly.
  EXPECT_EQ(Variant("922337203685477.5807").ToCurrency(), Currency{kMax});
  EXPECT_EQ(Variant("-922337203685477.5808").ToCurrency(), Currency{kMin});
  EXPECT_EQ(Variant("1234567890123.4567").ToCurrency(), Currency{12345678901234567});
  EXPECT_EQ(Variant("$1,234.5").ToCurrency(), Currency{12345000});
  EXPECT_EQ(Variant("1.5E3").ToCurrency(), Currency{15000000});
  EXPECT_EQ(Variant("(0.25)").ToCurrency(), Currency{-2500});
  EXPECT_EQ(Variant("&H10").ToCurrency(), Currency{160000});
  EXPECT_EQ(Variant("True").ToCurrency(), Currency{-10000});
  // Digits below the fourth decimal round half to even.
  EXPECT_EQ(Variant("0.00005").ToCurrency(), Currency{0});
  EXPECT_EQ(Variant("0.00015").ToCurrency(), Currency{2});
  EXPECT_EQ(Variant("0.000051").ToCurrency(), Currency{1});
  EXPECT_EQ(Variant("-2.00025").ToCurrency(), Currency{-20002});
  EXPECT_EQ(Variant("1E-30").ToCurrency(), Currency{0});
  // One past either end overflows, also when rounding carries it there.
  EXPECT_EQ(ErrorOf([] { Variant("922337203685477.5808").ToCurrency(); }), 6);
  EXPECT_EQ(ErrorOf([] { Variant("-922337203685477.5809").ToCurrency(); }), 6);
  EXPECT_EQ(ErrorOf([] { Variant("922337203685477.58075").ToCurrency(); }), 6);
  EXPECT_EQ(ErrorOf([] { Variant("1E20").ToCurrency(); }), 6);
  EXPECT_EQ(ErrorOf([] { Variant(1e20).ToCurrency(); }), 6);
  EXPECT_EQ(Variant(-922337203685477.5808).ToCurrency(), Currency{kMin});
  EXPECT_EQ(Variant::Integer(-3).ToCurrency(), Currency{-30000});
  EXPECT_EQ(Variant::Cur(Currency{25000}).ToLong(), 2);
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
