#include "ide/code/statement.h"

#include <cstddef>

#include "automation/casefold.h"
#include "platform/text.h"

namespace ide {

namespace {

using platform::IsBlank;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Case-insensitive comparison with an ASCII keyword written in lower case.
bool IsWord(std::string_view word, std::string_view keyword) {
  if (word.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (automation::LowerAscii(word[i]) != keyword[i]) return false;
  }
  return true;
}

void SkipBlanks(std::string_view s, std::size_t& pos) {
  while (pos < s.size() && IsBlank(s[pos]))
    ++pos;
}

std::string_view ReadWord(std::string_view s, std::size_t& pos) {
  std::size_t start = pos;
  while (pos < s.size() && IsIdentChar(s[pos]))
    ++pos;
  return s.substr(start, pos - start);
}

// A line number at the start of a statement ("100 End Sub") is a label, not part of it.
void SkipLineNumber(std::string_view s, std::size_t& pos) {
  std::size_t p = pos;
  while (p < s.size() && IsDigit(s[p]))
    ++p;
  if (p > pos && (p == s.size() || IsBlank(s[p]))) {
    pos = p;
    SkipBlanks(s, pos);
  }
}

// The word at pos ends there: at the end, before a blank, a colon or a comment.
bool WordEndsHere(std::string_view s, std::size_t pos) {
  return pos == s.size() || IsBlank(s[pos]) || s[pos] == ':' || s[pos] == '\'';
}

bool IsRemAt(std::string_view s, std::size_t pos) {
  return pos + 3 <= s.size() && IsWord(s.substr(pos, 3), "rem") &&
         (pos + 3 == s.size() || IsBlank(s[pos + 3]));
}

// "End Sub", "End Function" or "End Property" starting at pos.
bool IsProcEndAt(std::string_view s, std::size_t pos) {
  std::string_view first = ReadWord(s, pos);
  if (!IsWord(first, "end") || pos == s.size() || !IsBlank(s[pos])) return false;
  SkipBlanks(s, pos);
  std::string_view second = ReadWord(s, pos);
  if (!IsWord(second, "sub") && !IsWord(second, "function") && !IsWord(second, "property")) {
    return false;
  }
  return WordEndsHere(s, pos);
}

// Whether the rest of a heading line holds ": End Sub" (a whole procedure on one line).
bool HasEndAfterColon(std::string_view s, std::size_t pos) {
  bool inString = false;
  for (; pos < s.size(); ++pos) {
    char c = s[pos];
    if (inString) {
      if (c == '"') inString = false;  // a doubled quote reopens at once
      continue;
    }
    if (c == '"') {
      inString = true;
    } else if (c == '\'') {
      return false;
    } else if (c == ':') {
      std::size_t p = pos + 1;
      SkipBlanks(s, p);
      if (IsProcEndAt(s, p)) return true;
      if (IsRemAt(s, p)) return false;
    }
  }
  return false;
}

}  // namespace

LineFacts AnalyzeLine(std::string_view s) {
  LineFacts facts;
  std::size_t pos = 0;
  SkipBlanks(s, pos);
  if (pos == s.size()) {
    facts.blank = 1;
    return facts;
  }
  std::size_t last = s.size();
  while (last > 0 && IsBlank(s[last - 1]))
    --last;
  bool underscore = s[last - 1] == '_' && (last == 1 || IsBlank(s[last - 2]));
  facts.commentGoesOn = underscore ? 1 : 0;

  std::size_t first = pos;
  bool candidate = false;
  if (s[pos] == '\'' || IsRemAt(s, pos)) {
    facts.comment = 1;
    facts.endsInComment = 1;
    facts.continues = facts.commentGoesOn;
    return facts;
  }
  if (s[pos] == '#') {
    candidate = true;
  } else {
    std::size_t p = pos;
    SkipLineNumber(s, p);
    std::string_view word = ReadWord(s, p);
    candidate = IsWord(word, "public") || IsWord(word, "private") || IsWord(word, "friend") ||
                IsWord(word, "static") || IsWord(word, "sub") || IsWord(word, "function") ||
                IsWord(word, "property") || IsWord(word, "end");
  }

  bool inString = false;
  bool statementStart = true;
  for (std::size_t i = first; i < s.size(); ++i) {
    char c = s[i];
    if (inString) {
      if (c == '"') inString = false;
      continue;
    }
    if (c == '"') {
      inString = true;
      statementStart = false;
    } else if (c == '\'') {
      facts.endsInComment = 1;
      break;
    } else if (c == ':') {
      statementStart = true;
    } else if (!IsBlank(c)) {
      if (statementStart && IsRemAt(s, i)) {
        facts.endsInComment = 1;
        break;
      }
      statementStart = false;
    }
  }
  facts.continues = (underscore && (facts.endsInComment || !inString)) ? 1 : 0;
  if (candidate) {
    LineRole role = LineRole::kContinued;
    if (!facts.continues) {
      Statement st = ParseStatement(s);
      switch (st.type) {
        case Statement::Type::kHeading:
          role = st.endsOnSameLine ? LineRole::kHeadingClosed : LineRole::kHeading;
          break;
        case Statement::Type::kEnd:
          role = LineRole::kEnd;
          break;
        case Statement::Type::kIf:
          role = LineRole::kIf;
          break;
        case Statement::Type::kElse:
          role = LineRole::kElse;
          break;
        case Statement::Type::kEndIf:
          role = LineRole::kEndIf;
          break;
        case Statement::Type::kOther:
          role = LineRole::kOther;
          break;
      }
    }
    facts.role = static_cast<uint8_t>(role);
  }
  return facts;
}

Statement ParseStatement(std::string_view s) {
  Statement st;
  std::size_t pos = 0;
  SkipBlanks(s, pos);
  SkipLineNumber(s, pos);
  if (pos < s.size() && s[pos] == '#') {
    ++pos;
    SkipBlanks(s, pos);
    std::string_view word = ReadWord(s, pos);
    if (IsWord(word, "if")) {
      st.type = Statement::Type::kIf;
    } else if (IsWord(word, "elseif") || IsWord(word, "else")) {
      st.type = Statement::Type::kElse;
    } else if (IsWord(word, "end")) {
      SkipBlanks(s, pos);
      if (IsWord(ReadWord(s, pos), "if")) st.type = Statement::Type::kEndIf;
    }
    return st;
  }
  if (IsProcEndAt(s, pos)) {
    st.type = Statement::Type::kEnd;
    return st;
  }
  std::string_view word = ReadWord(s, pos);
  while (IsWord(word, "public") || IsWord(word, "private") || IsWord(word, "friend") ||
         IsWord(word, "static")) {
    SkipBlanks(s, pos);
    word = ReadWord(s, pos);
  }
  ProcKind kind;
  if (IsWord(word, "sub") || IsWord(word, "function")) {
    kind = ProcKind::kProc;
  } else if (IsWord(word, "property")) {
    if (pos == s.size() || !IsBlank(s[pos])) return st;
    SkipBlanks(s, pos);
    std::string_view which = ReadWord(s, pos);
    if (IsWord(which, "get")) {
      kind = ProcKind::kGet;
    } else if (IsWord(which, "let")) {
      kind = ProcKind::kLet;
    } else if (IsWord(which, "set")) {
      kind = ProcKind::kSet;
    } else {
      return st;
    }
  } else {
    return st;
  }
  if (pos == s.size() || !IsBlank(s[pos])) return st;
  SkipBlanks(s, pos);
  std::string_view name;
  if (pos < s.size() && s[pos] == '[') {
    std::size_t close = s.find(']', pos);
    if (close == std::string_view::npos) return st;
    name = s.substr(pos + 1, close - pos - 1);
    pos = close + 1;
  } else {
    name = ReadWord(s, pos);
  }
  if (name.empty()) return st;
  st.type = Statement::Type::kHeading;
  st.kind = kind;
  st.name.assign(name);
  st.endsOnSameLine = HasEndAfterColon(s, pos);
  return st;
}

void AppendContinued(std::string& out, std::string_view line, bool continues) {
  if (continues) {
    std::size_t last = line.size();
    while (last > 0 && IsBlank(line[last - 1]))
      --last;
    if (last > 0 && line[last - 1] == '_') line = line.substr(0, last - 1);
  }
  out.append(line);
  out.push_back(' ');
}

}  // namespace ide
