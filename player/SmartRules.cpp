#include "player/SmartRules.h"

#include <algorithm>

#include "player/FileWord.h"
#include "player/Utf16.h"

namespace player {

namespace {

constexpr std::string_view kSign = "SLst";
constexpr size_t kGroupCounts = 16;  // the sign, a word, the number of rules, and how they are joined
constexpr size_t kGroupHeader = 136;
constexpr size_t kRuleHeader = 0x38;
constexpr size_t kLengthAt = 0x34;
constexpr size_t kValues = 48;    // of a rule without a text, as far as they mean something
constexpr size_t kSettings = 12;  // as far as the limit
constexpr uint32_t kDesktopPlays = 0x19;

uint64_t numberAt(std::string_view bytes, size_t at) {
  return uint64_t{wordAt(bytes, at, true)} << 32 | wordAt(bytes, at + 4, true);
}

RuleValue valueAt(std::string_view data, size_t at) {
  return {numberAt(data, at), static_cast<int64_t>(numberAt(data, at + 8)), numberAt(data, at + 16)};
}

class GroupReader {
 public:
  std::vector<RuleGroup> read(std::string_view criteria) {
    readGroup(criteria, 1);
    return std::move(groups_);
  }

 private:
  // Adds the group and those inside it, as far as its bytes go, and returns its place.
  size_t readGroup(std::string_view bytes, size_t depth) {
    const size_t place = groups_.size();
    groups_.emplace_back();
    if (bytes.size() < kGroupCounts || !bytes.starts_with(kSign)) {
      groups_[place].isCut = true;
      return place;
    }
    const uint32_t announced = wordAt(bytes, 8, true);
    groups_[place].isAny = wordAt(bytes, 12, true) != 0;
    bytes.remove_prefix(std::min(bytes.size(), kGroupHeader));
    for (uint32_t i = 0; i < announced; ++i) {
      if (takeRule(bytes, place, depth)) continue;
      groups_[place].isCut = true;
      break;
    }
    return place;
  }

  // Takes a rule off the bytes; false when they hold none that is whole.
  bool takeRule(std::string_view &bytes, size_t place, size_t depth) {
    if (bytes.size() < kRuleHeader) return false;
    const size_t length = wordAt(bytes, kLengthAt, true);
    if (length > bytes.size() - kRuleHeader) return false;
    SmartRule rule;
    rule.field = wordAt(bytes, 0, true);
    rule.action = wordAt(bytes, 4, true);
    const std::string_view data = bytes.substr(kRuleHeader, length);
    if (data.starts_with(kSign)) {
      if (depth == kDeepestGroup) return false;
      rule.group = readGroup(data, depth + 1);
    } else if ((rule.action & kTextAction) != 0) {
      rule.text = utf8OfUtf16(data, true);
    } else if (data.size() >= kValues) {
      rule.from = valueAt(data, 0);
      rule.to = valueAt(data, 24);
    } else {
      return false;
    }
    groups_[place].rules.push_back(std::move(rule));
    bytes.remove_prefix(kRuleHeader + length);
    return true;
  }

  std::vector<RuleGroup> groups_;
};

bool isSet(std::string_view settings, size_t at, bool usually) {
  return at < settings.size() ? settings[at] != 0 : usually;
}

// What the settings say alike on players and computers; the order and the limit follow.
SmartRules rulesOf(std::string_view settings, std::string_view criteria) {
  SmartRules rules;
  rules.isLive = isSet(settings, 0, true);
  rules.usesRules = isSet(settings, 1, true);
  rules.isLimited = settings.size() >= kSettings && settings[2] != 0;
  if (settings.size() > 3) rules.limitUnit = limitUnitOf(static_cast<unsigned char>(settings[3]));
  rules.groups = readRuleGroups(criteria);
  return rules;
}

}  // namespace

LimitUnit limitUnitOf(uint32_t number) {
  return number <= static_cast<uint32_t>(LimitUnit::Gigabytes) ? static_cast<LimitUnit>(number)
                                                               : LimitUnit::Unknown;
}

LimitOrder limitOrderOf(uint32_t number) {
  switch (number) {
    case 0x02:
      return LimitOrder::Random;
    case 0x03:
      return LimitOrder::Title;
    case 0x04:
      return LimitOrder::Album;
    case 0x05:
      return LimitOrder::Artist;
    case 0x07:
      return LimitOrder::Genre;
    case 0x10:
      return LimitOrder::Added;
    case 0x14:
      return LimitOrder::Plays;
    case 0x15:
      return LimitOrder::LastPlayed;
    case 0x17:
      return LimitOrder::Rating;
    default:
      return LimitOrder::Unknown;
  }
}

std::vector<RuleGroup> readRuleGroups(std::string_view criteria) { return GroupReader().read(criteria); }

SmartRules readSmartRules(std::string_view settings, std::string_view criteria) {
  SmartRules rules = rulesOf(settings, criteria);
  if (settings.size() > 4) rules.limitOrder = limitOrderOf(static_cast<unsigned char>(settings[4]));
  if (settings.size() >= kSettings) rules.limit = wordAt(settings, 8, false);
  rules.onlyChecked = isSet(settings, 12, false);
  rules.isReversed = isSet(settings, 13, false);
  return rules;
}

SmartRules readDesktopRules(std::string_view settings, std::string_view criteria) {
  SmartRules rules = rulesOf(settings, criteria);
  // Orders have other numbers there, of which one is known.
  if (settings.size() >= kSettings && wordAt(settings, 4, true) == kDesktopPlays)
    rules.limitOrder = LimitOrder::Plays;
  if (settings.size() >= kSettings) rules.limit = wordAt(settings, 8, true);
  return rules;
}

}  // namespace player
