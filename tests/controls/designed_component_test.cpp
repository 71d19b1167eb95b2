// Forms, user controls, user documents, property pages and designers over stand-ins for the
// IDE's component: the property rules (items, the font object, the form-kind check), mode 0,
// and the life of the Controls collection.

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "components/designed_component.h"
#include "components/designer.h"
#include "components/form.h"
#include "controls/designed_classes.h"
#include "special/user_connection.h"
#include "support/driver_env.h"
#include "support/errors.h"
#include "tests/controls/fakes.h"

namespace qxtest {
namespace {

using automation::Dispatch;
using components::DesignedClass;
using components::DesignedComponent;

// A component of the IDE with the items the property tables name, the font under "Font", a
// designer holding one text box, found by name in its project.
class DesignedTest : public ::testing::Test {
 protected:
  DesignedTest() {
    for (const DesignedClass* designed :
         {&components::FormClass(), &controls::UserControlClass(), &controls::UserDocumentClass(),
          &controls::PropertyPageClass()}) {
      for (const components::ComponentProperty& row : designed->properties) {
        items_.emplace(std::string(row.item.empty() ? row.name : row.item), FakeProperty(0));
      }
    }
    items_["Caption"] = FakeProperty("Main");
    items_["Font"] = FakeProperty(Variant(), font_);
    auto vbControls = std::make_shared<Fake>("VBControls");
    vbControls->Property("Count", Variant::Long(1))
        .Member("Item", MemberKind::Method, 1,
                [this](Fake&, Args&) { return Variant(ObjectRef(box_.vbControl)); });
    auto designer = std::make_shared<Fake>("VBForm");
    designer->Property("VBControls", Variant(ObjectRef(vbControls)));
    designer_ = designer;
    component_->Property("Type", Variant::Long(components::kStandardFormType))
        .Property("Properties", Variant(ObjectRef(FakeProperties(items_))))
        .Property("Designer", Variant(designer_))
        .Property("IsDirty", false)
        .Property("HasOpenDesigner", false);
    auto vbComponents = std::make_shared<Fake>("VBComponents");
    vbComponents->Member("Item", MemberKind::Method, 1,
                         [this](Fake&, Args&) { return Variant(ObjectRef(component_)); });
    project_->Property("VBComponents", Variant(ObjectRef(vbComponents)));
  }

  // A new object of the class, initialised for the component.
  Dispatch Open(const DesignedClass& designed, int32_t mode = 1) {
    ObjectRef object = std::make_shared<DesignedComponent>(designed);
    return Initialized(object, mode);
  }
  Dispatch Initialized(ObjectRef object, int32_t mode) {
    ObjectRef parent;
    ObjectRef vbProject = project_;
    automation::Args args{parent, vbProject, "Form1"};
    Dispatch(object).CallArgs("Initialize", args);
    Dispatch(object, "IObject").Call("SetMode", mode);
    return Dispatch(object);
  }
  static void SetMode(const Dispatch& object, int32_t mode) {
    Dispatch(object.object(), "IObject").Call("SetMode", mode);
  }
  Variant Ide(const std::string& item) { return items_.at(item)->values["Value"]; }

