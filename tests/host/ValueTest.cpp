#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "host/Error.h"
#include "host/basic/ParseResult.h"
#include "host/binding/Value.h"
#include "tests/support/TemporaryFolder.h"

namespace zemhost {
namespace {

TEST(Value, KindFollowsWhatItWasMadeFrom) {
  EXPECT_EQ(Value().kind(), Kind::None);
  EXPECT_EQ(Value(5).kind(), Kind::Integer);
  EXPECT_EQ(Value(true).kind(), Kind::Boolean);
  EXPECT_EQ(Value("x").kind(), Kind::String);
  EXPECT_EQ(Value(std::string("x")).kind(), Kind::String);
  EXPECT_EQ(Value(HostString()).kind(), Kind::String);
  EXPECT_EQ(Value(FolderItem()).kind(), Kind::FolderItem);
}

TEST(Value, UnsignedCodeKeepsItsBits) { EXPECT_EQ(Value(0xFFFFFFFFU).integer(), -1); }

TEST(Value, BooleanMayCarryAnyNumber) {
  EXPECT_EQ(Value(true).rawBoolean(), 1);
  EXPECT_EQ(Value(false).rawBoolean(), 0);
  EXPECT_EQ(Value::rawBoolean(-2).rawBoolean(), -2);
  EXPECT_TRUE(Value::rawBoolean(-2).boolean());
}

TEST(Value, ReadingAnotherKindIsAnError) {
  EXPECT_THROW(Value(5).boolean(), HostError);
  EXPECT_THROW(Value(5).text(), HostError);
  EXPECT_THROW(Value(true).integer(), HostError);
  EXPECT_THROW(Value("x").folderItem(), HostError);
  try {
    Value().integer();
    FAIL();
  } catch (const HostError &error) {
    EXPECT_STREQ(error.what(), "the value is nothing, not Integer");
  }
}

TEST(Value, NilIsTheNullStringOrItem) {
  EXPECT_TRUE(Value(HostString()).isNil());
  EXPECT_TRUE(Value(FolderItem()).isNil());
  EXPECT_FALSE(Value("").isNil());
  EXPECT_FALSE(Value(0).isNil());
  EXPECT_FALSE(Value().isNil());
}

TEST(Value, StringShortForms) {
  const Value value(HostString::fromBytes("\x30\x42", kUtf16));
  EXPECT_EQ(value.text(), "\u3042");
  EXPECT_EQ(value.bytes(), "\x30\x42");
  EXPECT_EQ(value.encoding(), kUtf16);
}

TEST(Value, NumbersAndTruthDescribeThemselves) {
  EXPECT_EQ(Value(std::numeric_limits<int32_t>::min()).describe(), "-2147483648");
  EXPECT_EQ(Value(true).describe(), "True");
  EXPECT_EQ(Value(false).describe(), "False");
  EXPECT_EQ(Value::rawBoolean(7).describe(), "True (7)");
  EXPECT_EQ(Value().describe(), "(no result)");
}

TEST(Value, StringDescribesTextAndEncoding) {
  EXPECT_EQ(Value("a").describe(), "\"a\" (UTF-8)");
  EXPECT_EQ(Value("Blue \"Train\"").describe(), "\"Blue \"\"Train\"\"\" (UTF-8)");
  EXPECT_EQ(Value(HostString::fromBytes("\x30\x42", kUtf16)).describe(), "\"\u3042\" (UTF-16)");
  EXPECT_EQ(Value(HostString::fromBytes("a", 77)).describe(), "\"a\" (encoding 77)");
  EXPECT_EQ(Value("").describe(), "\"\" (UTF-8)");
  EXPECT_EQ(Value(HostString()).describe(), "nil");
}

TEST(Value, ControlCharactersNeverReachTheTerminal) {
  EXPECT_EQ(Value("a\tb\n").describe(), "\"a\" + Chr(9) + \"b\" + Chr(10) (UTF-8)");
  EXPECT_EQ(Value("\x1B[2J").describe(), "Chr(27) + \"[2J\" (UTF-8)");
  EXPECT_EQ(Value("\x7F").describe(), "Chr(127) (UTF-8)");
  EXPECT_EQ(Value("\u009B1m\u00A0").describe(), "Chr(155) + \"1m\u00A0\" (UTF-8)");
  EXPECT_EQ(quoteText(std::string_view("\0\0", 2)), "Chr(0) + Chr(0)");
}

TEST(Value, FolderItemDescribesItsPath) {
  const support::TemporaryFolder scratch;
  mountVolume("Disk", scratch.path());
  EXPECT_EQ(Value(FolderItem::fromPath(scratch.write("a.mp3"))).describe(), "\"Disk:a.mp3\"");
  EXPECT_EQ(Value(FolderItem::fromMacPath("Disk:b.mp3")).describe(), "\"Disk:b.mp3\" (no such file)");
  EXPECT_EQ(Value(FolderItem()).describe(), "nil");
}

}  // namespace
}  // namespace zemhost
