#include "player/SmartEvaluation.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <tuple>
#include <utility>

#include "player/SmartFields.h"

namespace player {

namespace {

// No value stands for "not known" throughout.
using Answer = std::optional<bool>;

int64_t valueOf(const RuleValue &value, uint32_t now) {
  const uint64_t start = value.value == kNow ? now : value.value;
  return static_cast<int64_t>(start + static_cast<uint64_t>(value.date) * value.unit);  // may wrap round
}

Answer compareTexts(uint32_t comparison, const std::string &text, const std::string &wanted) {
  switch (comparison) {
    case kIs:
      return text == wanted;
    case kContains:
      return text.find(wanted) != std::string::npos;
    case kBegins:
      return text.starts_with(wanted);
    case kEnds:
      return text.ends_with(wanted);
    default:
      return std::nullopt;
  }
}

Answer compareNumbers(uint32_t comparison, int64_t number, int64_t from, int64_t to) {
  switch (comparison) {
    case kIs:
      return number == from;
    case kGreater:
      return number > from;
    case kAtLeast:
    case kInTheLast:
      return number >= from;
    case kLess:
      return number < from;
    case kAtMost:
      return number <= from;
    case kInRange:
      return number >= std::min(from, to) && number <= std::max(from, to);
    case kAnyBit:
    case kBitsToo:
      return (number & from) != 0;
    default:
      return std::nullopt;
  }
}

class Judge {
 public:
  Judge(const SmartRules &rules, const SmartSource &source) : rules_(rules), source_(source) {
    // Texts are folded once.
    for (const RuleGroup &group : rules.groups) {
      folded_.emplace_back();
      for (const SmartRule &rule : group.rules) folded_.back().push_back(source.fold(rule.text));
    }
  }

  // Whether a song matches. Groups come behind those that hold them, so the last is answered first.
  Answer matches(size_t place, const SmartSong &song) const {
    if (rules_.onlyChecked && !song.facts.checked.value_or(true)) return false;
    if (!rules_.usesRules) return true;
    std::vector<Answer> answers(rules_.groups.size());
    for (size_t group = answers.size(); group-- > 0;)
      answers[group] = groupAnswer(group, answers, place, song);
    return answers.empty() ? Answer(true) : answers.front();
  }

 private:
  Answer groupAnswer(size_t place, const std::vector<Answer> &answers, size_t songPlace,
                     const SmartSong &song) const {
    const RuleGroup &group = rules_.groups[place];
    bool isKnown = !group.isCut;
    for (size_t i = 0; i < group.rules.size(); ++i) {
      const SmartRule &rule = group.rules[i];
      const Answer answer =
          rule.group != 0 ? answers[rule.group] : ruleAnswer(rule, folded_[place][i], songPlace, song);
      if (!answer) isKnown = false;
      if (answer && *answer == group.isAny) return group.isAny;
    }
    if (!isKnown) return std::nullopt;
    return !group.isAny || group.rules.empty();
  }

  Answer ruleAnswer(const SmartRule &rule, const std::string &wanted, size_t place,
                    const SmartSong &song) const {
    const SmartField *const field = smartField(rule.field);
    const uint32_t comparison = rule.action & ~(kTextAction | kNegatedAction);
    if (field == nullptr || (field->kind == FieldKind::Text) != ((rule.action & kTextAction) != 0))
      return std::nullopt;
    Answer answer;
    if (field->kind == FieldKind::Text) {
      if (field->text != 0) answer = compareTexts(comparison, textOf(song, field->text), wanted);
    } else if (field->kind == FieldKind::Playlist) {
      if (comparison == kIs) answer = source_.isIn(rule.from.value, place);
    } else if (field->of != nullptr) {
      const auto number = field->of(song.facts);
      if (number) {
        answer = compareNumbers(comparison, *number, valueOf(rule.from, source_.now),
                                valueOf(rule.to, source_.now));
      }
    }
    if (answer && (rule.action & kNegatedAction) != 0) answer = !*answer;
    return answer;
  }

