#include "automation/object.h"

#include <gtest/gtest.h>

#include "automation/error.h"
#include "automation/process.h"
#include "support/errors.h"

namespace {

using automation::Args;
using automation::Dispatch;
using automation::Error;
using automation::Variant;
using qxtest::ErrorOf;

class Counter : public automation::Object {
 public:
  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<Counter>("Counter")
            .Get("Value", &Counter::Value)
            .Id(0)
            .Put("Value", &Counter::SetValue)
            .Id(0)
            .Method("Add", &Counter::Add, {"Amount", automation::Optional("Times", 1)})
            .Method("Swap", &Counter::Swap, {"Other"})
            .Get("Name", &Counter::Name)
            .Implements("ICounter")
            .Method("Reset", &Counter::ICounter_Reset)
            .Build();
    return info;
  }
  int32_t Value() const { return value_; }
  void SetValue(int32_t v) { value_ = v; }
  int32_t Add(int32_t amount, int16_t times) { return value_ += amount * times; }
  void Swap(std::string& other) {
    std::string mine = std::to_string(value_);
    value_ = Variant(other).ToLong();
    other = mine;
  }
  std::string Name() const { return "counter"; }
  void ICounter_Reset() { value_ = 0; }

 private:
  int32_t value_ = 0;
};

TEST(Object, AMemberWithADispatchIdentifierIsAlsoCalledByIt) {
  auto c = std::make_shared<Counter>();
  Dispatch d(c);
  d.PutId(0, "5");
  EXPECT_EQ(c->Value(), 5);
  EXPECT_EQ(d.GetId(0).ToLong(), 5);
  EXPECT_EQ(ErrorOf([&] { d.GetId(3); }), automation::err::kNoSuchMember);
}

TEST(Object, MembersAreCalledByNameWithConversionsAndDefaults) {
  auto c = std::make_shared<Counter>();
  Dispatch d(c);
  d.Put("value", "12");  // any letter case; the string converts to Long
  EXPECT_EQ(d.Get("VALUE").ToLong(), 12);
  EXPECT_EQ(d.Call("Add", 3).ToLong(), 15);       // optional Times defaults to 1
  EXPECT_EQ(d.Call("Add", 2, 3.0).ToLong(), 21);  // 3.0 converts to Integer
  EXPECT_EQ(d.Get("Value").Type(), automation::VarType::Long);

  Args args{Variant("7")};
  d.CallArgs("Swap", args);  // by-reference argument is written back
  EXPECT_EQ(args[0].ToString(), "21");
  EXPECT_EQ(c->Value(), 7);

  Dispatch(c, "ICounter").Call("Reset");
  EXPECT_EQ(c->Value(), 0);
}

TEST(Object, BadCallsRaiseVbErrors) {
  auto c = std::make_shared<Counter>();
  Dispatch d(c);
  EXPECT_EQ(ErrorOf([&] { d.Call("Nope"); }), 438);
  EXPECT_EQ(ErrorOf([&] { d.Put("Name", "x"); }), 383);  // read-only property
  EXPECT_EQ(ErrorOf([&] { d.Call("Add"); }), 449);       // argument not optional
  EXPECT_EQ(ErrorOf([&] { d.Call("Add", 1, 2, 3); }), 450);
  EXPECT_EQ(ErrorOf([&] { d.Call("Add", "abc"); }), 13);
  EXPECT_EQ(ErrorOf([&] { Dispatch(nullptr).Get("Value"); }), 91);
  EXPECT_EQ(ErrorOf([&] { Dispatch(c, "IOther").Call("Reset"); }), 430);
  EXPECT_EQ(ErrorOf([&] { automation::CreateObject("No.SuchClass"); }), 429);
}

TEST(Object, TypeInformationListsMembersInSlotOrder) {
  Counter c;
  const auto& members = c.Class().defaultInterface.members;
  ASSERT_EQ(members.size(), 5u);
  EXPECT_EQ(members[0].name, "Value");
  EXPECT_EQ(members[0].kind, automation::MemberKind::Get);
  EXPECT_EQ(members[2].params[1].name, "Times");
  EXPECT_TRUE(members[2].params[1].optional);
  EXPECT_EQ(members[3].paramByRef[0], true);
  EXPECT_EQ(members[4].type, automation::VarType::String);
  ASSERT_NE(c.Class().FindInterface("icounter"), nullptr);
}

TEST(Object, CreatableClassesAndOwningProcess) {
  automation::RegisterClass("Test.Counter", [] { return std::make_shared<Counter>(); });
  auto other = automation::Process::Create("ide");
  automation::ObjectRef made;
  {
    automation::Process::Scope scope(other);
    made = automation::CreateObject("test.counter");
  }
  EXPECT_EQ(made->Owner(), other);
  EXPECT_NE(std::make_shared<Counter>()->Owner(), other);
  struct Values {
    int calls = 0;
  };
  automation::Process::Current().Values<Values>().calls++;
  EXPECT_EQ(automation::Process::Current().Values<Values>().calls, 1);
  EXPECT_EQ(other->Values<Values>().calls, 0);
}

TEST(Object, ObjectsOfAnEndedOrVanishedProcessRaise462) {
  auto server = automation::Process::Create("server");
  std::shared_ptr<Counter> ended;
  std::shared_ptr<Counter> vanished;
  {
    automation::Process::Scope scope(server);
    ended = std::make_shared<Counter>();
    Dispatch(ended).Put("Value", 5);
    automation::Process::Scope inner(automation::Process::Create("short-lived"));
    vanished = std::make_shared<Counter>();
  }
  EXPECT_EQ(Dispatch(ended).Get("Value").ToLong(), 5);  // alive while its process runs
  server->End();
  // Every kind of call fails, before the member is even looked up.
  const Error e = qxtest::Caught([&] { Dispatch(ended).Get("Value"); });
  EXPECT_EQ(e.Number(), 462);
  EXPECT_EQ(e.Description(), "The remote server machine does not exist or is unavailable");
  EXPECT_EQ(ErrorOf([&] { Dispatch(ended).Put("Value", 1); }), 462);
  EXPECT_EQ(ErrorOf([&] { Dispatch(ended, "ICounter").Call("Reset"); }), 462);
  EXPECT_EQ(ErrorOf([&] { Dispatch(ended).Call("NoSuchMember"); }), 462);
  EXPECT_EQ(ended->Value(), 5);
  // A process object that is gone altogether counts as ended.
  EXPECT_EQ(vanished->Owner(), nullptr);
  EXPECT_EQ(ErrorOf([&] { Dispatch(vanished).Get("Value"); }), 462);
  // Objects of the running process are not affected.
  EXPECT_EQ(Dispatch(std::make_shared<Counter>()).Get("Value").ToLong(), 0);
}

}  // namespace
