#pragma once
// The code of one component as the VB6 IDE's CodeModule shows it: the visible code lines
// (numbered from 1), the procedures found in them, and the editing methods. Hidden lines of the
// file (member `Attribute X.VB_...` lines) ride along with the visible line they follow, so they
// survive edits and come back in their place when the component is saved.
//
// Procedure boundaries follow VB6: a procedure's region starts on the first line below the End
// of the procedure before it (for the first procedure, right after the declarations), so the
// blank and comment lines above a heading belong to it; the last procedure also owns the lines
// after its End. The declarations end at the last line above the first heading that is neither
// blank nor a comment; a module without procedures is all declarations.
//
// Look-ups go through an index of the procedures. Each line's lexical facts, including what the
// line does as a statement of its own (opens or ends a procedure, steers #If), are computed once,
// when the line is read or inserted. Deleting or inserting whole procedures at a procedure
// boundary (what writing a procedure's text does) updates the index in place; after any other
// edit it is rebuilt from those facts on the next look-up (a pass over one byte per line,
// reading again only each heading's name and the rare statements continued over several
// lines), never by parsing the module's text again.

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ide/code/statement.h"
#include "ide/text/source_line.h"

namespace ide {

// A visible line and the hidden lines that follow it in the file.
struct CodeLine {
  SourceLine line;
  std::unique_ptr<std::vector<SourceLine>> hidden;
};

// One procedure as the index sees it. Lines are 1-based, as the CodeModule reports them.
struct ProcedureInfo {
  std::string name;
  ProcKind kind = ProcKind::kProc;
  int32_t startLine = 0;   // ProcStartLine
  int32_t bodyLine = 0;    // ProcBodyLine: the heading's first physical line
  int32_t countLines = 0;  // ProcCountLines
};

class CodeModule {
 public:
  CodeModule();
  ~CodeModule();
  CodeModule(const CodeModule&) = delete;
  CodeModule& operator=(const CodeModule&) = delete;

  // Filling the module from a file (the component loader's side).
  void ReserveLines(std::size_t count);
  void AppendLoadedLine(SourceLine line);
  // A hidden line of the file; it stays attached to the visible line read before it. False (and
  // the line left as it was) when no visible line has been read yet.
  bool AppendHiddenLine(SourceLine& line);

  // The CodeModule members. Errors (VB6's numbers; where VB6's exact number is not documented
  // these are our choice, kept consistent):
  //   9  "Subscript out of range": a line number outside the module;
  //   35 "Sub or Function not defined": no procedure of that name and kind;
  //   5  "Invalid procedure call or argument": a negative count or an unknown kind.
  int32_t CountOfLines() const { return static_cast<int32_t>(lines_.size()); }
  int32_t CountOfDeclarationLines() const;
  // The name of the procedure that holds the line ("" in the declarations), and its kind.
  std::string ProcOfLine(int32_t line, ProcKind& kind) const;
  int32_t ProcStartLine(std::string_view name, ProcKind kind) const;
  int32_t ProcBodyLine(std::string_view name, ProcKind kind) const;
  int32_t ProcCountLines(std::string_view name, ProcKind kind) const;
  // The lines joined with CR LF, without a final one. A count reaching past the end stops at the
  // last line, as VB6 does.
  std::string Lines(int32_t start, int32_t count) const;
  // Deleting no lines is allowed from line 1 to CountOfLines + 1, as reading none is.
  void DeleteLines(int32_t start, int32_t count = 1);
  // Inserts the text before the line (CountOfLines + 1 appends); CR LF, a lone CR and a lone LF
  // each end a line of the text.
  void InsertLines(int32_t line, std::string_view text);

  // Every procedure, in module order.
  std::vector<ProcedureInfo> Procedures() const;

  bool IsDirty() const { return dirty_; }
  void ClearDirty() { dirty_ = false; }

  // The component saver's view: the visible lines with their hidden companions.
  const std::vector<CodeLine>& RawLines() const { return lines_; }

