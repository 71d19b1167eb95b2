#pragma once
// Builds code modules from literal text for the tests: the text is a .bas file's contents.

#include <memory>
#include <string>
#include <string_view>

#include "ide/model/component_file.h"
#include "platform/codepage.h"

namespace idetest {

inline std::unique_ptr<ide::ComponentFile> Module(std::string_view code,
                                                  ide::FileKind kind = ide::FileKind::kModule) {
  return ide::ComponentFile::Parse(std::string(code), kind, platform::GetCodePage(1252),
                                   "test.bas");
}

// Lines joined with CR LF, each ended by one (as VB6 writes files).
inline std::string Crlf(std::initializer_list<std::string_view> lines) {
  std::string out;
  for (std::string_view line : lines) {
    out += line;
    out += "\r\n";
  }
  return out;
}

}  // namespace idetest
