#include "db/RandomKey.h"

#include <chrono>
#include <exception>
#include <random>

namespace {

RandomKey MakeKey() noexcept {
  const auto now = static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  RandomKey key = {{now, reinterpret_cast<uintptr_t>(&now)},
                   {~now, ~uint64_t{reinterpret_cast<uintptr_t>(&now)}}};
  try {
    std::random_device random;
    for (uint64_t *word : {&key.texts[0], &key.texts[1], &key.ids[0], &key.ids[1]}) {
      *word ^= uint64_t{random()} << 32 | random();
    }
  } catch (const std::exception &) {
    // What is there has to do.
  }
  return key;
}

}  // namespace

const RandomKey randomKey = MakeKey();