  DriverEnv env_;
  std::map<std::string, std::shared_ptr<Fake>> items_;
  std::shared_ptr<Fake> font_ = FakeFont();
  std::shared_ptr<Fake> component_ = std::make_shared<Fake>("VBComponent");
  std::shared_ptr<Fake> project_ = std::make_shared<Fake>("VBProject");
  ObjectRef designer_;
  FakeControl box_{"VB.TextBox", "Text1", -1, {"Text"}};
};

TEST_F(DesignedTest, FormReadsMarkedForOneKindOfFormAreRefusedOnTheOther) {
  const struct {
    const char* property;
    bool onStandard;
    bool onMdi;
  } cases[] = {
      {"AutoRedraw", true, false},
      {"BorderStyle", true, false},
      {"WindowState", true, false},
      {"FontBold", true, false},
      {"AutoShowChildren", false, true},
      {"NegotiateToolbars", false, true},
      {"ScrollBars", false, true},
      {"Caption", true, true},
      {"Height", true, true},
      {"Tag", true, true},
  };
  const Dispatch form = Open(components::FormClass());
  for (const int32_t type : {components::kStandardFormType, components::kMdiFormType}) {
    component_->values["Type"] = Variant::Long(type);
    for (const auto& c : cases) {
      const bool reads = type == components::kStandardFormType ? c.onStandard : c.onMdi;
      const auto e = Caught([&] { form.Get(c.property); });
      EXPECT_EQ(e.Number(), reads ? 0 : -32749) << c.property << " on type " << type;
      if (!reads) {
        EXPECT_EQ(e.Description(), "Undefined property.");
      }
    }
  }
  // Writes are not checked: an MDI form's property written on a standard form reaches the IDE.
  component_->values["Type"] = Variant::Long(components::kStandardFormType);
  form.Put("ScrollBars", false);
  EXPECT_EQ(Ide("ScrollBars").Type(), automation::VarType::Boolean);
  // A user control has no kind check.
  component_->values["Type"] = Variant::Long(8);
  EXPECT_EQ(ErrorOf([&] { Open(controls::UserControlClass()).Get("AutoRedraw"); }), 0);
}

TEST_F(DesignedTest, PlainPropertiesTravelAsTheirDeclaredTypes) {
  const Dispatch form = Open(components::FormClass());
  EXPECT_EQ(form.Get("Caption").ToString(), "Main");
  form.Put("Caption", "Orders");
  EXPECT_EQ(Ide("Caption").ToString(), "Orders");
  items_["DrawWidth"]->values["Value"] = Variant::Long(2);
  EXPECT_EQ(form.Get("DrawWidth").Type(), automation::VarType::Integer);
  form.Put("HelpContextID", Variant::Integer(12));
  EXPECT_EQ(Ide("HelpContextID").Type(), automation::VarType::Long);
  form.Put("Left", "15");
  EXPECT_EQ(Ide("Left").Type(), automation::VarType::Single);
  EXPECT_EQ(Ide("Left").ToSingle(), 15.0f);
  form.Put("WindowState", Variant::Integer(2));
  EXPECT_EQ(Ide("WindowState").Type(), automation::VarType::Long);
}

TEST_F(DesignedTest, FontAttributesGoThroughTheFontObjectAndFontTransparentDoesNot) {
  for (const DesignedClass* designed :
       {&components::FormClass(), &controls::UserControlClass(), &controls::UserDocumentClass(),
        &controls::PropertyPageClass()}) {
    font_->values["Underline"] = false;
    font_->values["Size"] = Variant::Cur({82500});
    const Dispatch object = Open(*designed, 2);
    object.Put("FontUnderline", true);
    EXPECT_TRUE(font_->values["Underline"].ToBool()) << designed->className;
    EXPECT_TRUE(object.Get("FontUnderline").ToBool()) << designed->className;
    EXPECT_EQ(object.Get("FontSize").Type(), automation::VarType::Single);
    EXPECT_EQ(object.Get("FontSize").ToSingle(), 8.25f);
    object.Put("FontSize", 12.0);
    EXPECT_EQ(object.Get("FontSize").ToSingle(), 12.0f);
    object.Put("FontName", "Arial");
    EXPECT_EQ(font_->values["Name"].ToString(), "Arial");

    font_->writes.clear();
    object.Put("FontTransparent", true);
    EXPECT_TRUE(font_->writes.empty());
    EXPECT_TRUE(Ide("FontTransparent").ToBool());
    items_["FontTransparent"]->values["Value"] = 0;
  }
}

TEST_F(DesignedTest, PropertiesAndControlsNeedTheComponentOfMode1Or2) {
  for (const DesignedClass* designed :
       {&components::FormClass(), &controls::UserControlClass(), &controls::UserDocumentClass(),
        &controls::PropertyPageClass()}) {
    const Dispatch object = Open(*designed, 0);
    EXPECT_EQ(ErrorOf([&] { object.Get("BackColor"); }), automation::err::kObjectNotSet);
    EXPECT_EQ(ErrorOf([&] { object.Put("Tag", "x"); }), automation::err::kObjectNotSet);
    if (designed->hasControls) {
      EXPECT_EQ(ErrorOf([&] { object.Get("Controls"); }), automation::err::kObjectNotSet);
    } else {
      EXPECT_EQ(ErrorOf([&] { object.Get("Controls"); }), automation::err::kNoSuchMember);
    }
  }
  EXPECT_EQ(Ide("Tag").ToLong(), 0);
}

TEST_F(DesignedTest, ControlsAreBuiltOnFirstReadAndTornDownOnTheWayBackToMode0) {
  const Dispatch page = Open(controls::PropertyPageClass());
  const ObjectRef controls = page.Get("Controls").ToObject();
  EXPECT_EQ(page.Get("Controls").ToObject(), controls);
  const Dispatch box(Dispatch(controls).Call("Item", "Text1").ToObject());
  EXPECT_EQ(box.Get("Name").ToString(), "Text1");

  SetMode(page, 0);
  EXPECT_NE(ErrorOf([&] { box.Get("Text"); }), 0);
  EXPECT_NE(ErrorOf([&] { Dispatch(controls).Get("Count"); }), 0);
  SetMode(page, 1);
  const ObjectRef again = page.Get("Controls").ToObject();
  EXPECT_NE(again, controls);
  EXPECT_EQ(Dispatch(again).Get("Count").ToLong(), 1);

  // Without a designer there are no controls.
  component_->values["Designer"] = Variant(ObjectRef());
  EXPECT_EQ(
      Dispatch(Open(components::FormClass()).Get("Controls").ToObject()).Get("Count").ToLong(), 0);
}

TEST_F(DesignedTest, TheInterfacesListTheirMembersAsTheKindsHaveThem) {
  const auto members = [&](const DesignedClass& designed) {
    std::string names;
    const auto& all = Open(designed, 0).object()->Class().defaultInterface.members;
    for (size_t i = 0; i < 6 && i < all.size(); ++i)
      names += all[i].name + " ";
    return names;
  };
  EXPECT_EQ(members(components::FormClass()),
            "Initialize Name Name Controls Procedures Appearance ");
  EXPECT_EQ(members(controls::UserControlClass()),
            "Initialize TearDown Name Name Controls Procedures ");
  EXPECT_EQ(members(controls::UserDocumentClass()),
            "Initialize TearDown Name Name Procedures Appearance ");

  // The document's hyperlink is the item "Hyperlink"'s object, and cannot be written.
  const ObjectRef hyperlink = std::make_shared<Fake>("Hyperlink");
  items_["Hyperlink"]->values["Object"] = Variant(hyperlink);
  const Dispatch document = Open(controls::UserDocumentClass());
  EXPECT_EQ(document.Get("HyperLink").ToObject(), hyperlink);
  EXPECT_EQ(ErrorOf([&] { document.Put("HyperLink", Variant(hyperlink)); }),
            automation::err::kReadOnlyProperty);
}

TEST_F(DesignedTest, ADesignerHandsOutTheIdesDesignerObject) {
  const Dispatch designer = Initialized(std::make_shared<components::Designer>(), 0);
  EXPECT_EQ(ErrorOf([&] { designer.Get("Object"); }), automation::err::kObjectNotSet);
  SetMode(designer, 1);
  EXPECT_EQ(designer.Get("Object").ToObject(), designer_);
  EXPECT_EQ(Dispatch(designer.object(), "IObject").Get("Name").ToString(), "Form1");
}

TEST_F(DesignedTest, AUserConnectionsSettingsAreReadAsTextOrNumbersAndNeverWritten) {
  items_["Connect"] = FakeProperty("DSN=Shop");
  items_["QueryTimeout"] = FakeProperty("30");
  items_["LoginTimeout"] = FakeProperty(Variant::Integer(15));
  items_["Version"] = FakeProperty(Variant::Long(2));
  const Dispatch connection = Initialized(std::make_shared<special::UserConnection>(), 0);
  EXPECT_EQ(ErrorOf([&] { connection.Get("Connect"); }), automation::err::kObjectNotSet);
  SetMode(connection, 1);
  EXPECT_EQ(connection.Get("Connect").ToString(), "DSN=Shop");
  EXPECT_EQ(connection.Get("QueryTimeout").Type(), automation::VarType::Long);
  EXPECT_EQ(connection.Get("QueryTimeout").ToLong(), 30);
  EXPECT_EQ(connection.Get("LoginTimeout").Type(), automation::VarType::Long);
  EXPECT_EQ(connection.Get("Version").Type(), automation::VarType::String);
  EXPECT_EQ(connection.Get("Version").ToString(), "2");
  EXPECT_EQ(ErrorOf([&] { connection.Put("Connect", "DSN=Other"); }),
            automation::err::kReadOnlyProperty);
  items_["QueryTimeout"]->values["Value"] = "soon";
  EXPECT_EQ(ErrorOf([&] { connection.Get("QueryTimeout"); }), automation::err::kTypeMismatch);
}

}  // namespace
}  // namespace qxtest
