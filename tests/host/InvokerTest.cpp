#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "host/binding/ClassReader.h"
#include "host/binding/Invoker.h"
#include "host/runtime/LiveHandles.h"
#include "host/runtime/MemoryFailures.h"

namespace zemhost {
namespace {

template <typename Function>
REALproc slot(Function *function) {
  return reinterpret_cast<REALproc>(function);
}

int gTarget = 0;
const auto kObject = reinterpret_cast<REALobject>(&gTarget);
REALobject gSeenObject = nullptr;
intptr_t gSeenParameter = 0;
int32_t gSeenNumber = 0;
REALstring gSeenString = nullptr;

int32_t same(REALobject object, int32_t n) {
  gSeenObject = object;
  return n;
}

// Alternates numbers and strings, far past what registers hold.
int32_t many(REALobject, int32_t a0, REALstring s0, int32_t a1, REALstring s1, int32_t a2, REALstring s2,
             int32_t a3, REALstring s3, int32_t a4, REALstring s4, int32_t a5, REALstring s5) {
  const auto weight = [](REALstring s) { return REALstringStruct::Length(s); };
  return a0 + 10 * a1 + 100 * a2 + 1000 * a3 + 10000 * a4 + 100000 * a5 +
         1000000 * (weight(s0) + 2 * weight(s1) + 3 * weight(s2) + 4 * weight(s3) + 5 * weight(s4) +
                    6 * weight(s5));
}

REALstring give(REALobject, int32_t length) {
  return length < 0 ? nullptr : newString(std::string(static_cast<size_t>(length), 'x'), kAscii);
}

int32_t borrowed(REALobject, REALstring string) { return string->mPrivateUsageCount; }

int32_t plain(int32_t n) { return n + 1; }

int32_t getter(REALobject object, intptr_t parameter) {
  gSeenObject = object;
  gSeenParameter = parameter;
  return -3;
}

void numberSetter(REALobject object, intptr_t parameter, int32_t value) {
  gSeenObject = object;
  gSeenParameter = parameter;
  gSeenNumber = value;
}

void stringSetter(REALobject, intptr_t, REALstring value) { gSeenString = value; }

Value call(const char *declaration, REALproc function, const std::vector<Value> &arguments) {
  return Invoker::forMethod(readMethod(function, declaration, "the test")).call(kObject, arguments);
}

TEST(Invoker, IntegersPassAndReturnWithTheirSign) {
  for (const int32_t n : {0, 1, -1, 0x7FFF, -0x8000, std::numeric_limits<int32_t>::max(),
                          std::numeric_limits<int32_t>::min()}) {
    const Value result = call("Same(n As Integer) As Integer", slot(same), {n});
    EXPECT_EQ(result.integer(), n);
    EXPECT_EQ(gSeenObject, kObject);
  }
}

TEST(Invoker, BooleansPassAs32BitValues) {
  for (const int32_t raw : {0, 1, 2, -1, 256, std::numeric_limits<int32_t>::min()})
    EXPECT_EQ(call("Same(b As Boolean) As Boolean", slot(same), {Value::rawBoolean(raw)}).rawBoolean(), raw);
}

TEST(Invoker, ArgumentsKeepTheirPlacesBeyondTheRegisters) {
  const char *declaration =
      "Many(a0 As Integer, s0 As String, a1 As Integer, s1 As String, a2 As Integer, s2 As String, a3 As "
      "Integer, "
      "s3 As String, a4 As Integer, s4 As String, a5 As Integer, s5 As String) As Integer";
  EXPECT_EQ(call(declaration, slot(many), {1, "", 2, "", 3, "", 4, "", 5, "", 6, ""}).integer(), 654321);
  EXPECT_EQ(call(declaration, slot(many), {0, "a", 0, "", 0, "bb", 0, "", 0, "", 0, "ccc"}).integer(),
            25000000);
  EXPECT_EQ(call(declaration, slot(many), {0, HostString(), 0, "a", 0, "", 0, "", 0, "", 0, ""}).integer(),
            2000000);
}

TEST(Invoker, ReturnedStringHandsItsReferenceOver) {
  const int64_t before = liveHandles().strings;
  {
    const Value result = call("Give(n As Integer) As String", slot(give), {3});
    EXPECT_EQ(result.bytes(), "xxx");
    EXPECT_EQ(result.string().handle()->mPrivateUsageCount, 1);
    EXPECT_EQ(liveHandles().strings, before + 1);
  }
  EXPECT_EQ(liveHandles().strings, before);
  EXPECT_TRUE(call("Give(n As Integer) As String", slot(give), {-1}).isNil());
}

TEST(Invoker, StringArgumentIsLent) {
  const HostString string = HostString::fromUtf8("x");
  {
    const std::vector<Value> arguments = {string};
    const int32_t ours = string.handle()->mPrivateUsageCount;
    EXPECT_EQ(call("Borrowed(s As String) As Integer", slot(borrowed), arguments).integer(), ours);
  }
  EXPECT_EQ(string.handle()->mPrivateUsageCount, 1);
}

TEST(Invoker, GlobalMethodTakesNoObject) {
  const Invoker invoker =
      Invoker::forGlobalMethod(readMethod(slot(plain), "Plain(n As Integer) As Integer", "test"));
  const Value argument(41);
  EXPECT_EQ(invoker.call(nullptr, {&argument, 1}).integer(), 42);
}

TEST(Invoker, GetterTakesTheParameterAsAWord) {
  PropertyInfo property;
  property.kind = Kind::Integer;
  property.getter = slot(getter);
  property.parameter = std::numeric_limits<intptr_t>::min();
  EXPECT_EQ(Invoker::forGetter(property).call(kObject, {}).integer(), -3);
  EXPECT_EQ(gSeenParameter, property.parameter);
  EXPECT_EQ(gSeenObject, kObject);
}

TEST(Invoker, SetterTakesParameterAndValue) {
  PropertyInfo property;
  property.kind = Kind::Integer;
  property.setter = slot(numberSetter);
  property.parameter = 11;
  const Value number(-5);
  EXPECT_EQ(Invoker::forSetter(property).call(kObject, {&number, 1}).kind(), Kind::None);
  EXPECT_EQ(gSeenParameter, 11);
  EXPECT_EQ(gSeenNumber, -5);
  property.kind = Kind::String;
  property.setter = slot(stringSetter);
  const Value text("abc");
  Invoker::forSetter(property).call(kObject, {&text, 1});
  EXPECT_EQ(gSeenString, text.string().handle());
}

TEST(Invoker, MovedInvokerStillCalls) {
  Invoker invoker = Invoker::forMethod(readMethod(slot(same), "Same(n As Integer) As Integer", "test"));
  std::vector<Invoker> moved;
  moved.push_back(std::move(invoker));
  moved.push_back(Invoker::forMethod(readMethod(slot(give), "Give(n As Integer) As String", "test")));
  const Value argument(9);
  EXPECT_EQ(moved[0].call(kObject, {&argument, 1}).integer(), 9);
}

// What a request for memory does that cannot be met, and what a plug-in makes of it.
void fail() {
  try {
    std::get_new_handler()();
  } catch (const std::bad_alloc &) {
  }
}
int32_t failed(REALobject, int32_t answer) {
  fail();
  return answer;
}
REALstring failedText(REALobject, int32_t length) {
  fail();
  return give(nullptr, length);
}
void failedWithoutAnswer(REALobject) { fail(); }

TEST(Invoker, NeutralAnswerForLackOfMemoryIsNoAnswer) {
  const MemoryFailureCount counted;
  EXPECT_THROW(call("F(n As Integer) As Integer", slot(failed), {0}), std::bad_alloc);
  EXPECT_THROW(call("F(b As Boolean) As Boolean", slot(failed), {false}), std::bad_alloc);
  EXPECT_THROW(call("F(n As Integer) As String", slot(failedText), {-1}), std::bad_alloc);
  EXPECT_THROW(call("F", slot(failedWithoutAnswer), {}), std::bad_alloc);
  // What could be answered all the same is an answer.
  EXPECT_EQ(call("F(n As Integer) As Integer", slot(failed), {3}).integer(), 3);
  EXPECT_TRUE(call("F(b As Boolean) As Boolean", slot(failed), {true}).boolean());
  EXPECT_EQ(call("F(n As Integer) As String", slot(failedText), {2}).bytes(), "xx");
  // And a failure before the call is none of the call.
  fail();
  EXPECT_EQ(call("Same(n As Integer) As Integer", slot(same), {0}).integer(), 0);
}

TEST(Invoker, HandlerOfBeforeIsInItsPlaceAgain) {
  static int called = 0;
  called = 0;
  const std::new_handler before = std::set_new_handler([] {
    ++called;
    throw std::bad_alloc();
  });
  const uint64_t failures = memoryFailures();
  {
    const MemoryFailureCount counted;
    const MemoryFailureCount inside;
    fail();
  }
  fail();
  std::set_new_handler(before);
  EXPECT_EQ(called, 2);
  EXPECT_EQ(memoryFailures(), failures + 1);
}

}  // namespace
}  // namespace zemhost
