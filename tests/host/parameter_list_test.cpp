#include "host/parameter_list.h"

#include <gtest/gtest.h>

#include "automation/object.h"
#include "host/register.h"
#include "support/errors.h"

namespace {

using automation::Dispatch;
using qxtest::Caught;

TEST(ParameterList, ParsesPlainAndQuotedValues) {
  host::RegisterClasses();
  Dispatch list(automation::CreateObject("qxlib41.ParameterList"));
  list.Call("Parse",
            "  FileName = c:\\My Projects\\a.vbp ; Mode=\"scan; \"\"all\"\"\" ;;Empty=;"
            "Blank=\"  \";Eq=a=b;");
  EXPECT_EQ(list.Call("Value", "filename", "").ToString(), "c:\\My Projects\\a.vbp");
  EXPECT_EQ(list.Call("Value", "MODE", "").ToString(), "scan; \"all\"");
  EXPECT_EQ(list.Call("Value", "Empty", "none").ToString(), "");
  EXPECT_EQ(list.Call("Value", "Blank", "").ToString(), "  ");
  EXPECT_EQ(list.Call("Value", "Eq", "").ToString(), "a=b");  // a plain value runs to ";"
  EXPECT_EQ(list.Call("Value", "Missing", "dflt").ToString(), "dflt");

  list.Call("Parse", "A=1;a=2");  // Parse replaces the list; a later value wins
  EXPECT_EQ(list.Call("Value", "FileName", "gone").ToString(), "gone");
  EXPECT_EQ(list.Call("Value", "A", "").ToString(), "2");
  list.Call("Parse", "");
  EXPECT_EQ(list.Call("Value", "A", "none").ToString(), "none");
}

TEST(ParameterList, AnyPathSurvivesTheRoundTrip) {
  const std::string paths[] = {
      "c:\\Projects\\Billing.vbp",
      "/home/ann/odd;name=1.vbp",
      "c:\\a \"quoted\" folder\\\"x\".vbp",
      "  leading and trailing blanks  ",
      "\ttab",
      "",
      ";",
      "=",
      "\"",
      "\"\"",
      "/srv/Проекты/façade ☃/日本語.vbp",
      "line\r\nbreak",
  };
  host::ParameterList out;
  for (size_t i = 0; i < std::size(paths); ++i)
    out.Add("P" + std::to_string(i), paths[i]);
  out.Add("p0", "c:\\Projects\\Billing2.vbp");  // a known name keeps its place
  const std::string text = out.Text();

  host::ParameterList in;
  in.Parse(text);
  EXPECT_EQ(in.Value("P0", "?"), "c:\\Projects\\Billing2.vbp");
  for (size_t i = 1; i < std::size(paths); ++i) {
    EXPECT_EQ(in.Value("P" + std::to_string(i), "?"), paths[i]) << "in " << text;
  }
  EXPECT_EQ(in.Text(), text);
  // Plain values stay readable.
  EXPECT_EQ(text.substr(0, 28), "P0=c:\\Projects\\Billing2.vbp;");
}

TEST(ParameterList, MalformedTextRaises5AndKeepsTheList) {
  host::ParameterList list;
  list.Parse("FileName=a.vbp");
  struct Case {
    const char* text;
    const char* says;
  };
  for (const Case& c :
       {Case{"FileName=\"c:\\a.vbp", "no closing quote"},
        Case{"FileName=\"c:\\a\"\".vbp", "no closing quote"},
        Case{"FileName=a.vbp;Mode", "\"Mode\" has no \"=\""},
        Case{"justtext", "\"justtext\" has no \"=\""}, Case{"=value", "has no name"},
        Case{"A=\"x\"y;B=1", "after the closing quote of the value of A"}}) {
    auto e = Caught([&] { list.Parse(c.text); });
    EXPECT_EQ(e.Number(), 5) << c.text;
    EXPECT_NE(e.Description().find(c.says), std::string::npos) << e.Description();
    EXPECT_NE(e.Description().find("malformed parameter string"), std::string::npos);
  }
  EXPECT_EQ(list.Value("FileName", ""), "a.vbp");

  for (const char* name : {"", "a;b", "a=b", "\"a\"", " a"}) {
    EXPECT_EQ(Caught([&] { list.Add(name, "x"); }).Number(), 5) << name;
  }
}

}  // namespace
