#pragma once
// The page a DHTML page designer keeps inside itself: the record its `HTMLDocument` property
// points at in the .dsx. The designer writes a short binary header, the page's HTML as ANSI
// bytes (CR LF line ends), and a terminating NUL. Nothing of the header is known but that it is
// binary, so the page is found from the end: the NUL, then the text before it back to the first
// byte no HTML text holds (a NUL or another control character than tab, CR and LF), which the
// header's last field (a length, a flag) always ends with.
//
// A new text keeps the header as it was, with the two length fields a header may have kept in
// step: a u32 at its start that counts the rest of the record, and a u32 at its end that counts
// the text (with or without its NUL). A field that does not hold that count is left alone.

#include <string>
#include <string_view>

namespace ide::form {

struct PageDocument {
  std::string_view header;   // the bytes before the text
  std::string_view text;     // the page's HTML, ANSI bytes
  std::string_view trailer;  // the terminating NUL (empty when the record has none)
};

// Splits a record's bytes; the views point into them.
PageDocument SplitPageDocument(std::string_view record);

// The record with `text` in place of the page it holds.
std::string ReplacePageText(std::string_view record, std::string_view text);

}  // namespace ide::form
