#pragma once

#include <cstdint>

// Random numbers of the system's, taken once when the plug-in is loaded, for the hashes of tables: whoever
// writes a file cannot foresee them. A system without random numbers gives what the clock and the place of
// the stack say.
struct RandomKey {
  uint64_t texts[2];
  uint64_t ids[2];
};

extern const RandomKey randomKey;
