#pragma once

// A shuffle plays from a list of its own beside the database: whether the two agree.

#include <cstdint>
#include <optional>

#include "player/Findings.h"
#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

struct ShuffleAccount {
  uint64_t songs = 0;             // that iTunesSD lists
  std::optional<uint64_t> plays;  // that iTunesStats counted; no value without it
  std::optional<uint64_t> skips;
};

// Compares the songs of iTunesSD with those of the library, by path, persistent id and order, and the number
// of entries in iTunesStats with the number of songs. Adds what differs, and what cannot be read, to
// `findings`. Nothing for a player without an iTunesSD, and for a library that is on none.
std::optional<ShuffleAccount> checkShuffle(const MusicLibrary &library, player::Findings &findings);

}  // namespace zemhost
