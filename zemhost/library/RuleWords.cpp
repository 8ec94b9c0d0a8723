// The rules of smart playlists in words.

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "player/SmartFields.h"
#include "zemhost/library/PlaylistWords.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

using player::FieldKind;
using player::RuleValue;
using player::SmartRule;

int64_t numberOf(const RuleValue &value) {
  return static_cast<int64_t>(value.value + static_cast<uint64_t>(value.date) * value.unit);
}

std::string hexText(uint32_t number) {
  char text[16];
  (void)std::snprintf(text, sizeof text, "0x%x", number);
  return text;
}

std::string starsText(int64_t rating) {
  const std::string half = rating % 20 >= 10 ? "½" : "";
  return std::to_string(rating / 20) + half + (rating == 20 ? " star" : " stars");
}

// "2 weeks", of a span of seconds in units of its own.
std::string spanText(const RuleValue &span) {
  struct Unit {
    uint64_t seconds;
    const char *one;
    const char *many;
  };
  static constexpr Unit kUnits[] = {{1, "second", "seconds"},  {60, "minute", "minutes"},
                                    {3600, "hour", "hours"},   {86400, "day", "days"},
                                    {604800, "week", "weeks"}, {2628000, "month", "months"}};
  const uint64_t count =
      span.date < 0 ? 0 - static_cast<uint64_t>(span.date) : static_cast<uint64_t>(span.date);
  for (const Unit &unit : kUnits) {
    if (unit.seconds == span.unit) return countText(count, unit.one, unit.many);
  }
  return std::to_string(count) + " times " + std::to_string(span.unit) + " seconds";
}

std::string quoted(const std::string &text) { return std::string("'").append(text).append("'"); }

class Wording {
 public:
  Wording(const player::SmartRules &rules, const std::function<std::string(uint64_t)> &nameOf)
      : rules_(rules), nameOf_(nameOf) {}

  std::string text() const {
    std::string text = rules_.usesRules ? groupText(0) : "All songs";
    if (rules_.isLimited) text += ", limited to " + limitText();
    if (rules_.onlyChecked) text += ", only checked songs";
    if (!rules_.isLive) text += ", not kept up to date";
    return text;
  }

 private:
  // Groups lie inside each other no deeper than the reader of rules lets them.
  std::string groupText(size_t place) const {
    const player::RuleGroup &group = rules_.groups[place];
    std::string text;
    const auto add = [&](const std::string &part) {
      if (!text.empty()) text += group.isAny ? " or " : " and ";
      text += part;
    };
    for (const SmartRule &rule : group.rules)
      add(rule.group != 0 ? std::string("(").append(groupText(rule.group)).append(")") : ruleText(rule));
    if (group.isCut) add(text.empty() ? "rules that are lost" : "further rules that are lost");
    return text.empty() ? "All songs" : text;
  }

  std::string ruleText(const SmartRule &rule) const {
    const player::SmartField *const field = player::smartField(rule.field);
    const std::string name = field == nullptr ? "Field " + hexText(rule.field) : std::string(field->name);
    const bool isText = (rule.action & player::kTextAction) != 0;
    if (isText) return name + " " + verb(rule, "contains", "does not contain") + " " + quoted(rule.text);
    if (field != nullptr && field->kind == FieldKind::Flag && comparisonOf(rule) == player::kIs)
      return name + " is " + ((numberOf(rule.from) != 0) != isNegated(rule) ? "yes" : "no");
    if (comparisonOf(rule) == player::kInTheLast)
      return name + (isNegated(rule) ? " is not" : " is") + " in the last " + spanText(rule.from);
    return name + " " + verb(rule, "contains", "does not contain") + " " + valuesText(rule, field);
  }

  static bool isNegated(const SmartRule &rule) { return (rule.action & player::kNegatedAction) != 0; }
  static uint32_t comparisonOf(const SmartRule &rule) {
    return rule.action & ~(player::kTextAction | player::kNegatedAction);
  }

