#pragma once
// ParameterList: the host's parameter string, a list of named text values.
//
// The text form is a list of Name=Value pairs separated by ";":
//
//   FileName=c:\Projects\Billing.vbp;Mode=scan
//   FileName="c:\odd;folder\a ""b"".vbp"; Mode = scan ;Empty=
//
// - Blanks (spaces and tabs) around a name, around "=" and around a pair are not part of it.
// - A plain value is the text up to the next ";", without its surrounding blanks.
// - A quoted value starts with a double quote right after "=" (blanks allowed before it) and
//   runs to the next lone double quote; a doubled quote inside stands for one quote. Only
//   blanks may follow the closing quote before the ";" or the end. A quoted value can carry
//   anything: ";", "=", quotes, blanks at either end, line breaks, any UTF-8 text.
// - Text writes a value in quotes exactly when a plain value could not carry it: it holds ";",
//   "=" or a double quote, or begins or ends with a blank. Empty values stay empty (Name=).
// - Empty pairs (";;", a trailing ";") are skipped. Names compare without regard to letter case;
//   when a name occurs twice the later value counts.
// - Malformed text raises 5 saying what is wrong and where: an unterminated quote, a pair
//   without "=", a pair without a name, text after a closing quote. A failed Parse leaves the
//   list as it was.

#include <string>
#include <string_view>
#include <vector>

#include "automation/object.h"

namespace host {

class ParameterList : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.ParameterList";

  const automation::ClassInfo& Class() const override;

  // Replaces the list with the pairs of the text.
  void Parse(const std::string& text);
  // The value of the name, or the default when the list has no such name.
  std::string Value(const std::string& name, const std::string& defaultValue) const;
  // Sets a value: a new name goes at the end, a known one keeps its place. A name that the
  // text form cannot carry (empty, or holding ";", "=", a quote or surrounding blanks) raises 5.
  void Add(const std::string& name, const std::string& value);
  // The list in its text form; Parse(Text()) gives the same list back.
  std::string Text() const;

 private:
  struct Pair {
    std::string name;
    std::string value;
  };

  static void Set(std::vector<Pair>& pairs, std::string name, std::string value);
  const Pair* FindPair(std::string_view name) const;

  std::vector<Pair> pairs_;
};

}  // namespace host
