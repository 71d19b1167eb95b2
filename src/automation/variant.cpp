#include "automation/variant.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "automation/error.h"

namespace automation {
namespace {

[[noreturn]] void Mismatch() {
  Raise(err::kTypeMismatch);
}
[[noreturn]] void Overflow() {
  Raise(err::kOverflow);
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x >= 'A' && x <= 'Z') x = static_cast<char>(x - 'A' + 'a');
    if (y >= 'A' && y <= 'Z') y = static_cast<char>(y - 'A' + 'a');
    if (x != y) return false;
  }
  return true;
}

std::string_view Trim(std::string_view s) {
  auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!s.empty() && blank(s.front()))
    s.remove_prefix(1);
  while (!s.empty() && blank(s.back()))
    s.remove_suffix(1);
  return s;
}

// A number parsed from a string: either a bit pattern (&H, &O) or a decimal value.
struct ParsedNumber {
  bool isPattern = false;
  uint64_t pattern = 0;
  double value = 0;
};

// Parses a string as VB converts strings to numbers: blanks around it, a leading or trailing
// sign, parentheses for negatives, thousands separators, a currency sign, an exponent, and the
// &H / &O prefixes; the whole string must be used. "True" and "False" convert as well.
ParsedNumber ParseNumber(std::string_view text) {
  std::string_view s = Trim(text);
  if (s.empty()) Mismatch();
  if (EqualsNoCase(s, "True")) return {false, 0, -1};
  if (EqualsNoCase(s, "False")) return {false, 0, 0};
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
    return {true, value, 0};
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
  return {false, 0, negative ? -value : value};
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
  switch (value_.index()) {
    case 0:
      return VarType::Empty;
    case 1:
      return VarType::Boolean;
    case 2:
      return VarType::Byte;
    case 3:
      return VarType::Integer;
    case 4:
      return VarType::Long;
    case 5:
      return VarType::Single;
    case 6:
      return VarType::Double;
    case 7:
      return VarType::Currency;
    case 8:
      return VarType::String;
    default:
      return VarType::Object;
  }
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
  switch (value_.index()) {
    case 0:
      return 0;
    case 1:
      return std::get<bool>(value_) ? -1 : 0;
    case 2:
      return std::get<uint8_t>(value_);
    case 3:
      return std::get<int16_t>(value_);
    case 4:
      return std::get<int32_t>(value_);
    case 5:
      return std::get<float>(value_);
    case 6:
      return std::get<double>(value_);
    case 7:
      return static_cast<double>(std::get<Currency>(value_).scaled) / 10000.0;
    case 8: {
      const ParsedNumber p = ParseNumber(std::get<std::string>(value_));
      return p.isPattern ? static_cast<double>(IntegerFrom<int32_t>(p)) : p.value;
    }
    default:
      Mismatch();
  }
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
  if (const auto* c = std::get_if<Currency>(&value_)) return *c;
  const double scaled = ToDouble() * 10000.0;
  if (!(std::fabs(scaled) < 9.2233720368547758e18)) Overflow();
  return Currency{static_cast<int64_t>(std::nearbyint(scaled))};
}

bool Variant::ToBool() const {
  switch (value_.index()) {
    case 1:
      return std::get<bool>(value_);
    case 8: {
      const std::string_view s = Trim(std::get<std::string>(value_));
      if (EqualsNoCase(s, "True") || s == "#TRUE#") return true;
      if (EqualsNoCase(s, "False") || s == "#FALSE#") return false;
      const ParsedNumber p = ParseNumber(s);
      return p.isPattern ? p.pattern != 0 : p.value != 0;
    }
    case 9:
      Mismatch();
    default:
      return ToDouble() != 0;
  }
}

std::string FormatDouble(double value, int significantDigits) {
  if (value == 0) return "0";
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*G", significantDigits, value);
  return buffer;
}

std::string Variant::ToString() const {
  switch (value_.index()) {
    case 0:
      return {};
    case 1:
      return std::get<bool>(value_) ? "True" : "False";
    case 2:
      return std::to_string(std::get<uint8_t>(value_));
    case 3:
      return std::to_string(std::get<int16_t>(value_));
    case 4:
      return std::to_string(std::get<int32_t>(value_));
    case 5:
      return FormatDouble(std::get<float>(value_), 7);
    case 6:
      return FormatDouble(std::get<double>(value_), 15);
    case 7:
      return FormatDouble(static_cast<double>(std::get<Currency>(value_).scaled) / 10000.0);
    case 8:
      return std::get<std::string>(value_);
    default:
      Mismatch();
  }
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
