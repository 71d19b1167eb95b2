#pragma once
// Procedure: one procedure of a code module, or its declarations section ("<declarations>"),
// read and written live in the IDE.
//
// Its region is the procedure's lines as the IDE counts them (the comments and blank lines above
// the heading included); for the declarations section, line 1 and the declaration lines. Text
// reads the region without its leading blank lines. Writing Text replaces the region with an
// empty line followed by the new text, and puts the old lines back (after one more empty line)
// with error 5000 when the module's list of procedures changed otherwise than by one procedure
// renamed or changing kind; a rename of this procedure re-keys it in its collection.

#include <cstdint>
#include <memory>
#include <string>

#include "automation/object.h"

namespace components {

class Procedures;

class Procedure : public automation::Object {
 public:
  static constexpr const char* kDeclarations = "<declarations>";
  // The number and the two sentences of the procedure-list check.
  static constexpr int32_t kListChanged = 5000;
  static constexpr const char* kListChangedMessage =
      "This replacement would have changed the total number of procedures in the module."
      " Perhaps you deleted the procedure heading, created an additional procedure heading, or "
      "used incorrect syntax in the procedure heading.";

  const automation::ClassInfo& Class() const override;

  void Initialize(automation::ObjectRef& parentCollection, automation::ObjectRef& module,
                  const std::string& procName, int32_t procKind);
  // Releases the module and the collection: a torn-down procedure fails on Text.
  void TearDown();
  std::string Name();
  std::string GetText();
  void SetText(const std::string& text);

  // The Name of a procedure of the IDE: its name, followed for a property procedure by ".Let",
  // ".Set" or ".Get"; empty for an unknown kind.
  static std::string NameOf(const std::string& procName, int32_t procKind);

 private:
  // The region's first line and line count, blank lines included.
  void Region(int32_t& start, int32_t& count) const;

  automation::ObjectRef module_;
  // The collection that holds this item. Not owned: the collection owns its items, and tears
  // them down before it goes.
  std::weak_ptr<Procedures> parentCollection_;
  std::string procName_;
  int32_t procKind_ = 0;
};

}  // namespace components
