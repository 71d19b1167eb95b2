#include "automation/casefold.h"

#include <locale.h>
#include <wctype.h>

#include "automation/utf8.h"

namespace automation {
namespace {

// glibc's UTF-8 locale knows the case pairs of every script; without it (a stripped-down
// system) only ASCII letters fold.
locale_t Utf8Locale() {
  static const locale_t locale = [] {
    for (const char* name : {"C.UTF-8", "C.utf8", "en_US.UTF-8"}) {
      if (locale_t l = newlocale(LC_CTYPE_MASK, name, static_cast<locale_t>(0))) return l;
    }
    return static_cast<locale_t>(0);
  }();
  return locale;
}

char32_t Fold(std::string_view text, std::size_t& pos) {
  const std::size_t start = pos;
  const char32_t cp = utf8::Next(text, pos);
  if (cp == utf8::kInvalid) return 0x80000000u | static_cast<unsigned char>(text[start]);
  return FoldCodePoint(cp);
}

}  // namespace

char32_t FoldCodePoint(char32_t cp) {
  if (cp < 0x80) return static_cast<unsigned char>(LowerAscii(static_cast<char>(cp)));
  const locale_t locale = Utf8Locale();
  if (locale == static_cast<locale_t>(0)) return cp;
  return static_cast<char32_t>(towlower_l(static_cast<wint_t>(cp), locale));
}

std::string FoldCaseUnicode(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  std::size_t pos = 0;
  while (pos < text.size()) {
    const unsigned char c = static_cast<unsigned char>(text[pos]);
    if (c < 0x80) {
      out += LowerAscii(static_cast<char>(c));
      ++pos;
      continue;
    }
    const std::size_t start = pos;
    const char32_t cp = utf8::Next(text, pos);
    if (cp == utf8::kInvalid) {
      out += text[start];
    } else {
      utf8::Append(out, FoldCodePoint(cp));
    }
  }
  return out;
}

int CompareNoCaseUnicode(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    const auto c = static_cast<unsigned char>(a[i]);
    const auto d = static_cast<unsigned char>(b[j]);
    // ASCII on both sides, as most names are: folded without decoding.
    if (c < 0x80 && d < 0x80) {
      const auto x = static_cast<unsigned char>(LowerAscii(static_cast<char>(c)));
      const auto y = static_cast<unsigned char>(LowerAscii(static_cast<char>(d)));
      if (x != y) return x < y ? -1 : 1;
      ++i;
      ++j;
      continue;
    }
    const char32_t x = Fold(a, i);
    const char32_t y = Fold(b, j);
    if (x != y) return x < y ? -1 : 1;
  }
  if (i < a.size()) return 1;
  if (j < b.size()) return -1;
  return 0;
}

bool EqualsNoCaseUnicode(std::string_view a, std::string_view b) {
  return CompareNoCaseUnicode(a, b) == 0;
}

std::string LowerAscii(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    c = LowerAscii(c);
  return out;
}

bool EqualsAsciiNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (LowerAscii(a[i]) != LowerAscii(b[i])) return false;
  }
  return true;
}

}  // namespace automation
