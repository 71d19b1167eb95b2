// DHTML pages end to end: the DHTMLPage component object over the in-process IDE, its HTML read
// from and written to the file the page designer names (an external SourceFile, or the IDE's
// own file of the page kept in the .dsx), the line rule and the failures; and the other
// designers, which load and save byte for byte.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "automation/error.h"
#include "special/dhtml_page.h"
#include "support/driver_ide.h"
#include "support/errors.h"

namespace {

namespace fs = std::filesystem;
using automation::Dispatch;
using automation::ObjectRef;
using qxtest::Caught;
using qxtest::Le32;

// A page record as our fixtures lay it out: a u32 counting the rest, sixteen binary bytes, a
// u32 counting the text with its NUL, the text, the NUL.
std::string PageRecord(const std::string& text) {
  std::string rest(16, '\x01');
  rest[15] = '\0';
  rest += Le32(static_cast<uint32_t>(text.size() + 1)) + text + '\0';
  return Le32(static_cast<uint32_t>(rest.size())) + rest;
}

class DhtmlPageTest : public qxtest::DriverIde {
 protected:
  DhtmlPageTest() : DriverIde("pages", "Pages.vbp") {}

  ObjectRef Page(const std::string& name) const { return Get("GetDHTMLPage", name); }
  static std::string Html(const ObjectRef& page) { return Dispatch(page).Get("HTML").ToString(); }
  std::string PageFile(const std::string& name) const {
    return Dispatch(IdeComponent(name).Get("Designer").ToObject(), "IDHTMLPageDesigner")
        .Get("PageFile")
        .ToString();
  }
};

TEST_F(DhtmlPageTest, TheHtmlOfAnExternalSourceFileIsReadByItsLinesAndWrittenThroughTheFile) {
  const ObjectRef page = Page("Ext");
  EXPECT_EQ(page->Class().name, "DHTMLPage");
  // The designer names the SourceFile, resolved against the .dsr's folder.
  EXPECT_EQ(fs::path(PageFile("Ext")), File("html/Ext.htm"));

  SetMode(page, 1);
  // CR LF and a lone CR end lines; a lone LF stays in its line; the last line end adds nothing.
  EXPECT_EQ(Html(page), "<html>\r\n<body>\nA</body>\r\n</html>");

  // The write lets the component go, writes the text and a CR LF, and takes it up for writing.
  Dispatch(page).Put("HTML", "<p>new</p>\r\n<p>two</p>");
  EXPECT_EQ(Bytes("html/Ext.htm"), "<p>new</p>\r\n<p>two</p>\r\n");
  EXPECT_EQ(Dispatch(page).Get("HTML").ToString(), "<p>new</p>\r\n<p>two</p>");
  SetMode(page, 0);

  // A file of LF line ends is one line; an empty one is the empty string.
  qxtest::WriteBytes(File("html/Ext.htm"), "a\nb\nc\n");
  SetMode(page, 1);
  EXPECT_EQ(Html(page), "a\nb\nc\n");
  qxtest::WriteBytes(File("html/Ext.htm"), "");
  EXPECT_EQ(Html(page), "");
  SetMode(page, 0);
  EXPECT_EQ(Caught([&] { Html(page); }).Number(), automation::err::kObjectNotSet);
}

TEST_F(DhtmlPageTest, ThePageKeptInTheDesignerRoundTripsThroughTheDsx) {
  const std::string dsr = Bytes("Inner.Dsr");
  const std::string dsx = Bytes("Inner.dsx");
  const ObjectRef page = Page("Inner");

  // A scan that only reads leaves the .dsx as it is.
  SetMode(page, 1);
  EXPECT_EQ(Html(page), "<html>\r\n<p>kept</p>\r\n</html>");
  SetMode(page, 0);
  EXPECT_EQ(Bytes("Inner.dsx"), dsx);

  // The IDE's file of the page lives in the qx home, not beside the project.
  const fs::path file = PageFile("Inner");
  EXPECT_EQ(file.string().rfind(env_.home().string(), 0), 0u) << file;
  EXPECT_EQ(qxtest::ReadBytes(file), "<html>\r\n<p>kept</p>\r\n</html>");

  // A write goes into the record as the page is taken up again; the .dsr keeps its bytes.
  SetMode(page, 1);
  const std::string longer = "<html>\r\n<p>" + std::string(300, 'x') + "</p>\r\n</html>";
  Dispatch(page).Put("HTML", longer);
  EXPECT_EQ(Bytes("Inner.dsx"), PageRecord(longer + "\r\n"));
  EXPECT_EQ(Html(page), longer);
  SetMode(page, 0);
  EXPECT_EQ(Bytes("Inner.Dsr"), dsr);
  EXPECT_FALSE(IdeComponent("Inner").Get("IsDirty").ToBool());

  // An empty page kept in the designer reads as the empty string.
  const ObjectRef blank = Page("Blank");
  SetMode(blank, 1);
  EXPECT_EQ(Html(blank), "");
  SetMode(blank, 0);
  EXPECT_EQ(Bytes("Blank.dsx"), PageRecord(""));

  // The IDE's files go with the IDE; a change still in one is taken in first.
  qxtest::WriteBytes(file, "<p>last</p>");
  ide_->End();
  ide_.reset();
  EXPECT_FALSE(fs::exists(file));
  EXPECT_EQ(Bytes("Inner.dsx"), PageRecord("<p>last</p>"));
}

TEST_F(DhtmlPageTest, WritingOverUnsavedChangesSavesThemFirstAndThenTakesThePageIn) {
  const ObjectRef page = Page("Inner");
  SetMode(page, 1);
  Dispatch(IdeComponent("Inner").Get("CodeModule").ToObject())
      .Call("InsertLines", 1, "' typed in the IDE");
  Dispatch(page).Put("HTML", "<p>after</p>");
  EXPECT_NE(Bytes("Inner.Dsr").find("' typed in the IDE"), std::string::npos);
  EXPECT_EQ(Bytes("Inner.dsx"), PageRecord("<p>after</p>\r\n"));
  EXPECT_EQ(Html(page), "<p>after</p>");
  EXPECT_FALSE(IdeComponent("Inner").Get("IsDirty").ToBool());
  SetMode(page, 0);

  // A page file that cannot be written leaves the object idle.
  fs::permissions(File("html/Ext.htm"), fs::perms::owner_write, fs::perm_options::remove);
  const ObjectRef ext = Page("Ext");
  SetMode(ext, 1);
  const automation::Error refused = Caught([&] { Dispatch(ext).Put("HTML", "x"); });
  EXPECT_EQ(refused.Number(), automation::err::kPermissionDenied);
  EXPECT_NE(refused.Description().find("qxvb60.DHTMLPage.HTML.1"), std::string::npos);
  EXPECT_EQ(Bytes("html/Ext.htm"), "<html>\r\n<body>\nA</body>\r</html>\r\n");
  EXPECT_EQ(Caught([&] { Html(ext); }).Number(), automation::err::kObjectNotSet);
}

TEST_F(DhtmlPageTest, ADesignerWithoutAFileOrWithAMissingOneFailsWithItsMessage) {
  const ObjectRef bare = Page("Bare");
  SetMode(bare, 1);
  const automation::Error none = Caught([&] { Html(bare); });
  EXPECT_NE(none.Description().find("Undefined property."), std::string::npos);
  EXPECT_NE(none.Description().find("qxvb60.DHTMLPage.HTML.1"), std::string::npos);
  SetMode(bare, 0);

  const ObjectRef gone = Page("Gone");
  SetMode(gone, 1);
  const automation::Error missing = Caught([&] { Html(gone); });
  EXPECT_EQ(missing.Number(), -32767);
  EXPECT_EQ(missing.Source(), "");
  EXPECT_EQ(missing.Description().rfind("The file containing this DHTML Page was not found. (" +
                                            File("Gone.htm").string() + ")",
                                        0),
            0u)
      << missing.Description();
  SetMode(gone, 0);
}

TEST_F(DhtmlPageTest, OtherDesignersLoadAndSaveByteForByte) {
  const std::string dsr = Bytes("DataEnv1.Dsr");
  const std::string dsx = Bytes("DataEnv1.dsx");
  const Dispatch component = IdeComponent("DataEnv1");
  EXPECT_EQ(component.Get("Type").ToLong(), 11);
  EXPECT_EQ(component.Get("Designer").ToObject(), nullptr);
  // Its stored settings answer as stored.
  const Dispatch properties(component.Get("Properties").ToObject());
  EXPECT_EQ(Dispatch(properties.Call("Item", "FolderFlags").ToObject()).Get("Value").ToString(),
            "1");
  EXPECT_EQ(Dispatch(properties.Call("Item", "TypeLibGuid").ToObject()).Get("Value").ToString(),
            "{3A1B2C3D-0000-1111-2222-333344445555}");
  component.Put("IsDirty", true);
  component.Call("SaveAs", component.GetAt("FileNames", int16_t{1}).ToString());
  EXPECT_EQ(Bytes("DataEnv1.Dsr"), dsr);
  EXPECT_EQ(Bytes("DataEnv1.dsx"), dsx);
}

}  // namespace
