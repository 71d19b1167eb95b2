#include "host/keyed_list.h"

#include <gtest/gtest.h>

#include "automation/object.h"
#include "host/key_set.h"
#include "host/register.h"
#include "support/errors.h"

namespace {

using automation::Dispatch;
using automation::Variant;
using qxtest::Caught;

class KeyedListTest : public ::testing::Test {
 protected:
  void SetUp() override { host::RegisterClasses(); }
};

TEST_F(KeyedListTest, FindsByExactKeyAndByPositionAndErrorsNameTheKeyOrLocator) {
  Dispatch list(automation::CreateObject("qxlib41.KeyedList"));
  auto first = std::make_shared<host::KeyedList>();  // any object will do as an item
  list.Call("Add", first, "Form1");
  list.Call("Add", "text item", "Modules");
  list.Call("Add", 42, "Grüße");
  EXPECT_EQ(list.Get("Count").ToLong(), 3);

  EXPECT_EQ(list.Call("Find", "Form1").ToLong(), 1);
  EXPECT_EQ(list.Call("Find", "form1").ToLong(), 0);  // letter case counts
  EXPECT_EQ(list.Call("Find", "Modules").ToLong(), 2);
  EXPECT_EQ(list.Call("Find", "Grüße").ToLong(), 3);
  EXPECT_EQ(list.Call("Find", "GRÜßE").ToLong(), 0);
  EXPECT_EQ(list.Call("Find", "Form2").ToLong(), 0);
  EXPECT_EQ(list.Call("Find", "").ToLong(), 0);

  // Numbers are 0-based positions, whatever their type; out of range is 0.
  EXPECT_EQ(list.Call("Find", 0).ToLong(), 1);
  EXPECT_EQ(list.Call("Find", Variant::Integer(2)).ToLong(), 3);
  EXPECT_EQ(list.Call("Find", 1.0).ToLong(), 2);
  EXPECT_EQ(list.Call("Find", 3).ToLong(), 0);
  EXPECT_EQ(list.Call("Find", -1).ToLong(), 0);
  EXPECT_EQ(list.Call("Find", 1e12).ToLong(), 0);
  EXPECT_EQ(list.Call("Find", "1").ToLong(), 0);  // a string is always a key

  EXPECT_EQ(list.Call("ItemAt", 1).ToObject(), first);
  EXPECT_EQ(list.Call("ItemAt", 2).ToString(), "text item");
  EXPECT_EQ(list.Call("Key", 3).ToString(), "Grüße");  // kept as added

  // Errors name the key or the locator.
  auto e = Caught([&] { list.Call("Add", 3, "Form1"); });
  EXPECT_EQ(e.Number(), 457);
  EXPECT_EQ(e.Description(),
            "This key is already associated with an element of this collection: Form1");
  EXPECT_EQ(list.Get("Count").ToLong(), 3);  // nothing was added

  e = Caught([&] { list.Call("Rekey", 2, "Form1"); });
  EXPECT_EQ(e.Number(), 457);
  EXPECT_NE(e.Description().find("Form1"), std::string::npos);
  EXPECT_EQ(list.Call("Key", 2).ToString(), "Modules");

  for (int locator : {0, -1, 4}) {
    e = Caught([&] { list.Call("ItemAt", locator); });
    EXPECT_EQ(e.Number(), 9);
    EXPECT_NE(e.Description().find("no item at locator " + std::to_string(locator)),
              std::string::npos)
        << e.Description();
  }
  EXPECT_EQ(Caught([&] { list.Call("Key", 0); }).Number(), 9);
  EXPECT_EQ(Caught([&] { list.Call("Rekey", 5, "x"); }).Number(), 9);
  EXPECT_EQ(Caught([&] { list.Call("Find", list.object()); }).Number(), 13);
}

TEST_F(KeyedListTest, RekeyMovesTheKeyAndKeepsThePosition) {
  host::KeyedList list;
  list.Add(1, "Alpha");
  list.Add(2, "Beta");
  list.Rekey(1, "Gamma");
  EXPECT_EQ(list.Find(Variant("Alpha")), 0);
  EXPECT_EQ(list.Find(Variant("Gamma")), 1);
  EXPECT_EQ(list.Key(1), "Gamma");
  list.Rekey(1, "Gamma");  // its own key again changes nothing
  list.Rekey(1, "gamma");  // another letter case is another key
  EXPECT_EQ(list.Find(Variant("Gamma")), 0);
  EXPECT_EQ(list.Key(1), "gamma");
  list.Add(3, "Alpha");  // the old key is free again
  EXPECT_EQ(list.Find(Variant("Alpha")), 3);
  EXPECT_EQ(list.ItemAt(2).ToLong(), 2);
}

TEST_F(KeyedListTest, KeySetFindsAndRemovesByPosition) {
  Dispatch set(automation::CreateObject("qxlib41.KeySet"));
  for (const char* key : {"Sub Alpha", "Property Get X", "Sub Beta", "Function Gamma"}) {
    set.Call("Add", key);
  }
  EXPECT_EQ(set.Get("Count").ToLong(), 4);
  EXPECT_EQ(set.Call("Find", "sub alpha").ToLong(), 1);
  EXPECT_EQ(set.Call("Find", "FUNCTION GAMMA").ToLong(), 4);
  EXPECT_EQ(set.Call("Find", "Sub Delta").ToLong(), 0);

  set.Call("RemoveAt", 2);  // the keys after it move up
  EXPECT_EQ(set.Get("Count").ToLong(), 3);
  EXPECT_EQ(set.Call("Find", "Property Get X").ToLong(), 0);
  EXPECT_EQ(set.Call("Find", "Sub Beta").ToLong(), 2);
  EXPECT_EQ(set.Call("Find", "Function Gamma").ToLong(), 3);
  set.Call("RemoveAt", 3);
  set.Call("RemoveAt", 1);
  EXPECT_EQ(set.Call("Find", "Sub Beta").ToLong(), 1);
  set.Call("Add", "Sub Alpha");  // removed keys can come back
  EXPECT_EQ(set.Call("Find", "Sub Alpha").ToLong(), 2);

  auto e = Caught([&] { set.Call("Add", "SUB BETA"); });
  EXPECT_EQ(e.Number(), 457);
  EXPECT_NE(e.Description().find("SUB BETA"), std::string::npos);
  for (int position : {0, 3, -2}) {
    e = Caught([&] { set.Call("RemoveAt", position); });
    EXPECT_EQ(e.Number(), 9);
    EXPECT_NE(e.Description().find("no key at position " + std::to_string(position)),
              std::string::npos);
  }
  EXPECT_EQ(set.Get("Count").ToLong(), 2);
}

}  // namespace
