#pragma once
// Letter case, in the two ways the program compares text without it.
//
// ASCII: only A-Z and a-z pair up; every other byte compares as it is. This is how VB matches
// its keywords and the keys of its files, which are all ASCII.
//
// Unicode: every code point folds to its simple lower-case form, so letters of every script pair
// up; bytes that are not well-formed UTF-8 compare as themselves. This is how Windows compares
// file names, registry keys and private-profile sections.
//
// VB names (components, members, procedures, controls) compare as VB6 compares identifiers: case
// does not count, by the rules of the code page the project is written in. Our text is that code
// page decoded to UTF-8, and for every letter a code page has, its own upper/lower pairs are the
// Unicode simple case pairs; so VB names compare by the Unicode folding. Folding ASCII only would
// tell "Ärger" and "ÄRGER" apart, which VB6 takes for one name, and the driver and the IDE would
// disagree about which component a name means.

#include <string>
#include <string_view>

namespace automation {

// ASCII.
inline char LowerAscii(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
std::string LowerAscii(std::string_view text);
bool EqualsAsciiNoCase(std::string_view a, std::string_view b);

// Unicode.
char32_t FoldCodePoint(char32_t cp);
// The whole string folded; well-formed text stays well-formed, other bytes are kept.
std::string FoldCaseUnicode(std::string_view text);
// <0, 0 or >0 comparing the folded forms, without building them.
int CompareNoCaseUnicode(std::string_view a, std::string_view b);
bool EqualsNoCaseUnicode(std::string_view a, std::string_view b);

// VB names.
inline bool SameVbName(std::string_view a, std::string_view b) {
  return EqualsNoCaseUnicode(a, b);
}
// The form under which a VB name is kept in a map: equal for names that SameVbName matches.
inline std::string VbNameKey(std::string_view name) {
  return FoldCaseUnicode(name);
}

}  // namespace automation
