#pragma once
// How VB reads its code, as far as the code module needs it: which physical lines are blank or
// comments, which continue onto the next line (" _"), and which statements open a procedure,
// end one, or steer conditional compilation. Nothing here evaluates code; it only recognises the
// shapes that decide where procedures begin and end.

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/vb_name.h"

namespace ide {

// Procedure kinds as the IDE numbers them.
enum class ProcKind : int32_t { kProc = 0, kLet = 1, kSet = 2, kGet = 3 };

// What a line that starts a statement does to the procedure structure, as far as the line alone
// tells. A statement continued onto further lines is read whole when the index is built.
enum class LineRole : uint8_t {
  kOther,          // nothing that opens or ends a procedure or steers #If
  kContinued,      // may do so, but goes on over the next lines: read the whole statement
  kHeading,        // Sub, Function or Property Get/Let/Set
  kHeadingClosed,  // a heading with ": End Sub" on the same line
  kEnd,            // End Sub, End Function, End Property
  kIf,             // #If
  kElse,           // #ElseIf, #Else
  kEndIf,          // #End If
};

// What one physical line is on its own, without knowing the lines before it. Packed in a byte
// because the code module keeps one per line.
struct LineFacts {
  uint8_t blank : 1 = 0;          // nothing but spaces and tabs
  uint8_t comment : 1 = 0;        // as the start of a statement: a comment (' or Rem)
  uint8_t continues : 1 = 0;      // read as code: ends with " _" outside a string
  uint8_t endsInComment : 1 = 0;  // read as code: the line ends inside a comment
  uint8_t commentGoesOn : 1 = 0;  // read as part of a comment: ends with " _"
  uint8_t role : 3 = 0;           // a LineRole, for the line as the start of a statement

  LineRole Role() const { return static_cast<LineRole>(role); }
};

LineFacts AnalyzeLine(std::string_view line);

// What a whole statement (its physical lines joined) does to the procedure structure.
struct Statement {
  enum class Type : uint8_t {
    kOther,
    kHeading,  // Sub, Function or Property Get/Let/Set, with any modifiers
    kEnd,      // End Sub, End Function, End Property
    kIf,       // #If
    kElse,     // #ElseIf, #Else
    kEndIf,    // #End If
  };
  Type type = Type::kOther;
  ProcKind kind = ProcKind::kProc;  // for a heading
  std::string name;                 // for a heading
  bool endsOnSameLine = false;      // a heading followed by ": End Sub" on its own line
};

// Reads one statement: the text of its physical lines, continuations already joined.
Statement ParseStatement(std::string_view text);

// Joins continued physical lines into one statement text: each line's final "_" becomes a blank.
void AppendContinued(std::string& out, std::string_view line, bool continues);

using automation::IsIdentChar;

}  // namespace ide
