// The rules of smart playlists, whole, cut short and inside each other.

#include <gtest/gtest.h>
#include <string>

#include "player/SmartRules.h"
#include "samples/SmartObjects.h"

namespace player {
namespace {

using samples::Variant;
using Rules = std::vector<samples::SmartRule>;

constexpr uint32_t kArtist = 0x04;
constexpr uint32_t kYear = 0x07;

const samples::SmartRule kBach{.field = kArtist, .action = kTextAction | kContains, .text = u"B\u00e4ch"};
const samples::SmartRule kNineties{
    .field = kYear, .action = kInRange, .from = {.value = 1990}, .to = {.value = 1999}};

SmartRules rulesOf(const samples::SmartSettings &settings, const Rules &rules, bool any = false,
                   Variant variant = Variant::LittleEndian) {
  const auto objects = SmartObjects(variant, settings, rules, any);
  return variant == Variant::LittleEndian ? readSmartRules(objects[0].bytes, objects[1].bytes)
                                          : readDesktopRules(objects[0].bytes, objects[1].bytes);
}

// Rules inside each other, so many groups deep.
samples::SmartRule nested(size_t depth) {
  return depth == 0 ? kBach : samples::SmartRule{.action = 1, .group = {nested(depth - 1)}};
}

TEST(SmartRulesTest, TextsValuesAndSettingsAreReadAsWritten) {
  const SmartRules rules = rulesOf({.live = false,
                                    .limited = true,
                                    .unit = 4,
                                    .order = 0x15,
                                    .limit = 0x1234,
                                    .onlyChecked = true,
                                    .reversed = true},
                                   {kBach, kNineties}, true);
  EXPECT_FALSE(rules.isLive);
  EXPECT_TRUE(rules.usesRules);
  EXPECT_TRUE(rules.isLimited);
  EXPECT_EQ(rules.limitUnit, LimitUnit::Hours);
  EXPECT_EQ(rules.limitOrder, LimitOrder::LastPlayed);
  EXPECT_EQ(rules.limit, 0x1234U);
  EXPECT_TRUE(rules.onlyChecked);
  EXPECT_TRUE(rules.isReversed);
  ASSERT_EQ(rules.groups.size(), 1U);
  EXPECT_TRUE(rules.groups[0].isAny);
  EXPECT_FALSE(rules.groups[0].isCut);
  ASSERT_EQ(rules.groups[0].rules.size(), 2U);
  EXPECT_EQ(rules.groups[0].rules[0].field, kArtist);
  EXPECT_EQ(rules.groups[0].rules[0].text, "B\u00e4ch");
  EXPECT_EQ(rules.groups[0].rules[1].from.value, 1990U);
  EXPECT_EQ(rules.groups[0].rules[1].to.value, 1999U);
}

TEST(SmartRulesTest, SpanBeforeNowIsNegative) {
  const SmartRules rules = rulesOf({}, {{.field = 0x17,
                                         .action = kInTheLast,
                                         .from = {.value = samples::kSmartNow, .date = -2, .unit = 604800}}});
  const RuleValue &from = rules.groups[0].rules[0].from;
  EXPECT_EQ(from.value, kNow);
  EXPECT_EQ(from.date, -2);
  EXPECT_EQ(from.unit, 604800U);
}

TEST(SmartRulesTest, GroupsComeBehindThoseThatHoldThem) {
  const SmartRules rules =
      rulesOf({}, {kNineties, {.action = 1, .group = {kBach, nested(1)}, .any = true}, nested(1)});
  ASSERT_EQ(rules.groups.size(), 4U);
  EXPECT_EQ(rules.groups[0].rules[1].group, 1U);
  EXPECT_EQ(rules.groups[0].rules[2].group, 3U);
  EXPECT_TRUE(rules.groups[1].isAny);
  EXPECT_EQ(rules.groups[1].rules[1].group, 2U);
  EXPECT_EQ(rules.groups[2].rules[0].text, "B\u00e4ch");
}

TEST(SmartRulesTest, GroupsThatLieTooDeepAreLost) {
  const SmartRules rules = rulesOf({}, {nested(kDeepestGroup - 1)});
  EXPECT_EQ(rules.groups.size(), kDeepestGroup);
  EXPECT_FALSE(rules.groups.back().isCut);
  const SmartRules deeper = rulesOf({}, {nested(40)});
  EXPECT_EQ(deeper.groups.size(), kDeepestGroup);
  EXPECT_TRUE(deeper.groups.back().isCut);
  EXPECT_TRUE(deeper.groups.back().rules.empty());
}

TEST(SmartRulesTest, GroupThatIsCutOffKeepsTheRulesAfterIt) {
  // One program writes 68 bytes of a group and goes on with the next rule.
  const std::string group = samples::SmartCriteria({kNineties}, true);
  std::string criteria = samples::SmartCriteria({kNineties, kBach});
  const size_t first = 136;
  criteria.replace(first + 0x38, 68, group.substr(0, 68));
  criteria.replace(first, 8, std::string("\0\0\0\0\0\0\0\1", 8));
  const auto groups = readRuleGroups(criteria);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_TRUE(groups[1].isCut);
  EXPECT_TRUE(groups[1].isAny);
  EXPECT_FALSE(groups[0].isCut);
  EXPECT_EQ(groups[0].rules[1].text, "B\u00e4ch");
}

TEST(SmartRulesTest, EveryBeginningOfTheRulesIsReadAsFarAsItGoes) {
  const std::string criteria = samples::SmartCriteria({kBach, kNineties, nested(2)});
  size_t rules = 0;
  for (size_t size = 0; size <= criteria.size(); ++size) {
    const auto groups = readRuleGroups(criteria.substr(0, size));
    ASSERT_FALSE(groups.empty());
    EXPECT_GE(groups[0].rules.size(), rules);
    EXPECT_EQ(groups[0].isCut, groups[0].rules.size() < 3) << size;
    rules = groups[0].rules.size();
  }
  EXPECT_EQ(rules, 3U);
}

TEST(SmartRulesTest, CountOfRulesThatAreNotThereIsACut) {
  std::string criteria = samples::SmartCriteria({kBach});
  criteria.replace(8, 4, "\xff\xff\xff\xff");
  const auto groups = readRuleGroups(criteria);
  EXPECT_EQ(groups[0].rules.size(), 1U);
  EXPECT_TRUE(groups[0].isCut);
}

TEST(SmartRulesTest, SettingsThatAreMissingAreTheUsualOnes) {
  const SmartRules rules = readSmartRules({}, samples::SmartCriteria({kBach}));
  EXPECT_TRUE(rules.isLive);
  EXPECT_TRUE(rules.usesRules);
  EXPECT_FALSE(rules.isLimited);
  const auto objects = SmartObjects(Variant::LittleEndian, {.limited = true}, {kBach});
  EXPECT_FALSE(readSmartRules(objects[0].bytes.substr(0, 11), objects[1].bytes).isLimited);
  EXPECT_TRUE(readSmartRules(objects[0].bytes.substr(0, 12), objects[1].bytes).isLimited);
}

TEST(SmartRulesTest, DesktopSettingsAreBigEndianWithOrdersOfTheirOwn) {
  const SmartRules rules = rulesOf({.useRules = false, .limited = true, .order = 0x19, .limit = 25}, {kBach},
                                   true, Variant::BigEndian);
  EXPECT_FALSE(rules.usesRules);
  EXPECT_TRUE(rules.isLimited);
  EXPECT_EQ(rules.limitUnit, LimitUnit::Songs);
  EXPECT_EQ(rules.limitOrder, LimitOrder::Plays);
  EXPECT_EQ(rules.limit, 25U);
  EXPECT_EQ(rulesOf({.order = 0x14}, {kBach}, true, Variant::BigEndian).limitOrder, LimitOrder::Unknown);
  EXPECT_EQ(rules.groups[0].rules[0].text, "B\u00e4ch");
}

TEST(SmartRulesTest, UnitsAndOrdersThatAreNotKnownAreUnknown) {
  EXPECT_EQ(limitUnitOf(5), LimitUnit::Gigabytes);
  EXPECT_EQ(limitUnitOf(6), LimitUnit::Unknown);
  EXPECT_EQ(limitUnitOf(0), LimitUnit::Unknown);
  EXPECT_EQ(limitOrderOf(0x17), LimitOrder::Rating);
  EXPECT_EQ(limitOrderOf(0x18), LimitOrder::Unknown);
}

}  // namespace
}  // namespace player