 private:
  struct Proc {
    std::string name;
    ProcKind kind = ProcKind::kProc;
    int32_t start = 0;  // 0-based line indices
    int32_t body = 0;
    int32_t end = 0;
    int32_t endLine = -1;     // the last line of its End statement; -1 when it has none
    int32_t ifBlock = 0;      // the #If block around the heading (0: none)
    int32_t ifBranch = 0;     // which branch of it
    bool firstOfKey = false;  // no procedure above has the same name and kind
  };
  // A procedure's name (a view of the name of a procedure in the index, which does not move)
  // and kind; names compare as VB compares them, so that a look-up folds nothing and allocates
  // nothing.
  struct ProcKey {
    std::string_view name;
    ProcKind kind;
  };
  struct ProcKeyHash {
    std::size_t operator()(const ProcKey& key) const;
  };
  struct ProcKeyEqual {
    bool operator()(const ProcKey& a, const ProcKey& b) const;
  };
  static constexpr std::size_t kNoIndex = static_cast<std::size_t>(-2);  // +1 stays out of range
  struct Index {
    int32_t declarationLines = 0;
    std::vector<std::unique_ptr<Proc>> procs;  // in module order
    std::unordered_map<ProcKey, Proc*, ProcKeyHash, ProcKeyEqual> byKey;
    // Edits that only this index's simple cases cover are applied to it in place (see
    // IndexAfterDelete); a module with #If lines or twice-declared names is rebuilt instead.
    bool directives = false;
    bool duplicates = false;
    mutable const Proc* recent = nullptr;        // the procedure last named or found
    mutable std::size_t recentIndex = kNoIndex;  // where ProcOfLine last found it
  };
  // Hidden lines whose visible line was deleted: they wait for a line that declares the same
  // member (a procedure typed again, a procedure's text written back) and are dropped at save
  // if none comes, as VB6 drops the attributes of a deleted member.
  struct Detached {
    std::string member;  // folded name before ".VB_"
    std::vector<SourceLine> lines;
  };

  // The line ends of the lines deleted last, by text and in order: the lines that the next
  // insertion at the same place writes again unchanged (a procedure's text written back) keep
  // their own ends in a file of mixed ends; new and changed lines take the file's usual one.
  struct Removed {
    int32_t at = -1;  // 0-based; -1: nothing deleted since the last insertion
    std::map<std::string, std::deque<LineEnd>, std::less<>> ends;
  };

  struct IndexBuilder;

  const Index& CurrentIndex() const;
  void BuildIndex() const;
  // Bring a valid index up to date for an edit about to be made, when the edit removes or adds
  // whole procedures at a procedure boundary (what writing a procedure's text does); false when
  // the edit is of another kind and the index must be rebuilt.
  bool IndexAfterDelete(int32_t first, int32_t count);
  bool IndexAfterInsert(int32_t at, const std::vector<CodeLine>& added,
                        const std::vector<LineFacts>& addedFacts);
  static bool ReadWholeProcedures(int32_t at, int32_t regionStart,
                                  const std::vector<CodeLine>& added,
                                  const std::vector<LineFacts>& addedFacts,
                                  std::vector<std::unique_ptr<Proc>>& fresh);
  static bool NewNamesOnly(const Index& idx, const std::vector<std::unique_ptr<Proc>>& fresh);
  const Proc& FindProc(std::string_view name, ProcKind kind) const;
  void CheckLine(int32_t line, int32_t last) const;
  void Reattach(int32_t first, int32_t count);

  std::vector<CodeLine> lines_;
  // Each line's facts, kept apart from the lines so that an index rebuild reads one byte per line
  // from one small block of memory instead of a cache line per line.
  std::vector<LineFacts> facts_;
  std::vector<Detached> detached_;
  Removed removed_;
  mutable Index index_;
  mutable bool indexValid_ = false;
  bool dirty_ = false;
};

}  // namespace ide
