// Component files that editors, other programs and the file system make awkward: byte-order
// marks, UTF-16, paths that name FIFOs and devices, and another writer saving at the same time.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>
#include <string>

#include "automation/error.h"
#include "fixture_copy.h"
#include "ide/model/component_file.h"
#include "ide/model/safe_save.h"
#include "ide/tool/commands.h"
#include "module_text.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "support/errors.h"
#include "support/fault_hook.h"

namespace {

namespace fs = std::filesystem;
using ide::FileKind;
using idetest::Module;
using idetest::ReadBytes;
using idetest::WriteBytes;

const std::string kBom = "\xEF\xBB\xBF";

TEST(HostileFiles, AByteOrderMarkIsReadPastAndKept) {
  const std::string cls = kBom +
                          "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1  'True\r\nEND\r\n"
                          "Attribute VB_Name = \"CThing\"\r\nAttribute VB_Exposed = False\r\n"
                          "Private Sub Class_Initialize()\r\nEnd Sub\r\n";
  auto file = Module(cls, FileKind::kClass);
  EXPECT_EQ(file->Name(), "CThing");
  EXPECT_EQ(file->Code().CountOfLines(), 2);
  EXPECT_EQ(file->Code().CountOfDeclarationLines(), 0);
  EXPECT_EQ(file->Render(), cls);
  // An edit writes the mark back, and the text after it as UTF-8, as the editor saved it.
  file->Code().InsertLines(1, "' Größe");
  std::string edited = cls;
  edited.insert(edited.find("Private Sub"), "' Größe\r\n");
  EXPECT_EQ(file->Render(), edited);

  const std::string frm = kBom +
                          "VERSION 5.00\r\nBegin VB.Form Main \r\n   Caption         =   \"Ä\"\r\n"
                          "End\r\nAttribute VB_Name = \"Main\"\r\nOption Explicit\r\n";
  auto form = Module(frm, FileKind::kForm);
  EXPECT_EQ(form->Name(), "Main");
  EXPECT_EQ(form->Code().Lines(1, 1), "Option Explicit");
  EXPECT_EQ(form->Description()->Root().FindProperty("Caption")->Line().Text(),
            "   Caption         =   \"Ä\"");
  EXPECT_EQ(form->Render(), frm);
}

TEST(HostileFiles, Utf16IsNamedAsSuch) {
  const std::string text = "Attribute VB_Name = \"M\"\r\n";
  std::string little;
  std::string big;
  for (char c : text) {
    little += c, little += '\0';
    big += '\0', big += c;
  }
  const struct {
    std::string bytes;
    const char* named;
  } cases[] = {
      {"\xFF\xFE" + little, "UTF-16 little-endian"},
      {little, "UTF-16 little-endian"},
      {"\xFE\xFF" + big, "UTF-16 big-endian"},
      {big, "UTF-16 big-endian"},
  };
  for (const auto& c : cases) {
    const automation::Error e = qxtest::Caught([&] { Module(c.bytes, FileKind::kModule); });
    EXPECT_EQ(e.Number(), 321);
    EXPECT_NE(e.Description().find(c.named), std::string::npos) << e.Description();
  }
  // Binary data is still called that.
  const std::string binary("Attribute VB_Name = \"M\"\r\n\x01\x00\x02\x00\r\nx", 30);
  EXPECT_NE(qxtest::Caught([&] { Module(binary, FileKind::kModule); }).Description().find("binary"),
            std::string::npos);
}

TEST(HostileFiles, FifosAndDevicesAreErrorsOfTheirComponent) {
  qxtest::TempHome home;
  const fs::path dir = home.path() / "p";
  fs::create_directories(dir);
  ASSERT_EQ(::mkfifo((dir / "Pipe.bas").c_str(), 0600), 0);
  std::string up;
  for (auto it = dir.begin(); it != dir.end(); ++it)
    up += "..\\";
  WriteBytes(dir / "P.vbp", "Type=Exe\r\nModule=Pipe; Pipe.bas\r\nModule=Zero; " + up +
                                "dev\\zero\r\nModule=Good; Good.bas\r\n");
  WriteBytes(dir / "Good.bas", "Attribute VB_Name = \"Good\"\r\nOption Explicit\r\n");
  std::ostringstream out, err;
  EXPECT_EQ(ide::tool::RunDump({(dir / "P.vbp").string(), ""}, out, err),
            ide::tool::kExitComponentProblem);
  EXPECT_NE(out.str().find("FIFO"), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("a device"), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("component Good type=1"), std::string::npos) << out.str();

  std::ostringstream out2, err2;
  ide::tool::RunResave({(dir / "P.vbp").string()}, out2, err2);
  EXPECT_NE(out2.str().find("1 saved, 0 changed, 2 skipped"), std::string::npos) << out2.str();

  // A project file that is a FIFO is an error too, not a wait.
  ASSERT_EQ(::mkfifo((dir / "F.vbp").c_str(), 0600), 0);
  std::ostringstream out3, err3;
  EXPECT_EQ(ide::tool::RunDump({(dir / "F.vbp").string(), ""}, out3, err3), ide::tool::kExitError);
  EXPECT_NE(err3.str().find("FIFO"), std::string::npos) << err3.str();
}

TEST(HostileFiles, AChangeMadeWhileTheSaveIsWrittenIsNotOverwritten) {
  qxtest::TempDir dir;
  const fs::path file = dir.path() / "Module1.bas";
  const std::string loaded = "Attribute VB_Name = \"Module1\"\r\n' loaded\r\n";
  const std::string theirs = "Attribute VB_Name = \"Module1\"\r\n' another program's edit\r\n";
  WriteBytes(file, loaded);
  // Another program writes the file while our new bytes are being flushed.
  qxtest::FaultHook hook([&](platform::WriteStep step) {
    if (step == platform::WriteStep::kFlush) WriteBytes(file, theirs);
    return 0;
  });
  const automation::Error e = qxtest::Caught([&] {
    ide::SaveOver(file.string(), loaded, "Attribute VB_Name = \"Module1\"\r\n' ours\r\n");
  });
  EXPECT_EQ(e.Number(), 75);
  EXPECT_NE(e.Description().find("changed on disk"), std::string::npos);
  EXPECT_EQ(ReadBytes(file), theirs);
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 1);
}