  static std::string verb(const SmartRule &rule, const char *contains, const char *containsNot) {
    const bool isNot = isNegated(rule);
    std::string is = isNot ? "is not" : "is";
    const player::SmartField *const field = player::smartField(rule.field);
    const bool isDate = field != nullptr && field->kind == FieldKind::Date;
    switch (comparisonOf(rule)) {
      case player::kIs:
        return is;
      case player::kContains:
        return isNot ? containsNot : contains;
      case player::kBegins:
        return isNot ? "does not begin with" : "begins with";
      case player::kEnds:
        return isNot ? "does not end with" : "ends with";
      case player::kGreater:
        return is + (isDate ? " after" : " more than");
      case player::kAtLeast:
        return is + (isDate ? " not before" : " at least");
      case player::kLess:
        return is + (isDate ? " before" : " less than");
      case player::kAtMost:
        return is + (isDate ? " not after" : " at most");
      case player::kInRange:
        return is + " from";
      case player::kAnyBit:
      case player::kBitsToo:
        return is;
      default:
        return is + " compared in a way that is not known (" + hexText(rule.action) + ") with";
    }
  }

  std::string valuesText(const SmartRule &rule, const player::SmartField *field) const {
    const std::string from = valueText(rule.from, field);
    return comparisonOf(rule) == player::kInRange ? from + " to " + valueText(rule.to, field) : from;
  }

  std::string valueText(const RuleValue &value, const player::SmartField *field) const {
    const int64_t number = numberOf(value);
    const FieldKind kind = field == nullptr ? FieldKind::Number : field->kind;
    // What does not fit the field's unit is shown as the number that it is.
    if (kind == FieldKind::Playlist) {
      const std::string name = nameOf_(value.value);
      return name.empty() ? "one that is not there" : quoted(name);
    }
    if (number < 0 || number > UINT32_MAX) return std::to_string(number);
    const auto word = static_cast<uint32_t>(number);
    switch (kind) {
      case FieldKind::Rating:
        return starsText(number);
      case FieldKind::Date:
        return word == 0 ? "never" : dateText(word);
      case FieldKind::Duration:
        return totalTimeText(word);
      case FieldKind::Size:
        return totalSizeText(word);
      case FieldKind::BitRate:
        return std::to_string(word) + " kbit/s";
      case FieldKind::SampleRate:
        return std::to_string(word) + " Hz";
      case FieldKind::MediaKind:
        return mediaText(word);
      default:
        return std::to_string(word);
    }
  }

  // One bit is one kind; with several any of them will do.
  static std::string mediaText(uint32_t bits) {
    const std::string text = mediaKindText(bits);
    if (text.empty()) return "0";
    return text.find(", ") == std::string::npos ? text : "one of " + text;
  }

  std::string limitText() const {
    std::string text = std::to_string(rules_.limit) + " ";
    switch (rules_.limitUnit) {
      case player::LimitUnit::Minutes:
        text += rules_.limit == 1 ? "minute" : "minutes";
        break;
      case player::LimitUnit::Hours:
        text += rules_.limit == 1 ? "hour" : "hours";
        break;
      case player::LimitUnit::Megabytes:
        text += "MB";
        break;
      case player::LimitUnit::Gigabytes:
        text += "GB";
        break;
      case player::LimitUnit::Songs:
        text += rules_.limit == 1 ? "song" : "songs";
        break;
      case player::LimitUnit::Unknown:
        text += "of a unit that is not known";
        break;
    }
    return text + ", " + orderText();
  }

  std::string orderText() const {
    const bool isReversed = rules_.isReversed;
    const std::string turned = isReversed ? ", last first" : "";
    switch (rules_.limitOrder) {
      case player::LimitOrder::Random:
        return "chosen at random";
      case player::LimitOrder::Title:
        return "by title" + turned;
      case player::LimitOrder::Album:
        return "by album" + turned;
      case player::LimitOrder::Artist:
        return "by artist" + turned;
      case player::LimitOrder::Genre:
        return "by genre" + turned;
      case player::LimitOrder::Added:
        return isReversed ? "least recently added first" : "most recently added first";
      case player::LimitOrder::Plays:
        return isReversed ? "least often played first" : "most often played first";
      case player::LimitOrder::LastPlayed:
        return isReversed ? "least recently played first" : "most recently played first";
      case player::LimitOrder::Rating:
        return isReversed ? "lowest rating first" : "highest rating first";
      case player::LimitOrder::Unknown:
        break;
    }
    return "in an order that is not known";
  }

  const player::SmartRules &rules_;
  const std::function<std::string(uint64_t)> &nameOf_;
};

}  // namespace

std::string rulesText(const player::SmartRules &rules,
                      const std::function<std::string(uint64_t list)> &nameOf) {
  return rules.groups.empty() ? std::string() : Wording(rules, nameOf).text();
}

}  // namespace zemhost
