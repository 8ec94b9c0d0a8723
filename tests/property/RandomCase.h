// Cases drawn at random: two files, two objects, and what host code does with them.
#pragma once

#include <cstdint>

#include "tests/property/Case.h"

namespace property {

// The case of a seed, the same on every machine.
Case SomeCase(uint64_t seed);

}  // namespace property
