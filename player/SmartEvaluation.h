#pragma once

// The songs that belong in a smart playlist, found anew from its rules.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "player/SmartRules.h"
#include "player/SongFacts.h"

namespace player {

struct SmartSong {
  SongFacts facts;
  std::map<uint32_t, std::string> texts;  // UTF-8, by the numbers that players give them
};

// What rules are looked at with.
struct SmartSource {
  size_t songs = 0;
  std::function<SmartSong(size_t song)> song;
  // Whether a song stands in the list with a persistent ID; no value when there is no such list.
  std::function<std::optional<bool>(uint64_t list, size_t song)> isIn;
  std::function<std::string(std::string_view text)> fold;  // texts that differ in case alone become the same
  uint32_t now = 0;                                        // seconds since the start of 1904
};

// Songs by their positions, in the order of the library.
struct SmartResult {
  std::vector<size_t> certain;    // that belong in the list
  std::vector<size_t> possible;   // of which the limit leaves room for some; the rules do not say which
  std::vector<size_t> undecided;  // that a rule asks for what is not known of any song
  std::optional<size_t> count;    // how long the list is; no value when it may be of several lengths
};

// Looks at each song once; time grows with songs times rules, and with the logarithm of the songs where there
// is a limit.
SmartResult evaluate(const SmartRules &rules, const SmartSource &source);

// Whether the answer depends on the day.
bool dependsOnDay(const SmartRules &rules);

// How a list that was filled before differs.
struct SmartDifference {
  std::vector<size_t> missing;  // that belong in it and are not there
  std::vector<size_t> extra;    // that are in it and do not belong there
  bool isOtherLength = false;   // it has another number of songs than it should

  bool isNone() const { return missing.empty() && extra.empty() && !isOtherLength; }
};

// `stored` are the songs of the list, in any order.
SmartDifference difference(const SmartResult &result, std::vector<size_t> stored);

}  // namespace player
