#include "ide/vbide/code_module.h"

#include <utility>

#include "ide/code/code_module.h"
#include "ide/model/project.h"
#include "ide/vbide/vbcomponent.h"
#include "ide/vbide/vbe.h"

namespace ide::vbide {
namespace {

ProcKind Kind(int32_t procKind) {
  // Out-of-range kinds pass through: the model raises 5 for them.
  return static_cast<ProcKind>(procKind);
}

}  // namespace

CodeModule::CodeModule(std::shared_ptr<VBComponent> parent, std::shared_ptr<ide::Project> model,
                       ide::Component& component)
    : parent_(std::move(parent)), model_(std::move(model)), component_(&component) {}

const automation::ClassInfo& CodeModule::Class() const {
  // The members in the order of VBIDE's CodeModule interface.
  static const automation::ClassInfo info =
      automation::ClassBuilder<CodeModule>("CodeModule")
          .Get("Parent", &CodeModule::Parent)
          .Get("VBE", &CodeModule::Vbe)
          .Get("Name", &CodeModule::Name)
          .Get("Lines", &CodeModule::Lines, {"StartLine", "Count"})
          .Get("CountOfLines", &CodeModule::CountOfLines)
          .Method("InsertLines", &CodeModule::InsertLines, {"Line", "String"})
          .Method("DeleteLines", &CodeModule::DeleteLines,
                  {"StartLine", automation::Optional("Count", automation::Variant::Long(1))})
          .Method("ReplaceLine", &CodeModule::ReplaceLine, {"Line", "String"})
          .Get("ProcStartLine", &CodeModule::ProcStartLine, {"ProcName", "ProcKind"})
          .Get("ProcCountLines", &CodeModule::ProcCountLines, {"ProcName", "ProcKind"})
          .Get("ProcBodyLine", &CodeModule::ProcBodyLine, {"ProcName", "ProcKind"})
          .Get("ProcOfLine", &CodeModule::ProcOfLine, {"Line", "ProcKind"})
          .Get("CountOfDeclarationLines", &CodeModule::CountOfDeclarationLines)
          .Build();
  return info;
}

ide::CodeModule& CodeModule::Code() const {
  return component_->Code();
}

void CodeModule::Changed() {
  if (parent_) parent_->NoteChanged();
}

std::shared_ptr<VBE> CodeModule::Vbe() const {
  return parent_ ? parent_->Vbe() : nullptr;
}

std::string CodeModule::Name() const {
  return component_->Name();
}

std::string CodeModule::Lines(int32_t startLine, int32_t count) const {
  return Code().Lines(startLine, count);
}

int32_t CodeModule::CountOfLines() const {
  return Code().CountOfLines();
}

void CodeModule::InsertLines(int32_t line, const std::string& text) {
  Code().InsertLines(line, text);
  Changed();
}

void CodeModule::DeleteLines(int32_t startLine, int32_t count) {
  Code().DeleteLines(startLine, count);
  Changed();
}

void CodeModule::ReplaceLine(int32_t line, const std::string& text) {
  ide::CodeModule& code = Code();
  // Deleting first checks the line; the deleted line's hidden attribute lines wait for a line
  // that declares their member, which the inserted text usually is.
  code.DeleteLines(line, 1);
  code.InsertLines(line, text);
  Changed();
}

int32_t CodeModule::ProcStartLine(const std::string& procName, int32_t procKind) const {
  return Code().ProcStartLine(procName, Kind(procKind));
}

int32_t CodeModule::ProcCountLines(const std::string& procName, int32_t procKind) const {
  return Code().ProcCountLines(procName, Kind(procKind));
}

int32_t CodeModule::ProcBodyLine(const std::string& procName, int32_t procKind) const {
  return Code().ProcBodyLine(procName, Kind(procKind));
}

std::string CodeModule::ProcOfLine(int32_t line, int32_t& procKind) const {
  ProcKind kind = ProcKind::kProc;
  std::string name = Code().ProcOfLine(line, kind);
  procKind = static_cast<int32_t>(kind);
  return name;
}

int32_t CodeModule::CountOfDeclarationLines() const {
  return Code().CountOfDeclarationLines();
}

}  // namespace ide::vbide
