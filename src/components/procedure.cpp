#include "components/procedure.h"

#include <optional>
#include <vector>

#include "automation/error.h"
#include "components/procedure_walk.h"
#include "components/procedures.h"
#include "contracts/host_classes.h"
#include "contracts/ide_objects.h"
#include "foundation/operation.h"

namespace components {

using automation::ObjectRef;
using foundation::Operation;

namespace {

constexpr const char* kClass = "Procedure";

// Whether a line is blank for Text: nothing but spaces (a tab is not blank).
bool IsBlank(const std::string& line) {
  return line.find_first_not_of(' ') == std::string::npos;
}

}  // namespace

const automation::ClassInfo& Procedure::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<Procedure>("Procedure")
          .Method("Initialize", &Procedure::Initialize,
                  {"ParentCollection", "Module", "ProcName", "ProcKind"})
          .Method("TearDown", &Procedure::TearDown)
          .Get("Name", &Procedure::Name)
          .Get("Text", &Procedure::GetText)
          .Put("Text", &Procedure::SetText)
          .Build();
  return info;
}

std::string Procedure::NameOf(const std::string& procName, int32_t procKind) {
  switch (procKind) {
    case contracts::kProcKindProc:
      return procName;
    case contracts::kProcKindLet:
      return procName + ".Let";
    case contracts::kProcKindSet:
      return procName + ".Set";
    case contracts::kProcKindGet:
      return procName + ".Get";
    default:
      return {};
  }
}

void Procedure::Initialize(ObjectRef& parentCollection, ObjectRef& module,
                           const std::string& procName, int32_t procKind) {
  Operation(kClass, "Initialize", [&] {
    module_ = module;
    parentCollection_ = automation::As<Procedures>(parentCollection);
    procName_ = procName;
    procKind_ = procKind;
  });
}

void Procedure::TearDown() {
  Operation(kClass, "TearDown", [&] {
    module_.reset();
    parentCollection_.reset();
  });
}

std::string Procedure::Name() {
  return NameOf(procName_, procKind_);
}

void Procedure::Region(int32_t& start, int32_t& count) const {
  const contracts::CodeModule code(module_);
  if (procName_ == kDeclarations) {
    start = 1;
    count = code.CountOfDeclarationLines();
  } else {
    start = code.ProcStartLine(procName_, procKind_);
    count = code.ProcCountLines(procName_, procKind_);
  }
}

std::string Procedure::GetText() {
  return Operation(kClass, "Text", [&]() -> std::string {
    const contracts::CodeModule code(module_);
    int32_t start = 0;
    int32_t count = 0;
    Region(start, count);
    while (count >= 1 && IsBlank(code.Lines(start, 1))) {
      ++start;
      --count;
    }
    return count == 0 ? std::string() : code.Lines(start, count);
  });
}

namespace {

struct ProcedureId {
  std::string name;
  int32_t kind;
};

// Inserts the new text where the old lines were deleted (after: the module's line count without
// them) and finds the procedures it brought in: those the set of procedures around the region
// did not hold; the set keeps those the write took away. The error of an insertion that fails
// or that changes the list of procedures; nothing when the write stands.
std::optional<automation::Error> InsertAndCompare(const contracts::CodeModule& code, int32_t start,
                                                  int32_t after, const std::string& text,
                                                  const contracts::KeySet& before,
                                                  std::vector<ProcedureId>& added) {
  try {
    code.InsertLines(start, "\r\n" + text);
  } catch (...) {
    const automation::Error e = automation::CurrentError();
    return automation::Error(e.Number(), "", e.Description(), e.HelpFile(), e.HelpContext());
  }
  try {
    const int32_t inserted = code.CountOfLines() - after;
    WalkProceduresAround(code, start - 1, start + inserted,
                         [&](const std::string& name, int32_t kind) {
                           const int32_t position = before.Find(ProcedureKey(name, kind));
                           if (position != 0) {
                             before.RemoveAt(position);
                           } else {
                             added.push_back({name, kind});
                           }
                         });
    const auto addedCount = static_cast<int32_t>(added.size());
    if (addedCount != before.Count() || addedCount > 2) {
      return automation::Error(Procedure::kListChanged, "", Procedure::kListChangedMessage);
    }
  } catch (...) {
    return automation::CurrentError();
  }
  return std::nullopt;
}

}  // namespace

void Procedure::SetText(const std::string& text) {
  Operation(kClass, "Text", [&] {
    const contracts::CodeModule code(module_);
    int32_t start = 0;
    int32_t count = 0;
    Region(start, count);
    // The procedures around the region: the one above it, its own, the one below it.
    const contracts::KeySet before = contracts::KeySet::New();
    WalkProceduresAround(
        code, start - 1, start + count,
        [&](const std::string& name, int32_t kind) { before.Add(ProcedureKey(name, kind)); });
    const std::string old = code.Lines(start, count);
    code.DeleteLines(start, count);
    const int32_t after = code.CountOfLines();

    // A failure puts the old lines back before it is raised.
    std::vector<ProcedureId> added;
    if (const std::optional<automation::Error> failure =
            InsertAndCompare(code, start, after, text, before, added)) {
      const int32_t inserted = code.CountOfLines() - after;
      if (inserted > 0) code.DeleteLines(start, inserted);
      code.InsertLines(start, "\r\n" + old);
      throw *failure;
    }

    // A write that renamed the procedure: this object follows it under its new name.
    if (added.size() == 1) {
      const std::string oldName = Name();
      procName_ = added.front().name;
      procKind_ = added.front().kind;
      const std::shared_ptr<Procedures> parent = parentCollection_.lock();
      if (!parent) automation::Raise(automation::err::kObjectNotSet);
      parent->UpdateKey(oldName, Name());
    }
  });
}

}  // namespace components
