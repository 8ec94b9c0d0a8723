#pragma once

// Rules of smart playlists, as tests write them.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "player/SmartRules.h"

namespace player {

inline SmartRules with(std::vector<SmartRule> rules, bool isAny = false) {
  SmartRules all;
  all.groups = {{isAny, false, std::move(rules)}};
  return all;
}

inline SmartRule number(uint32_t field, uint32_t action, uint64_t from, uint64_t to = 0) {
  SmartRule rule;
  rule.field = field;
  rule.action = action;
  rule.from = {from, 0, 1};
  rule.to = {to, 0, 1};
  return rule;
}

inline SmartRule text(uint32_t field, uint32_t action, std::string wanted) {
  SmartRule rule;
  rule.field = field;
  rule.action = action | kTextAction;
  rule.text = std::move(wanted);
  return rule;
}

}  // namespace player
