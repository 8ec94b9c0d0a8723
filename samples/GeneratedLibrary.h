// Libraries of any size for tests and measurements: the same numbers give the same bytes on every machine.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "samples/DatabaseWriter.h"

namespace samples {

// A small generator of pseudo-random numbers (splitmix64), the same everywhere.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}

  uint64_t Next();
  // 0 to `limit` - 1; `limit` must not be 0.
  uint32_t Below(uint32_t limit);
  bool OneIn(uint32_t chances) { return Below(chances) == 0; }

 private:
  uint64_t state_;
};

// The text of a number below 2^18 from a family made to meet in one place of a hash table: in each text pairs
// of bits are flipped that cancel each other in a hash which multiplies word by word, whatever it is seeded
// with.
std::u16string CancellingText(uint32_t number);

// Each song has 8 to 10 text objects; albums of 12 songs follow each other, and every fifth one is Japanese.
// The first playlist holds every song once, in file order; each further one holds `entries` songs drawn at
// random. Song i has the track id 2 * i + 52.
struct GeneratedLibrary {
  uint64_t seed = 1;
  uint32_t songs = 0;
  uint32_t playlists = 1;
  uint32_t entries = 0;
  Variant variant = Variant::LittleEndian;

  // The record of the song at `index` (0 to songs - 1). It depends on the seed and the index alone.
  [[nodiscard]] Track Song(uint32_t index) const;

  // The playlist at `index` (0 to playlists - 1) with all its entries.
  [[nodiscard]] Playlist List(uint32_t index) const;

  // Writes the file to a seekable stream, song by song, so that a million songs need little memory; the
  // stream must be empty, and shows a failure by its state.
  void WriteTo(std::ostream &stream) const;

  // The whole file in memory.
  [[nodiscard]] std::string Bytes() const;
};

}  // namespace samples
