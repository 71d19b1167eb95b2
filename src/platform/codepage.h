#pragma once
// Text in the project's ANSI code page. Files are bytes; inside qx text is UTF-8. The conversion
// is lossless for every byte string: bytes that the code page cannot decode, or whose decoding
// would not encode back to the same bytes, travel as the escape characters U+10FF00 + byte
// (private use, plane 16), which Encode turns back into the byte. So a file read and written
// back unchanged is identical, whatever it holds.

#include <string>
#include <string_view>

namespace platform {

// The first of the 256 escape characters: U+10FF00 + byte stands for that raw byte.
inline constexpr char32_t kByteEscapeBase = 0x10FF00;

class CodePage {
 public:
  // Raises 5 "Unknown code page: N" for a number that is neither 1252 nor known to iconv.
  explicit CodePage(int number);

  int Number() const { return number_; }

  // Bytes to UTF-8; never fails.
  std::string Decode(std::string_view bytes) const;
  // Whether Decode gives these bytes back as they are (ASCII text, in a code page that keeps
  // ASCII as it is), so that the bytes can stand for their own text.
  bool DecodesToItself(std::string_view bytes) const;

  // UTF-8 to bytes. A character the code page cannot represent raises 5 naming it; so does
  // text that is not UTF-8. Nothing is ever replaced by "?".
  std::string Encode(std::string_view utf8) const;

 private:
  std::string DecodeWithIconv(std::string_view bytes) const;
  std::string EncodeWithIconv(std::string_view utf8) const;

  int number_;
  std::string iconvName_;  // empty for Windows-1252, which is built in
  bool asciiCompatible_ = true;
};

// Whether the bytes are all ASCII (below 0x80), as most source text and paths are.
bool IsAscii(std::string_view bytes);

// Whether qx can read and write this code page (1252 always; others when iconv knows them).
bool IsKnownCodePage(int number);

// The code page object for a number, made once and kept; raises 5 when unknown.
const CodePage& GetCodePage(int number);

// The code page of this run: the one set with SetCurrentCodePage, else the number in
// $QX_CODEPAGE, else the one detected for the project at hand (SetDetectedCodePage), else 1252.
// An unknown number in $QX_CODEPAGE raises 5.
const CodePage& CurrentCodePage();

// Chooses the code page of this run (qx's --codepage); raises 5 for an unknown number.
void SetCurrentCodePage(int number);

// Forgets SetCurrentCodePage, going back to $QX_CODEPAGE, the detected code page or 1252.
void ClearCurrentCodePage();

// Where the current code page comes from.
enum class CodePageSource {
  Option,       // SetCurrentCodePage: the command line's --codepage
  Environment,  // $QX_CODEPAGE
  Detected,     // SetDetectedCodePage: read from the project's own files
  Default,      // none of these: 1252
};

CodePageSource CurrentCodePageSource();

// The code page found in the files of the project being worked on; it counts only when neither
// SetCurrentCodePage nor $QX_CODEPAGE gives one. Raises 5 for an unknown number.
void SetDetectedCodePage(int number);

// Forgets SetDetectedCodePage.
void ClearDetectedCodePage();

}  // namespace platform
