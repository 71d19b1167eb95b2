// The settings of the designers with classes of their own, end to end over the example project's
// copy: a DHTML page's BuildFile and SourceFile read and written through the IDE's properties,
// and a user connection's ten settings read, never written.

#include <gtest/gtest.h>

#include <string>

#include "automation/error.h"
#include "support/driver_ide.h"
#include "support/errors.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using qxtest::Caught;

class DesignerSettingsTest : public qxtest::DriverIde {
 protected:
  DesignerSettingsTest() : DriverIde("basic", "Basic.vbp") {}

  Dispatch IdeProperty(const std::string& component, const std::string& name) const {
    const Dispatch properties(IdeComponent(component).Get("Properties").ToObject());
    return Dispatch(properties.Call("Item", name).ToObject());
  }
};

TEST_F(DesignerSettingsTest, APagesBuildFileAndSourceFileGoThroughTheIdesProperties) {
  const std::string dsr = Bytes("DHTMLPage1.Dsr");
  const ObjectRef page = Get("GetDHTMLPage", "DHTMLPage1");
  SetMode(page, 1);
  EXPECT_EQ(Dispatch(page).Get("BuildFile").ToString(), "DHTMLPage1.htm");
  EXPECT_EQ(Dispatch(page).Get("SourceFile").ToString(), "DHTMLPage1.htm");
  EXPECT_NE(Dispatch(page).Get("HTML").ToString().find("Greeting"), std::string::npos);

  SetMode(page, 2);
  Dispatch(page).Put("BuildFile", "out\\Page.htm");
  EXPECT_EQ(IdeProperty("DHTMLPage1", "BuildFile").Get("Value").ToString(), "out\\Page.htm");
  SetMode(page, 0);  // saved: only the BuildFile line changed
  std::string expected = dsr;
  expected.replace(expected.find("BuildFile       =   \"DHTMLPage1.htm\""), 36,
                   "BuildFile       =   \"out\\Page.htm\"");
  EXPECT_EQ(Bytes("DHTMLPage1.Dsr"), expected);
  EXPECT_EQ(Caught([&] { Dispatch(page).Get("BuildFile"); }).Number(),
            automation::err::kObjectNotSet);
}

TEST_F(DesignerSettingsTest, AUserConnectionsSettingsAreReadAndNeverWritten) {
  const std::string dsr = Bytes("UserConnection1.Dsr");
  const ObjectRef connection = Get("GetUserConnection", "UserConnection1");
  EXPECT_EQ(connection->Class().name, "UserConnection");
  SetMode(connection, 1);
  const Dispatch d(connection);
  EXPECT_EQ(d.Get("Connect").ToString(), "DSN=Stock;DATABASE=stock;");
  EXPECT_EQ(d.Get("Owner").ToString(), "dbo");
  const automation::Variant timeout = d.Get("QueryTimeout");
  EXPECT_EQ(timeout.Type(), automation::VarType::Long);
  EXPECT_EQ(timeout.ToLong(), 30);
  EXPECT_EQ(d.Get("LoginTimeout").ToLong(), 15);
  EXPECT_EQ(d.Get("LogMessages").ToString(), "");
  EXPECT_EQ(d.Get("CursorDriver").ToString(), "0");
  EXPECT_EQ(d.Get("AsyncCheckInterval").ToString(), "1000");
  EXPECT_EQ(d.Get("Updatable").ToString(), "True");
  EXPECT_EQ(d.Get("Transactions").ToString(), "False");
  EXPECT_EQ(d.Get("Version").ToString(), "");

  // The object has no writers; the IDE refuses the settings that describe the open connection.
  EXPECT_NE(Caught([&] { d.Put("Connect", "DSN=Other;"); }).Number(), 0);
  for (const char* name : {"Updatable", "Transactions", "Version"}) {
    EXPECT_EQ(Caught([&] { IdeProperty("UserConnection1", name).Put("Value", "x"); }).Number(),
              automation::err::kReadOnlyProperty)
        << name;
  }
  SetMode(connection, 0);
  EXPECT_EQ(Bytes("UserConnection1.Dsr"), dsr);
}

}  // namespace
