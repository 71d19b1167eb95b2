#pragma once
// CodeModule: the code of a component, as VBIDE's CodeModule object, over the model's
// ide::CodeModule (which keeps VB6's procedure rules and errors: 9 for a line outside the
// module, 35 for an unknown procedure, 5 for a negative count or an unknown kind).
//
// Lines, ProcOfLine, ProcStartLine, ProcBodyLine and ProcCountLines are properties with
// arguments, as in VBIDE: callers read them (Get), they are not methods. ProcOfLine's kind is a
// by-reference Long that receives the procedure's kind (0 procedure, 1 Let, 2 Set, 3 Get).

#include <cstdint>
#include <memory>
#include <string>

#include "automation/object.h"

namespace ide {
class CodeModule;
class Component;
class Project;
}  // namespace ide

namespace ide::vbide {

class VBComponent;
class VBE;

class CodeModule : public automation::Object {
 public:
  CodeModule(std::shared_ptr<VBComponent> parent, std::shared_ptr<ide::Project> model,
             ide::Component& component);

  const automation::ClassInfo& Class() const override;

  std::shared_ptr<VBComponent> Parent() const { return parent_; }
  std::shared_ptr<VBE> Vbe() const;
  std::string Name() const;
  std::string Lines(int32_t startLine, int32_t count) const;
  int32_t CountOfLines() const;
  void InsertLines(int32_t line, const std::string& text);
  void DeleteLines(int32_t startLine, int32_t count);
  // Replaces the line with the text, which may hold several lines. Hidden attribute lines of a
  // member whose declaration is replaced by one of the same member stay with it.
  void ReplaceLine(int32_t line, const std::string& text);
  int32_t ProcStartLine(const std::string& procName, int32_t procKind) const;
  int32_t ProcCountLines(const std::string& procName, int32_t procKind) const;
  int32_t ProcBodyLine(const std::string& procName, int32_t procKind) const;
  std::string ProcOfLine(int32_t line, int32_t& procKind) const;
  int32_t CountOfDeclarationLines() const;

  void TearDown() { parent_.reset(); }

 private:
  ide::CodeModule& Code() const;
  void Changed();

  std::shared_ptr<VBComponent> parent_;
  std::shared_ptr<ide::Project> model_;  // keeps component_ alive
  ide::Component* component_;
};

}  // namespace ide::vbide
