#pragma once
// Templates behind object.h: conversions between Variant and C++ parameter types, and the
// ClassBuilder that turns member functions into a class's member tables.

#include <tuple>
#include <type_traits>
#include <utility>

#include "automation/error.h"

namespace automation {

template <class T>
std::shared_ptr<T> As(const ObjectRef& object) {
  if (!object) return nullptr;
  if constexpr (std::is_same_v<T, Object>) {
    return object;
  } else {
    auto typed = std::dynamic_pointer_cast<T>(object);
    if (!typed) Raise(err::kTypeMismatch);
    return typed;
  }
}

namespace detail {

template <class T>
struct Conv;

template <>
struct Conv<Variant> {
  static constexpr VarType type = VarType::Variant;
  static const Variant& From(const Variant& v) { return v; }
  static Variant To(Variant v) { return v; }
};
template <>
struct Conv<bool> {
  static constexpr VarType type = VarType::Boolean;
  static bool From(const Variant& v) { return v.ToBool(); }
  static Variant To(bool v) { return Variant(v); }
};
template <>
struct Conv<uint8_t> {
  static constexpr VarType type = VarType::Byte;
  static uint8_t From(const Variant& v) { return v.ToByte(); }
  static Variant To(uint8_t v) { return Variant::Byte(v); }
};
template <>
struct Conv<int16_t> {
  static constexpr VarType type = VarType::Integer;
  static int16_t From(const Variant& v) { return v.ToInteger(); }
  static Variant To(int16_t v) { return Variant::Integer(v); }
};
template <>
struct Conv<int32_t> {
  static constexpr VarType type = VarType::Long;
  static int32_t From(const Variant& v) { return v.ToLong(); }
  static Variant To(int32_t v) { return Variant::Long(v); }
};
template <>
struct Conv<float> {
  static constexpr VarType type = VarType::Single;
  static float From(const Variant& v) { return v.ToSingle(); }
  static Variant To(float v) { return Variant::Single(v); }
};
template <>
struct Conv<double> {
  static constexpr VarType type = VarType::Double;
  static double From(const Variant& v) { return v.ToDouble(); }
  static Variant To(double v) { return Variant(v); }
};
template <>
struct Conv<Currency> {
  static constexpr VarType type = VarType::Currency;
  static Currency From(const Variant& v) { return v.ToCurrency(); }
  static Variant To(Currency v) { return Variant::Cur(v); }
};
template <>
struct Conv<std::string> {
  static constexpr VarType type = VarType::String;
  static std::string From(const Variant& v) { return v.ToString(); }
  static Variant To(std::string v) { return Variant(std::move(v)); }
};
template <class T>
struct Conv<std::shared_ptr<T>> {
  static constexpr VarType type = VarType::Object;
  static std::shared_ptr<T> From(const Variant& v) { return As<T>(v.ToObject()); }
  static Variant To(std::shared_ptr<T> v) { return Variant(ObjectRef(std::move(v))); }
};

template <class A>
using Bare = std::remove_cvref_t<A>;

template <class A>
constexpr bool kByRef =
    std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>>;

template <class R, class... A, class Fn, class C, size_t... I>
Variant CallWith(Fn fn, C& self, Args& args, std::index_sequence<I...>) {
  std::tuple<Bare<A>...> values{Bare<A>(Conv<Bare<A>>::From(args[I]))...};
  auto writeBack = [&] {
    ((kByRef<A> ? (void)(args[I] = Conv<Bare<A>>::To(std::get<I>(values))) : (void)0), ...);
  };
  if constexpr (std::is_void_v<R>) {
    (self.*fn)(std::get<I>(values)...);
    writeBack();
    return Variant();
  } else {
    Variant result = Conv<Bare<R>>::To((self.*fn)(std::get<I>(values)...));
    writeBack();
    return result;
  }
}

template <class F>
struct Traits;
template <class C, class R, class... A>
struct Traits<R (C::*)(A...)> {
  using Class = C;
  using Fn = R (C::*)(A...);
  static constexpr size_t arity = sizeof...(A);
  static VarType Result() {
    if constexpr (std::is_void_v<R>) {
      return VarType::Empty;
    } else {
      return Conv<Bare<R>>::type;
    }
  }
  static std::vector<VarType> ParamTypes() { return {Conv<Bare<A>>::type...}; }
  static std::vector<bool> ByRef() { return {kByRef<A>...}; }
  static Variant Call(Fn fn, C& self, Args& args) {
    return CallWith<R, A...>(fn, self, args, std::index_sequence_for<A...>{});
  }
};
template <class C, class R, class... A>
struct Traits<R (C::*)(A...) const> {
  using Fn = R (C::*)(A...) const;
  static constexpr size_t arity = sizeof...(A);
  static VarType Result() { return Traits<R (C::*)(A...)>::Result(); }
  static std::vector<VarType> ParamTypes() { return {Conv<Bare<A>>::type...}; }
  static std::vector<bool> ByRef() { return {kByRef<A>...}; }
  static Variant Call(Fn fn, C& self, Args& args) {
    return CallWith<R, A...>(fn, self, args, std::index_sequence_for<A...>{});
  }
};

}  // namespace detail

// An optional parameter with the value used when the caller leaves it out.
inline Param Optional(std::string name, Variant defaultValue = Variant()) {
  return Param{std::move(name), true, std::move(defaultValue)};
}

// Builds the member tables of class C from its member functions:
//
//   static const ClassInfo info = ClassBuilder<Project>("Project")
//       .Method("Initialize", &Project::Initialize, {"ProjectName", "Parameters"})
//       .Get("FileName", &Project::FileName)
//       .Implements("IProject")
//       .Method("UpdateName", &Project::IProject_UpdateName, {"ProjectName"})
//       .Build();
template <class C>
class ClassBuilder {
 public:
  explicit ClassBuilder(std::string name) { info_.name = std::move(name); }

