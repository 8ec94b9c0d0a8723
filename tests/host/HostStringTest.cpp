#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "host/runtime/HostString.h"
#include "host/runtime/LiveHandles.h"

namespace zemhost {
namespace {

using namespace std::string_view_literals;

class HostStringTest : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(liveHandles().strings, before_); }

  int64_t live() const { return liveHandles().strings - before_; }

 private:
  int64_t before_ = liveHandles().strings;
};

TEST_F(HostStringTest, CarriesALengthByteTheCharactersAndATerminator) {
  const HostString string = HostString::fromBytes("abc", kAscii);
  const REALstringStruct &record = *string.handle();
  EXPECT_EQ(record.mPrivateStringData[0], 3);
  EXPECT_EQ(std::string_view(REALstringStruct::CString(&record)), "abc");
  EXPECT_EQ(record.mPrivateLength, 3);
  EXPECT_GE(record.mPrivateAllocLength, 4);
  EXPECT_EQ(record.mPrivateUsageCount, 1);
  EXPECT_EQ(record.mEncoding, kAscii);
}

TEST_F(HostStringTest, LengthByteIs255ForLongerText) {
  EXPECT_EQ(HostString::fromBytes(std::string(254, 'x'), kAscii).handle()->mPrivateStringData[0], 254);
  EXPECT_EQ(HostString::fromBytes(std::string(255, 'x'), kAscii).handle()->mPrivateStringData[0], 255);
  EXPECT_EQ(HostString::fromBytes(std::string(70000, 'x'), kAscii).handle()->mPrivateStringData[0], 255);
  EXPECT_EQ(HostString::fromBytes(std::string(70000, 'x'), kAscii).bytes().size(), 70000U);
}

TEST_F(HostStringTest, EmptyStringIsNotTheNullString) {
  const HostString empty = HostString::fromUtf8("");
  EXPECT_TRUE(empty);
  EXPECT_EQ(empty.bytes(), "");
  EXPECT_FALSE(HostString());
  EXPECT_EQ(HostString().bytes(), "");
  EXPECT_EQ(HostString().text(), "");
  EXPECT_EQ(HostString().encoding(), 0U);
  EXPECT_FALSE(HostString().convertedTo(kUtf16));
}

TEST_F(HostStringTest, KeepsZeroBytes) {
  EXPECT_EQ(HostString::fromBytes("a\0b"sv, kAscii).bytes(), "a\0b"sv);
}

TEST_F(HostStringTest, CopiesShareOneRecordAndTheLastOneFreesIt) {
  HostString one = HostString::fromUtf8("x");
  {
    HostString two;
    two = one;
    EXPECT_EQ(two.handle(), one.handle());
    EXPECT_EQ(one.handle()->mPrivateUsageCount, 2);
    EXPECT_EQ(live(), 1);
  }
  EXPECT_EQ(one.handle()->mPrivateUsageCount, 1);
  const HostString moved = std::move(one);
  EXPECT_EQ(moved.handle()->mPrivateUsageCount, 1);
  EXPECT_EQ(live(), 1);
}

TEST_F(HostStringTest, AdoptingTakesTheReferenceAndSharingAddsOne) {
  REALstring raw = newString("x", kUtf8);
  {
    const HostString shared = HostString::share(raw);
    EXPECT_EQ(raw->mPrivateUsageCount, 2);
  }
  EXPECT_EQ(raw->mPrivateUsageCount, 1);
  { const HostString adopted = HostString::adopt(raw); }
  EXPECT_EQ(live(), 0);
}

TEST_F(HostStringTest, AssignmentReleasesWhatWasThere) {
  HostString string = HostString::fromUtf8("x");
  string = HostString::fromUtf8("y");
  EXPECT_EQ(live(), 1);
  HostString &same = string;
  string = same;
  EXPECT_EQ(string.bytes(), "y");
  string = HostString();
  EXPECT_EQ(live(), 0);
}

TEST_F(HostStringTest, TextFollowsTheEncoding) {
  EXPECT_EQ(HostString::fromBytes("\x30\x42"sv, kUtf16).text(), "\u3042");
  EXPECT_EQ(HostString::fromBytes("\x42\x30", 0x14000100).text(), "\u3042");
  EXPECT_EQ(HostString::fromBytes("\x42\x30", kAscii).text(), "B0");
}

TEST_F(HostStringTest, TextIsValidUtf8WhateverTheBytes) {
  EXPECT_EQ(HostString::fromBytes("a\xFF", kUtf8).text(), "a\uFFFD");
  EXPECT_EQ(HostString::fromBytes("a\xFF", 16777216).text(), "a\uFFFD");
}

TEST_F(HostStringTest, ConvertingToTheSameEncodingGivesTheSameRecord) {
  const HostString string = HostString::fromBytes("\xFF", kUtf8);
  EXPECT_EQ(string.convertedTo(kUtf8).handle(), string.handle());
}

TEST_F(HostStringTest, ConvertedStringIsTaggedWithTheNewEncoding) {
  const HostString converted = HostString::fromUtf8("\u3042").convertedTo(kUtf16);
  EXPECT_EQ(converted.bytes(), "\x30\x42");
  EXPECT_EQ(converted.encoding(), kUtf16);
}

TEST_F(HostStringTest, LiveStringsAreFoundOldestFirst) {
  const size_t before = liveStrings().size();
  const HostString one = HostString::fromUtf8("one");
  HostString two = HostString::fromUtf8("two");
  const HostString three = HostString::fromUtf8("three");
  two = HostString();
  const std::vector<HostString> live = liveStrings();
  ASSERT_EQ(live.size(), before + 2);
  EXPECT_EQ(live[before].handle(), one.handle());
  EXPECT_EQ(live[before + 1].handle(), three.handle());
}

TEST_F(HostStringTest, NullHandlesAreLeftAlone) {
  retainString(nullptr);
  releaseString(nullptr);
  EXPECT_EQ(live(), 0);
}

TEST(HandleChecks, StringReleasedTooOftenIsAMisuseAndNothingElse) {
  checkHandles(true);
  const int64_t misuses = liveHandles().misuses;
  const int64_t strings = liveHandles().strings;
  REALstring string = newString("x", kUtf8);
  releaseString(string);
  releaseString(string);
  EXPECT_EQ(liveHandles().misuses, misuses + 1);
  EXPECT_EQ(liveHandles().strings, strings);
  checkHandles(false);
}

TEST(HandleChecks, CannotChangeWhileAStringIsLive) {
  const HostString string = HostString::fromUtf8("x");
  EXPECT_THROW(checkHandles(true), std::logic_error);
}

}  // namespace
}  // namespace zemhost