TEST(HostileFiles, EvenASaveWithNothingToWriteClearsAKilledSavesLeftovers) {
  qxtest::TempDir dir;
  const fs::path file = dir.path() / "Module1.bas";
  const std::string bytes = "Attribute VB_Name = \"Module1\"\r\n";
  WriteBytes(file, bytes);
  WriteBytes(dir.path() / ".Module1.bas.qx-00112233aabb", "half a save");
  ide::SaveOver(file.string(), bytes, bytes);
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 1);
  EXPECT_EQ(ReadBytes(file), bytes);
}

// Two processes save the same files, each from the contents both loaded: for every file at most
// one may report success, and the file then holds that one's bytes.
TEST(HostileFiles, TwoWritersNeverBothSucceed) {
  qxtest::TempDir dir;
  constexpr int kFiles = 200;
  const auto path = [&](int i) {
    return (dir.path() / ("M" + std::to_string(i) + ".bas")).string();
  };
  const auto bytes = [](int i, char writer) {
    return "Attribute VB_Name = \"M" + std::to_string(i) + "\"\r\n' " + writer + "\r\n";
  };
  for (int i = 0; i < kFiles; ++i)
    WriteBytes(path(i), bytes(i, '0'));
  int results[2][2];
  pid_t children[2];
  for (int w = 0; w < 2; ++w) {
    ASSERT_EQ(::pipe(results[w]), 0);
    children[w] = ::fork();
    ASSERT_GE(children[w], 0);
    if (children[w] == 0) {
      std::string outcome;
      for (int i = 0; i < kFiles; ++i) {
        try {
          ide::SaveOver(path(i), bytes(i, '0'), bytes(i, static_cast<char>('A' + w)));
          outcome += '1';
        } catch (...) {
          outcome += '0';
        }
      }
      const bool sent = ::write(results[w][1], outcome.data(), outcome.size()) ==
                        static_cast<ssize_t>(outcome.size());
      ::_exit(sent ? 0 : 1);
    }
    ::close(results[w][1]);
  }
  std::string outcome[2];
  for (int w = 0; w < 2; ++w) {
    char buffer[kFiles];
    ssize_t got = 0;
    while ((got = ::read(results[w][0], buffer, sizeof buffer)) > 0)
      outcome[w].append(buffer, static_cast<std::size_t>(got));
    ::close(results[w][0]);
    int status = 0;
    ASSERT_EQ(::waitpid(children[w], &status, 0), children[w]);
    ASSERT_EQ(outcome[w].size(), static_cast<std::size_t>(kFiles));
  }
  for (int i = 0; i < kFiles; ++i) {
    const bool a = outcome[0][i] == '1';
    const bool b = outcome[1][i] == '1';
    EXPECT_FALSE(a && b) << path(i);
    EXPECT_EQ(ReadBytes(path(i)), bytes(i, a ? 'A' : b ? 'B' : '0')) << path(i);
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), kFiles);
}

}  // namespace
