#pragma once
// Builds code modules from literal text for the tests: the text is a .bas file's contents.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "ide/model/component_file.h"
#include "platform/codepage.h"
#include "support/bytes.h"

namespace idetest {

inline std::unique_ptr<ide::ComponentFile> Module(std::string_view code,
                                                  ide::FileKind kind = ide::FileKind::kModule,
                                                  int codePage = 1252) {
  return ide::ComponentFile::Parse(std::string(code), kind, platform::GetCodePage(codePage),
                                   "test.bas");
}

// A component file of tests/fixtures/ide, by its path there.
inline std::unique_ptr<ide::ComponentFile> Fixture(const std::string& relative,
                                                   ide::FileKind kind = ide::FileKind::kModule,
                                                   int codePage = 1252) {
  return Module(qxtest::ReadBytes(std::string(QX_FIXTURES) + "/ide/" + relative), kind, codePage);
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

// The module after edits answers as the same text read afresh: counts, every procedure's place,
// and the owner of every line.
inline void ExpectSameIndex(const ide::CodeModule& code, const ide::CodeModule& fresh) {
  ASSERT_EQ(code.CountOfLines(), fresh.CountOfLines());
  EXPECT_EQ(code.CountOfDeclarationLines(), fresh.CountOfDeclarationLines());
  auto got = code.Procedures();
  auto want = fresh.Procedures();
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    SCOPED_TRACE(want[i].name);
    EXPECT_EQ(got[i].name, want[i].name);
    EXPECT_EQ(got[i].kind, want[i].kind);
    EXPECT_EQ(got[i].startLine, want[i].startLine);
    EXPECT_EQ(got[i].bodyLine, want[i].bodyLine);
    EXPECT_EQ(got[i].countLines, want[i].countLines);
    EXPECT_EQ(code.ProcCountLines(want[i].name, want[i].kind),
              fresh.ProcCountLines(want[i].name, want[i].kind));
  }
  for (int32_t line = 1; line <= code.CountOfLines(); line += 3) {
    ide::ProcKind a = ide::ProcKind::kProc;
    ide::ProcKind b = ide::ProcKind::kProc;
    EXPECT_EQ(code.ProcOfLine(line, a), fresh.ProcOfLine(line, b)) << "line " << line;
    EXPECT_EQ(a, b);
  }
}

}  // namespace idetest
