#pragma once

// The database files that are measured: written once into the folder `files` of the build and
// kept, since the largest takes longer to write than to measure.

#include <cstdint>
#include <string>

namespace bench {

enum class Texts {
  kUsual,  // as GeneratedLibrary makes them: 8 to 10 objects a song, a fifth of them Japanese, little-endian
  kTenObjects,  // the same songs, each with ten objects
  kHostile,     // the same songs with every ID zero and entries that name unknown IDs
  kBigEndian,   // the usual songs in a big-endian file, where every group is numbered
  kMissing,     // big-endian songs with a title and a path only
  kDistinct,    // big-endian songs, each with an artist, album, genre and composer of its own
  kEqual,       // big-endian songs that all share them
  kCrafted      // as kDistinct, of a family that meets in one place under a hash without a key
};

// The file's path. A big library has one playlist of every song and ten of a tenth each.
std::string LibraryFile(uint32_t songs, Texts texts);

// The title, as Google Benchmark counts, of a kind of texts.
const char *NameOf(Texts texts);

}  // namespace bench
