#pragma once
// Case-insensitive comparison of UTF-8 names, as Windows compares file names, registry keys and
// private-profile sections: letters of every script fold to lower case; bytes that are not
// well-formed UTF-8 compare as themselves.

#include <string>
#include <string_view>

namespace platform {

// The lower-case form of one code point.
char32_t FoldChar(char32_t cp);

// The whole string folded; well-formed text stays well-formed, other bytes are kept.
std::string FoldCase(std::string_view text);

// <0, 0 or >0 comparing the folded forms, without building them.
int CompareNoCase(std::string_view a, std::string_view b);

bool EqualsNoCase(std::string_view a, std::string_view b);

}  // namespace platform
