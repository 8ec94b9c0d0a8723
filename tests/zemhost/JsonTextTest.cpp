#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "zemhost/output/JsonText.h"

namespace zemhost {
namespace {

std::string appended(const Json &value) {
  std::string text = "before ";
  appendJson(text, value);
  return text;
}

TEST(AppendJson, PlainValuesStandAsTheyAre) {
  EXPECT_EQ(appended(nullptr), "before null");
  EXPECT_EQ(appended(true), "before true");
  EXPECT_EQ(appended(false), "before false");
  EXPECT_EQ(appended(-7), "before -7");
  EXPECT_EQ(appended("Blue Train"), "before \"Blue Train\"");
}

TEST(AppendJson, EscapesWhatATextMayNotHold) {
  EXPECT_EQ(appended("a\"b\\c\nd"), R"(before "a\"b\\c\nd")");
  EXPECT_EQ(appended("a\x7F\u009B2J\u200F"), R"(before "a\u007f\u009b2J\u200f")");
  EXPECT_EQ(appended("\u97F3\xFF"), "before \"\u97F3\uFFFD\"");
}

// What the library writes of the same value is the model.
TEST(AppendJson, WritesEveryValueAsTheLibraryDoes) {
  std::vector<Json> values = {std::numeric_limits<int64_t>::min(),
                              std::numeric_limits<int64_t>::max(),
                              std::numeric_limits<uint64_t>::max(),
                              0,
                              0U,
                              0.5,
                              -1e300,
                              3.0,
                              "",
                              " ",
                              "~",
                              Json::array(),
                              {1, "two", nullptr},
                              {{"key", "value"}, {"none", nullptr}}};
  for (int byte = 0; byte < 0x100; ++byte) values.emplace_back("x" + std::string(1, static_cast<char>(byte)));
  for (const Json &value : values) EXPECT_EQ(appended(value), "before " + jsonText(value));
}

}  // namespace
}  // namespace zemhost
