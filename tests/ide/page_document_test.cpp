// The page a DHTML page designer keeps in its .dsx record: found from the end, and replaced with
// the header's length fields kept in step.

#include "ide/form/page_document.h"

#include <gtest/gtest.h>

#include <string>

#include "support/bytes.h"

namespace {

using ide::form::ReplacePageText;
using ide::form::SplitPageDocument;

using qxtest::Le32;

TEST(PageDocument, ThePageIsTheTextBeforeTheNulBackToTheHeadersLastBinaryByte) {
  // The header ends with a length whose high bytes are zero, however printable its low byte.
  const std::string record = Le32(60) + std::string("\x01\x02", 2) + Le32(0x3C) +
                             "<html>\r\n\t<p>a\nb</p>\r\n</html>" + std::string(1, '\0');
  const auto page = SplitPageDocument(record);
  EXPECT_EQ(page.text, "<html>\r\n\t<p>a\nb</p>\r\n</html>");
  EXPECT_EQ(page.header.size(), 10u);
  EXPECT_EQ(page.trailer, std::string(1, '\0'));

  // An empty page, and a record without a NUL.
  EXPECT_EQ(SplitPageDocument(Le32(1) + std::string(1, '\0')).text, "");
  EXPECT_EQ(SplitPageDocument(std::string("\x01\x00", 2) + "<p/>").text, "<p/>");
}

TEST(PageDocument, ANewTextKeepsTheHeadersLengthFieldsInStep) {
  const std::string text = "<p>old</p>";
  std::string rest = std::string("\x07\x07", 2) + Le32(static_cast<uint32_t>(text.size() + 1)) +
                     text + std::string(1, '\0');
  const std::string record = Le32(static_cast<uint32_t>(rest.size())) + rest;

  const std::string longer(300, 'x');
  std::string expectedRest = std::string("\x07\x07", 2) + Le32(301) + longer + std::string(1, '\0');
  EXPECT_EQ(ReplacePageText(record, longer),
            Le32(static_cast<uint32_t>(expectedRest.size())) + expectedRest);

  // Fields that count something else stay as they are.
  const std::string odd = Le32(999) + std::string("\x01", 1) + Le32(77) + "abc" + '\0';
  EXPECT_EQ(ReplacePageText(odd, "abcdef"),
            Le32(999) + std::string("\x01", 1) + Le32(77) + "abcdef" + '\0');
}

}  // namespace
