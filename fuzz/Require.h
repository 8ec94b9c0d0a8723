// What a target demands of the code under it.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace fuzz {

// Ends the program with the message, as a fault found, when the condition does not hold.
inline void Require(bool condition, std::string_view message) {
  if (condition) return;
  (void)std::fprintf(stderr, "%.*s\n", static_cast<int>(message.size()), message.data());
  std::abort();
}

}  // namespace fuzz
