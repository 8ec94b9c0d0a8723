#include "zemhost/rescue/TargetNames.h"

#include <limits>

#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

std::string numbered(uint32_t number) { return " (" + std::to_string(number) + ")"; }

}  // namespace

std::string TargetNames::take(const Named &named, const std::function<bool(const std::string &)> &isFree) {
  // Texts that are the same up to where the longest suffix cuts them count together: with a suffix they meet.
  const std::string longest = named(numbered(std::numeric_limits<uint32_t>::max()));
  uint32_t &next = nextNumber_.try_emplace(foldedText(longest), 2).first->second;
  for (std::string name = named("");; name = named(numbered(next++))) {
    ++tried_;
    if (taken_.insert(foldedText(name)).second && isFree(name)) return name;
  }
}

}  // namespace zemhost
