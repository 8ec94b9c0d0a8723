// The rules of smart playlists, and what else is known of them, in words.

#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "tests/support/SmartRuleMakers.h"
#include "zemhost/library/PlaylistWords.h"
#include "zemhost/library/SmartLists.h"

namespace zemhost {
namespace {

using namespace player;

std::string wordsOf(const SmartRules &rules) {
  return rulesText(rules,
                   [](uint64_t list) { return list == 7 ? std::string("Night Drives") : std::string(); });
}

std::string wordsOf(const SmartRule &rule) { return wordsOf(with({rule})); }

TEST(RuleWords, RulesAndTheirLimitMakeASentence) {
  SmartRules rules = with({text(4, kContains, "Bach"), number(0x19, kAtLeast, 80)});
  rules.isLimited = true;
  rules.limitUnit = LimitUnit::Songs;
  rules.limitOrder = LimitOrder::LastPlayed;
  rules.limit = 25;
  EXPECT_EQ(wordsOf(rules),
            "Artist contains 'Bach' and Rating is at least 4 stars, limited to 25 songs, most recently "
            "played first");
  rules.isReversed = true;
  rules.limitUnit = LimitUnit::Hours;
  rules.limit = 1;
  rules.onlyChecked = true;
  rules.isLive = false;
  rules.usesRules = false;
  EXPECT_EQ(
      wordsOf(rules),
      "All songs, limited to 1 hour, least recently played first, only checked songs, not kept up to date");
}

TEST(RuleWords, TextsAreCompared) {
  EXPECT_EQ(wordsOf(text(2, kIs, "One")), "Title is 'One'");
  EXPECT_EQ(wordsOf(text(3, kIs | kNegatedAction, "")), "Album is not ''");
  EXPECT_EQ(wordsOf(text(8, kContains | kNegatedAction, "x")), "Genre does not contain 'x'");
  EXPECT_EQ(wordsOf(text(0x47, kBegins, "x")), "Album artist begins with 'x'");
  EXPECT_EQ(wordsOf(text(0x0e, kEnds | kNegatedAction, "x")), "Comment does not end with 'x'");
}

TEST(RuleWords, ValuesHaveTheUnitsOfTheirFields) {
  EXPECT_EQ(wordsOf(number(7, kInRange, 1990, 1999)), "Year is from 1990 to 1999");
  EXPECT_EQ(wordsOf(number(0x19, kGreater, 20)), "Rating is more than 1 star");
  EXPECT_EQ(wordsOf(number(0x19, kIs, 70)), "Rating is 3½ stars");
  EXPECT_EQ(wordsOf(number(0x0d, kLess, 125000)), "Time is less than 2:05");
  EXPECT_EQ(wordsOf(number(0x0c, kAtMost, 3000000)), "Size is at most 3.0 MB");
  EXPECT_EQ(wordsOf(number(5, kAtLeast, 192)), "Bit rate is at least 192 kbit/s");
  EXPECT_EQ(wordsOf(number(0x10, kGreater, 3187296000)), "Date added is after 2004-12-31 00:00:00");
  EXPECT_EQ(wordsOf(number(0x17, kIs, 0)), "Last played is never");
  EXPECT_EQ(wordsOf(number(0x3c, kAnyBit, 1)), "Media kind is music");
  EXPECT_EQ(wordsOf(number(0x3c, kAnyBit | kNegatedAction, 5)), "Media kind is not one of music, podcast");
  EXPECT_EQ(wordsOf(number(0x1f, kIs, 1)), "Compilation is yes");
  EXPECT_EQ(wordsOf(number(0x39, kIs | kNegatedAction, 1)), "Podcast is no");
  EXPECT_EQ(wordsOf(number(0x28, kIs, 7)), "Playlist is 'Night Drives'");
  EXPECT_EQ(wordsOf(number(0x28, kIs | kNegatedAction, 8)), "Playlist is not one that is not there");
}

TEST(RuleWords, SpansAreCountedInTheirOwnUnits) {
  SmartRule rule = number(0x17, kInTheLast, kNow);
  rule.from = {kNow, -2, 604800};
  EXPECT_EQ(wordsOf(rule), "Last played is in the last 2 weeks");
  rule.action |= kNegatedAction;
  rule.from = {kNow, -1, 2628000};
  EXPECT_EQ(wordsOf(rule), "Last played is not in the last 1 month");
  rule.from = {kNow, INT64_MIN, 7};
  EXPECT_EQ(wordsOf(rule), "Last played is not in the last 9223372036854775808 times 7 seconds");
}

TEST(RuleWords, GroupsStandInParenthesesAndLostRulesAreSaid) {
  SmartRules rules = with({number(7, kIs, 1999)});
  SmartRule group;
  group.group = 1;
  rules.groups[0].rules.push_back(group);
  rules.groups.push_back({true, true, {text(4, kIs, "A"), text(4, kIs, "B")}});
  EXPECT_EQ(wordsOf(rules),
            "Year is 1999 and (Artist is 'A' or Artist is 'B' or further rules that are lost)");
  rules = with({});
  EXPECT_EQ(wordsOf(rules), "All songs");
  rules.groups[0].isCut = true;
  EXPECT_EQ(wordsOf(rules), "rules that are lost");
}

TEST(RuleWords, WhatIsNotKnownIsShownAsItsNumber) {
  EXPECT_EQ(wordsOf(number(0x7777, kIs, 5)), "Field 0x7777 is 5");
  EXPECT_EQ(wordsOf(number(7, 0x4000, 5)), "Year is compared in a way that is not known (0x4000) with 5");
  EXPECT_EQ(wordsOf(number(7, kIs, UINT64_MAX)), "Year is -1");
}

TEST(PlaylistWords, OrdersHaveNamesOrTheirNumbers) {
  EXPECT_EQ(sortOrderText(1), "manual");
  EXPECT_EQ(sortOrderText(5), "artist");
  EXPECT_EQ(sortOrderText(39), "39");
  EXPECT_EQ(sortOrderText(std::nullopt), "");
}

TEST(Days, EndWhereTheNextBegins) {
  EXPECT_EQ(endOfDay("1904-01-01"), 86400U);
  EXPECT_EQ(endOfDay("2006-07-22"), 3236457600U);
  for (const char *const other :
       {"", "2006-7-22", "2006-02-30", "1903-12-31", "2040-12-31", "2006-07-22 ", "+006-07-22"})
    EXPECT_EQ(endOfDay(other), std::nullopt) << other;
  EXPECT_TRUE(endOfDay(today()).has_value());
}

}  // namespace
}  // namespace zemhost
