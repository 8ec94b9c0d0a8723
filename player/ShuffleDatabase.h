#pragma once

// What a shuffle plays from, beside the database: iTunesSD, the songs in the order of playing, and
// iTunesStats, what it counted of them. Players of the first two generations have an older form of both.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace player {

struct ShuffleSong {
  std::string path;  // from the player's root, with slashes, UTF-8 where the file is sound
  std::optional<uint64_t> persistentId;  // in the newer form
};

struct ShuffleDatabase {
  std::vector<ShuffleSong> songs;
  uint64_t declaredSongs = 0;  // in its header
  bool isCutShort = false;     // a song that it announces is not there, or none

  std::string summary() const;  // "it lists 13 songs"
};

struct ShuffleCount {
  uint32_t plays = 0;
  uint32_t skips = 0;
};

// No shuffle has room for the songs of a longer file.
constexpr size_t kMostShuffleBytes = size_t{64} << 20;

// The songs of an iTunesSD in either form, as far as they go. Nothing for bytes that are no such list, or too
// many.
std::optional<ShuffleDatabase> readShuffleDatabase(std::string_view bytes);

// The entries of an iTunesStats in either form, one for each song of iTunesSD, as far as they go. Nothing for
// bytes that are no such file, or too many.
std::optional<std::vector<ShuffleCount>> readShuffleCounts(std::string_view bytes);

}  // namespace player