  // The class's description, as its type library gives it.
  ClassBuilder& Description(std::string text) {
    info_.description = std::move(text);
    return *this;
  }

  // The members added after this call belong to the named implemented interface.
  ClassBuilder& Implements(std::string interfaceName) {
    info_.implemented.emplace_back().name = std::move(interfaceName);
    return *this;
  }

  template <class F>
  ClassBuilder& Get(std::string name, F fn, std::vector<Param> params = {}) {
    return Add(std::move(name), MemberKind::Get, fn, std::move(params));
  }
  template <class F>
  ClassBuilder& Put(std::string name, F fn) {
    return Add(std::move(name), MemberKind::Put, fn, {});
  }
  template <class F>
  ClassBuilder& Method(std::string name, F fn, std::vector<Param> params = {}) {
    return Add(std::move(name), MemberKind::Method, fn, std::move(params));
  }
  // A member whose work is done by a function over the raw arguments (for members that are
  // data, such as property tables).
  ClassBuilder& Raw(std::string name, MemberKind kind, VarType type, std::vector<Param> params,
                    std::function<Variant(C&, Args&)> fn) {
    Member m;
    m.name = std::move(name);
    m.kind = kind;
    m.type = type;
    m.paramTypes.assign(params.size(), VarType::Variant);
    m.paramByRef.assign(params.size(), false);
    m.params = std::move(params);
    m.invoke = [fn = std::move(fn)](Object& self, Args& args) {
      return fn(static_cast<C&>(self), args);
    };
    Current().members.push_back(std::move(m));
    return *this;
  }

  // Gives the member added last a dispatch identifier.
  ClassBuilder& Id(int32_t dispId) {
    Current().members.back().dispId = dispId;
    return *this;
  }
  // Declares the member added last with a named type (an enumeration) over its automation type.
  ClassBuilder& Declared(std::string typeName) {
    Current().members.back().typeName = std::move(typeName);
    return *this;
  }

  ClassInfo Build() {
    info_.defaultInterface.Index();
    for (auto& i : info_.implemented)
      i.Index();
    return std::move(info_);
  }

 private:
  Interface& Current() {
    return info_.implemented.empty() ? info_.defaultInterface : info_.implemented.back();
  }

  template <class F>
  ClassBuilder& Add(std::string name, MemberKind kind, F fn, std::vector<Param> params) {
    using T = detail::Traits<F>;
    Member m;
    m.name = std::move(name);
    m.kind = kind;
    m.type = kind == MemberKind::Put ? T::ParamTypes().front() : T::Result();
    m.paramTypes = T::ParamTypes();
    m.paramByRef = T::ByRef();
    // Unnamed parameters get positional names so that type information is always complete.
    for (size_t i = params.size(); i < T::arity; ++i) {
      params.push_back(Param{"Arg" + std::to_string(i + 1), false, Variant()});
    }
    if (kind == MemberKind::Put && params.size() == 1) params[0].name = "RHS";
    m.params = std::move(params);
    m.invoke = [fn](Object& self, Args& args) { return T::Call(fn, static_cast<C&>(self), args); };
    Current().members.push_back(std::move(m));
    return *this;
  }

  ClassInfo info_;
};

}  // namespace automation
