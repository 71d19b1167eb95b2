// Procedures and their text: the list in module order under each procedure's Name, reading
// without leading blank lines, writing with the procedure-list check and its undo, and renames
// that re-key the item.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "automation/error.h"
#include "components/procedure.h"
#include "support/errors.h"
#include "tests/components/component_env.h"

namespace {

using automation::Dispatch;
using automation::ObjectRef;
using qxtest::Caught;

constexpr const char* kListChanged =
    "This replacement would have changed the total number of procedures in the module. Perhaps "
    "you deleted the procedure heading, created an additional procedure heading, or used "
    "incorrect syntax in the procedure heading.\r\n\r\nPROGRAM CONTEXT:\r\n"
    "qxvb60.Procedure.Text.1  (4.1.475)";

class ProceduresTest : public qxtest::ComponentEnv {
 protected:
  // A component object in reading mode.
  ObjectRef Open(const char* factory, const std::string& name) {
    ObjectRef object = Get(factory, name);
    SetMode(object, 1);
    opened_.push_back(object);
    return object;
  }
  ~ProceduresTest() override {
    for (const ObjectRef& object : opened_)
      SetMode(object, 0);
  }
  static std::vector<std::string> Names(const ObjectRef& object) {
    std::vector<std::string> names;
    const Dispatch procedures(Procedures(object));
    for (int32_t i = 0; i < procedures.Get("Count").ToLong(); ++i)
      names.push_back(Item(object, i).Get("Name").ToString());
    return names;
  }

