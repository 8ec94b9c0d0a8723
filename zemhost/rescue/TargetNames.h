#pragma once

// Names for the files of a destination, each given once.

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace zemhost {

class TargetNames {
 public:
  // What is called so with a suffix (" (2)", or none) before its extension. The more of its text the suffix
  // takes the place of, the more names are alike.
  using Named = std::function<std::string(std::string_view suffix)>;

  // The first name without or with a number, of those not given yet, that `isFree` takes. Names are told
  // apart without regard to case and composition. Takes a few steps, however many have the same name before
  // their numbers; `isFree` is asked about no name twice.
  std::string take(const Named &named, const std::function<bool(const std::string &)> &isFree);

  // The names that were looked at until now, for showing how the work grows.
  uint64_t tried() const { return tried_; }

 private:
  // Ordered, since whoever chose the names could make them meet in any hash that is known.
  std::set<std::string> taken_;
  std::map<std::string, uint32_t> nextNumber_;  // by what is the same in a name with any number
  uint64_t tried_ = 0;
};

}  // namespace zemhost