  std::string textOf(const SmartSong &song, uint32_t number) const {
    const auto text = song.texts.find(number);
    return text == song.texts.end() ? std::string() : source_.fold(text->second);
  }

  const SmartRules &rules_;
  const SmartSource &source_;
  std::vector<std::vector<std::string>> folded_;
};

// A song that matches, where there is a limit.
struct Candidate {
  size_t place = 0;
  int64_t rank = 0;     // the lower come first
  std::string text;     // likewise, among those of one rank
  uint64_t amount = 0;  // of what is limited

  bool isBefore(const Candidate &other) const {
    return std::tie(rank, text) < std::tie(other.rank, other.text);
  }
};

class Limit {
 public:
  Limit(const SmartRules &rules, const SmartSource &source) : rules_(rules), source_(source) {}

  // Songs that were never played are not among those that were played most or lately.
  bool takes(const SmartSong &song) const {
    if (rules_.isReversed) return true;
    if (rules_.limitOrder == LimitOrder::Plays) return song.facts.plays.value_or(0) != 0;
    return rules_.limitOrder != LimitOrder::LastPlayed || song.facts.lastPlayed.has_value();
  }

  Candidate candidate(size_t place, const SmartSong &song) const {
    Candidate one{place, rankOf(song.facts), {}, amountOf(song.facts)};
    const auto [sortText, text] = textNumbers();
    for (const uint32_t number : {sortText, text}) {
      const auto found = song.texts.find(number);
      if (number == 0 || found == song.texts.end() || found->second.empty()) continue;
      one.text = source_.fold(found->second);
      break;
    }
    return one;
  }

  void apply(std::vector<Candidate> candidates, SmartResult &result) const {
    const bool isByText = textNumbers().second != 0;
    std::stable_sort(candidates.begin(), candidates.end(), [&](const Candidate &a, const Candidate &b) {
      return isByText && rules_.isReversed ? b.isBefore(a) : a.isBefore(b);
    });
    const uint64_t room = roomFor();
    uint64_t taken = 0;
    size_t count = 0;
    while (count < candidates.size() && candidates[count].amount <= room - taken)
      taken += candidates[count++].amount;
    result.count = count;
    settle(candidates, count, result);
    if (!result.possible.empty() && rules_.limitUnit != LimitUnit::Songs) result.count.reset();
    std::sort(result.certain.begin(), result.certain.end());
    std::sort(result.possible.begin(), result.possible.end());
  }

 private:
  // The first `count` are taken. Where the first that is not has the rank of others, any of these may be in
  // the list.
  void settle(const std::vector<Candidate> &candidates, size_t count, SmartResult &result) const {
    size_t first = count;
    size_t last = count;
    if (count < candidates.size()) {
      const bool isOrdered =
          rules_.limitOrder != LimitOrder::Random && rules_.limitOrder != LimitOrder::Unknown;
      const auto isSame = [&](const Candidate &one) {
        return !isOrdered || (!one.isBefore(candidates[count]) && !candidates[count].isBefore(one));
      };
      while (first > 0 && isSame(candidates[first - 1])) --first;
      while (last < candidates.size() && isSame(candidates[last])) ++last;
      const bool isFull = rules_.limitUnit == LimitUnit::Songs && first == count;
      const bool isAlone = first == count && last == count + 1;
      if (isFull || isAlone) last = count;
    }
    for (size_t i = 0; i < first; ++i) result.certain.push_back(candidates[i].place);
    for (size_t i = first; i < last; ++i) result.possible.push_back(candidates[i].place);
  }

  // The text that songs are ranked by: the one for sorting, else the usual one; 0: by none.
  std::pair<uint32_t, uint32_t> textNumbers() const {
    switch (rules_.limitOrder) {
      case LimitOrder::Title:
        return {27, 1};
      case LimitOrder::Album:
        return {28, 3};
      case LimitOrder::Artist:
        return {23, 4};
      case LimitOrder::Genre:
        return {0, 5};
      default:
        return {0, 0};
    }
  }

