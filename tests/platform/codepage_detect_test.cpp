#include "platform/codepage_detect.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/test_files.h"
#include "support/temp_home.h"

namespace {

namespace fs = std::filesystem;
using platformtest::ReadBytes;
using platformtest::WriteBytes;

// Copies of the code page fixtures: one small project each in Shift-JIS, GBK, Windows-1251,
// Windows-1252 and plain ASCII.
class Detect : public ::testing::Test {
 protected:
  void SetUp() override {
    platform::ClearCurrentCodePage();
    platform::ClearDetectedCodePage();
    ::unsetenv("QX_CODEPAGE");
    fs::copy(fs::path(QX_FIXTURES) / "codepage", root(), fs::copy_options::recursive);
  }
  void TearDown() override {
    platform::ClearCurrentCodePage();
    platform::ClearDetectedCodePage();
    ::unsetenv("QX_CODEPAGE");
  }
  fs::path root() const { return dir_.path() / "codepage"; }
  std::string Project(const std::string& folder, const std::string& vbp) const {
    return (root() / folder / vbp).string();
  }

  qxtest::TempDir dir_;
};

TEST_F(Detect, EachFixtureProjectGivesItsCodePage) {
  struct Case {
    std::string project;
    int codePage;
    double confidence;  // at least
  };
  // German text has an umlaut here and there: fewer bytes to go by, so less sure. Plain ASCII is
  // surely 1252; a project that is not there gives 1252 without any confidence.
  const Case cases[] = {{Project("sjis", "顧客管理.vbp"), 932, 0.9},
                        {Project("gbk", "客户管理.vbp"), 936, 0.9},
                        {Project("cyrillic", "Клиенты.vbp"), 1251, 0.9},
                        {Project("german", "Kunden.vbp"), 1252, 0.1},
                        {Project("ascii", "Customers.vbp"), 1252, 1.0},
                        {Project("ascii", "Nowhere.vbp"), 1252, 0.0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.project);
    const platform::DetectedCodePage detected = platform::DetectProjectCodePage(c.project);
    EXPECT_EQ(detected.number, c.codePage);
    if (c.confidence == 1.0 || c.confidence == 0.0) {
      EXPECT_EQ(detected.confidence, c.confidence);
      EXPECT_EQ(detected.nonAsciiBytes, 0u);
    } else {
      EXPECT_GT(detected.confidence, c.confidence);
    }
  }
}

// The project file names its files in ASCII: only the component files can tell, so they are read.
// The Japanese form's own name ends in the byte 0x5C, a backslash, inside the project file.
TEST_F(Detect, ComponentFilesAreSampledToo) {
  const fs::path sjis = root() / "sjis";
  fs::copy_file(sjis / "顧客表.frm", sjis / "Form1.frm");
  WriteBytes(sjis / "Plain.vbp", "Type=Exe\r\nForm=Form1.frm\r\n");
  EXPECT_EQ(platform::DetectProjectCodePage((sjis / "Plain.vbp").string()).number, 932);

  // A component whose name only the detected code page decodes to the file on disk.
  WriteBytes(sjis / "Named.vbp", "Type=Exe\r\nForm=\x8C\xDA\x8B\x71\x95\x5C.frm\r\n");
  const platform::DetectedCodePage named =
      platform::DetectProjectCodePage((sjis / "Named.vbp").string());
  EXPECT_EQ(named.number, 932);
  EXPECT_GT(named.nonAsciiBytes, 64u);  // the form's lines, not only the project file's 6 bytes
}

TEST_F(Detect, TheSampleIsBounded) {
  const fs::path big = root() / "big";
  std::string line = "' ";
  for (int i = 0; i < 40; ++i)
    line += "\x83\x66\x81\x5B\x83\x5E";  // "データ" in Shift-JIS
  std::string text = "Attribute VB_Name = \"Big\"\r\n";
  for (int i = 0; i < 20000; ++i)
    text += line + "\r\n";
  WriteBytes(big / "Big.bas", text);
  WriteBytes(big / "Big.vbp", "Type=Exe\r\nModule=Big; Big.bas\r\n");
  const platform::DetectedCodePage detected =
      platform::DetectProjectCodePage((big / "Big.vbp").string());
  EXPECT_EQ(detected.number, 932);
  EXPECT_LE(detected.nonAsciiBytes, 256u * 1024);
}

TEST_F(Detect, GivenCodePageWinsOverDetection) {
  const std::string sjis = Project("sjis", "顧客管理.vbp");

  platform::ProjectCodePage used = platform::UseProjectCodePage(sjis);
  EXPECT_EQ(used.number, 932);
  EXPECT_EQ(used.source, platform::CodePageSource::Detected);
  EXPECT_EQ(platform::CurrentCodePage().Number(), 932);
  // The next project detects its own.
  used = platform::UseProjectCodePage(Project("gbk", "客户管理.vbp"));
  EXPECT_EQ(used.number, 936);
  EXPECT_EQ(platform::CurrentCodePage().Number(), 936);

  ::setenv("QX_CODEPAGE", "1251", 1);
  used = platform::UseProjectCodePage(sjis);
  EXPECT_EQ(used.number, 1251);
  EXPECT_EQ(used.source, platform::CodePageSource::Environment);
  EXPECT_EQ(platform::CurrentCodePage().Number(), 1251);

  platform::SetCurrentCodePage(1253);
  used = platform::UseProjectCodePage(sjis);
  EXPECT_EQ(used.number, 1253);
  EXPECT_EQ(used.source, platform::CodePageSource::Option);
  EXPECT_EQ(platform::CurrentCodePageSource(), platform::CodePageSource::Option);
}

// A wrong guess only shows text wrongly: every fixture file read and written back in any of the
// code pages that detection can give is the same bytes.
TEST_F(Detect, AnyGuessKeepsEveryByte) {
  const int pages[] = {874,  932,  936,  949,  950,  1250, 1251, 1252,
                       1253, 1254, 1255, 1256, 1257, 1258, 65001};
  int files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(root())) {
    if (!entry.is_regular_file()) continue;
    const std::string bytes = ReadBytes(entry.path());
    for (int page : pages) {
      const platform::CodePage& codePage = platform::GetCodePage(page);
      EXPECT_EQ(codePage.Encode(codePage.Decode(bytes)), bytes) << entry.path() << " in " << page;
    }
    ++files;
  }
  EXPECT_EQ(files, 15);
}

}  // namespace
