#pragma once

// What the environment asks of the tests with random files.

#include <cstdint>
#include <optional>

namespace property {

// The number in an environment variable; nothing when it is not set. Throws std::runtime_error for what is no
// number.
std::optional<uint64_t> FromEnvironment(const char *name);

// How many cases to try of these many: ZEM_TEST_SCALE percent of them and one at least, all when it is not
// set.
uint64_t Scaled(uint64_t cases);

}  // namespace property
