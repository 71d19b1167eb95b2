#include "automation/variant.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <type_traits>

#include "automation/casefold.h"
#include "automation/error.h"
#include "automation/text.h"

namespace automation {
namespace {

[[noreturn]] void Mismatch() {
  Raise(err::kTypeMismatch);
}
[[noreturn]] void Overflow() {
  Raise(err::kOverflow);
}

// Text converted to a number or a Boolean may have blanks and line ends around it.
std::string_view Trim(std::string_view s) {
  return TrimBlanks(s, " \t\r\n");
}

// A number parsed from a string: either a bit pattern (&H, &O) or a decimal value.
struct ParsedNumber {
  bool isPattern = false;
  uint64_t pattern = 0;
  double value = 0;
  // The decimal digits as written ("123.45e-6"), without sign; empty for True, False and
  // patterns. Currency is converted from these exactly, not through the double.
  std::string decimal;
  bool negative = false;
};

// Parses a string as VB converts strings to numbers: blanks around it, a leading or trailing
// sign, parentheses for negatives, thousands separators, a currency sign, an exponent, and the
// &H / &O prefixes; the whole string must be used. "True" and "False" convert as well.
ParsedNumber ParseNumber(std::string_view text) {
  std::string_view s = Trim(text);
  if (s.empty()) Mismatch();
  if (EqualsAsciiNoCase(s, "True")) return {false, 0, -1, {}, false};
  if (EqualsAsciiNoCase(s, "False")) return {false, 0, 0, {}, false};
  if (s.size() >= 2 && s[0] == '&' && (s[1] == 'H' || s[1] == 'h' || s[1] == 'O' || s[1] == 'o')) {
    const bool hex = s[1] == 'H' || s[1] == 'h';
    std::string_view digits = s.substr(2);
    if (digits.empty()) Mismatch();
    uint64_t value = 0;
    for (char c : digits) {
      int d;
      if (c >= '0' && c <= '9') {
        d = c - '0';
      } else if (hex && c >= 'a' && c <= 'f') {
        d = c - 'a' + 10;
      } else if (hex && c >= 'A' && c <= 'F') {
        d = c - 'A' + 10;
      } else {
        Mismatch();
      }
      if (!hex && d > 7) Mismatch();
      value = value * (hex ? 16 : 8) + static_cast<uint64_t>(d);
      if (value > 0xFFFFFFFFull) Overflow();
    }
    return {true, value, 0, {}, false};
  }
  bool negative = false;
  if (s.front() == '(' && s.back() == ')') {
    negative = true;
    s = Trim(s.substr(1, s.size() - 2));
  }
  if (!s.empty() && (s.front() == '-' || s.front() == '+')) {
    negative = negative != (s.front() == '-');
    s = Trim(s.substr(1));
  } else if (!s.empty() && (s.back() == '-' || s.back() == '+')) {
    negative = negative != (s.back() == '-');
    s = Trim(s.substr(0, s.size() - 1));
  }
  if (!s.empty() && s.front() == '$') s = Trim(s.substr(1));
  // Keep digits, one decimal point and an exponent; thousands separators may stand between
  // digits of the integer part.
  std::string clean;
  bool seenPoint = false, seenExp = false, seenDigit = false;
  for (size_t i = 0; i < s.size(); ++i) {
    const char c = s[i];
    if (c >= '0' && c <= '9') {
      clean += c;
      seenDigit = true;
    } else if (c == ',' && !seenPoint && !seenExp && seenDigit) {
      continue;
    } else if (c == '.' && !seenPoint && !seenExp) {
      clean += c;
      seenPoint = true;
    } else if ((c == 'e' || c == 'E' || c == 'd' || c == 'D') && seenDigit && !seenExp) {
      clean += 'e';
      seenExp = true;
      if (i + 1 < s.size() && (s[i + 1] == '+' || s[i + 1] == '-')) clean += s[++i];
      if (i + 1 >= s.size()) Mismatch();
    } else {
      Mismatch();
    }
  }
  if (!seenDigit) Mismatch();
  char* end = nullptr;
  const double value = std::strtod(clean.c_str(), &end);
  if (end != clean.c_str() + clean.size()) Mismatch();
  if (!std::isfinite(value)) Overflow();
  return {false, 0, negative ? -value : value, std::move(clean), negative};
}

// Rounds half to even after a range check on half-open bounds, as VB's integer conversions do.
int64_t RoundToRange(double value, double low, double high) {
  if (std::isnan(value) || !(value >= low - 0.5 && value < high + 0.5)) Overflow();
  return static_cast<int64_t>(std::nearbyint(value));
}

template <class Int>
Int IntegerFrom(const ParsedNumber& parsed) {
  using Lim = std::numeric_limits<Int>;
  if (parsed.isPattern) {
    // A hexadecimal or octal literal is a bit pattern of the target's width.
    constexpr uint64_t width = sizeof(Int) * 8;
    if (parsed.pattern >> width) Overflow();
    if constexpr (Lim::is_signed) {
      const uint64_t sign = uint64_t{1} << (width - 1);
      if (parsed.pattern & sign) {
        return static_cast<Int>(static_cast<int64_t>(parsed.pattern) -
                                static_cast<int64_t>(sign << 1));
      }
    }
    return static_cast<Int>(parsed.pattern);
  }
  return static_cast<Int>(
      RoundToRange(parsed.value, static_cast<double>(Lim::min()), static_cast<double>(Lim::max())));
}

constexpr int64_t kCurrencyScale = 10000;
constexpr uint64_t kCurrencyMagnitudeLimit = uint64_t{1} << 63;  // |Currency| of its minimum

// Currency from a decimal text ("123.45678", "1.5e3"), exactly: the digits are scaled by 10,000
// in integers and the digits below the fourth decimal round half to even, as VB's CCur rounds.
Currency CurrencyFromDecimal(std::string_view text, bool negative) {
  std::string_view mantissa = text;
  long long exponent = 0;
  if (const auto e = text.find('e'); e != std::string_view::npos) {
    mantissa = text.substr(0, e);
    std::string_view digits = text.substr(e + 1);
    const bool negativeExponent = !digits.empty() && digits.front() == '-';
    if (!digits.empty() && (digits.front() == '-' || digits.front() == '+'))
      digits.remove_prefix(1);
    for (char c : digits) {
      // Beyond any exponent that can matter, keep the size but stop growing.
      if (exponent < 100000) exponent = exponent * 10 + (c - '0');
    }
    if (negativeExponent) exponent = -exponent;
  }
  // The digits without the point, and where the point stands among them.
  std::string digits;
  long long point = -1;
  for (char c : mantissa) {
    if (c == '.') {
      point = static_cast<long long>(digits.size());
    } else {
      digits += c;
    }
  }
  if (point < 0) point = static_cast<long long>(digits.size());
  const std::size_t leading = std::min(digits.find_first_not_of('0'), digits.size());
  digits.erase(0, leading);
  point -= static_cast<long long>(leading);
  if (digits.empty()) return Currency{0};
  // The scaled value's integer digits are the first `whole` digits (padded with zeros).
  const long long whole = point + exponent + 4;
  if (whole > 19) Overflow();
  uint64_t magnitude = 0;
  for (long long k = 0; k < whole; ++k) {
    const int d = k < static_cast<long long>(digits.size()) ? digits[k] - '0' : 0;
    magnitude = magnitude * 10 + static_cast<uint64_t>(d);
    if (magnitude > kCurrencyMagnitudeLimit) Overflow();
  }
  if (whole >= 0 && whole < static_cast<long long>(digits.size())) {
    const int first = digits[whole] - '0';
    const bool rest = digits.find_first_not_of('0', whole + 1) != std::string::npos;
    if (first > 5 || (first == 5 && (rest || magnitude % 2 == 1))) ++magnitude;
  }
  if (magnitude > kCurrencyMagnitudeLimit - (negative ? 0 : 1)) Overflow();
  return Currency{negative ? static_cast<int64_t>(0 - magnitude) : static_cast<int64_t>(magnitude)};
}

Currency CurrencyFromDouble(double value) {
  const double scaled = std::nearbyint(value * static_cast<double>(kCurrencyScale));
  // 2^63 is exact in a double: the range is [-2^63, 2^63).
  constexpr double kLimit = 9223372036854775808.0;
  if (!(scaled >= -kLimit && scaled < kLimit)) Overflow();
  return Currency{static_cast<int64_t>(scaled)};
}

// The text of a Currency as CStr writes it: the integer part, then up to four decimals without
// trailing zeros, and no point when there are none.
std::string FormatCurrency(Currency value) {
  const bool negative = value.scaled < 0;
  const uint64_t magnitude =
      negative ? 0 - static_cast<uint64_t>(value.scaled) : static_cast<uint64_t>(value.scaled);
  std::string text = std::to_string(magnitude / kCurrencyScale);
  uint64_t fraction = magnitude % kCurrencyScale;
  if (fraction != 0) {
    std::string decimals = std::to_string(fraction + kCurrencyScale).substr(1);
    decimals.erase(decimals.find_last_not_of('0') + 1);
    text += '.' + decimals;
  }
  return negative ? '-' + text : text;
}

// Lets std::visit take one lambda per alternative.
template <class... F>
struct Overloaded : F... {
  using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

}  // namespace

std::string_view VarTypeName(VarType type) {
  switch (type) {
    case VarType::Empty:
      return "Empty";
    case VarType::Integer:
      return "Integer";
    case VarType::Long:
      return "Long";
    case VarType::Single:
      return "Single";
    case VarType::Double:
      return "Double";
    case VarType::Currency:
      return "Currency";
    case VarType::String:
      return "String";
    case VarType::Object:
      return "Object";
    case VarType::Boolean:
      return "Boolean";
    case VarType::Variant:
      return "Variant";
    case VarType::Byte:
      return "Byte";
  }
  return "Unknown";
}

VarType Variant::Type() const {
  return std::visit(Overloaded{
                        [](std::monostate) { return VarType::Empty; },
                        [](bool) { return VarType::Boolean; },
                        [](uint8_t) { return VarType::Byte; },
                        [](int16_t) { return VarType::Integer; },
                        [](int32_t) { return VarType::Long; },
                        [](float) { return VarType::Single; },
                        [](double) { return VarType::Double; },
                        [](Currency) { return VarType::Currency; },
                        [](const std::string&) { return VarType::String; },
                        [](const ObjectRef&) { return VarType::Object; },
                    },
                    value_);
}

bool Variant::IsNumeric() const {
  switch (Type()) {
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long:
    case VarType::Single:
    case VarType::Double:
    case VarType::Currency:
    case VarType::Boolean:
      return true;
    default:
      return false;
  }
}

double Variant::ToDouble() const {
  return std::visit(
      Overloaded{
          [](std::monostate) -> double { return 0; },
          [](bool b) -> double { return b ? -1 : 0; },
          [](Currency c) -> double {
            return static_cast<double>(c.scaled) / static_cast<double>(kCurrencyScale);
          },
          [](const std::string& s) -> double {
            const ParsedNumber p = ParseNumber(s);
            return p.isPattern ? static_cast<double>(IntegerFrom<int32_t>(p)) : p.value;
          },
          [](const ObjectRef&) -> double { Mismatch(); },
          [](auto number) -> double { return static_cast<double>(number); },
      },
      value_);
}

namespace {
template <class Int>
Int ToIntegral(const Variant& v) {
  if (v.IsString()) return IntegerFrom<Int>(ParseNumber(v.ToString()));
  if (v.IsObject()) Mismatch();
  using Lim = std::numeric_limits<Int>;
  return static_cast<Int>(
      RoundToRange(v.ToDouble(), static_cast<double>(Lim::min()), static_cast<double>(Lim::max())));
}
}  // namespace

uint8_t Variant::ToByte() const {
  return ToIntegral<uint8_t>(*this);
}
int16_t Variant::ToInteger() const {
  return ToIntegral<int16_t>(*this);
}
int32_t Variant::ToLong() const {
  if (const auto* v = std::get_if<int32_t>(&value_)) return *v;
  return ToIntegral<int32_t>(*this);
}

float Variant::ToSingle() const {
  const double d = ToDouble();
  if (std::fabs(d) > std::numeric_limits<float>::max()) Overflow();
  return static_cast<float>(d);
}

Currency Variant::ToCurrency() const {
  return std::visit(
      Overloaded{
          [](std::monostate) { return Currency{0}; },
          [](bool b) { return Currency{b ? -kCurrencyScale : 0}; },
          [](Currency c) { return c; },
          [](float f) { return CurrencyFromDouble(f); },
          [](double d) { return CurrencyFromDouble(d); },
          [](const std::string& s) {
            const ParsedNumber p = ParseNumber(s);
            if (p.isPattern) return Currency{IntegerFrom<int32_t>(p) * kCurrencyScale};
            if (p.decimal.empty()) return CurrencyFromDouble(p.value);  // True, False
            return CurrencyFromDecimal(p.decimal, p.negative);
          },
          [](const ObjectRef&) -> Currency { Mismatch(); },
          [](auto integer) { return Currency{static_cast<int64_t>(integer) * kCurrencyScale}; },
      },
      value_);
}

bool Variant::ToBool() const {
  return std::visit(Overloaded{
                        [](bool b) { return b; },
                        [](const std::string& text) {
                          const std::string_view s = Trim(text);
                          if (EqualsAsciiNoCase(s, "True") || s == "#TRUE#") return true;
                          if (EqualsAsciiNoCase(s, "False") || s == "#FALSE#") return false;
                          const ParsedNumber p = ParseNumber(s);
                          return p.isPattern ? p.pattern != 0 : p.value != 0;
                        },
                        [](Currency c) { return c.scaled != 0; },
                        [](const ObjectRef&) -> bool { Mismatch(); },
                        [this](const auto&) { return ToDouble() != 0; },
                    },
                    value_);
}

std::string FormatDouble(double value, int significantDigits) {
  if (value == 0) return "0";
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*G", significantDigits, value);
  return buffer;
}

std::string Variant::ToString() && {
  if (auto* s = std::get_if<std::string>(&value_)) return std::move(*s);
  return static_cast<const Variant&>(*this).ToString();
}

std::string Variant::ToString() const& {
  return std::visit(Overloaded{
                        [](std::monostate) { return std::string(); },
                        [](bool b) { return std::string(b ? "True" : "False"); },
                        [](float f) { return FormatDouble(f, 7); },
                        [](double d) { return FormatDouble(d, 15); },
                        [](Currency c) { return FormatCurrency(c); },
                        [](const std::string& s) { return s; },
                        [](const ObjectRef&) -> std::string { Mismatch(); },
                        [](auto integer) { return std::to_string(integer); },
                    },
                    value_);
}

ObjectRef Variant::ToObject() const {
  if (const auto* o = std::get_if<ObjectRef>(&value_)) return *o;
  if (IsEmpty()) return nullptr;
  Raise(424);
}

Variant Variant::ConvertTo(VarType type) const {
  switch (type) {
    case VarType::Empty:
      return Variant();
    case VarType::Boolean:
      return Variant(ToBool());
    case VarType::Byte:
      return Byte(ToByte());
    case VarType::Integer:
      return Integer(ToInteger());
    case VarType::Long:
      return Long(ToLong());
    case VarType::Single:
      return Single(ToSingle());
    case VarType::Double:
      return Variant(ToDouble());
    case VarType::Currency:
      return Cur(ToCurrency());
    case VarType::String:
      return Variant(ToString());
    case VarType::Object:
      return Variant(ToObject());
    case VarType::Variant:
      return *this;
  }
  return *this;
}

}  // namespace automation