  int64_t rankOf(const SongFacts &song) const {
    int64_t rank = 0;
    switch (rules_.limitOrder) {
      case LimitOrder::Added:
        rank = song.added.value_or(0);
        break;
      case LimitOrder::Plays:
        rank = song.plays.value_or(0);
        break;
      case LimitOrder::LastPlayed:
        rank = song.lastPlayed.value_or(0);
        break;
      case LimitOrder::Rating:
        rank = song.rating.value_or(0);
        break;
      default:
        break;
    }
    return rules_.isReversed ? rank : -rank;
  }

  uint64_t amountOf(const SongFacts &song) const {
    switch (rules_.limitUnit) {
      case LimitUnit::Minutes:
      case LimitUnit::Hours:
        return song.duration.value_or(0);
      case LimitUnit::Megabytes:
      case LimitUnit::Gigabytes:
        return song.size.value_or(0);
      default:
        return 1;
    }
  }

  uint64_t roomFor() const {
    const uint64_t limit = rules_.limit;
    switch (rules_.limitUnit) {
      case LimitUnit::Minutes:
        return limit * 60'000;
      case LimitUnit::Hours:
        return limit * 3'600'000;
      case LimitUnit::Megabytes:
        return limit << 20;
      case LimitUnit::Gigabytes:
        return limit << 30;
      case LimitUnit::Songs:
        return limit;
      default:
        return std::numeric_limits<uint64_t>::max();
    }
  }

  const SmartRules &rules_;
  const SmartSource &source_;
};

bool isRelative(const SmartRule &rule) {
  return rule.group == 0 && (rule.action & kTextAction) == 0 &&
         (rule.from.value == kNow || rule.to.value == kNow);
}

}  // namespace

SmartResult evaluate(const SmartRules &rules, const SmartSource &source) {
  const Judge judge(rules, source);
  const Limit limit(rules, source);
  SmartResult result;
  std::vector<Candidate> candidates;
  for (size_t place = 0; place < source.songs; ++place) {
    const SmartSong song = source.song(place);
    const Answer answer = judge.matches(place, song);
    if (!answer) {
      result.undecided.push_back(place);
    } else if (*answer && rules.isLimited) {
      if (limit.takes(song)) candidates.push_back(limit.candidate(place, song));
    } else if (*answer) {
      result.certain.push_back(place);
    }
  }
  result.count = result.certain.size();
  if (rules.isLimited) limit.apply(std::move(candidates), result);
  if (!result.undecided.empty()) {
    result.count.reset();
    // These may take the room of others.
    if (rules.isLimited) {
      result.possible.insert(result.possible.end(), result.certain.begin(), result.certain.end());
      std::sort(result.possible.begin(), result.possible.end());
      result.certain.clear();
    }
  }
  return result;
}

bool dependsOnDay(const SmartRules &rules) {
  return rules.usesRules && std::any_of(rules.groups.begin(), rules.groups.end(), [](const RuleGroup &group) {
           return std::any_of(group.rules.begin(), group.rules.end(), isRelative);
         });
}

SmartDifference difference(const SmartResult &result, std::vector<size_t> stored) {
  std::sort(stored.begin(), stored.end());
  stored.erase(std::unique(stored.begin(), stored.end()), stored.end());
  SmartDifference found;
  std::set_difference(result.certain.begin(), result.certain.end(), stored.begin(), stored.end(),
                      std::back_inserter(found.missing));
  const auto isIn = [](const std::vector<size_t> &songs, size_t song) {
    return std::binary_search(songs.begin(), songs.end(), song);
  };
  for (const size_t song : stored) {
    if (!isIn(result.certain, song) && !isIn(result.possible, song) && !isIn(result.undecided, song))
      found.extra.push_back(song);
  }
  found.isOtherLength = result.count && *result.count != stored.size();
  return found;
}

}  // namespace player
