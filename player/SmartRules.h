#pragma once

// The rules of a smart playlist, as the computer stored them.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace player {

// What a rule does with its field: one of the comparisons below, with or without the two bits above them.
constexpr uint32_t kTextAction = 0x0100'0000;     // the field is a text
constexpr uint32_t kNegatedAction = 0x0200'0000;  // what the comparison says is turned round
constexpr uint32_t kIs = 1, kContains = 2, kBegins = 4, kEnds = 8, kGreater = 0x10, kAtLeast = 0x20,
                   kLess = 0x40, kAtMost = 0x80, kInRange = 0x100, kInTheLast = 0x200, kAnyBit = 0x400,
                   kBitsToo = 0x800;

// A value of a rule stands for `value` + `date` times `unit`.
struct RuleValue {
  uint64_t value = 0;  // kNow: the day on which the rules are looked at
  int64_t date = 0;
  uint64_t unit = 0;  // of a span of time, in seconds
};
constexpr uint64_t kNow = 0x2dae'2dae'2dae'2dae;

struct SmartRule {
  uint32_t field = 0;   // see SmartFields.h
  uint32_t action = 0;  // as above
  std::string text;     // UTF-8; of a text
  RuleValue from;       // of all others
  RuleValue to;         // the end of a range
  size_t group = 0;     // the place of the group that stands for the rule; 0: it is a rule by itself
};

struct RuleGroup {
  bool isAny = false;  // one rule is enough; else all must hold
  bool isCut = false;  // some rules are lost
  std::vector<SmartRule> rules;
};

enum class LimitUnit : uint8_t { Unknown, Minutes, Megabytes, Songs, Hours, Gigabytes };
enum class LimitOrder : uint8_t {
  Unknown,
  Random,
  Title,
  Album,
  Artist,
  Genre,
  Added,
  Plays,
  LastPlayed,
  Rating
};

struct SmartRules {
  bool isLive = true;     // kept up to date
  bool usesRules = true;  // otherwise every song matches
  bool isLimited = false;
  LimitUnit limitUnit = LimitUnit::Unknown;
  LimitOrder limitOrder = LimitOrder::Unknown;  // which songs are taken first
  uint32_t limit = 0;
  bool onlyChecked = false;
  bool isReversed = false;        // the order of the limit
  std::vector<RuleGroup> groups;  // the first holds all others, each before those inside it
};

// Groups may lie inside each other so deep; what lies deeper is lost.
constexpr size_t kDeepestGroup = 16;

// The rules of a player's list. `settings` and `criteria` are the bodies of its objects 50 and 51, or what
// there is of them: what is missing of the first is as above, what is missing of the second is lost.
SmartRules readSmartRules(std::string_view settings, std::string_view criteria);

// The same of a desktop library's list: its objects 102 and 101.
SmartRules readDesktopRules(std::string_view settings, std::string_view criteria);

// The groups of rules alone, from the letters "SLst" on, in big-endian order in every file. There is at least
// one.
std::vector<RuleGroup> readRuleGroups(std::string_view criteria);

// The meaning of the numbers that stand for them on a player.
LimitUnit limitUnitOf(uint32_t number);
LimitOrder limitOrderOf(uint32_t number);

}  // namespace player
