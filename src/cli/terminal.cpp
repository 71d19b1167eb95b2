#include "cli/terminal.h"

#include <cstdio>

#include "automation/utf8.h"
#include "platform/codepage.h"

namespace cli {
namespace {

void AppendEscape(std::string& out, const char* format, unsigned value) {
  char buffer[16];  // room for any unsigned value, which -O3 checks
  std::snprintf(buffer, sizeof buffer, format, value);
  out += buffer;
}

bool IsC1(char32_t cp) {
  return cp >= 0x80 && cp <= 0x9F;
}

}  // namespace

std::string PlainLines(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r') {
      out += '\n';
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::string EscapeControls(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t start = pos;
    const char32_t cp = automation::utf8::Next(text, pos);
    if (cp == automation::utf8::kInvalid) {
      AppendEscape(out, "\\x%02x", static_cast<unsigned char>(text[start]));
    } else if ((cp < 0x20 && cp != '\t' && cp != '\n') || cp == 0x7F) {
      AppendEscape(out, "\\x%02x", static_cast<unsigned>(cp));
    } else if (IsC1(cp)) {
      AppendEscape(out, "\\u%04x", static_cast<unsigned>(cp));
    } else if (cp >= platform::kByteEscapeBase && cp <= platform::kByteEscapeBase + 0xFF) {
      AppendEscape(out, "\\x%02x", static_cast<unsigned>(cp - platform::kByteEscapeBase));
    } else {
      out.append(text.substr(start, pos - start));
    }
  }
  return out;
}

std::string EscapeJsonControls(std::string_view json) {
  std::string out;
  out.reserve(json.size());
  size_t pos = 0;
  while (pos < json.size()) {
    const size_t start = pos;
    const char32_t cp = automation::utf8::Next(json, pos);
    if (cp == 0x7F || IsC1(cp)) {
      AppendEscape(out, "\\u%04x", static_cast<unsigned>(cp));
    } else {
      out.append(json.substr(start, pos - start));
    }
  }
  return out;
}

}  // namespace cli
