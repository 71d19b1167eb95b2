#pragma once
// Variant: the tagged value that crosses every automation call, with VB's coercions.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace automation {

class Object;
using ObjectRef = std::shared_ptr<Object>;

// VB's VarType numbers for the types the runtime carries.
enum class VarType : uint16_t {
  Empty = 0,
  Integer = 2,
  Long = 3,
  Single = 4,
  Double = 5,
  Currency = 6,
  String = 8,
  Object = 9,
  Boolean = 11,
  Variant = 12,  // only as a declared type: any of the others
  Byte = 17,
};

std::string_view VarTypeName(VarType type);

// Currency: a 64-bit integer scaled by 10,000.
struct Currency {
  int64_t scaled = 0;
  friend bool operator==(Currency, Currency) = default;
};

class Variant {
 public:
  Variant() = default;
  Variant(bool value) : value_(value) {}
  Variant(int value) : value_(static_cast<int32_t>(value)) {}
  Variant(double value) : value_(value) {}
  Variant(std::string value) : value_(std::move(value)) {}
  Variant(std::string_view value) : value_(std::string(value)) {}
  Variant(const char* value) : value_(std::string(value)) {}
  Variant(ObjectRef value) : value_(std::move(value)) {}
  template <class T>
  requires std::is_base_of_v<Object, T> Variant(std::shared_ptr<T> value)
      : value_(ObjectRef(std::move(value))) {}
  template <class T>
  Variant(T*) = delete;  // no silent pointer-to-Boolean conversions

  static Variant Integer(int16_t value) { return Variant(Tag{}, value); }
  static Variant Long(int32_t value) { return Variant(Tag{}, value); }
  static Variant Single(float value) { return Variant(Tag{}, value); }
  static Variant Cur(Currency value) { return Variant(Tag{}, value); }
  static Variant Byte(uint8_t value) { return Variant(Tag{}, value); }

  VarType Type() const;
  bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
  bool IsString() const { return std::holds_alternative<std::string>(value_); }
  bool IsObject() const { return std::holds_alternative<ObjectRef>(value_); }
  bool IsNumeric() const;

  // VB's conversion functions: CBool, CByte, CInt, CLng, CSng, CDbl, CCur, CStr. They raise
  // 13 "Type mismatch" when the value cannot be converted and 6 "Overflow" when it does not fit.
  bool ToBool() const;
  uint8_t ToByte() const;
  int16_t ToInteger() const;
  int32_t ToLong() const;
  float ToSingle() const;
  double ToDouble() const;
  Currency ToCurrency() const;
  std::string ToString() const&;
  // The same from a value about to go (what a call returned): a string is moved out, not copied.
  std::string ToString() &&;
  // The object reference; Empty is Nothing (a null reference); any other value raises 424.
  ObjectRef ToObject() const;

  // This value converted to another type (VariantChangeType); Variant leaves it as it is.
  Variant ConvertTo(VarType type) const;

  // Same type and same value (objects: the same object).
  friend bool operator==(const Variant& a, const Variant& b) { return a.value_ == b.value_; }

 private:
  struct Tag {};
  template <class T>
  Variant(Tag, T value) : value_(value) {}

  std::variant<std::monostate, bool, uint8_t, int16_t, int32_t, float, double, Currency,
               std::string, ObjectRef>
      value_;
};

// The text of a number as VB's CStr writes it (Single: 7 significant digits, Double: 15).
std::string FormatDouble(double value, int significantDigits = 15);

}  // namespace automation
