// VBComponent.Properties, Property and the font object, called by name and dispatch identifier
// as the driver calls them.

#include <gtest/gtest.h>

#include <string>

#include "fixture_copy.h"
#include "ide/model/project.h"
#include "ide/vbide/ide.h"
#include "ide/vbide/vbcomponent.h"
#include "ide/vbide/vbproject.h"
#include "vbide_support.h"

namespace {

using automation::Currency;
using automation::Dispatch;
using automation::Variant;
using vbidetest::ErrorOf;

class VbideProperties : public vbidetest::IdeOnCopy {
 protected:
  Dispatch Properties(const Variant& component) const {
    return Dispatch(Component(component).Get("Properties").ToObject());
  }
  Dispatch Item(const Variant& component, const Variant& property) const {
    return Dispatch(Properties(component).Call("Item", property).ToObject());
  }
};

TEST_F(VbideProperties, AFormListsItsWindowPropertiesByNameAndPosition) {
  Open("props", "Props.vbp");
  Dispatch properties = Properties("frmProps");
  const int32_t count = properties.Get("Count").ToLong();
  EXPECT_GT(count, 50);
  EXPECT_EQ(Dispatch(properties.Call("Item", 1).ToObject()).Get("Name").ToString(), "Name");
  // Every position answers, in the catalog's order; names find the same property.
  for (int32_t i = 1; i <= count; ++i) {
    const std::string name = Dispatch(properties.Call("Item", i).ToObject()).Get("Name").ToString();
    EXPECT_EQ(Dispatch(properties.Call("Item", name).ToObject()).Get("Name").ToString(), name);
  }
  EXPECT_EQ(Item("frmProps", "caption").Get("Name").ToString(), "Caption");
  EXPECT_EQ(Item("frmProps", "Caption").Get("NumIndices").ToLong(), 0);
  EXPECT_EQ(ErrorOf([&] { properties.Call("Item", "Colour"); }), 9);
  EXPECT_EQ(ErrorOf([&] { properties.Call("Item", 0); }), 9);
  EXPECT_EQ(ErrorOf([&] { properties.Call("Item", count + 1); }), 9);
  // Modules have none.
  EXPECT_EQ(Properties("modMain").Get("Count").ToLong(), 0);
  EXPECT_EQ(ErrorOf([&] { Properties("modMain").Call("Item", 1); }), 9);
}

// What a write saves is the model's (ObjectPropertiesTest).
TEST_F(VbideProperties, ValueWritesReachTheModelAndMarkTheComponentDirty) {
  Open("props", "Props.vbp");
  EXPECT_FALSE(Component("frmProps").Get("IsDirty").ToBool());
  EXPECT_EQ(ErrorOf([&] { Item("frmProps", "StartUpPosition").Put("Value", 9); }), 380);
  EXPECT_FALSE(Component("frmProps").Get("IsDirty").ToBool());
  Item("frmProps", "Caption").Put("Value", "Edited");
  EXPECT_TRUE(Component("frmProps").Get("IsDirty").ToBool());
  // Value is the default member: dispatch identifier 0.
  EXPECT_EQ(Item("frmProps", "Caption").GetId(0).ToString(), "Edited");
  auto vbComponent = automation::As<ide::vbide::VBComponent>(Component("frmProps").object());
  ide::form::FormContext context = vbComponent->Model().Form();
  EXPECT_EQ(ide::form::ObjectProperties(context, context.description->Root()).Get("Caption"),
            Variant("Edited"));
  // Marked saved, the next write shows again.
  Component("frmProps").Put("IsDirty", false);
  Item("frmProps", "Caption").Put("Value", "Again");
  EXPECT_TRUE(Component("frmProps").Get("IsDirty").ToBool());
}

TEST_F(VbideProperties, TheFontObjectIsLiveByNameAndDispatchIdentifier) {
  Open("props", "Props.vbp");
  Dispatch font(Item("frmProps", "Font").Get("Object").ToObject());
  EXPECT_EQ(font.GetId(0).ToString(), "Tahoma");
  EXPECT_EQ(font.GetId(2), Variant::Cur(Currency{97500}));  // 9.75 as Currency
  EXPECT_EQ(font.GetId(3), Variant(false));
  EXPECT_EQ(font.Get("Weight"), Variant::Integer(400));
  EXPECT_EQ(font.Get("Charset"), Variant::Integer(0));
  font.PutId(3, true);
  font.PutId(4, true);
  font.PutId(2, Variant::Cur(Currency{120000}));
  EXPECT_EQ(font.Get("Weight"), Variant::Integer(700));
  EXPECT_EQ(font.Get("Size"), Variant::Cur(Currency{120000}));
  EXPECT_TRUE(Component("frmProps").Get("IsDirty").ToBool());
  // Value is the font's own properties.
  Dispatch own(Item("frmProps", "Font").Get("Value").ToObject());
  EXPECT_EQ(own.Get("Count").ToLong(), 8);
  EXPECT_EQ(Dispatch(own.Call("Item", "Italic").ToObject()).Get("Value"), Variant(true));
  EXPECT_EQ(Dispatch(own.Call("Item", "Size").ToObject()).Get("Value"), Variant::Single(12));
  Dispatch(own.Call("Item", "Name").ToObject()).Put("Value", "Verdana");
  EXPECT_EQ(font.Get("Name").ToString(), "Verdana");
  EXPECT_EQ(ErrorOf([&] { font.Put("Weight", 5000); }), 380);
  // Properties that are not objects have no Object.
  EXPECT_EQ(ErrorOf([&] { Item("frmProps", "Caption").Get("Object"); }), 5);
}

TEST_F(VbideProperties, ListsAreReadAndWrittenByIndexedValue) {
  Open("props", "Props.vbp");
  Dispatch component = Component("frmProps");
  const Dispatch designer(component.Get("Designer").ToObject());
  const Dispatch control(
      Dispatch(designer.Get("VBControls").ToObject()).Call("Item", "lstItems").ToObject());
  const Dispatch properties(control.Get("Properties").ToObject());
  Dispatch list(properties.Call("Item", "List").ToObject());
  EXPECT_EQ(list.Get("NumIndices").ToLong(), 1);
  EXPECT_EQ(list.GetAt("IndexedValue", 2).ToString(), "Plums");
  EXPECT_EQ(ErrorOf([&] { list.Get("Value"); }), 380);
  automation::Args args{Variant(0), Variant("Cherries")};
  list.object()->Invoke("", "IndexedValue", automation::MemberKind::Put, args);
  EXPECT_EQ(list.GetAt("IndexedValue", 0).ToString(), "Cherries");
  Dispatch data(properties.Call("Item", "ItemData").ToObject());
  EXPECT_EQ(data.GetAt("IndexedValue", 1), Variant::Long(20));
  // A stored control's other properties through the same collection.
  EXPECT_EQ(Dispatch(properties.Call("Item", "TabIndex").ToObject()).Get("Value"),
            Variant::Integer(2));
}

}  // namespace
