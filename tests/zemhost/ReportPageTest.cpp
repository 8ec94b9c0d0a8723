#include <gtest/gtest.h>

#include "zemhost/report/Page.h"
#include "zemhost/report/PageJson.h"

namespace zemhost {
namespace {

size_t timesIn(std::string_view text, std::string_view part) {
  size_t times = 0;
  for (size_t at = 0; (at = text.find(part, at)) != std::string_view::npos; at += part.size()) ++times;
  return times;
}

TEST(ReportPage, HasItsTwoPlacesOnceEachTheTitleFirst) {
  EXPECT_EQ(timesIn(reportPage(), "<title>@TITLE@</title>"), 1);
  EXPECT_EQ(timesIn(reportPage(), "@TITLE@"), 1);
  EXPECT_EQ(timesIn(reportPage(), "@LIBRARY@</script>"), 1);
  EXPECT_EQ(timesIn(reportPage(), "@LIBRARY@"), 1);
  EXPECT_LT(reportPage().find("@TITLE@"), reportPage().find("@LIBRARY@"));
}

TEST(ReportJson, NothingInItIsMarkup) {
  EXPECT_EQ(pageJson("</script>"), R"("\u003c/script\u003e")");
  EXPECT_EQ(pageJson("<!-- & -->"), R"("\u003c!-- \u0026 --\u003e")");
  EXPECT_EQ(pageJson("\"\\"), R"("\"\\")");
  EXPECT_EQ(pageJson({{"<", ">"}}), R"({"\u003c":"\u003e"})");
}

TEST(ReportJson, WhatNobodySeesStandsAsItsEscape) {
  EXPECT_EQ(pageJson("\u2028\u2029"), R"("\u2028\u2029")");
  EXPECT_EQ(pageJson("\u202e\u2066\u200f\u061c\u2069\u202c"), R"("\u202e\u2066\u200f\u061c\u2069\u202c")");
  EXPECT_EQ(pageJson(std::string("\0\n\x1b\x7f", 4)), R"("\u0000\n\u001b\u007f")");
  EXPECT_EQ(pageJson("\xff\xed\xa0\x80"), "\"\uFFFD\uFFFD\uFFFD\uFFFD\"");  // no character, and half of one
}

TEST(ReportJson, TextInMarkupIsText) {
  EXPECT_EQ(markupText("</title><b a='\"'>&amp;"), "&lt;/title&gt;&lt;b a=&#39;&quot;&#39;&gt;&amp;amp;");
  EXPECT_EQ(markupText("a\nb\u202e\u202c"), "a\u240Ab\uFFFD\uFFFD");
}

TEST(ReportJson, ColumnOfWhichNothingIsKnownIsNull) {
  PageColumn numbers;
  EXPECT_EQ(numbers.json(), "null");
  numbers.add(uint64_t{0});
  EXPECT_EQ(numbers.json(), "null");
  numbers.add(uint64_t{7});
  EXPECT_EQ(numbers.json(), "[0,7]");
  PageColumn facts;
  facts.add(std::nullopt);
  EXPECT_EQ(facts.json(), "null");
  facts.add(std::optional<int64_t>(0));
  facts.add(std::optional<int64_t>(-5));
  EXPECT_EQ(facts.json(), "[null,0,-5]");
}

TEST(ReportJson, TextsStandOnceTheEmptyOneFirst) {
  PageWords words;
  EXPECT_EQ(words.numberOf("b"), 1);
  EXPECT_EQ(words.numberOf("a"), 2);
  EXPECT_EQ(words.numberOf("b"), 1);
  EXPECT_EQ(words.numberOf(""), 0);
  EXPECT_EQ(words.json(), R"(["","b","a"])");
}

}  // namespace
}  // namespace zemhost
