// The pieces under qx's output: the enumeration string read into records, and text made safe
// for a terminal.

#include <gtest/gtest.h>

#include "automation/error.h"
#include "cli/terminal.h"
#include "contracts/enumeration.h"

namespace {

TEST(EnumerationString, ReadsEntriesFromTheRightSoANameMayHoldATab) {
  EXPECT_TRUE(contracts::ParseEnumeration("").empty());
  const auto entries =
      contracts::ParseEnumeration("A\tB\t4\t20261123091244\t1\t0\t1\t0\r\n\t5\t\t0\t1\t1\t0");
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].name, "A\tB");
  EXPECT_EQ(entries[0].bitmapId, 4);
  EXPECT_EQ(entries[0].version, "20261123091244");
  EXPECT_TRUE(entries[0].flag);
  EXPECT_FALSE(entries[0].writable);
  EXPECT_EQ(entries[1].name, "");
  EXPECT_EQ(entries[1].bitmapId, 5);
  EXPECT_FALSE(entries[1].flag);
  EXPECT_TRUE(entries[1].writable);

  for (const char* bad : {"M\t5\t\t0\t1\t1", "M\tx\t\t0\t1\t1\t0", "M\t5\t\t2\t1\t1\t0",
                          "M\t5\t\t0\t1\t0\t0", "A\t5\t\t0\t1\t1\t0\r\n"}) {
    EXPECT_THROW(contracts::ParseEnumeration(bad), automation::Error) << bad;
  }
  EXPECT_EQ(contracts::ParseCollectionNames("Forms\tModules"),
            (std::vector<std::string>{"Forms", "Modules"}));
}

TEST(Terminal, EscapesWhatWouldDriveTheTerminal) {
  EXPECT_EQ(cli::PlainLines("a\r\nb\rc\n"), "a\nb\nc\n");
  // Tabs and line feeds keep their meaning; other C0 controls and DEL become \xNN.
  EXPECT_EQ(cli::EscapeControls("\x1b]0;t\x07\x1b[2J\ta\nb\r\x7f\\"),
            "\\x1b]0;t\\x07\\x1b[2J\ta\nb\\x0d\\x7f\\");
  // C1 controls (here CSI, U+009B), stray bytes and the code page's raw-byte characters.
  EXPECT_EQ(cli::EscapeControls("\xc2\x9b"
                                "2J|\xff|\xf4\x8f\xbe\x81|\xc3\xa9"),
            "\\u009b2J|\\xff|\\x81|\xc3\xa9");
  EXPECT_EQ(cli::EscapeJsonControls(R"({"a":"\u001b)"
                                    "\x7f\xc2\x9b\xc3\xa9\"}"),
            R"({"a":"\u001b\u007f\u009b)"
            "\xc3\xa9\"}");
}

}  // namespace