  std::vector<ObjectRef> opened_;
};

TEST_F(ProceduresTest, TheListFollowsTheModuleUnderEachProceduresName) {
  const ObjectRef code = Open("GetModule", "Code");
  EXPECT_EQ(Names(code), (std::vector<std::string>{"<declarations>", "Alpha", "Gamma"}));
  EXPECT_EQ(Procedures(code), Procedures(code));  // made once
  // NewEnum answers the standard enumerator's dispatch identifier; it gives no enumerator.
  EXPECT_EQ(Dispatch(Procedures(code)).Call(automation::DispIdName(-4)).ToObject(), nullptr);
  // Leading lines of spaces are not the procedure's, a tab line is.
  EXPECT_EQ(Item(code, "Alpha").Get("Text").ToString(),
            "Sub Alpha()\r\n    Counter = 1\r\nEnd Sub");
  EXPECT_EQ(Item(code, "Gamma").Get("Text").ToString(),
            "\t\r\nFunction Gamma() As Long\r\n    Gamma = Counter\r\nEnd Function");

  // Property procedures are told apart by their kind.
  const ObjectRef thing = Open("GetClassModule", "Thing");
  EXPECT_EQ(Names(thing),
            (std::vector<std::string>{"<declarations>", "Value.Get", "Value.Let", "Size.Get"}));
  EXPECT_EQ(Item(thing, "Value.Get").Get("Text").ToString(),
            "Public Property Get Value() As Long\r\n    Value = mValue\r\nEnd Property");
  const automation::Error e = Caught([&] { Item(thing, "Value"); });
  EXPECT_EQ(e.Number(), automation::err::kSubscript);
  EXPECT_NE(e.Description().find("qxvb60.Procedures.Item.1  (4.1.475)"), std::string::npos);

  // Declarations only; no declaration lines at all.
  const ObjectRef decl = Open("GetModule", "Decl");
  EXPECT_EQ(Names(decl), (std::vector<std::string>{"<declarations>"}));
  EXPECT_EQ(Item(decl, 0).Get("Text").ToString(), "Option Explicit\r\nPublic Total As Long");
  const ObjectRef bare = Open("GetModule", "Bare");
  EXPECT_EQ(Names(bare), (std::vector<std::string>{"<declarations>", "Only"}));
  EXPECT_EQ(Item(bare, 0).Get("Text").ToString(), "");
}

TEST_F(ProceduresTest, WritingBackWhatWasReadLeavesOneEmptyLineBeforeTheProcedure) {
  std::string expected = Bytes("Code.bas");
  const ObjectRef code = Open("GetModule", "Code");
  const Dispatch alpha = Item(code, "Alpha");
  alpha.Put("Text", alpha.Get("Text"));
  EXPECT_EQ(alpha.Get("Text").ToString(), "Sub Alpha()\r\n    Counter = 1\r\nEnd Sub");
  SetMode(code, 0);
  // The procedures go with the return to idle.
  const automation::Error e = Caught([&] { alpha.Get("Text"); });
  EXPECT_EQ(e.Number(), automation::err::kObjectNotSet);
  EXPECT_NE(e.Description().find("qxvb60.Procedure.Text.1"), std::string::npos);
  const std::string blanks = "\r\n\r\n   \r\nSub Alpha";
  expected.replace(expected.find(blanks), blanks.size(), "\r\nSub Alpha");
  EXPECT_EQ(Bytes("Code.bas"), expected);
}

TEST_F(ProceduresTest, ARenamedHeadingReKeysTheItem) {
  const ObjectRef code = Open("GetModule", "Code");
  const Dispatch alpha = Item(code, "Alpha");
  alpha.Put("Text", "Sub Beta()\r\n    Counter = 1\r\nEnd Sub");
  EXPECT_EQ(alpha.Get("Name").ToString(), "Beta");
  EXPECT_EQ(Item(code, "Beta").object(), alpha.object());
  EXPECT_EQ(Caught([&] { Item(code, "Alpha"); }).Number(), automation::err::kSubscript);
  EXPECT_EQ(Names(code), (std::vector<std::string>{"<declarations>", "Beta", "Gamma"}));

  // A property getter that becomes a letter.
  const ObjectRef thing = Open("GetClassModule", "Thing");
  const Dispatch size = Item(thing, "Size.Get");
  size.Put("Text", "Public Property Let Size(ByVal NewSize As Long)\r\nEnd Property");
  EXPECT_EQ(size.Get("Name").ToString(), "Size.Let");
  EXPECT_EQ(Item(thing, "Size.Let").object(), size.object());
}

TEST_F(ProceduresTest, AChangedListOfProceduresIsUndoneAndRefused) {
  const ObjectRef code = Open("GetModule", "Code");
  const Dispatch alpha = Item(code, "Alpha");
  const std::string old = IdeCode("Code");
  // The IDE's lines after the undo: the old region again, behind one more empty line.
  std::string restored = old;
  restored.insert(restored.find("\r\n\r\n\r\n   \r\nSub Alpha") + 2, "\r\n");
  for (const char* text : {"    Counter = 1",                                      // no heading
                           "Sub Alpha()\r\nEnd Sub\r\nSub Delta()\r\nEnd Sub"}) {  // a second one
    const automation::Error e = Caught([&] { alpha.Put("Text", text); });
    EXPECT_EQ(e.Number(), 5000);
    EXPECT_EQ(e.Description(), kListChanged);
    EXPECT_EQ(IdeCode("Code"), restored);
    restored.insert(restored.find("\r\n\r\n\r\n\r\n   \r\nSub Alpha") + 2, "\r\n");
  }
  EXPECT_EQ(alpha.Get("Name").ToString(), "Alpha");

  // The declarations cannot take a procedure either.
  const ObjectRef decl = Open("GetModule", "Decl");
  const automation::Error e =
      Caught([&] { Item(decl, 0).Put("Text", "Option Explicit\r\nSub Sneaky()\r\nEnd Sub"); });
  EXPECT_EQ(e.Number(), 5000);
  EXPECT_EQ(IdeCode("Decl"), "\r\nOption Explicit\r\nPublic Total As Long");
}

// The check looks at the procedures around the one written; a change next to another procedure
// or at the end of the module is still caught, and a good write leaves every other name alone.
TEST_F(ProceduresTest, TheCheckCoversTheMiddleAndTheLastProcedure) {
  const ObjectRef thing = Open("GetClassModule", "Thing");
  const std::vector<std::string> names{"<declarations>", "Value.Get", "Value.Let", "Size.Get"};
  const Dispatch letter = Item(thing, "Value.Let");
  EXPECT_EQ(Caught([&] { letter.Put("Text", "    mValue = 2"); }).Number(), 5000);
  const Dispatch size = Item(thing, "Size.Get");
  EXPECT_EQ(Caught([&] {
              size.Put(
                  "Text",
                  "Public Property Get Size() As Long\r\nEnd Property\r\nSub Extra()\r\nEnd Sub");
            }).Number(),
            5000);
  EXPECT_EQ(Names(thing), names);

  letter.Put("Text",
             "Public Property Let Value(ByVal NewValue As Long)\r\n    mValue = 3\r\nEnd Property");
  size.Put("Text", "Public Property Get Size() As Long\r\n    Size = 2\r\nEnd Property");
  EXPECT_EQ(Names(thing), names);
  EXPECT_NE(IdeCode("Thing").find("    mValue = 3\r\nEnd Property\r\n\r\nPublic Property Get Size"),
            std::string::npos);
}

}  // namespace
