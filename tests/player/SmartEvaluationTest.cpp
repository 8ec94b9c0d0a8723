// Which songs the rules of a smart playlist choose.

#include <algorithm>
#include <cctype>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "player/SmartEvaluation.h"
#include "tests/support/SmartRuleMakers.h"

namespace player {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint32_t kJuly2006 = 3236112000;
constexpr uint32_t kDay = 86400;

std::string lowered(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

class SmartEvaluationTest : public testing::Test {
 protected:
  SmartEvaluationTest() {
    const std::pair<const char *, uint32_t> artists[] = {
        {"Johann Bach", 60}, {"Clara", 80}, {"J. S. BACH", 100}, {"Offenbach", 0}, {"", 60}};
    for (const auto &[artist, rating] : artists) {
      SmartSong song;
      song.facts.rating = static_cast<uint8_t>(rating);
      song.facts.plays = static_cast<uint32_t>(songs_.size());
      song.facts.duration = 60000;
      song.facts.size = 600 * 1024;
      if (artist[0] != '\0') song.texts[4] = artist;
      songs_.push_back(std::move(song));
    }
  }

  SmartResult resultOf(const SmartRules &rules) const {
    SmartSource source;
    source.songs = songs_.size();
    source.song = [this](size_t place) { return songs_[place]; };
    source.isIn = [](uint64_t list, size_t song) -> std::optional<bool> {
      if (list != 77) return std::nullopt;
      return song < 2;
    };
    source.fold = lowered;
    source.now = kJuly2006;
    return evaluate(rules, source);
  }
  std::vector<size_t> matching(std::vector<SmartRule> rules, bool isAny = false) const {
    const SmartResult result = resultOf(with(std::move(rules), isAny));
    EXPECT_THAT(result.undecided, IsEmpty());
    return result.certain;
  }

  std::vector<SmartSong> songs_;
};

TEST_F(SmartEvaluationTest, TextsAreComparedWithoutRegardToCase) {
  EXPECT_THAT(matching({text(4, kContains, "bach")}), ElementsAre(0, 2, 3));
  EXPECT_THAT(matching({text(4, kBegins, "j")}), ElementsAre(0, 2));
  EXPECT_THAT(matching({text(4, kEnds, "Bach")}), ElementsAre(0, 2, 3));
  EXPECT_THAT(matching({text(4, kIs, "clara")}), ElementsAre(1));
  EXPECT_THAT(matching({text(4, kContains | kNegatedAction, "bach")}), ElementsAre(1, 4));
  EXPECT_THAT(matching({text(4, kIs, "")}), ElementsAre(4));
}

TEST_F(SmartEvaluationTest, NumbersAreCompared) {
  EXPECT_THAT(matching({number(0x19, kGreater, 60)}), ElementsAre(1, 2));
  EXPECT_THAT(matching({number(0x19, kAtLeast, 60)}), ElementsAre(0, 1, 2, 4));
  EXPECT_THAT(matching({number(0x19, kLess, 60)}), ElementsAre(3));
  EXPECT_THAT(matching({number(0x19, kAtMost, 60)}), ElementsAre(0, 3, 4));
  EXPECT_THAT(matching({number(0x19, kInRange, 80, 60)}), ElementsAre(0, 1, 4));
  EXPECT_THAT(matching({number(0x19, kIs | kNegatedAction, 60)}), ElementsAre(1, 2, 3));
}

TEST_F(SmartEvaluationTest, OneBitOfAMediaKindIsEnough) {
  songs_[1].facts.mediaType = 0x21;
  songs_[2].facts.mediaType = 4;
  EXPECT_THAT(matching({number(0x3c, kAnyBit, 0x24)}), ElementsAre(1, 2));
  EXPECT_THAT(matching({number(0x3c, kAnyBit | kNegatedAction, 4)}), ElementsAre(0, 1, 3, 4));
  EXPECT_THAT(matching({number(0x39, kIs | kNegatedAction, 1)}), ElementsAre(0, 1, 3, 4));
}

TEST_F(SmartEvaluationTest, LastDaysAreCountedFromTheDayGiven) {
  songs_[0].facts.lastPlayed = kJuly2006 - 3 * kDay;
  songs_[1].facts.lastPlayed = kJuly2006 - 3 * kDay - 1;
  SmartRule rule = number(0x17, kInTheLast, kNow);
  rule.from = {kNow, -3, kDay};
  EXPECT_THAT(matching({rule}), ElementsAre(0));
  rule.action |= kNegatedAction;
  EXPECT_THAT(matching({rule}), ElementsAre(1, 2, 3, 4));
  EXPECT_TRUE(dependsOnDay(with({rule})));
  EXPECT_FALSE(dependsOnDay(with({number(0x17, kGreater, kJuly2006)})));
}

TEST_F(SmartEvaluationTest, AllOrAnyOfTheRulesMustHoldInGroupsToo) {
  const SmartRule bach = text(4, kContains, "bach");
  const SmartRule good = number(0x19, kGreater, 60);
  EXPECT_THAT(matching({bach, good}), ElementsAre(2));
  EXPECT_THAT(matching({bach, good}, true), ElementsAre(0, 1, 2, 3));
  SmartRules rules = with({bach});
  SmartRule group;
  group.group = 1;
  rules.groups[0].rules.push_back(group);
  rules.groups.push_back({true, false, {good, number(0x16, kIs, 3)}});
  EXPECT_THAT(resultOf(rules).certain, ElementsAre(2, 3));
}

TEST_F(SmartEvaluationTest, RulesThatAreSwitchedOffMeanEverySong) {
  SmartRules rules = with({text(4, kContains, "nobody")});
  rules.usesRules = false;
  EXPECT_EQ(resultOf(rules).certain.size(), 5U);
  songs_[1].facts.checked = false;
  rules.onlyChecked = true;
  EXPECT_THAT(resultOf(rules).certain, ElementsAre(0, 2, 3, 4));
}

TEST_F(SmartEvaluationTest, WhatIsNotKnownOfSongsLeavesThemUndecided) {
  const SmartRule loved = number(0x9a, kIs, 1);
  const SmartResult result = resultOf(with({text(4, kContains, "bach"), loved}));
  EXPECT_THAT(result.certain, IsEmpty());
  EXPECT_THAT(result.undecided, ElementsAre(0, 2, 3));
  EXPECT_EQ(result.count, std::nullopt);
  EXPECT_THAT(resultOf(with({text(4, kContains, "bach"), loved}, true)).certain, ElementsAre(0, 2, 3));
  EXPECT_EQ(resultOf(with({number(0x7777, kIs, 1)})).undecided.size(), 5U);
  EXPECT_EQ(resultOf(with({number(0x19, 0x4000, 1)})).undecided.size(), 5U);
  EXPECT_EQ(resultOf(with({number(4, kIs, 1)})).undecided.size(), 5U);  // a text compared as a number
}

TEST_F(SmartEvaluationTest, CoversAreKnownOfSongsThatSayIt) {
  songs_[1].facts.picture = true;
  songs_[2].facts.picture = false;
  const SmartResult result = resultOf(with({number(0x25, kIs, 1)}));
  EXPECT_THAT(result.certain, ElementsAre(1));
  EXPECT_THAT(result.undecided, ElementsAre(0, 3, 4));
}

TEST_F(SmartEvaluationTest, RulesThatAreLostLeaveSongsUndecided) {
  SmartRules rules = with({text(4, kContains, "bach")});
  rules.groups[0].isCut = true;
  EXPECT_THAT(resultOf(rules).undecided, ElementsAre(0, 2, 3));
  rules.groups[0].isAny = true;
  EXPECT_THAT(resultOf(rules).certain, ElementsAre(0, 2, 3));
  EXPECT_THAT(resultOf(rules).undecided, ElementsAre(1, 4));
}

TEST_F(SmartEvaluationTest, OtherListsAreAskedFor) {
  EXPECT_THAT(matching({number(0x28, kIs, 77)}), ElementsAre(0, 1));
  EXPECT_THAT(matching({number(0x28, kIs | kNegatedAction, 77)}), ElementsAre(2, 3, 4));
  EXPECT_EQ(resultOf(with({number(0x28, kIs, 78)})).undecided.size(), 5U);
}

class SmartLimitTest : public SmartEvaluationTest {
 protected:
  static SmartRules limited(LimitUnit unit, uint32_t limit, LimitOrder order, bool isReversed = false) {
    SmartRules rules = with({});
    rules.isLimited = true;
    rules.limitUnit = unit;
    rules.limit = limit;
    rules.limitOrder = order;
    rules.isReversed = isReversed;
    return rules;
  }
};

TEST_F(SmartLimitTest, TakesTheFirstOfTheOrder) {
  EXPECT_THAT(resultOf(limited(LimitUnit::Songs, 2, LimitOrder::Plays)).certain, ElementsAre(3, 4));
  EXPECT_THAT(resultOf(limited(LimitUnit::Songs, 2, LimitOrder::Plays, true)).certain, ElementsAre(0, 1));
  EXPECT_THAT(resultOf(limited(LimitUnit::Songs, 2, LimitOrder::Artist)).certain, ElementsAre(1, 4));
  EXPECT_THAT(resultOf(limited(LimitUnit::Songs, 2, LimitOrder::Artist, true)).certain, ElementsAre(0, 3));
  EXPECT_EQ(resultOf(limited(LimitUnit::Songs, 2, LimitOrder::Plays)).count, 2U);
}

TEST_F(SmartLimitTest, SongsThatWereNeverPlayedAreNotPlayedMost) {
  EXPECT_THAT(resultOf(limited(LimitUnit::Songs, 9, LimitOrder::Plays)).certain, ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(resultOf(limited(LimitUnit::Songs, 9, LimitOrder::LastPlayed)).certain, IsEmpty());
}

TEST_F(SmartLimitTest, StopsBeforeTheSongThatPassesIt) {
  EXPECT_THAT(resultOf(limited(LimitUnit::Minutes, 2, LimitOrder::Plays)).certain, ElementsAre(3, 4));
  EXPECT_THAT(resultOf(limited(LimitUnit::Megabytes, 2, LimitOrder::Plays)).certain, ElementsAre(2, 3, 4));
  EXPECT_EQ(resultOf(limited(LimitUnit::Hours, 1, LimitOrder::Rating)).certain.size(), 5U);
  EXPECT_EQ(resultOf(limited(LimitUnit::Unknown, 1, LimitOrder::Rating)).certain.size(), 5U);
}

TEST_F(SmartLimitTest, SongsOfOneRankMayStandForEachOther) {
  const SmartResult result = resultOf(limited(LimitUnit::Songs, 3, LimitOrder::Rating));
  EXPECT_THAT(result.certain, ElementsAre(1, 2));
  EXPECT_THAT(result.possible, ElementsAre(0, 4));
  EXPECT_EQ(result.count, 3U);
  EXPECT_TRUE(difference(result, {1, 2, 0}).isNone());
  EXPECT_TRUE(difference(result, {4, 2, 1}).isNone());
  EXPECT_TRUE(difference(result, {1, 2}).isOtherLength);
  const SmartDifference other = difference(result, {1, 0, 3});
  EXPECT_THAT(other.missing, ElementsAre(2));
  EXPECT_THAT(other.extra, ElementsAre(3));
}

TEST_F(SmartLimitTest, ChanceChoosesAmongAllThatMatch) {
  for (const LimitOrder order : {LimitOrder::Random, LimitOrder::Unknown}) {
    const SmartResult result = resultOf(limited(LimitUnit::Songs, 2, order));
    EXPECT_THAT(result.certain, IsEmpty());
    EXPECT_EQ(result.possible.size(), 5U);
    EXPECT_EQ(result.count, 2U);
  }
  EXPECT_EQ(resultOf(limited(LimitUnit::Minutes, 2, LimitOrder::Random)).count, std::nullopt);
  EXPECT_EQ(resultOf(limited(LimitUnit::Songs, 5, LimitOrder::Random)).certain.size(), 5U);
}

TEST_F(SmartLimitTest, UndecidedSongsMayTakeTheRoomOfOthers) {
  SmartRules rules = limited(LimitUnit::Songs, 2, LimitOrder::Plays);
  rules.groups[0].isAny = true;
  rules.groups[0].rules = {text(4, kContains, "bach"), number(0x9a, kIs, 1)};
  const SmartResult result = resultOf(rules);
  EXPECT_THAT(result.certain, IsEmpty());
  EXPECT_THAT(result.possible, ElementsAre(2, 3));
  EXPECT_THAT(result.undecided, ElementsAre(1, 4));
}

}  // namespace
}  // namespace player
